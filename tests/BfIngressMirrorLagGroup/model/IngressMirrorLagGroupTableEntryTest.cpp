#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupTableEntry.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "BfIngressMirrorLagGroup/model/SetLagMemberSelectorActionProfileSpec.h"
#include "ValueTextTestSupport.h"
#include "Vel/ObjectReference.h"
#include "Vel/ParseException.h"
#include "Vel/RangeException.h"
#include "Vel/ValueToStrep.h"

namespace BfIngressMirrorLagGroup {
namespace {

using Entry = IngressMirrorLagGroupTableEntry;
using MemberOrGroup = IngressMirrorLagGroupMemberOrGroupOrNone;
using ValueTextTestSupport::entryHead;
using ValueTextTestSupport::matchRefText;
using ValueTextTestSupport::memberOrGroupHead;
using ValueTextTestSupport::messageOf;
using ValueTextTestSupport::newMatchSpec;

const Vel::String noneText =
    "Value('BfIngressMirrorLagGroup::IngressMirrorLagGroupMemberOrGroupOrNone', ** {'id': 0, "
    "'member': False})";

class IngressMirrorLagGroupTableEntryTest : public ValueTextTestSupport::MatchSpecLeakCheck {
 protected:
  void TearDown() override {
    spec_ = nullptr;
    MatchSpecLeakCheck::TearDown();
  }

  // Parses `text` with the parsing constructor, expecting an E: checks that pos
  // did not move and that the match spec holds no reference more than before.
  template <class E>
  std::string parseFailure(const Vel::String& text) {
    const std::uint32_t references = spec_->references();
    Vel::String::IteratorConst pos = text.begin();
    const std::string message = messageOf<E>([&] { Entry entry(pos, text.end()); });
    EXPECT_TRUE(pos == text.begin()) << "position moved on failure, text " << text;
    EXPECT_EQ(spec_->references(), references) << "reference kept on failure, text " << text;
    return message;
  }

  // The entry text up to and including the match, naming spec_.
  Vel::String headWithMatch() const { return entryHead + "'match': " + matchRefText(spec_.get()); }

  Vel::Ptr<IngressMirrorLagGroupMatchSpec> spec_ = newMatchSpec(12);
};

TEST_F(IngressMirrorLagGroupTableEntryTest, DefaultEntryIsEmpty) {
  const Entry entry;
  EXPECT_TRUE(!entry);
  EXPECT_EQ(entry.match(), nullptr);
  EXPECT_EQ(entry.memberOrGroup(), MemberOrGroup());
}

TEST_F(IngressMirrorLagGroupTableEntryTest, EntryWithAMatchIsNeverEmpty) {
  EXPECT_FALSE(!Entry(spec_, MemberOrGroup{}));
  EXPECT_FALSE(!Entry(spec_, MemberOrGroup{0, true}));
  EXPECT_FALSE(!Entry(spec_, MemberOrGroup{7, false}));
}

TEST_F(IngressMirrorLagGroupTableEntryTest, EntryWithoutAMatchIsEmptyOnlyWhenItSelectsNothing) {
  EXPECT_TRUE(!Entry(nullptr, MemberOrGroup{}));
  EXPECT_FALSE(!Entry(nullptr, MemberOrGroup{0, true}));
  EXPECT_FALSE(!Entry(nullptr, MemberOrGroup{7, false}));
}

TEST_F(IngressMirrorLagGroupTableEntryTest, DistinctSpecsWithEqualSessionsCompareUnequal) {
  const Vel::Ptr<IngressMirrorLagGroupMatchSpec> twin = newMatchSpec(12);
  EXPECT_FALSE(Entry(spec_, MemberOrGroup{5, true}) == Entry(twin, MemberOrGroup{5, true}));
  EXPECT_TRUE(Entry(spec_, MemberOrGroup{5, true}) == Entry(spec_, MemberOrGroup{5, true}));
  EXPECT_FALSE(Entry(spec_, MemberOrGroup{5, true}) == Entry(spec_, MemberOrGroup{5, false}));
}

TEST_F(IngressMirrorLagGroupTableEntryTest, CopySharesTheMatchSpec) {
  const std::uint32_t references = spec_->references();
  const Entry entry(spec_, MemberOrGroup{5, true});
  const Entry copy = entry;
  EXPECT_EQ(copy.match().get(), spec_.get());
  EXPECT_EQ(spec_->references(), references + 2);
  EXPECT_TRUE(copy == entry);
}

TEST_F(IngressMirrorLagGroupTableEntryTest, TextFormOfAnEmptyEntryIsExact) {
  EXPECT_EQ(valueToStrep(Entry()),
            "Value('BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry', ** {'match': None, "
            "'memberOrGroup': " +
                noneText + "})");
}

TEST_F(IngressMirrorLagGroupTableEntryTest, TextFormNamesTheSpecByReference) {
  EXPECT_EQ(valueToStrep(Entry(spec_, MemberOrGroup{5, true})),
            "Value('BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry', ** {'match': "
            "Ref('BfIngressMirrorLagGroup::IngressMirrorLagGroupMatchSpec', " +
                ValueTextTestSupport::idText(spec_.get()) +
                "), 'memberOrGroup': "
                "Value('BfIngressMirrorLagGroup::IngressMirrorLagGroupMemberOrGroupOrNone', ** "
                "{'id': 5, 'member': True})})");
}

TEST_F(IngressMirrorLagGroupTableEntryTest, StreamWritesTheTextForm) {
  const Entry entry(spec_, MemberOrGroup{2, false});
  std::ostringstream out;
  out << entry;
  EXPECT_EQ(out.str(), valueToStrep(entry));
}

TEST_F(IngressMirrorLagGroupTableEntryTest, TextFormParsesBackToTheVeryRenderedSpec) {
  const Entry entry(spec_, MemberOrGroup{4294967295u, true});
  const Vel::String text = valueToStrep(entry);
  Vel::String::IteratorConst pos = text.begin();
  const Entry parsed(pos, text.end());
  EXPECT_TRUE(pos == text.end());
  EXPECT_EQ(parsed.match().get(), spec_.get());
  // The reference is the object that the framework resolves the reference id to.
  const Vel::Ptr<const Vel::PtrInterface> resolved =
      Vel::ObjectReference::resolve(Vel::ObjectReference::idOf(spec_.get()));
  EXPECT_EQ(parsed.match().get(), resolved.get());
  EXPECT_TRUE(parsed == entry);
  EXPECT_TRUE(Entry::fromText(text) == entry);
}

TEST_F(IngressMirrorLagGroupTableEntryTest, EmptyEntryParsesBackEmpty) {
  EXPECT_TRUE(!Entry::fromText(valueToStrep(Entry())));
}

TEST_F(IngressMirrorLagGroupTableEntryTest, ParsedEntryKeepsItsSpecAlive) {
  Vel::Ptr<IngressMirrorLagGroupMatchSpec> spec = newMatchSpec(40);
  const IngressMirrorLagGroupMatchSpec* const raw = spec.get();
  const Entry parsed = Entry::fromText(valueToStrep(Entry(spec, MemberOrGroup{1, true})));
  spec = nullptr;
  EXPECT_EQ(parsed.match().get(), raw);
  EXPECT_EQ(parsed.match()->ingMirrorMdMirrorSession(), 40u);
  EXPECT_EQ(parsed.match()->references(), 1u);
}

TEST_F(IngressMirrorLagGroupTableEntryTest, MissingHeadIsAParseFailure) {
  EXPECT_EQ(parseFailure<Vel::ParseException>(""),
            "expected \"Value('BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry', ** {\", "
            "found end of text");
}

TEST_F(IngressMirrorLagGroupTableEntryTest, MissingMatchLabelIsAParseFailure) {
  EXPECT_EQ(parseFailure<Vel::ParseException>(entryHead + "'Match': None"),
            "expected \"'match': \", found \"'Match': \"");
}

TEST_F(IngressMirrorLagGroupTableEntryTest, MissingMemberOrGroupLabelIsAParseFailure) {
  EXPECT_EQ(
      parseFailure<Vel::ParseException>(headWithMatch() + ", 'memberOrgroup': " + noneText + "})"),
      "expected \", 'memberOrGroup': \", found \", 'memberOrgroup': \"");
}

TEST_F(IngressMirrorLagGroupTableEntryTest, MissingCloseFailsAfterBothFieldsWereRead) {
  const Vel::String full = headWithMatch() + ", 'memberOrGroup': " + noneText;
  EXPECT_EQ(parseFailure<Vel::ParseException>(full), "expected '})', found end of text");
  EXPECT_EQ(parseFailure<Vel::ParseException>(full + ")}"), "expected '})', found ')}'");
}

TEST_F(IngressMirrorLagGroupTableEntryTest, UnreadableReferenceIsARangeFailureNamingMatch) {
  EXPECT_EQ(parseFailure<Vel::RangeException>(entryHead +
                                              "'match': 17, 'memberOrGroup': " + noneText + "})"),
            "attribute 'match': expected a reference, found '17'");
  EXPECT_EQ(
      parseFailure<Vel::RangeException>(
          entryHead + "'match': Ref('BfIngressMirrorLagGroup::IngressMirrorLagGroupMatchSpec' 3)"),
      "attribute 'match': expected ', ', found ' 3'");
  EXPECT_EQ(parseFailure<Vel::RangeException>(entryHead + "'match': "),
            "attribute 'match': expected a reference, found end of text");
}

TEST_F(IngressMirrorLagGroupTableEntryTest, ReferenceToADeadSpecIsARangeFailureNamingMatch) {
  Vel::Ptr<IngressMirrorLagGroupMatchSpec> dead = newMatchSpec(3);
  const Vel::String text = valueToStrep(Entry(dead, MemberOrGroup{}));
  const std::string ref = matchRefText(dead.get());
  dead = nullptr;
  EXPECT_EQ(parseFailure<Vel::RangeException>(text),
            "attribute 'match': " + ref + " names no live object");
}

TEST_F(IngressMirrorLagGroupTableEntryTest, ReferenceToAnotherTypeIsARangeFailureNamingMatch) {
  const Vel::Ptr<SetLagMemberSelectorActionProfileSpec> action =
      Vel::allocate<SetLagMemberSelectorActionProfileSpec>();
  // A reference text that claims a match spec but names the action spec.
  const Vel::String ref =
      Vel::valueToStrepOfRawPtr(action.get(), &IngressMirrorLagGroupMatchSpec::typeRecord());
  EXPECT_EQ(parseFailure<Vel::RangeException>(entryHead + "'match': " + ref +
                                              ", 'memberOrGroup': " + noneText + "})"),
            "attribute 'match': " + ref + " names an object of another type");
}

TEST_F(IngressMirrorLagGroupTableEntryTest, BadNestedValueIsARangeFailureNamingMemberOrGroup) {
  EXPECT_EQ(parseFailure<Vel::RangeException>(headWithMatch() + ", 'memberOrGroup': " +
                                              memberOrGroupHead + "'id': 5, 'member': yes})})"),
            "attribute 'memberOrGroup': attribute 'member': expected True or False, found 'yes'");
  EXPECT_EQ(parseFailure<Vel::RangeException>(
                headWithMatch() + ", 'memberOrGroup': " + memberOrGroupHead + "'id': five"),
            "attribute 'memberOrGroup': attribute 'id': expected an unsigned 32-bit number, "
            "found 'five'");
}

TEST_F(IngressMirrorLagGroupTableEntryTest, NestedParseFailurePassesUnchanged) {
  EXPECT_EQ(parseFailure<Vel::ParseException>(headWithMatch() + ", 'memberOrGroup': None})"),
            "expected \"Value('BfIngressMirrorLagGroup::IngressMirrorLagGroupMemberOrGroupOrNone'"
            ", ** {\", found 'None})' at end of text");
  EXPECT_EQ(parseFailure<Vel::ParseException>(
                headWithMatch() + ", 'memberOrGroup': " + memberOrGroupHead + "'id': 5})})"),
            "expected \", 'member': \", found '})})' at end of text");
}

TEST_F(IngressMirrorLagGroupTableEntryTest, TrailingTextFailsOnlyInWholeTextParsing) {
  const Vel::String text = valueToStrep(Entry(spec_, MemberOrGroup{4, false})) + " tail";
  Vel::String::IteratorConst pos = text.begin();
  const Entry parsed(pos, text.end());
  EXPECT_EQ(parsed.match().get(), spec_.get());
  EXPECT_EQ(std::string(pos, text.end()), " tail");
  const std::uint32_t references = spec_->references();
  EXPECT_EQ(messageOf<Vel::ParseException>([&] { Entry::fromText(text); }),
            "text left over after the value: ' tail'");
  EXPECT_EQ(spec_->references(), references);
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
