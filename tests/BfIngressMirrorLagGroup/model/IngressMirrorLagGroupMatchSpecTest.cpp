#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMatchSpec.h"

#include <gtest/gtest.h>

#include "ValueTextTestSupport.h"
#include "Vel/ValueToStrep.h"

namespace BfIngressMirrorLagGroup {
namespace {

using ValueTextTestSupport::MatchSpecLeakCheck;
using ValueTextTestSupport::newMatchSpec;

using IngressMirrorLagGroupMatchSpecTest = MatchSpecLeakCheck;

TEST_F(IngressMirrorLagGroupMatchSpecTest, TypeRecordIsAnObjectTypeUnderItsQualifiedName) {
  const Vel::TypeRecord& record = IngressMirrorLagGroupMatchSpec::typeRecord();
  EXPECT_EQ(record.name(), "BfIngressMirrorLagGroup::IngressMirrorLagGroupMatchSpec");
  EXPECT_EQ(record.kind(), Vel::TypeRecord::Kind::object);
  EXPECT_EQ(&IngressMirrorLagGroupMatchSpec::typeRecord(), &record);
}

TEST_F(IngressMirrorLagGroupMatchSpecTest, RunTimeTypeOfASpecIsItsTypeRecord) {
  const Vel::Ptr<const Vel::PtrInterface> spec = newMatchSpec(3);
  EXPECT_EQ(spec->fwkType(), &IngressMirrorLagGroupMatchSpec::typeRecord());
}

TEST_F(IngressMirrorLagGroupMatchSpecTest, NewSpecHasSessionZeroUntilSet) {
  const Vel::Ptr<IngressMirrorLagGroupMatchSpec> spec =
      Vel::allocate<IngressMirrorLagGroupMatchSpec>();
  EXPECT_EQ(spec->ingMirrorMdMirrorSession(), 0u);
  spec->ingMirrorMdMirrorSessionIs(0xFFFF);
  EXPECT_EQ(spec->ingMirrorMdMirrorSession(), 0xFFFFu);
}

TEST_F(IngressMirrorLagGroupMatchSpecTest, ReferenceTextNamesTheTypeEvenWithoutAGivenRecord) {
  const Vel::Ptr<IngressMirrorLagGroupMatchSpec> spec = newMatchSpec(1);
  EXPECT_EQ(Vel::valueToStrepOfRawPtr(spec.get(), nullptr),
            ValueTextTestSupport::matchRefText(spec.get()));
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
