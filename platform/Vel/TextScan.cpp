#include "Vel/TextScan.h"

#include <algorithm>
#include <cstddef>

#include "Vel/ValueToStrep.h"

namespace Vel {

namespace {

// Longest piece of found text that a message quotes.
constexpr std::size_t maxExcerpt = 40;

bool isWordCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
         c == '.';
}

}  // namespace

std::string_view textBetween(String::IteratorConst first, String::IteratorConst last) {
  return std::string_view(first, last);
}

String::IteratorConst wordEnd(String::IteratorConst pos, String::IteratorConst end) {
  if (pos != end && (*pos == '-' || *pos == '+'))
    ++pos;
  return std::find_if_not(pos, end, isWordCharacter);
}

bool textIsAt(String::IteratorConst pos, String::IteratorConst end, std::string_view literal) {
  return textBetween(pos, end).starts_with(literal);
}

String quotedForMessage(std::string_view text) {
  const bool preferDouble =
      text.find('\'') != std::string_view::npos && text.find('"') == std::string_view::npos;
  return quoteText(text, preferDouble ? '"' : '\'');
}

String quotedExcerpt(std::string_view text) {
  if (text.size() <= maxExcerpt)
    return quotedForMessage(text);
  return quotedForMessage(text.substr(0, maxExcerpt)) + "...";
}

String describeFound(String::IteratorConst pos, String::IteratorConst end) {
  if (pos == end)
    return "end of text";
  const String::IteratorConst stop = wordEnd(pos, end);
  return quotedExcerpt(textBetween(pos, stop == pos ? pos + 1 : stop));
}

String literalMismatchMessage(String::IteratorConst pos, String::IteratorConst end,
                              std::string_view literal) {
  const std::string_view rest = textBetween(pos, end);
  const std::string_view found = rest.substr(0, literal.size());
  String message = "expected " + quotedForMessage(literal) + ", found ";
  if (found.empty())
    return message + "end of text";
  message += quotedExcerpt(found);
  if (found.size() < literal.size())
    message += " at end of text";
  return message;
}

}  // namespace Vel
