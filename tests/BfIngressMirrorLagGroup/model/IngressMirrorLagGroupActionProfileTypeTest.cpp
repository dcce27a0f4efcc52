#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileType.h"

#include <gtest/gtest.h>

#include <sstream>

#include "BfIngressMirrorLagGroup/model/SetLagMemberSelectorActionProfileSpec.h"
#include "Vel/RangeException.h"

namespace BfIngressMirrorLagGroup {
namespace {

TEST(IngressMirrorLagGroupActionProfileTypeTest, HasASingleEnumeratorOfValueZero) {
  const auto& record = ingressMirrorLagGroupActionProfileTypeRecord();
  EXPECT_EQ(record.name(), "BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileType");
  ASSERT_EQ(record.enumerators().size(), 1u);
  EXPECT_EQ(record.enumerators()[0].name, "setLagMemberSelectorActionProfileSpec");
  EXPECT_EQ(record.enumerators()[0].value, 0u);
  EXPECT_EQ(stringValue(IngressMirrorLagGroupActionProfileTypeInstance(0u)),
            "setLagMemberSelectorActionProfileSpec");
}

TEST(IngressMirrorLagGroupActionProfileTypeTest, InstanceByNumberAndByExactName) {
  EXPECT_EQ(IngressMirrorLagGroupActionProfileTypeInstance(0u),
            setLagMemberSelectorActionProfileSpec);
  EXPECT_EQ(IngressMirrorLagGroupActionProfileTypeInstance(
                Vel::String("setLagMemberSelectorActionProfileSpec")),
            setLagMemberSelectorActionProfileSpec);
  EXPECT_THROW(IngressMirrorLagGroupActionProfileTypeInstance(1u), Vel::RangeException);
  EXPECT_THROW(IngressMirrorLagGroupActionProfileTypeInstance(
                   Vel::String("SetLagMemberSelectorActionProfileSpec")),
               Vel::RangeException);
}

TEST(IngressMirrorLagGroupActionProfileTypeTest, TextFormReadsBackAndPrintsTheName) {
  const Vel::String text = valueToStrep(setLagMemberSelectorActionProfileSpec);
  EXPECT_EQ(text, "'setLagMemberSelectorActionProfileSpec'");
  Vel::String::IteratorConst pos = text.begin();
  auto parsed = static_cast<IngressMirrorLagGroupActionProfileType>(7);
  sequenceToValue(pos, text.end(), &parsed);
  EXPECT_EQ(parsed, setLagMemberSelectorActionProfileSpec);
  EXPECT_EQ(pos, text.end());
  std::ostringstream out;
  out << setLagMemberSelectorActionProfileSpec;
  EXPECT_EQ(out.str(), "setLagMemberSelectorActionProfileSpec");
}

TEST(SetLagMemberSelectorActionProfileSpecTest, DefaultSpecNamesItsActionWithSelectorZero) {
  const SetLagMemberSelectorActionProfileSpec spec;
  EXPECT_EQ(spec.actionType(), setLagMemberSelectorActionProfileSpec);
  EXPECT_EQ(spec.lagMemberSelector(), 0u);
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
