#include "Vel/ValueToStrep.h"

#include <charconv>
#include <cstdint>

#include "Quill/Assert.h"
#include "Vel/ObjectReference.h"
#include "Vel/PtrInterface.h"
#include "Vel/TypeRecord.h"

namespace Vel {

namespace {

template <class T>
String integerStrep(T value) {
  char digits[24];  // a sign and the 20 digits of the widest integer fit
  const std::to_chars_result result = std::to_chars(digits, digits + sizeof(digits), value);
  return String(digits, result.ptr);
}

// Appends one byte as it is written between `quote` quotes.
void appendEscaped(String& out, char c, char quote) {
  static constexpr char hexDigits[] = "0123456789abcdef";
  const auto byte = static_cast<unsigned char>(c);
  if (c == '\\' || c == quote) {
    out += '\\';
    out += c;
  } else if (c == '\n') {
    out += "\\n";
  } else if (c == '\t') {
    out += "\\t";
  } else if (c == '\r') {
    out += "\\r";
  } else if (byte < 0x20 || byte == 0x7f) {
    out += "\\x";
    out += hexDigits[byte >> 4];
    out += hexDigits[byte & 0xf];
  } else {
    out += c;
  }
}

const String& referencedTypeName(const PtrInterface& object, const TypeRecord* type) {
  static const String unknownType = "Vel::PtrInterface";
  if (type == nullptr)
    type = object.fwkType();
  return type != nullptr ? type->name() : unknownType;
}

}  // namespace

String valueToStrep(bool value) {
  return value ? "True" : "False";
}
String valueToStrep(signed char value) {
  return integerStrep(value);
}
String valueToStrep(unsigned char value) {
  return integerStrep(value);
}
String valueToStrep(short value) {
  return integerStrep(value);
}
String valueToStrep(unsigned short value) {
  return integerStrep(value);
}
String valueToStrep(int value) {
  return integerStrep(value);
}
String valueToStrep(unsigned int value) {
  return integerStrep(value);
}
String valueToStrep(long value) {
  return integerStrep(value);
}
String valueToStrep(unsigned long value) {
  return integerStrep(value);
}
String valueToStrep(long long value) {
  return integerStrep(value);
}
String valueToStrep(unsigned long long value) {
  return integerStrep(value);
}
String valueToStrep(const String& value) {
  return quoteText(value);
}
String valueToStrep(const Name& value) {
  return quoteText(value);
}

String valueToStrep(const char* value) {
  QUILL_ASSERT(value != nullptr);
  return quoteText(value);
}

String quoteText(std::string_view text, char quote) {
  String out;
  out.reserve(text.size() + 2);
  out += quote;
  for (char c : text)
    appendEscaped(out, c, quote);
  out += quote;
  return out;
}

String valueToStrepOfRawPtr(const PtrInterface* object, const TypeRecord* type) {
  if (object == nullptr)
    return "None";
  const std::uint64_t id = ObjectReference::idOf(object);
  return "Ref(" + quoteText(referencedTypeName(*object, type)) + ", " + integerStrep(id) + ")";
}

}  // namespace Vel
