#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "Vel/Format.h"
#include "Vel/ParseException.h"
#include "Vel/RangeException.h"
#include "Vel/TraceCapture.h"
#include "Vel/TraceHandle.h"
#include "Vel/TraceHelper.h"
#include "Vel/TraceRecord.h"
#include "Vel/TraceSink.h"

namespace Vel {

// Shows a record in failure reports as its trace line.
void PrintTo(const TraceRecord& record, std::ostream* out) {
  *out << TraceSink::line(record);
}

}  // namespace Vel

namespace {

using Vel::TraceCapture;
using Vel::TraceHandle;
using Vel::TraceHelper;
using Vel::TraceRecord;
using Vel::TraceSink;

constexpr const char* sourcePath =
    "bf_kestro_switch/vel/BfIngressMirrorLagGroup/BfIngressMirrorLagGroup";

// Traces `message` at `level` through the handle, the way product code does.
void traceAt(const TraceHandle& handle, unsigned level, const std::string& message,
             unsigned line = 179, const char* function = "entryIs") {
  if (auto t = TraceHelper::createIfEnabled(handle, level)) {
    *t << message;
    t->trace(sourcePath, line, function);
  }
}

template <class E>
void expectThrowsWithMessage(const std::function<void()>& action, const std::string& message) {
  try {
    action();
    ADD_FAILURE() << "nothing thrown; expected: " << message;
  } catch (const E& e) {
    EXPECT_EQ(e.message(), message);
  }
}

// Reading the settings in `text`, as an action to run later.
std::function<void()> settingsOf(const std::string& text) {
  return [text] { TraceHandle::levelSettings(text); };
}

// A sink that counts what it is given.
class CountingSink : public TraceSink {
 public:
  void write(const TraceRecord&) override { ++written; }
  int written = 0;
};

TEST(TraceHandleTest, HandlesOfOneNameShareOneState) {
  TraceHandle first("TraceTest.shared", 3);
  TraceHandle second("TraceTest.shared", 7);
  EXPECT_EQ(first.name(), "TraceTest.shared");
  EXPECT_EQ(&first.name(), &second.name());
  EXPECT_EQ(second.level(), 3);

  first.levelIs(5);
  EXPECT_EQ(second.level(), 5);
  TraceHandle::levelIs("TraceTest.shared", 1);
  EXPECT_EQ(first.level(), 1);
  EXPECT_EQ(second.level(), 1);
}

TEST(TraceHandleTest, StaticLevelIsCreatesAnUnknownName) {
  TraceHandle::levelIs("TraceTest.createdByLevelIs", 6);
  EXPECT_EQ(TraceHandle("TraceTest.createdByLevelIs", 2).level(), 6);
}

TEST(TraceHandleTest, NewNameIsOffUnlessAFlagIsGiven) {
  EXPECT_EQ(TraceHandle("TraceTest.offByDefault").level(), TraceHandle::off);
  EXPECT_EQ(TraceHandle("TraceTest.offByDefault").level(), -1);
  EXPECT_EQ(TraceHandle("TraceTest.startsAtFour", 4).level(), 4);
}

TEST(TraceHandleTest, TraceIsEnabledUpToTheStateLevel) {
  TraceHandle handle("TraceTest.levels");
  for (int stateLevel = -1; stateLevel <= 9; ++stateLevel) {
    handle.levelIs(stateLevel);
    EXPECT_EQ(handle.level(), stateLevel);
    for (unsigned level = 0; level <= 9; ++level) {
      const bool expected = static_cast<int>(level) <= stateLevel;
      EXPECT_EQ(handle.enabled(level), expected) << "state " << stateLevel << ", trace " << level;
      EXPECT_EQ(TraceHelper::createIfEnabled(handle, level).has_value(), expected)
          << "state " << stateLevel << ", trace " << level;
    }
    EXPECT_FALSE(TraceHelper::createIfEnabled(handle, 10).has_value());
    EXPECT_FALSE(TraceHelper::createIfEnabled(handle, ~0u).has_value());
  }
}

TEST(TraceHandleTest, LevelOutsideMinusOneToNineIsRefused) {
  TraceHandle handle("TraceTest.range", 2);
  expectThrowsWithMessage<Vel::RangeException>(
      [&] { handle.levelIs(10); }, "trace level 10 of \"TraceTest.range\" is not in -1..9");
  expectThrowsWithMessage<Vel::RangeException>(
      [&] { handle.levelIs(-2); }, "trace level -2 of \"TraceTest.range\" is not in -1..9");
  expectThrowsWithMessage<Vel::RangeException>(
      [] { TraceHandle::levelIs("TraceTest.range", 12); },
      "trace level 12 of \"TraceTest.range\" is not in -1..9");
  expectThrowsWithMessage<Vel::RangeException>(
      [] { TraceHandle("TraceTest.badFlag", 11); },
      "trace level 11 of \"TraceTest.badFlag\" is not in -1..9");
  EXPECT_EQ(handle.level(), 2);
}

TEST(TraceHelperTest, RecordCarriesEveryFieldExactly) {
  TraceHandle handle("TraceTest.record", 9);
  TraceCapture capture;
  auto t = TraceHelper::createIfEnabled(handle, 4);
  ASSERT_TRUE(t.has_value());
  *t << "value=" << 42 << ' ' << 1.5;
  t->stream() << " end";
  t->trace("src/file.cpp", 123, "handleGroupAdd");

  const std::vector<TraceRecord> expected{
      {"TraceTest.record", 4, "src/file.cpp", 123, "handleGroupAdd", "value=42 1.5 end"}};
  EXPECT_EQ(capture.records(), expected);
  EXPECT_EQ(capture.lines(),
            std::vector<Vel::String>{
                "TraceTest.record[4] src/file.cpp:123 handleGroupAdd: value=42 1.5 end"});
}

TEST(TraceHelperTest, MessageIsKeptWhole) {
  TraceHandle handle("TraceTest.whole", 9);
  TraceCapture capture;
  const std::string message = std::string(5000, 'x') + '\0' + "%s%d\n";
  traceAt(handle, 9, message);
  ASSERT_EQ(capture.records().size(), 1u);
  EXPECT_EQ(capture.records()[0].message, message);
  EXPECT_EQ(capture.lines()[0],
            "TraceTest.whole[9] " + std::string(sourcePath) + ":179 entryIs: " + message);
}

TEST(TraceSinkTest, DefaultSinkWritesOneLinePerRecordToStderr) {
  TraceHandle handle("BfIngressMirrorLagGroup", 9);
  testing::internal::CaptureStderr();
  traceAt(handle, 9,
          "void BfIngressMirrorLagGroup::IngressMirrorLagGroupTable::entryIs(const "
          "BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry&)");
  traceAt(handle, 8, "entryByHandle: sdkHandle=5 mbr_hdl=7 memberId=3", 146, "entryByHandle");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "BfIngressMirrorLagGroup[9] "
            "bf_kestro_switch/vel/BfIngressMirrorLagGroup/BfIngressMirrorLagGroup:179 entryIs: "
            "void BfIngressMirrorLagGroup::IngressMirrorLagGroupTable::entryIs(const "
            "BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry&)\n"
            "BfIngressMirrorLagGroup[8] "
            "bf_kestro_switch/vel/BfIngressMirrorLagGroup/BfIngressMirrorLagGroup:146 "
            "entryByHandle: entryByHandle: sdkHandle=5 mbr_hdl=7 memberId=3\n");
}

TEST(TraceSinkTest, InstalledSinkTakesTracesUntilNullRestoresTheDefault) {
  TraceHandle handle("TraceTest.sinkIs", 9);
  TraceSink* const original = TraceSink::sink();
  CountingSink counting;
  TraceSink::sinkIs(&counting);
  EXPECT_EQ(TraceSink::sink(), &counting);
  testing::internal::CaptureStderr();
  traceAt(handle, 1, "to the counting sink");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(counting.written, 1);

  TraceSink::sinkIs(nullptr);
  EXPECT_EQ(TraceSink::sink(), original);
  testing::internal::CaptureStderr();
  traceAt(handle, 1, "to stderr", 5, "f");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "TraceTest.sinkIs[1] " + std::string(sourcePath) + ":5 f: to stderr\n");
  EXPECT_EQ(counting.written, 1);
}

TEST(TraceCaptureTest, NestedCapturesRestoreThePreviousSink) {
  TraceHandle handle("TraceTest.nested", 9);
  TraceSink* const before = TraceSink::sink();
  {
    TraceCapture outer;
    EXPECT_EQ(TraceSink::sink(), &outer);
    {
      TraceCapture inner;
      EXPECT_EQ(TraceSink::sink(), &inner);
      traceAt(handle, 0, "inner");
      EXPECT_EQ(inner.lines(),
                std::vector<Vel::String>{"TraceTest.nested[0] " + std::string(sourcePath) +
                                         ":179 entryIs: inner"});
    }
    EXPECT_EQ(TraceSink::sink(), &outer);
    traceAt(handle, 0, "outer");
    EXPECT_EQ(outer.lines(),
              std::vector<Vel::String>{"TraceTest.nested[0] " + std::string(sourcePath) +
                                       ":179 entryIs: outer"});
  }
  EXPECT_EQ(TraceSink::sink(), before);
  testing::internal::CaptureStderr();
  traceAt(handle, 0, "after");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "TraceTest.nested[0] " + std::string(sourcePath) + ":179 entryIs: after\n");
}

TEST(TraceCaptureTest, ClearForgetsEarlierRecords) {
  TraceHandle handle("TraceTest.clear", 9);
  TraceCapture capture;
  traceAt(handle, 2, "first");
  capture.clear();
  EXPECT_TRUE(capture.records().empty());
  traceAt(handle, 3, "second");
  const std::vector<TraceRecord> expected{
      {"TraceTest.clear", 3, sourcePath, 179, "entryIs", "second"}};
  EXPECT_EQ(capture.records(), expected);
}

TEST(TraceHelperTest, DisabledTraceWritesNothingAndEvaluatesNothing) {
  TraceHandle handle("TraceTest.disabled");
  int evaluated = 0;
  auto expensive = [&] {
    ++evaluated;
    return "expensive";
  };
  auto traceExpensive = [&](unsigned level) {
    if (auto t = TraceHelper::createIfEnabled(handle, level)) {
      *t << expensive();
      t->trace("f.cpp", 1, "f");
    }
  };
  TraceCapture capture;
  testing::internal::CaptureStderr();
  traceExpensive(0);
  handle.levelIs(5);
  traceExpensive(6);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(evaluated, 0);
  EXPECT_TRUE(capture.records().empty());

  traceExpensive(5);
  EXPECT_EQ(evaluated, 1);
  EXPECT_EQ(capture.lines(),
            std::vector<Vel::String>{"TraceTest.disabled[5] f.cpp:1 f: expensive"});
}

TEST(TraceSettingsTest, ReadsNameLevelPairs) {
  using Settings = std::vector<TraceHandle::LevelSetting>;
  EXPECT_EQ(TraceHandle::levelSettings("BfIngressMirrorLagGroup=9,Vel.notify=-1,a.b=0"),
            (Settings{{"BfIngressMirrorLagGroup", 9}, {"Vel.notify", -1}, {"a.b", 0}}));
  EXPECT_EQ(TraceHandle::levelSettings("one=3"), (Settings{{"one", 3}}));
  EXPECT_EQ(TraceHandle::levelSettings(""), Settings{});
}

TEST(TraceSettingsTest, TextOfAnotherFormIsAParseError) {
  const std::vector<std::pair<std::string, std::string>> cases{
      {"name", "trace setting \"name\" is not of the form name=level"},
      {"a=1,,b=2", "trace setting \"\" is not of the form name=level"},
      {"a=1,", "trace setting \"\" is not of the form name=level"},
      {"=3", "trace setting \"=3\" has no name"},
      {"a=x", "trace level \"x\" of \"a\" is not a number"},
      {"a=", "trace level \"\" of \"a\" is not a number"},
      {"a=3x", "trace level \"3x\" of \"a\" is not a number"},
      {"a= 3", "trace level \" 3\" of \"a\" is not a number"},
      {"a=+3", "trace level \"+3\" of \"a\" is not a number"},
      {"a=1=2", "trace level \"1=2\" of \"a\" is not a number"},
  };
  for (const auto& [text, message] : cases) {
    SCOPED_TRACE(text);
    expectThrowsWithMessage<Vel::ParseException>(settingsOf(text), message);
  }
}

TEST(TraceSettingsTest, LevelOutsideMinusOneToNineIsARangeError) {
  const std::vector<std::pair<std::string, std::string>> cases{
      {"a=10", "trace level 10 of \"a\" is not in -1..9"},
      {"ok=1,b=-2", "trace level -2 of \"b\" is not in -1..9"},
      {"c=99999999999", "trace level 99999999999 of \"c\" is not in -1..9"},
  };
  for (const auto& [text, message] : cases) {
    SCOPED_TRACE(text);
    expectThrowsWithMessage<Vel::RangeException>(settingsOf(text), message);
  }
}

TEST(TraceSettingsTest, LevelsIsSetsEveryNameOrNoneOnBadText) {
  TraceHandle::levelsIs("TraceTest.p1=4,TraceTest.p2=2");
  EXPECT_EQ(TraceHandle("TraceTest.p1").level(), 4);
  EXPECT_EQ(TraceHandle("TraceTest.p2").level(), 2);

  expectThrowsWithMessage<Vel::ParseException>(
      [] { TraceHandle::levelsIs("TraceTest.p1=7,TraceTest.p2=oops"); },
      "trace level \"oops\" of \"TraceTest.p2\" is not a number");
  EXPECT_EQ(TraceHandle("TraceTest.p1").level(), 4);
  EXPECT_EQ(TraceHandle("TraceTest.p2").level(), 2);
}

TEST(TraceSettingsTest, LevelsAreReadFromTheEnvironment) {
  EXPECT_STREQ(TraceHandle::environmentVariable, "VEL_TRACE");
  ASSERT_EQ(setenv("VEL_TRACE", "TraceTest.env=6,TraceTest.env2=0", 1), 0);
  TraceHandle::levelsIsFromEnvironment();
  EXPECT_EQ(TraceHandle("TraceTest.env").level(), 6);
  EXPECT_EQ(TraceHandle("TraceTest.env2").level(), 0);

  ASSERT_EQ(unsetenv("VEL_TRACE"), 0);
  TraceHandle::levelIs("TraceTest.env", 3);
  TraceHandle::levelsIsFromEnvironment();
  EXPECT_EQ(TraceHandle("TraceTest.env").level(), 3);
}

TEST(TraceConcurrencyTest, ThreadsTracingAtOnceLoseAndMixNothing) {
  constexpr int threads = 4;
  constexpr int tracesPerThread = 2000;
  TraceHandle handle("TraceTest.threads", 9);
  TraceCapture capture;
  std::vector<std::thread> workers;
  for (int t = 0; t < threads; ++t) {
    workers.emplace_back([&handle, t] {
      // Each thread makes its own handle of the same name, as separate code would.
      TraceHandle own("TraceTest.threads");
      for (int i = 0; i < tracesPerThread; ++i) {
        traceAt(i % 2 == 0 ? handle : own, 9,
                "thread " + std::to_string(t) + " trace " + std::to_string(i));
      }
    });
  }
  for (std::thread& worker : workers)
    worker.join();

  const std::vector<TraceRecord> records = capture.records();
  ASSERT_EQ(records.size(), static_cast<std::size_t>(threads * tracesPerThread));
  std::vector<int> next(threads, 0);  // each thread's traces arrive in its own order
  for (const TraceRecord& record : records) {
    int t = -1;
    int i = -1;
    ASSERT_EQ(std::sscanf(record.message.c_str(), "thread %d trace %d", &t, &i), 2)
        << record.message;
    ASSERT_TRUE(t >= 0 && t < threads) << record.message;
    EXPECT_EQ(i, next[t]++);
    EXPECT_EQ(record.message, "thread " + std::to_string(t) + " trace " + std::to_string(i));
    EXPECT_EQ(record.handleName, "TraceTest.threads");
  }
}

TEST(TraceConcurrencyTest, DefaultSinkWritesWholeLinesFromThreads) {
  constexpr int threads = 4;
  constexpr int tracesPerThread = 200;
  TraceHandle handle("TraceTest.threadLines", 9);
  testing::internal::CaptureStderr();
  std::vector<std::thread> workers;
  for (int t = 0; t < threads; ++t) {
    workers.emplace_back([&handle, t] {
      for (int i = 0; i < tracesPerThread; ++i) {
        traceAt(handle, 7, Vel::format("t%d.%d", t, i), 1, "f");
      }
    });
  }
  for (std::thread& worker : workers)
    worker.join();
  const std::string written = testing::internal::GetCapturedStderr();

  std::set<std::string> expected;
  for (int t = 0; t < threads; ++t) {
    for (int i = 0; i < tracesPerThread; ++i) {
      expected.insert("TraceTest.threadLines[7] " + std::string(sourcePath) + ":1 f: t" +
                      std::to_string(t) + "." + std::to_string(i));
    }
  }
  std::multiset<std::string> lines;
  std::size_t start = 0;
  for (std::size_t end; (end = written.find('\n', start)) != std::string::npos; start = end + 1) {
    lines.insert(written.substr(start, end - start));
  }
  EXPECT_EQ(start, written.size()) << "the output does not end with a newline";
  EXPECT_EQ(lines, std::multiset<std::string>(expected.begin(), expected.end()));
}

TEST(TraceConcurrencyTest, LevelChangesSeenByTracingThreads) {
  TraceHandle handle("TraceTest.toggle", 9);
  TraceCapture capture;
  std::thread toggler([] {
    for (int i = 0; i < 2000; ++i)
      TraceHandle::levelIs("TraceTest.toggle", i % 2 == 0 ? -1 : 9);
    TraceHandle::levelIs("TraceTest.toggle", 9);
  });
  int enabled = 0;
  for (int i = 0; i < 2000; ++i) {
    if (auto t = TraceHelper::createIfEnabled(handle, 9)) {
      ++enabled;
      t->trace("f.cpp", 1, "f");
    }
  }
  toggler.join();
  traceAt(handle, 9, "last");
  EXPECT_EQ(capture.records().size(), static_cast<std::size_t>(enabled) + 1);
  EXPECT_EQ(capture.records().back().message, "last");
}

}  // namespace
