#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMemberOrGroupOrNone.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "ValueTextTestSupport.h"
#include "Vel/ParseException.h"
#include "Vel/RangeException.h"
#include "Vel/TextParse.h"

namespace BfIngressMirrorLagGroup {
namespace {

using MemberOrGroup = IngressMirrorLagGroupMemberOrGroupOrNone;
using ValueTextTestSupport::memberOrGroupHead;
using ValueTextTestSupport::messageOf;

// Parses `text` with the parsing constructor, expecting an E: checks that pos
// did not move and returns the message.
template <class E>
std::string parseFailure(const Vel::String& text) {
  Vel::String::IteratorConst pos = text.begin();
  const std::string message = messageOf<E>([&] { MemberOrGroup value(pos, text.end()); });
  EXPECT_TRUE(pos == text.begin()) << "position moved on failure, text " << text;
  return message;
}

TEST(IngressMirrorLagGroupMemberOrGroupOrNoneTest, DefaultIsGroupZeroAndBracedFormsStillBuild) {
  const MemberOrGroup none{};
  EXPECT_EQ(none.id, 0u);
  EXPECT_FALSE(none.member);
  const MemberOrGroup member{5, true};
  EXPECT_EQ(member.id, 5u);
  EXPECT_TRUE(member.member);
  EXPECT_EQ(none, MemberOrGroup());
}

TEST(IngressMirrorLagGroupMemberOrGroupOrNoneTest, EqualIdButMemberAgainstGroupCompareUnequal) {
  EXPECT_FALSE((MemberOrGroup{5, true} == MemberOrGroup{5, false}));
  EXPECT_FALSE((MemberOrGroup{5, true} == MemberOrGroup{6, true}));
  EXPECT_TRUE((MemberOrGroup{5, true} == MemberOrGroup{5, true}));
}

TEST(IngressMirrorLagGroupMemberOrGroupOrNoneTest, TextFormIsExact) {
  EXPECT_EQ(valueToStrep(MemberOrGroup{5, true}),
            "Value('BfIngressMirrorLagGroup::IngressMirrorLagGroupMemberOrGroupOrNone', ** "
            "{'id': 5, 'member': True})");
  EXPECT_EQ(valueToStrep(MemberOrGroup{}),
            "Value('BfIngressMirrorLagGroup::IngressMirrorLagGroupMemberOrGroupOrNone', ** "
            "{'id': 0, 'member': False})");
  EXPECT_EQ(valueToStrep(MemberOrGroup{4294967295u, false}),
            "Value('BfIngressMirrorLagGroup::IngressMirrorLagGroupMemberOrGroupOrNone', ** "
            "{'id': 4294967295, 'member': False})");
}

TEST(IngressMirrorLagGroupMemberOrGroupOrNoneTest, StreamWritesTheTextForm) {
  const MemberOrGroup value{17, true};
  std::ostringstream out;
  out << value;
  EXPECT_EQ(out.str(), valueToStrep(value));
}

TEST(IngressMirrorLagGroupMemberOrGroupOrNoneTest, TextFormParsesBackToAnEqualValue) {
  for (const MemberOrGroup& value :
       std::vector<MemberOrGroup>{{}, {0, true}, {5, true}, {5, false}, {4294967295u, true}}) {
    const Vel::String text = valueToStrep(value);
    Vel::String::IteratorConst pos = text.begin();
    EXPECT_EQ(MemberOrGroup(pos, text.end()), value) << text;
    EXPECT_TRUE(pos == text.end()) << text;
    EXPECT_EQ(MemberOrGroup::fromText(text), value) << text;
  }
}

TEST(IngressMirrorLagGroupMemberOrGroupOrNoneTest, HexadecimalIdIsReadToo) {
  EXPECT_EQ(MemberOrGroup::fromText(memberOrGroupHead + "'id': 0x10, 'member': True})"),
            (MemberOrGroup{16, true}));
}

TEST(IngressMirrorLagGroupMemberOrGroupOrNoneTest, MissingHeadIsAParseFailure) {
  EXPECT_EQ(parseFailure<Vel::ParseException>(""),
            "expected \"Value('BfIngressMirrorLagGroup::IngressMirrorLagGroupMemberOrGroupOrNone'"
            ", ** {\", found end of text");
  EXPECT_EQ(parseFailure<Vel::ParseException>(
                "Value('BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry', ** {'id': 5, "
                "'member': True})"),
            "expected \"Value('BfIngressMirrorLagGroup::IngressMirrorLagGroupMemberOrGroupOrNone'"
            ", ** {\", found \"Value('BfIngressMirrorLagGroup::IngressM\"...");
}

TEST(IngressMirrorLagGroupMemberOrGroupOrNoneTest, MissingIdLabelIsAParseFailure) {
  EXPECT_EQ(parseFailure<Vel::ParseException>(memberOrGroupHead + "'ID': 5, 'member': True})"),
            "expected \"'id': \", found \"'ID': \"");
}

TEST(IngressMirrorLagGroupMemberOrGroupOrNoneTest, MissingMemberLabelIsAParseFailure) {
  EXPECT_EQ(parseFailure<Vel::ParseException>(memberOrGroupHead + "'id': 5; 'member': True})"),
            "expected \", 'member': \", found \"; 'member': \"");
}

TEST(IngressMirrorLagGroupMemberOrGroupOrNoneTest, MissingCloseFailsAfterBothFieldsWereRead) {
  EXPECT_EQ(parseFailure<Vel::ParseException>(memberOrGroupHead + "'id': 5, 'member': True"),
            "expected '})', found end of text");
  EXPECT_EQ(parseFailure<Vel::ParseException>(memberOrGroupHead + "'id': 5, 'member': True}"),
            "expected '})', found '}' at end of text");
  EXPECT_EQ(parseFailure<Vel::ParseException>(memberOrGroupHead + "'id': 5, 'member': True]"),
            "expected '})', found ']' at end of text");
}

TEST(IngressMirrorLagGroupMemberOrGroupOrNoneTest, BadIdIsARangeFailureNamingId) {
  EXPECT_EQ(parseFailure<Vel::RangeException>(memberOrGroupHead + "'id': -1, 'member': True})"),
            "attribute 'id': expected an unsigned 32-bit number, found '-1'");
  EXPECT_EQ(
      parseFailure<Vel::RangeException>(memberOrGroupHead + "'id': 4294967296, 'member': True})"),
      "attribute 'id': expected an unsigned 32-bit number, found '4294967296'");
  EXPECT_EQ(parseFailure<Vel::RangeException>(memberOrGroupHead + "'id': "),
            "attribute 'id': expected an unsigned 32-bit number, found end of text");
}

TEST(IngressMirrorLagGroupMemberOrGroupOrNoneTest, BadMemberIsARangeFailureNamingMember) {
  EXPECT_EQ(parseFailure<Vel::RangeException>(memberOrGroupHead + "'id': 5, 'member': true})"),
            "attribute 'member': expected True or False, found 'true'");
  EXPECT_EQ(parseFailure<Vel::RangeException>(memberOrGroupHead + "'id': 5, 'member': 1})"),
            "attribute 'member': expected True or False, found '1'");
}

TEST(IngressMirrorLagGroupMemberOrGroupOrNoneTest, TrailingTextFailsOnlyInWholeTextParsing) {
  const Vel::String text = valueToStrep(MemberOrGroup{9, true}) + ", more";
  Vel::String::IteratorConst pos = text.begin();
  EXPECT_EQ(MemberOrGroup(pos, text.end()), (MemberOrGroup{9, true}));
  EXPECT_EQ(std::string(pos, text.end()), ", more");
  EXPECT_EQ(messageOf<Vel::ParseException>([&] { MemberOrGroup::fromText(text); }),
            "text left over after the value: ', more'");
}

TEST(IngressMirrorLagGroupMemberOrGroupOrNoneTest, AttributeReaderUsesTheValuesOwnReader) {
  const Vel::String text = valueToStrep(MemberOrGroup{3, false});
  Vel::String::IteratorConst pos = text.begin();
  MemberOrGroup value{8, true};
  Vel::deserializeAttr(pos, text.end(), "memberOrGroup", &value);
  EXPECT_EQ(value, (MemberOrGroup{3, false}));
  EXPECT_TRUE(pos == text.end());
  const Vel::String bad = memberOrGroupHead + "'id': x";
  pos = bad.begin();
  EXPECT_EQ(messageOf<Vel::RangeException>(
                [&] { Vel::deserializeAttr(pos, bad.end(), "memberOrGroup", &value); }),
            "attribute 'memberOrGroup': attribute 'id': expected an unsigned 32-bit number, "
            "found 'x'");
  EXPECT_EQ(value, (MemberOrGroup{3, false}));
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
