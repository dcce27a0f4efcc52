#include <gtest/gtest.h>

#include <cstdint>
#include <exception>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "TextTestSupport.h"
#include "Vel/AllocTrackTypeInfo.h"
#include "Vel/Allocate.h"
#include "Vel/EnumType.h"
#include "Vel/Exception.h"
#include "Vel/Format.h"
#include "Vel/SequenceToValue.h"
#include "Vel/TextParse.h"
#include "Vel/TypeRecord.h"
#include "Vel/ValueToStrep.h"

// Randomized robustness of the text readers: valid texts are damaged by
// truncation, byte changes, insertions and deletions, and every reader is run on
// every damaged text. A reader must either read a value (consuming part of the
// text and no more) or raise a framework exception leaving the position alone,
// and must never look past the end: in sanitizer builds the bytes after the end
// are poisoned.

namespace {

using TextTestSupport::GuardedText;

const Vel::TypeRecord& leafType() {
  static const Vel::TypeRecord type("Test::Leaf", Vel::TypeRecord::Kind::object);
  return type;
}

class Leaf : public Vel::PtrInterface {};

const Vel::EnumType<unsigned int>& flavourType() {
  static const Vel::EnumType<unsigned int> type("Test::Flavour",
                                                {{"sweet", 0}, {"sour", 1}, {"bitter", 5}});
  return type;
}

// Reads a composite value "Value('Test::Entry', ** {'leaf': <ref>, 'id': <n>, 'name': <s>})"
// as a whole text, the way a value type's text constructor does.
void readEntry(const Vel::String::IteratorConst& begin, const Vel::String::IteratorConst& end) {
  Vel::String::IteratorConst pos = begin;
  Vel::Ptr<const Leaf> leaf;
  std::uint32_t id = 0;
  Vel::String name;
  Vel::needString(pos, end, "Value('Test::Entry', ** {'leaf': ");
  Vel::deserializeAttr(pos, end, "leaf", &leaf);
  Vel::needString(pos, end, ", 'id': ");
  Vel::deserializeAttr(pos, end, "id", &id);
  Vel::needString(pos, end, ", 'name': ");
  Vel::deserializeAttr(pos, end, "name", &name);
  Vel::needString(pos, end, "})");
  Vel::strepToValueEnd(pos, end);
}

class TextMutationTest : public ::testing::Test {
 protected:
  void SetUp() override {
    for (int i = 0; i < 3; ++i)
      leaves_.push_back(Vel::allocate<Leaf>());
    for (const Vel::Ptr<Leaf>& leaf : leaves_) {
      const Vel::String ref = Vel::valueToStrepOfRawPtr(leaf.get(), &leafType());
      seeds_.push_back(ref);
      seeds_.push_back("Value('Test::Entry', ** {'leaf': " + ref +
                       ", 'id': 4294967295, 'name': 'a\\'b\\x01'})");
    }
    for (const Vel::String& seed :
         {Vel::valueToStrep(0u), Vel::valueToStrep(std::numeric_limits<std::int64_t>::min()),
          Vel::valueToStrep(std::numeric_limits<std::uint64_t>::max()), Vel::String("0x7fff"),
          Vel::String("-0x80"), Vel::valueToStrep(true), Vel::valueToStrep(false),
          Vel::valueToStrep(Vel::String("quote ' back \\ nl \n ctl \x02 hi \xc3\xa9")),
          Vel::valueToStrepOfRawPtr(nullptr, nullptr), flavourType().valueToStrep(5),
          Vel::String("1"),
          Vel::String("Value('Test::Entry', ** {'leaf': None, 'id': 0, 'name': ''})")}) {
      seeds_.push_back(seed);
    }
  }

  void TearDown() override {
    leaves_.clear();
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Leaf>().liveObjects(), 0u);
  }

  // One random damage of `text`.
  Vel::String mutated(Vel::String text) {
    static const std::string alphabet = "'\\\"x0123456789afAFTrueFalseNoneRef(), -{}:*\n";
    const int mutations = pick(1, 3);
    for (int i = 0; i < mutations; ++i) {
      const auto at = static_cast<std::size_t>(pick(0, static_cast<int>(text.size())));
      switch (pick(0, 4)) {
        case 0:
          text.resize(at);
          break;
        case 1:
          if (at < text.size())
            text[at] = static_cast<char>(pick(0, 255));
          break;
        case 2:
          text.insert(
              at, 1,
              alphabet[static_cast<std::size_t>(pick(0, static_cast<int>(alphabet.size()) - 1))]);
          break;
        case 3:
          if (at < text.size())
            text.erase(at, 1);
          break;
        default:
          text.insert(at, text.substr(at / 2, static_cast<std::size_t>(pick(1, 6))));
          break;
      }
    }
    return text;
  }

  // Runs the reader of T on `text` and checks how it ended.
  template <class T>
  void read(const Vel::String& text) {
    T value{};
    Vel::String::IteratorConst pos = text.begin();
    try {
      Vel::sequenceToValue(pos, text.end(), &value);
    } catch (const Vel::Exception&) {
      EXPECT_TRUE(pos == text.begin()) << "position moved on failure: " << quoted(text);
      return;
    } catch (const std::exception& e) {
      ADD_FAILURE() << "unexpected exception '" << e.what() << "' on " << quoted(text);
      return;
    }
    EXPECT_TRUE(pos > text.begin() && pos <= text.end()) << "bad position on " << quoted(text);
  }

  // Runs a reader that has no position to report.
  template <class Reader>
  void run(const Vel::String& text, Reader reader) {
    try {
      reader(text.begin(), text.end());
    } catch (const Vel::Exception&) {
    } catch (const std::exception& e) {
      ADD_FAILURE() << "unexpected exception '" << e.what() << "' on " << quoted(text);
    }
  }

  void readWithEveryReader(const Vel::String& text) {
    read<signed char>(text);
    read<unsigned char>(text);
    read<short>(text);
    read<unsigned short>(text);
    read<int>(text);
    read<unsigned>(text);
    read<long>(text);
    read<unsigned long>(text);
    read<long long>(text);
    read<unsigned long long>(text);
    read<bool>(text);
    read<Vel::String>(text);
    read<Vel::Name>(text);
    read<Vel::Ptr<Leaf>>(text);
    read<Vel::Ptr<const Leaf>>(text);
    run(text, [](auto begin, auto end) {
      unsigned int flavour = 0;
      flavourType().sequenceToValue(begin, end, &flavour);
    });
    run(text, readEntry);
  }

  static Vel::String quoted(const Vel::String& text) { return Vel::valueToStrep(text); }

  int pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }

  std::mt19937 random_{20240611};  // fixed, so that a failure can be replayed
  std::vector<Vel::Ptr<Leaf>> leaves_;
  std::vector<Vel::String> seeds_;
};

TEST_F(TextMutationTest, SeedsAreReadWhole) {
  readEntry(seeds_[1].begin(), seeds_[1].end());
  const Vel::Ptr<const Leaf> leaf = TextTestSupport::parsed<Vel::Ptr<const Leaf>>(seeds_[0]);
  EXPECT_EQ(leaf.get(), leaves_[0].get());
}

TEST_F(TextMutationTest, DamagedTextsAreReadOrRefusedWithinTheirEnd) {
  constexpr int textsPerSeed = 400;
  for (const Vel::String& seed : seeds_) {
    for (int i = 0; i < textsPerSeed; ++i) {
      const GuardedText guarded(mutated(seed));
      readWithEveryReader(guarded.text());
      if (HasFailure())
        return;  // one replayable report is enough
    }
  }
}

TEST_F(TextMutationTest, EveryPrefixOfEverySeedIsReadOrRefused) {
  for (const Vel::String& seed : seeds_) {
    for (std::size_t length = 0; length <= seed.size(); ++length) {
      const GuardedText guarded(seed.substr(0, length));
      readWithEveryReader(guarded.text());
    }
  }
}

TEST(GuardedTextTest, BytesAfterTheEndArePoisonedInSanitizerBuilds) {
#if defined(__SANITIZE_ADDRESS__) || (defined(__has_feature) && __has_feature(address_sanitizer))
  const GuardedText guarded("abc");
  EXPECT_FALSE(__asan_address_is_poisoned(guarded.guardBegin() - 1));
  EXPECT_TRUE(__asan_address_is_poisoned(guarded.guardBegin()));
#else
  GTEST_SKIP() << "no address sanitizer in this build";
#endif
}

}  // namespace
