#include <gtest/gtest.h>

#include <string>

#include "BfIngressMirrorLagGroup/BfIngressMirrorLagGroup.h"
#include "ReflectFixture.h"
#include "Vel/Allocate.h"
#include "Vel/GenericIf.h"
#include "Vel/ParseException.h"
#include "Vel/RangeException.h"
#include "Vel/UnhashableTypeException.h"

namespace BfIngressMirrorLagGroup {
namespace {

using Vel::GenericIf;
using Vel::GenericValue;
using MemberOrGroup = IngressMirrorLagGroupMemberOrGroupOrNone;
using TableEntry = IngressMirrorLagGroupTableEntry;

const std::string kMemberOrGroup =
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupMemberOrGroupOrNone";
const std::string kTableEntry = "BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry";

// The message of a refusal of text, whichever of the two text exceptions it is.
template <class Run>
std::string refusal(Run run) {
  try {
    run();
  } catch (const Vel::ParseException& e) {
    return e.message();
  } catch (const Vel::RangeException& e) {
    return e.message();
  }
  return "no exception";
}

bool equal(const GenericValue& a, const GenericValue& b) {
  return GenericIf(a).valueOperation(GenericIf::opEqual, {b}).get<bool>();
}

Vel::Ptr<const IngressMirrorLagGroupMatchSpec> matchOf(std::uint16_t session) {
  auto match = Vel::allocate<IngressMirrorLagGroupMatchSpec>();
  match->ingMirrorMdMirrorSessionIs(session);
  return match;
}

GenericValue matchRef(const Vel::Ptr<const IngressMirrorLagGroupMatchSpec>& match) {
  return GenericValue(
      GenericIf::typeNamed("BfIngressMirrorLagGroup::IngressMirrorLagGroupMatchSpec"), match);
}

// The two value types of the plug-in as the host builds, prints, compares and
// hashes them by name.

TEST(ValueTypeTest, MemberOrGroupIsCopiedFromARawPointer) {
  MemberOrGroup raw(5, true);
  const GenericValue value = GenericIf::valueFromRawPtr(kMemberOrGroup, &raw);
  raw.id = 6;
  EXPECT_EQ(value.type(), &GenericIf::typeNamed(kMemberOrGroup));
  EXPECT_EQ(value.get<MemberOrGroup>(), MemberOrGroup(5, true));
}

TEST(ValueTypeTest, MemberOrGroupIsReadFromItsWholeTextAndPrintedBackAlike) {
  const std::string member =
      "Value('BfIngressMirrorLagGroup::IngressMirrorLagGroupMemberOrGroupOrNone', ** {'id': 5, "
      "'member': True})";
  const GenericValue value = GenericIf::valueFromText(kMemberOrGroup, member);
  EXPECT_EQ(value.get<MemberOrGroup>(), MemberOrGroup(5, true));
  EXPECT_EQ(GenericIf(value).text(), member);
  const std::string group =
      "Value('BfIngressMirrorLagGroup::IngressMirrorLagGroupMemberOrGroupOrNone', ** {'id': "
      "4294967295, 'member': False})";
  EXPECT_EQ(GenericIf(GenericIf::valueFromText(kMemberOrGroup, group)).text(), group);
  EXPECT_EQ(GenericIf::valueFromText(kMemberOrGroup, group).get<MemberOrGroup>(),
            MemberOrGroup(4294967295u, false));
}

TEST(ValueTypeTest, MemberOrGroupTextWithMoreOrLessIsRefused) {
  const std::string text =
      "Value('BfIngressMirrorLagGroup::IngressMirrorLagGroupMemberOrGroupOrNone', ** {'id': 5, "
      "'member': True})";
  EXPECT_EQ(refusal([&] { GenericIf::valueFromText(kMemberOrGroup, text + " "); }),
            "text left over after the value: ' '");
  EXPECT_NE(refusal([&] { GenericIf::valueFromText(kMemberOrGroup, text + "x"); }), "no exception");
  EXPECT_NE(
      refusal([&] { GenericIf::valueFromText(kMemberOrGroup, text.substr(0, text.size() - 1)); }),
      "no exception");
  EXPECT_NE(refusal([&] { GenericIf::valueFromText(kMemberOrGroup, ""); }), "no exception");
  EXPECT_NE(refusal([&] { GenericIf::valueFromText(kMemberOrGroup, "5"); }), "no exception");
  const std::string badId =
      "Value('BfIngressMirrorLagGroup::IngressMirrorLagGroupMemberOrGroupOrNone', ** {'id': x, "
      "'member': True})";
  EXPECT_NE(refusal([&] { GenericIf::valueFromText(kMemberOrGroup, badId); }), "no exception");
}

TEST(ValueTypeTest, MemberOrGroupIsBuiltFromIdAndMember) {
  const GenericValue value = GenericIf::valueFromArgs(kMemberOrGroup, {u32(7), boolean(false)});
  EXPECT_EQ(value.get<MemberOrGroup>(), MemberOrGroup(7, false));
  EXPECT_TRUE(equal(value, GenericIf::valueFromText(kMemberOrGroup, GenericIf(value).text())));
  EXPECT_EQ(
      messageOf<Vel::RangeException>([] { GenericIf::valueFromArgs(kMemberOrGroup, {u32(7)}); }),
      "Type '" + kMemberOrGroup + "' takes 2 constructor arguments, 1 given");
  // Arguments of the wrong types, whichever is read first.
  EXPECT_NE(messageOf<Vel::RangeException>([] {
              GenericIf::valueFromArgs(kMemberOrGroup, {boolean(false), u32(7)});
            }).find("cannot be read as"),
            std::string::npos);
}

TEST(ValueTypeTest, MemberOrGroupCannotBeHashed) {
  EXPECT_EQ(messageOf<Vel::UnhashableTypeException>([] {
              GenericIf(GenericIf::valueFromArgs(kMemberOrGroup, {u32(1), boolean(true)})).hash();
            }),
            "Unhashable type: '" + kMemberOrGroup + "'");
}

TEST(ValueTypeTest, TableEntryIsCopiedFromARawPointerSharingItsMatch) {
  const auto match = matchOf(12);
  const TableEntry raw(match, MemberOrGroup(5, true));
  const GenericValue value = GenericIf::valueFromRawPtr(kTableEntry, &raw);
  EXPECT_EQ(value.type(), &GenericIf::typeNamed(kTableEntry));
  EXPECT_EQ(value.get<TableEntry>(), raw);
  EXPECT_EQ(value.get<TableEntry>().match(), match);
}

TEST(ValueTypeTest, TableEntryIsBuiltFromMatchAndMemberOrGroup) {
  const auto match = matchOf(12);
  const GenericValue value = GenericIf::valueFromArgs(
      kTableEntry,
      {matchRef(match), GenericIf::valueFromArgs(kMemberOrGroup, {u32(10), boolean(false)})});
  EXPECT_EQ(value.get<TableEntry>(), TableEntry(match, MemberOrGroup(10, false)));
  EXPECT_EQ(messageOf<Vel::RangeException>(
                [&] { GenericIf::valueFromArgs(kTableEntry, {matchRef(match)}); }),
            "Type '" + kTableEntry + "' takes 2 constructor arguments, 1 given");
}

TEST(ValueTypeTest, TableEntryTextNamesItsMatchAndIsReadBackToTheSameEntry) {
  const auto match = matchOf(12);
  const TableEntry entry(match, MemberOrGroup(5, true));
  const GenericValue value = GenericIf::valueFromRawPtr(kTableEntry, &entry);
  const std::string text = GenericIf(value).text();
  EXPECT_EQ(text.rfind("Value('" + kTableEntry + "', ** {'match': ", 0), 0u) << text;
  EXPECT_NE(
      text.find("'memberOrGroup': Value('" + kMemberOrGroup + "', ** {'id': 5, 'member': True})})"),
      std::string::npos)
      << text;
  const GenericValue back = GenericIf::valueFromText(kTableEntry, text);
  EXPECT_EQ(back.get<TableEntry>().match(), match);
  EXPECT_TRUE(equal(back, value));
  EXPECT_EQ(GenericIf(back).text(), text);
  EXPECT_NE(refusal([&] { GenericIf::valueFromText(kTableEntry, text + " "); }), "no exception");
}

TEST(ValueTypeTest, EmptyTableEntryPrintsAndReadsBack) {
  const TableEntry empty;
  const GenericValue value = GenericIf::valueFromRawPtr(kTableEntry, &empty);
  const GenericValue back = GenericIf::valueFromText(kTableEntry, GenericIf(value).text());
  EXPECT_TRUE(GenericIf(back).valueOperation(GenericIf::opIsDefault).get<bool>());
}

TEST(ValueTypeTest, TableEntryCannotBeHashed) {
  const TableEntry entry(matchOf(1), MemberOrGroup(1, true));
  EXPECT_EQ(messageOf<Vel::UnhashableTypeException>(
                [&] { GenericIf(GenericIf::valueFromRawPtr(kTableEntry, &entry)).hash(); }),
            "Unhashable type: '" + kTableEntry + "'");
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
