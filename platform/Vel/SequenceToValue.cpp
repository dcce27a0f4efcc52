#include "Vel/SequenceToValue.h"

#include <charconv>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

#include "Vel/ObjectReference.h"
#include "Vel/RangeException.h"
#include "Vel/TextScan.h"
#include "Vel/ValueToStrep.h"

namespace Vel {

namespace {

using Iterator = String::IteratorConst;

// "an unsigned 16-bit number", "a signed 8-bit number", ...
template <class T>
String integerDescription() {
  const unsigned bits = std::numeric_limits<T>::digits + (std::is_signed_v<T> ? 1 : 0);
  return String(std::is_signed_v<T> ? "a signed " : "an unsigned ") + std::to_string(bits) +
         "-bit number";
}

[[noreturn]] void throwExpected(const String& expected, Iterator pos, Iterator end) {
  throwRangeException("expected " + expected + ", found " + describeFound(pos, end));
}

// The magnitude written by decimal digits or by 0x and hexadecimal digits.
std::optional<unsigned long long> magnitudeOf(std::string_view digits) {
  int base = 10;
  if (digits.size() > 2 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X')) {
    base = 16;
    digits.remove_prefix(2);
  }
  unsigned long long magnitude = 0;
  const char* last = digits.data() + digits.size();
  const std::from_chars_result result = std::from_chars(digits.data(), last, magnitude, base);
  if (digits.empty() || result.ec != std::errc() || result.ptr != last)
    return std::nullopt;
  return magnitude;
}

// The T written by a whole word, or nothing when the word is not such a number.
template <class T>
std::optional<T> integerOfWord(std::string_view word) {
  const bool negative = std::is_signed_v<T> && word.starts_with('-');
  if (negative)
    word.remove_prefix(1);
  const std::optional<unsigned long long> magnitude = magnitudeOf(word);
  if (!magnitude)
    return std::nullopt;
  // The most negative value has a magnitude one above the largest value.
  const unsigned long long limit =
      static_cast<unsigned long long>(std::numeric_limits<T>::max()) + (negative ? 1 : 0);
  if (*magnitude > limit)
    return std::nullopt;
  // Conversion to T is modular, so 0 - m becomes -m.
  return static_cast<T>(negative ? 0 - *magnitude : *magnitude);
}

template <class T>
void sequenceToInteger(Iterator& pos, const Iterator& end, T* out) {
  const Iterator stop = wordEnd(pos, end);
  const std::optional<T> value = integerOfWord<T>(textBetween(pos, stop));
  if (!value)
    throwExpected(integerDescription<T>(), pos, end);
  *out = *value;
  pos = stop;
}

int hexDigitValue(char c) {
  if (c >= '0' && c <= '9')
    return c - '0';
  if (c >= 'a' && c <= 'f')
    return c - 'a' + 10;
  if (c >= 'A' && c <= 'F')
    return c - 'A' + 10;
  return -1;
}

[[noreturn]] void throwBadEscape(Iterator backslash, Iterator end) {
  const std::string_view rest = textBetween(backslash, end);
  const bool hexEscape = rest.size() > 1 && rest[1] == 'x';
  throwRangeException("expected an escape sequence, found " +
                      quotedForMessage(rest.substr(0, hexEscape ? 4 : 2)));
}

// Reads the escape sequence at pos (a backslash) and advances past it.
char unescape(Iterator& pos, const Iterator& end) {
  const std::string_view rest = textBetween(pos, end);
  if (rest.size() < 2)
    throwBadEscape(pos, end);
  switch (rest[1]) {
    case '\\':
    case '\'':
      pos += 2;
      return rest[1];
    case 'n':
      pos += 2;
      return '\n';
    case 't':
      pos += 2;
      return '\t';
    case 'r':
      pos += 2;
      return '\r';
    case 'x': {
      const int high = rest.size() >= 4 ? hexDigitValue(rest[2]) : -1;
      const int low = rest.size() >= 4 ? hexDigitValue(rest[3]) : -1;
      if (high < 0 || low < 0)
        throwBadEscape(pos, end);
      pos += 4;
      return static_cast<char>(high * 16 + low);
    }
    default:
      throwBadEscape(pos, end);
  }
}

// Reads `literal` inside a reference; a reference that cannot be read is a
// value out of range, like any other value that cannot be read.
void needInReference(Iterator& pos, const Iterator& end, std::string_view literal) {
  if (!textIsAt(pos, end, literal))
    throwRangeException(literalMismatchMessage(pos, end, literal));
  pos += static_cast<std::ptrdiff_t>(literal.size());
}

String referenceText(const String& typeName, std::uint64_t id) {
  return "Ref(" + valueToStrep(typeName) + ", " + valueToStrep(id) + ")";
}

}  // namespace

void sequenceToValue(Iterator& pos, const Iterator& end, bool* out) {
  const Iterator stop = wordEnd(pos, end);
  const std::string_view word = textBetween(pos, stop);
  if (word != "True" && word != "False")
    throwExpected("True or False", pos, end);
  *out = word == "True";
  pos = stop;
}

void sequenceToValue(Iterator& pos, const Iterator& end, signed char* out) {
  sequenceToInteger(pos, end, out);
}
void sequenceToValue(Iterator& pos, const Iterator& end, unsigned char* out) {
  sequenceToInteger(pos, end, out);
}
void sequenceToValue(Iterator& pos, const Iterator& end, short* out) {
  sequenceToInteger(pos, end, out);
}
void sequenceToValue(Iterator& pos, const Iterator& end, unsigned short* out) {
  sequenceToInteger(pos, end, out);
}
void sequenceToValue(Iterator& pos, const Iterator& end, int* out) {
  sequenceToInteger(pos, end, out);
}
void sequenceToValue(Iterator& pos, const Iterator& end, unsigned int* out) {
  sequenceToInteger(pos, end, out);
}
void sequenceToValue(Iterator& pos, const Iterator& end, long* out) {
  sequenceToInteger(pos, end, out);
}
void sequenceToValue(Iterator& pos, const Iterator& end, unsigned long* out) {
  sequenceToInteger(pos, end, out);
}
void sequenceToValue(Iterator& pos, const Iterator& end, long long* out) {
  sequenceToInteger(pos, end, out);
}
void sequenceToValue(Iterator& pos, const Iterator& end, unsigned long long* out) {
  sequenceToInteger(pos, end, out);
}

void sequenceToValue(Iterator& pos, const Iterator& end, String* out) {
  if (pos == end || *pos != '\'')
    throwExpected("a quoted string", pos, end);
  Iterator p = pos + 1;
  String text;
  for (;;) {
    if (p == end)
      throwRangeException("expected a closing quote, found end of text");
    if (*p == '\'')
      break;
    text += *p == '\\' ? unescape(p, end) : *p++;
  }
  *out = std::move(text);
  pos = p + 1;
}

void sequenceToValue(Iterator& pos, const Iterator& end, Name* out) {
  String text;
  sequenceToValue(pos, end, &text);
  *out = std::move(text);
}

Ptr<const PtrInterface> sequenceToObject(Iterator& pos, const Iterator& end,
                                         bool (*isExpectedType)(const PtrInterface* object)) {
  const Iterator wordStop = wordEnd(pos, end);
  if (textBetween(pos, wordStop) == "None") {
    pos = wordStop;
    return nullptr;
  }
  constexpr std::string_view opening = "Ref(";
  if (!textIsAt(pos, end, opening))
    throwExpected("a reference", pos, end);
  Iterator p = pos + static_cast<std::ptrdiff_t>(opening.size());
  String typeName;
  sequenceToValue(p, end, &typeName);
  needInReference(p, end, ", ");
  std::uint64_t id = 0;
  sequenceToValue(p, end, &id);
  needInReference(p, end, ")");
  Ptr<const PtrInterface> object = ObjectReference::resolve(id);
  if (!object)
    throwRangeException(referenceText(typeName, id) + " names no live object");
  if (!isExpectedType(object.get())) {
    throwRangeException(referenceText(typeName, id) + " names an object of another type");
  }
  pos = p;
  return object;
}

}  // namespace Vel
