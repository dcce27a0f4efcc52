#pragma once

#include <cstdint>

#include "BfnTable/MatchSpecBase.h"
#include "Vel/TypeRecord.h"

namespace BfIngressMirrorLagGroup {

// The match key of the ingressMirrorLagGroup table: the ingress-mirror session,
// matched exactly. Held through Vel::Ptr<IngressMirrorLagGroupMatchSpec const>;
// tables and registries tell keys apart by object identity, not by value.
class IngressMirrorLagGroupMatchSpec : public BfnTable::MatchSpecBase {
 public:
  // The framework's record of this type, under which references to match specs
  // are written as text and read back.
  static const Vel::TypeRecord& typeRecord();
  const Vel::TypeRecord* fwkType() const override;

  std::uint16_t ingMirrorMdMirrorSession() const noexcept { return ingMirrorMdMirrorSession_; }
  void ingMirrorMdMirrorSessionIs(std::uint16_t session) noexcept {
    ingMirrorMdMirrorSession_ = session;
  }

 private:
  std::uint16_t ingMirrorMdMirrorSession_ = 0;
};

}  // namespace BfIngressMirrorLagGroup
