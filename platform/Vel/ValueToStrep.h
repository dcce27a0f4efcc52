#pragma once

#include <cstddef>
#include <string_view>

#include "Vel/Name.h"
#include "Vel/String.h"

namespace Vel {

class PtrInterface;
class TypeRecord;

// Text forms of the framework's basic values, the forms that sequenceToValue
// (Vel/SequenceToValue.h) reads back: integers in decimal, bools as True and
// False, strings in single quotes with backslash escapes, object references as
// Ref('<type name>', <id>) or None.

String valueToStrep(bool value);
String valueToStrep(signed char value);
String valueToStrep(unsigned char value);
String valueToStrep(short value);
String valueToStrep(unsigned short value);
String valueToStrep(int value);
String valueToStrep(unsigned int value);
String valueToStrep(long value);
String valueToStrep(unsigned long value);
String valueToStrep(long long value);
String valueToStrep(unsigned long long value);
String valueToStrep(const String& value);
String valueToStrep(const Name& value);
// A C string is text (without this it would silently become a bool).
String valueToStrep(const char* value);

// A plain char is neither a number nor a string here; convert it to say which.
String valueToStrep(char value) = delete;
String valueToStrep(wchar_t value) = delete;
String valueToStrep(char8_t value) = delete;
String valueToStrep(char16_t value) = delete;
String valueToStrep(char32_t value) = delete;
// Any other pointer would silently become a bool: references to objects are
// written by valueToStrepOfRawPtr.
String valueToStrep(std::nullptr_t) = delete;
template <class T>
String valueToStrep(const T* value) = delete;

// `text` between two `quote` characters, with a backslash before a backslash or
// the quote, \n \t \r for those controls and \xHH for the other control bytes.
// Bytes from 0x80 up are kept as they are.
String quoteText(std::string_view text, char quote = '\'');

// The text form of a reference to `object`: "None" for null, otherwise
// "Ref('<type name>', <id>)" where the id is the object's ObjectReference id,
// never its address. The type name is that of `type`, else of the object's own
// type record, else "Vel::PtrInterface".
String valueToStrepOfRawPtr(const PtrInterface* object, const TypeRecord* type);

}  // namespace Vel
