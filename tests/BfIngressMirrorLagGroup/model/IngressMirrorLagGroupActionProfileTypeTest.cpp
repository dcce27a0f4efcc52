#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileType.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "BfIngressMirrorLagGroup/model/SetLagMemberSelectorActionProfileSpec.h"
#include "ValueTextTestSupport.h"
#include "Vel/Allocate.h"
#include "Vel/GenericValue.h"
#include "Vel/ParseException.h"
#include "Vel/RangeException.h"
#include "Vel/TextParse.h"

namespace BfIngressMirrorLagGroup {
namespace {

using ValueTextTestSupport::messageOf;
using Type = IngressMirrorLagGroupActionProfileType;

// A number that names no enumerator.
constexpr auto unknown = static_cast<Type>(3);

// Reads an enumerator from `text`, expecting a RangeException: checks that
// neither the position nor the value was touched and returns the message.
std::string readFailure(const Vel::String& text) {
  Vel::String::IteratorConst pos = text.begin();
  Type value = unknown;
  const std::string message =
      messageOf<Vel::RangeException>([&] { sequenceToValue(pos, text.end(), &value); });
  EXPECT_TRUE(pos == text.begin()) << "position moved on failure, text " << text;
  EXPECT_EQ(value, unknown) << "value changed on failure, text " << text;
  return message;
}

TEST(IngressMirrorLagGroupActionProfileTypeTest, IsRecordedAsAFrameworkEnumeration) {
  const Vel::TypeRecord& record = ingressMirrorLagGroupActionProfileTypeRecord();
  EXPECT_EQ(record.kind(), Vel::TypeRecord::Kind::enumeration);
  EXPECT_EQ(record.base(), nullptr);
  EXPECT_EQ(&ingressMirrorLagGroupActionProfileTypeRecord(), &record);
  EXPECT_EQ(sizeof(Type), 4u);
}

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
}

TEST(IngressMirrorLagGroupActionProfileTypeTest, UnknownNumberIsARangeFailure) {
  EXPECT_EQ(
      messageOf<Vel::RangeException>([] { IngressMirrorLagGroupActionProfileTypeInstance(1u); }),
      "enumeration 'BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileType' has no "
      "enumerator of value 1");
  EXPECT_EQ(messageOf<Vel::RangeException>(
                [] { IngressMirrorLagGroupActionProfileTypeInstance(4294967295u); }),
            "enumeration 'BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileType' has no "
            "enumerator of value 4294967295");
}

TEST(IngressMirrorLagGroupActionProfileTypeTest, NameMustMatchExactly) {
  EXPECT_EQ(messageOf<Vel::RangeException>([] {
              IngressMirrorLagGroupActionProfileTypeInstance(
                  Vel::String("SetLagMemberSelectorActionProfileSpec"));
            }),
            "enumeration 'BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileType' has no "
            "enumerator named 'SetLagMemberSelectorActionProfileSpec'");
  EXPECT_EQ(messageOf<Vel::RangeException>([] {
              IngressMirrorLagGroupActionProfileTypeInstance(
                  Vel::String("'setLagMemberSelectorActionProfileSpec'"));
            }),
            "enumeration 'BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileType' has no "
            "enumerator named \"'setLagMemberSelectorActionProfileSpec'\"");
  EXPECT_EQ(messageOf<Vel::RangeException>(
                [] { IngressMirrorLagGroupActionProfileTypeInstance(Vel::String("")); }),
            "enumeration 'BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileType' has no "
            "enumerator named ''");
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

TEST(IngressMirrorLagGroupActionProfileTypeTest, NumberNamingTheEnumeratorIsReadToo) {
  const Vel::String text = "0, 'member'";
  Vel::String::IteratorConst pos = text.begin();
  Type parsed = unknown;
  sequenceToValue(pos, text.end(), &parsed);
  EXPECT_EQ(parsed, setLagMemberSelectorActionProfileSpec);
  EXPECT_EQ(pos - text.begin(), 1);
}

TEST(IngressMirrorLagGroupActionProfileTypeTest, UnreadableTextIsARangeFailure) {
  EXPECT_EQ(readFailure("'setLagMemberSelector'"),
            "enumeration 'BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileType' has no "
            "enumerator named 'setLagMemberSelector'");
  EXPECT_EQ(readFailure("1"),
            "enumeration 'BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileType' has no "
            "enumerator of value 1");
  EXPECT_EQ(readFailure("setLagMemberSelectorActionProfileSpec"),
            "expected an enumerator of enumeration "
            "'BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileType', found "
            "'setLagMemberSelectorActionProfileSpec'");
  EXPECT_EQ(readFailure(""),
            "expected an enumerator of enumeration "
            "'BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileType', found end of text");
  EXPECT_EQ(readFailure("'setLagMemberSelectorActionProfileSpec"),
            "expected a closing quote, found end of text");
  EXPECT_EQ(readFailure("4294967296"), "expected an unsigned 32-bit number, found '4294967296'");
}

TEST(IngressMirrorLagGroupActionProfileTypeTest, NumberWithoutEnumeratorIsWrittenAsTheNumber) {
  EXPECT_EQ(stringValue(unknown), "3");
  EXPECT_EQ(valueToStrep(unknown), "3");
  std::ostringstream out;
  out << unknown;
  EXPECT_EQ(out.str(), "3");
}

TEST(IngressMirrorLagGroupActionProfileTypeTest, AttributeReaderUsesTheEnumerationsReader) {
  const Vel::String text = "'setLagMemberSelectorActionProfileSpec'";
  Vel::String::IteratorConst pos = text.begin();
  Type parsed = unknown;
  Vel::deserializeAttr(pos, text.end(), "actionType", &parsed);
  EXPECT_EQ(parsed, setLagMemberSelectorActionProfileSpec);
  EXPECT_TRUE(pos == text.end());
  const Vel::String bad = "'none'";
  pos = bad.begin();
  EXPECT_EQ(messageOf<Vel::RangeException>(
                [&] { Vel::deserializeAttr(pos, bad.end(), "actionType", &parsed); }),
            "attribute 'actionType': enumeration "
            "'BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileType' has no enumerator "
            "named 'none'");
}

TEST(IngressMirrorLagGroupActionProfileTypeTest, RecordServesTheReflectiveTextOperations) {
  const Vel::TypeRecord& record = ingressMirrorLagGroupActionProfileTypeRecord();
  const Vel::GenericValue value =
      record.valueFromText(valueToStrep(setLagMemberSelectorActionProfileSpec));
  EXPECT_EQ(value.type(), &record);
  EXPECT_EQ(value.get<Type>(), setLagMemberSelectorActionProfileSpec);
  EXPECT_EQ(record.valueToText(value), "'setLagMemberSelectorActionProfileSpec'");
  EXPECT_EQ(messageOf<Vel::ParseException>(
                [&] { record.valueFromText("'setLagMemberSelectorActionProfileSpec' "); }),
            "text left over after the value: ' '");
  EXPECT_EQ(messageOf<Vel::RangeException>([&] { record.valueFromText("2"); }),
            "enumeration 'BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileType' has no "
            "enumerator of value 2");
}

TEST(IngressMirrorLagGroupBaseActionProfileSpecTest, DefaultSpecIsTheFirstActionWithSelectorZero) {
  const Vel::Ptr<IngressMirrorLagGroupBaseActionProfileSpec> spec =
      Vel::allocate<IngressMirrorLagGroupBaseActionProfileSpec>();
  EXPECT_EQ(spec->actionType(), setLagMemberSelectorActionProfileSpec);
  EXPECT_EQ(spec->lagMemberSelector(), 0u);
  spec->lagMemberSelectorIs(0xFFFF);
  EXPECT_EQ(spec->lagMemberSelector(), 0xFFFFu);
}

TEST(SetLagMemberSelectorActionProfileSpecTest, DefaultSpecNamesItsActionWithSelectorZero) {
  const Vel::Ptr<SetLagMemberSelectorActionProfileSpec> spec =
      Vel::allocate<SetLagMemberSelectorActionProfileSpec>();
  EXPECT_EQ(spec->actionType(), setLagMemberSelectorActionProfileSpec);
  EXPECT_EQ(spec->lagMemberSelector(), 0u);
  // Held as a constant spec of the base type, as an action-profile entry holds it.
  const Vel::Ptr<const IngressMirrorLagGroupBaseActionProfileSpec> held = spec;
  EXPECT_EQ(held->actionType(), setLagMemberSelectorActionProfileSpec);
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
