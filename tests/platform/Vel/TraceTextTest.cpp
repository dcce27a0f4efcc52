// The message text of a trace: what it writes for each kind of value is what an
// output stream writes by default, short messages stay in the object, long
// ones are kept whole, and a trace that mixes in values only a stream can
// write keeps every piece in order.

#include "Vel/TraceText.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <sstream>
#include <string>

#include "Vel/TraceCapture.h"
#include "Vel/TraceHandle.h"
#include "Vel/TraceHelper.h"

namespace {

using Vel::TraceCapture;
using Vel::TraceHandle;
using Vel::TraceHelper;
using Vel::TraceText;

template <class T>
std::string streamed(T value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

template <class T>
void expectIntegerAsStreamed(T value) {
  TraceText text;
  text.appendInteger(value);
  EXPECT_EQ(text.view(), streamed(value));
}

template <class T>
void expectLimitsAsStreamed() {
  expectIntegerAsStreamed<T>(std::numeric_limits<T>::min());
  expectIntegerAsStreamed<T>(std::numeric_limits<T>::max());
  expectIntegerAsStreamed<T>(T{0});
}

TEST(TraceTextTest, IntegersReadAsAStreamWritesThem) {
  expectLimitsAsStreamed<short>();
  expectLimitsAsStreamed<unsigned short>();
  expectLimitsAsStreamed<int>();
  expectLimitsAsStreamed<unsigned>();
  expectLimitsAsStreamed<long>();
  expectLimitsAsStreamed<unsigned long>();
  expectLimitsAsStreamed<long long>();
  expectLimitsAsStreamed<unsigned long long>();
}

TEST(TraceTextTest, ALongMessageIsKeptWholeAcrossTheMoveToTheHeap) {
  TraceText text;
  const std::string head(TraceText::inlineCapacity - 1, 'a');
  text.append(head);
  text.append(std::string("bc\0d", 4));
  text.appendInteger(42);
  EXPECT_EQ(text.view(), head + std::string("bc\0d", 4) + "42");
  const TraceText copy(text);
  EXPECT_EQ(copy.view(), text.view());
}

TEST(TraceTextTest, AMessageThatFillsTheBufferExactlyStaysWhole) {
  TraceText text;
  const std::string full(TraceText::inlineCapacity, 'z');
  text.append(full);
  EXPECT_EQ(text.view(), full);
  text.append('!');
  EXPECT_EQ(text.view(), full + '!');
}

// The message one trace with these values writes.
template <class... Values>
std::string traced(const Values&... values) {
  TraceHandle handle("TraceTextTest", 9);
  TraceCapture capture;
  if (auto t = TraceHelper::createIfEnabled(handle, 9)) {
    (*t << ... << values);
    t->trace("f.cpp", 1, "f");
  }
  return capture.records().at(0).message;
}

template <class... Values>
std::string streamedAll(const Values&... values) {
  std::ostringstream out;
  (out << ... << values);
  return out.str();
}

TEST(TraceHelperTextTest, EveryKindOfValueReadsAsAStreamWritesIt) {
  const std::string text = "text";
  const Vel::String velText = "vel";
  const std::string_view view = "view";
  const char* pointer = "pointer";
  const std::uint8_t byte = 65;
  const std::int8_t signedByte = 66;
  EXPECT_EQ(
      traced("a=", 1, ' ', -2L, ' ', 3u, ' ', true, false, 'c', byte, signedByte, ' ', text,
             velText, view, pointer, ' ', 2.5, ' ', std::uint64_t{18446744073709551615u}),
      streamedAll("a=", 1, ' ', -2L, ' ', 3u, ' ', true, false, 'c', byte, signedByte, ' ', text,
                  velText, view, pointer, ' ', 2.5, ' ', std::uint64_t{18446744073709551615u}));
}

TEST(TraceHelperTextTest, AStreamManipulatorHoldsForWhatFollowsIt) {
  TraceHandle handle("TraceTextTest", 9);
  TraceCapture capture;
  if (auto t = TraceHelper::createIfEnabled(handle, 9)) {
    *t << "h=" << 255 << ' ';
    t->stream() << std::hex;
    *t << 255 << " s=" << std::string("x");
    t->trace("f.cpp", 1, "f");
  }
  EXPECT_EQ(capture.records().at(0).message, "h=255 ff s=x");
}

TEST(TraceHelperTextTest, ANullTextMarksTheMessageAsAStreamDoes) {
  const char* none = nullptr;
  EXPECT_EQ(traced("a", none, "b", 1), streamedAll("a", none, "b", 1));
}

TEST(TraceHelperTextTest, AThreadsNextTraceCarriesOnlyItsOwnMessage) {
  EXPECT_EQ(traced(std::string(1000, 'l')), std::string(1000, 'l'));
  EXPECT_EQ(traced("short"), "short");
}

}  // namespace
