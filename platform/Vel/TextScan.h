#pragma once

#include <string_view>

#include "Vel/String.h"

namespace Vel {

// Helpers shared by the framework's text parsers: finding the word that stands
// at a position and describing the text found there in failure messages. None
// of them reads at or past `end`.

// The text between two iterators of one string.
std::string_view textBetween(String::IteratorConst first, String::IteratorConst last);

// End of the word at pos: an optional sign followed by letters, digits, '_' and
// '.'. Numbers, bools and bare names are read as whole words, so that "12ab" is
// refused whole instead of being read as 12 followed by junk.
String::IteratorConst wordEnd(String::IteratorConst pos, String::IteratorConst end);

// True when `literal` stands at pos.
bool textIsAt(String::IteratorConst pos, String::IteratorConst end, std::string_view literal);

// Text quoted for a message: single quotes, or double quotes when the text holds
// a single quote and no double quote; control characters and the quote escaped.
String quotedForMessage(std::string_view text);

// Like quotedForMessage, but a long text is cut and marked with "..." after the
// closing quote, so that a hostile text cannot blow up a message.
String quotedExcerpt(std::string_view text);

// Describes the text at pos for a failure message: "end of text", the quoted
// word at pos or, when no word stands there, the quoted character at pos.
String describeFound(String::IteratorConst pos, String::IteratorConst end);

// "expected <literal>, found <as much text as the literal is long>", with
// " at end of text" when the text stops before the literal would.
String literalMismatchMessage(String::IteratorConst pos, String::IteratorConst end,
                              std::string_view literal);

}  // namespace Vel
