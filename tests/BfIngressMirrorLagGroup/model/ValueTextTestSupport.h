#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMatchSpec.h"
#include "BfIngressMirrorLagGroup/model/SetLagMemberSelectorActionProfileSpec.h"
#include "Vel/AllocTrackTypeInfo.h"
#include "Vel/Allocate.h"
#include "Vel/ObjectReference.h"
#include "Vel/Ptr.h"
#include "Vel/String.h"
#include "platform/Vel/TextTestSupport.h"

// Helpers of the tests of the model's value texts: match specs, the fixed
// pieces of the two value texts, and a fixture that checks no spec is left alive.
namespace ValueTextTestSupport {

using BfIngressMirrorLagGroup::IngressMirrorLagGroupMatchSpec;
using TextTestSupport::messageOf;

inline const Vel::String memberOrGroupHead =
    "Value('BfIngressMirrorLagGroup::IngressMirrorLagGroupMemberOrGroupOrNone', ** {";
inline const Vel::String entryHead =
    "Value('BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry', ** {";

inline Vel::Ptr<IngressMirrorLagGroupMatchSpec> newMatchSpec(std::uint16_t session) {
  Vel::Ptr<IngressMirrorLagGroupMatchSpec> spec = Vel::allocate<IngressMirrorLagGroupMatchSpec>();
  spec->ingMirrorMdMirrorSessionIs(session);
  return spec;
}

// The id that names `object` in reference texts.
inline std::string idText(const Vel::PtrInterface* object) {
  return std::to_string(Vel::ObjectReference::idOf(object));
}

// The reference text of a match spec, written out by hand.
inline Vel::String matchRefText(const Vel::PtrInterface* spec) {
  return "Ref('BfIngressMirrorLagGroup::IngressMirrorLagGroupMatchSpec', " + idText(spec) + ")";
}

// Checks after each test that every spec made by the test has died.
class MatchSpecLeakCheck : public ::testing::Test {
 protected:
  void TearDown() override {
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<IngressMirrorLagGroupMatchSpec>().liveObjects(), 0u);
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<
                  BfIngressMirrorLagGroup::SetLagMemberSelectorActionProfileSpec>()
                  .liveObjects(),
              0u);
  }
};

}  // namespace ValueTextTestSupport
