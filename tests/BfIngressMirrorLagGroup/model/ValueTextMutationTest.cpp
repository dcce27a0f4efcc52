#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <random>
#include <string>
#include <vector>

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileType.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMemberOrGroupOrNone.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupTableEntry.h"
#include "BfIngressMirrorLagGroup/model/SetLagMemberSelectorActionProfileSpec.h"
#include "ValueTextTestSupport.h"
#include "Vel/Allocate.h"
#include "Vel/GenericValue.h"
#include "Vel/ParseException.h"
#include "Vel/RangeException.h"
#include "Vel/TextParse.h"
#include "Vel/ValueToStrep.h"

// Randomized robustness of every reader of the model's value texts. Valid texts
// are damaged (truncated, bytes flipped or replaced, random bytes and pieces of
// the value syntax inserted, numbers made very long, whole values nested in
// themselves) and fed to every reader. A reader must either read a value that
// reads back equal from its own text and from the text it consumed, or raise
// the framework's parse or range exception leaving position, value and
// references as they were. Bytes after the end of each text are poisoned in
// sanitizer builds, so a reader that looks past the end stops the test.
//
// The random sequence comes from a fixed seed, printed with every failure; the
// environment variable MIRRORLAG_TEXT_MUTATION_SEED runs another one.

namespace BfIngressMirrorLagGroup {
namespace {

using Entry = IngressMirrorLagGroupTableEntry;
using MemberOrGroup = IngressMirrorLagGroupMemberOrGroupOrNone;
using TextTestSupport::GuardedText;
using ValueTextTestSupport::entryHead;
using ValueTextTestSupport::memberOrGroupHead;
using ValueTextTestSupport::newMatchSpec;

constexpr std::uint32_t defaultSeed = 20240917;
constexpr int textsPerSeedText = 300;
// Longest piece of a failing text quoted in a report; the seed replays all of it.
constexpr std::size_t maxQuoted = 400;

std::uint32_t chosenSeed() {
  const char* text = std::getenv("MIRRORLAG_TEXT_MUTATION_SEED");
  return text != nullptr ? static_cast<std::uint32_t>(std::strtoul(text, nullptr, 0)) : defaultSeed;
}

// Damages texts at random. The choices use the engine's raw output only, so
// that a seed replays the same texts whatever the standard library.
class TextMutator {
 public:
  explicit TextMutator(std::uint32_t seed) : random_(seed) {}

  Vel::String mutated(Vel::String text) {
    const std::size_t mutations = 1 + below(3);
    for (std::size_t i = 0; i < mutations; ++i)
      mutateOnce(text);
    return text;
  }

 private:
  void mutateOnce(Vel::String& text) {
    const std::size_t at = below(text.size() + 1);
    switch (below(8)) {
      case 0:  // truncation
        text.resize(at);
        break;
      case 1:  // one bit flipped
        if (at < text.size())
          text[at] = static_cast<char>(text[at] ^ (1 << below(8)));
        break;
      case 2:  // one byte replaced by any byte
        if (at < text.size())
          text[at] = randomByte();
        break;
      case 3:  // random bytes inserted
        for (std::size_t n = 1 + below(4); n > 0; --n)
          text.insert(at, 1, randomByte());
        break;
      case 4:  // a piece of the value syntax inserted
        text.insert(at, syntaxPiece());
        break;
      case 5:  // a span deleted
        text.erase(at, 1 + below(8));
        break;
      case 6:
        lengthenNumber(text, at);
        break;
      default:  // the text nested in itself: quotes and brackets within quotes and brackets
        text.insert(at, text.substr(below(text.size() + 1), below(text.size() + 1)));
        break;
    }
  }

  // Replaces the first number at or after `at` by a very long one: many digits,
  // many leading zeros before a small number, or a long hexadecimal number.
  void lengthenNumber(Vel::String& text, std::size_t at) {
    const std::size_t first = text.find_first_of("0123456789", at);
    if (first == Vel::String::npos)
      return;
    const std::size_t last = text.find_first_not_of("0123456789", first);
    const std::size_t length = (last == Vel::String::npos ? text.size() : last) - first;
    const std::size_t digits = 10 + below(500);
    Vel::String number;
    switch (below(3)) {
      case 0:
        for (std::size_t i = 0; i < digits; ++i)
          number += static_cast<char>('0' + below(10));
        break;
      case 1:
        number = Vel::String(digits, '0') + static_cast<char>('0' + below(10));
        break;
      default:
        number = "0x" + Vel::String(digits, below(2) == 0 ? 'f' : '0') + "1";
        break;
    }
    text.replace(first, length, number);
  }

  Vel::String syntaxPiece() {
    static const std::vector<Vel::String> pieces = {"'",
                                                    "\\",
                                                    "\"",
                                                    "\\'",
                                                    "'\\''",
                                                    "(",
                                                    ")",
                                                    "((((",
                                                    "))))",
                                                    "{",
                                                    "}",
                                                    "{{{{",
                                                    "}}}}",
                                                    "[",
                                                    "]",
                                                    "})",
                                                    "})})",
                                                    ", ",
                                                    ": ",
                                                    ", 'member': ",
                                                    "'id': ",
                                                    "'match': ",
                                                    ", 'memberOrGroup': ",
                                                    "None",
                                                    "True",
                                                    "False",
                                                    "Ref(",
                                                    "Ref('",
                                                    "Value(",
                                                    "** {",
                                                    "-",
                                                    "+",
                                                    "0x",
                                                    "\\x",
                                                    "\\x0",
                                                    "4294967295",
                                                    "4294967296",
                                                    "18446744073709551616",
                                                    "\n",
                                                    std::string(1, '\0'),
                                                    memberOrGroupHead,
                                                    entryHead,
                                                    "'setLagMemberSelectorActionProfileSpec'"};
    return pieces[below(pieces.size())];
  }

  char randomByte() { return static_cast<char>(random_() & 0xff); }
  std::size_t below(std::size_t n) { return n == 0 ? 0 : random_() % n; }

  std::mt19937 random_;
};

class ValueTextMutationTest : public ValueTextTestSupport::MatchSpecLeakCheck {
 protected:
  void SetUp() override {
    for (std::uint16_t session : {0, 12, 0xFFFF})
      specs_.push_back(newMatchSpec(session));
    action_ = Vel::allocate<SetLagMemberSelectorActionProfileSpec>();
    const std::vector<MemberOrGroup> values{{}, {5, true}, {5, false}, {4294967295u, true}};
    for (std::size_t i = 0; i < values.size(); ++i) {
      seedTexts_.push_back(valueToStrep(values[i]));
      seedTexts_.push_back(valueToStrep(Entry(specs_[i % specs_.size()], values[i])));
    }
    seedTexts_.push_back(valueToStrep(Entry()));
    // An entry naming an object of another type, and one naming a dead spec.
    seedTexts_.push_back(
        entryHead + "'match': " +
        Vel::valueToStrepOfRawPtr(action_.get(), &IngressMirrorLagGroupMatchSpec::typeRecord()) +
        ", 'memberOrGroup': " + valueToStrep(MemberOrGroup{1, true}) + "})");
    seedTexts_.push_back(valueToStrep(Entry(newMatchSpec(7), MemberOrGroup{2, false})));
    seedTexts_.push_back(valueToStrep(setLagMemberSelectorActionProfileSpec));
    seedTexts_.push_back("0");
    seedTexts_.push_back(stringValue(setLagMemberSelectorActionProfileSpec));
  }

  void TearDown() override {
    specs_.clear();
    action_ = nullptr;
    MatchSpecLeakCheck::TearDown();
  }

  // Feeds `text` to every reader.
  void readWithEveryReader(const Vel::String& text) {
    const std::vector<std::uint32_t> references = specReferences();
    reader_ = 0;
    readMemberOrGroupAt(text);
    reader_ = 1;
    readMemberOrGroupWhole(text);
    reader_ = 2;
    readMemberOrGroupAsAttribute(text);
    reader_ = 3;
    readEntryAt(text);
    reader_ = 4;
    readEntryWhole(text);
    reader_ = 5;
    readActionTypeAt(text);
    reader_ = 6;
    readActionTypeByName(text);
    reader_ = 7;
    readActionTypeReflectively(text);
    EXPECT_EQ(specReferences(), references) << "references changed, " << context_;
  }

  void readMemberOrGroupAt(const Vel::String& text) {
    Vel::String::IteratorConst pos = text.begin();
    refusedOrRead(text, pos, [&] {
      const MemberOrGroup value(pos, text.end());
      checkConsumed(text, pos);
      checkMemberOrGroup(value, Vel::String(text.begin(), pos));
    });
  }

  void readMemberOrGroupWhole(const Vel::String& text) {
    Vel::String::IteratorConst pos = text.begin();
    const bool read =
        refusedOrRead(text, pos, [&] { checkMemberOrGroup(MemberOrGroup::fromText(text), text); });
    EXPECT_EQ(read, readsWhole<MemberOrGroup>(text))
        << "whole-text reading disagrees with reading at a position, " << context_;
  }

  // The reader that values holding a memberOrGroup use: the value already there
  // is kept on failure.
  void readMemberOrGroupAsAttribute(const Vel::String& text) {
    const MemberOrGroup initial{77, true};
    MemberOrGroup value = initial;
    Vel::String::IteratorConst pos = text.begin();
    const bool read = refusedOrRead(text, pos, [&] {
      Vel::deserializeAttr(pos, text.end(), "memberOrGroup", &value);
      checkConsumed(text, pos);
      checkMemberOrGroup(value, Vel::String(text.begin(), pos));
    });
    if (!read) {
      EXPECT_EQ(value, initial) << "value changed on failure, " << context_;
    }
  }

  void readEntryAt(const Vel::String& text) {
    Vel::String::IteratorConst pos = text.begin();
    refusedOrRead(text, pos, [&] {
      const Entry entry(pos, text.end());
      checkConsumed(text, pos);
      checkEntry(entry, Vel::String(text.begin(), pos));
    });
  }

  void readEntryWhole(const Vel::String& text) {
    Vel::String::IteratorConst pos = text.begin();
    const bool read = refusedOrRead(text, pos, [&] { checkEntry(Entry::fromText(text), text); });
    EXPECT_EQ(read, readsWhole<Entry>(text))
        << "whole-text reading disagrees with reading at a position, " << context_;
  }

  void readActionTypeAt(const Vel::String& text) {
    const auto initial = static_cast<IngressMirrorLagGroupActionProfileType>(9);
    IngressMirrorLagGroupActionProfileType value = initial;
    Vel::String::IteratorConst pos = text.begin();
    const bool read = refusedOrRead(text, pos, [&] {
      sequenceToValue(pos, text.end(), &value);
      checkConsumed(text, pos);
      EXPECT_EQ(value, setLagMemberSelectorActionProfileSpec) << context_;
      const Vel::String printed = valueToStrep(value);
      Vel::String::IteratorConst again = printed.begin();
      IngressMirrorLagGroupActionProfileType reread = initial;
      sequenceToValue(again, printed.end(), &reread);
      EXPECT_EQ(reread, value) << "printed form reads back otherwise, " << context_;
    });
    if (!read) {
      EXPECT_EQ(value, initial) << "value changed on failure, " << context_;
    }
  }

  void readActionTypeByName(const Vel::String& text) {
    Vel::String::IteratorConst pos = text.begin();
    refusedOrRead(text, pos, [&] {
      const IngressMirrorLagGroupActionProfileType value =
          IngressMirrorLagGroupActionProfileTypeInstance(text);
      EXPECT_EQ(stringValue(value), text) << context_;
    });
  }

  void readActionTypeReflectively(const Vel::String& text) {
    const Vel::TypeRecord& record = ingressMirrorLagGroupActionProfileTypeRecord();
    Vel::String::IteratorConst pos = text.begin();
    refusedOrRead(text, pos, [&] {
      const Vel::GenericValue value = record.valueFromText(text);
      EXPECT_EQ(record.valueFromText(record.valueToText(value)).get<unsigned int>(),
                value.get<unsigned int>())
          << context_;
    });
  }

  // Runs `read`; a framework parse or range exception is a refusal, after which
  // pos must not have moved. Returns whether the text was read.
  template <class Read>
  bool refusedOrRead(const Vel::String& text, const Vel::String::IteratorConst& pos, Read read) {
    try {
      read();
      ++readCount_[reader_];
      return true;
    } catch (const Vel::ParseException&) {
    } catch (const Vel::RangeException&) {
    } catch (const std::exception& e) {
      ADD_FAILURE() << "unexpected exception '" << e.what() << "', " << context_;
    }
    EXPECT_TRUE(pos == text.begin()) << "position moved on failure, " << context_;
    ++refusedCount_[reader_];
    return false;
  }

  // Whether reading at the start of `text` consumes all of it.
  template <class T>
  static bool readsWhole(const Vel::String& text) {
    try {
      Vel::String::IteratorConst pos = text.begin();
      const T value(pos, text.end());
      return pos == text.end();
    } catch (const Vel::Exception&) {
      return false;
    }
  }

  void checkConsumed(const Vel::String& text, const Vel::String::IteratorConst& pos) {
    EXPECT_TRUE(pos > text.begin() && pos <= text.end()) << "bad position, " << context_;
  }

  // A value read from `consumed` reads back equal from its own text and from
  // exactly the text it was read from.
  void checkMemberOrGroup(const MemberOrGroup& value, const Vel::String& consumed) {
    const Vel::String printed = valueToStrep(value);
    EXPECT_EQ(MemberOrGroup::fromText(printed), value) << "printed " << printed << ", " << context_;
    EXPECT_EQ(MemberOrGroup::fromText(consumed), value) << context_;
  }

  void checkEntry(const Entry& entry, const Vel::String& consumed) {
    EXPECT_TRUE(entry.match() == nullptr || isFixtureSpec(entry.match().get()))
        << "entry names an object it may not, " << context_;
    const Vel::String printed = valueToStrep(entry);
    EXPECT_TRUE(Entry::fromText(printed) == entry) << "printed " << printed << ", " << context_;
    EXPECT_TRUE(Entry::fromText(consumed) == entry) << context_;
  }

  bool isFixtureSpec(const IngressMirrorLagGroupMatchSpec* spec) const {
    for (const auto& live : specs_) {
      if (live.get() == spec)
        return true;
    }
    return false;
  }

  std::vector<std::uint32_t> specReferences() const {
    std::vector<std::uint32_t> references;
    for (const auto& spec : specs_)
      references.push_back(spec->references());
    references.push_back(action_->references());
    return references;
  }

  // Says, in every failure, how to find the text again.
  void contextIs(std::uint32_t seed, std::size_t seedText, int number, const Vel::String& text) {
    context_ = "seed " + std::to_string(seed) + ", seed text " + std::to_string(seedText) +
               ", mutation " + std::to_string(number) + ", text of " + std::to_string(text.size()) +
               " bytes " + Vel::valueToStrep(Vel::String(text.substr(0, maxQuoted))) +
               (text.size() > maxQuoted ? "..." : "");
  }

  // How many texts each reader (numbered in the order readWithEveryReader runs
  // them) read and refused, so that a test can show both ways were taken.
  static constexpr std::size_t readers = 8;
  std::size_t reader_ = 0;
  std::array<std::size_t, readers> readCount_{};
  std::array<std::size_t, readers> refusedCount_{};

  std::vector<Vel::Ptr<IngressMirrorLagGroupMatchSpec>> specs_;
  Vel::Ptr<SetLagMemberSelectorActionProfileSpec> action_;
  std::vector<Vel::String> seedTexts_;
  std::string context_;
};

TEST_F(ValueTextMutationTest, SeedTextsAreReadWhole) {
  std::size_t entries = 0;
  for (std::size_t i = 0; i < seedTexts_.size(); ++i) {
    contextIs(0, i, 0, seedTexts_[i]);
    if (seedTexts_[i].starts_with(entryHead) && readsWhole<Entry>(seedTexts_[i]))
      ++entries;
    readWithEveryReader(seedTexts_[i]);
  }
  // Every entry text but the two that name no live match spec.
  EXPECT_EQ(entries, 5u);
}

TEST_F(ValueTextMutationTest, DamagedTextsAreReadConsistentlyOrRefused) {
  const std::uint32_t seed = chosenSeed();
  TextMutator mutator(seed);
  for (std::size_t i = 0; i < seedTexts_.size(); ++i) {
    for (int n = 0; n < textsPerSeedText; ++n) {
      const GuardedText guarded(mutator.mutated(seedTexts_[i]));
      contextIs(seed, i, n, guarded.text());
      readWithEveryReader(guarded.text());
      if (HasFailure())
        return;  // one replayable report is enough
    }
  }
  // Damage leaves some texts readable and makes others unreadable, for every reader.
  for (std::size_t reader = 0; reader < readers; ++reader) {
    EXPECT_GT(readCount_[reader], 0u) << "reader " << reader;
    EXPECT_GT(refusedCount_[reader], 0u) << "reader " << reader;
  }
}

TEST_F(ValueTextMutationTest, EveryPrefixOfEverySeedTextIsRefusedWithinItsEnd) {
  for (std::size_t i = 0; i < seedTexts_.size(); ++i) {
    for (std::size_t length = 0; length < seedTexts_[i].size(); ++length) {
      const GuardedText guarded(seedTexts_[i].substr(0, length));
      contextIs(0, i, static_cast<int>(length), guarded.text());
      readWithEveryReader(guarded.text());
      EXPECT_FALSE(readsWhole<MemberOrGroup>(guarded.text())) << context_;
      EXPECT_FALSE(readsWhole<Entry>(guarded.text())) << context_;
      if (HasFailure())
        return;
    }
  }
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
