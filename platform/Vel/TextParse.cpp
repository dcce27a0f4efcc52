#include "Vel/TextParse.h"

#include <string_view>

#include "Vel/ParseException.h"
#include "Vel/TextScan.h"

namespace Vel {

void needString(String::IteratorConst& pos, const String::IteratorConst& end, const char* literal) {
  const std::string_view expected(literal);
  if (!textIsAt(pos, end, expected))
    throw ParseException(literalMismatchMessage(pos, end, expected));
  pos += static_cast<std::ptrdiff_t>(expected.size());
}

void strepToValueEnd(const String::IteratorConst& pos, const String::IteratorConst& end) {
  if (pos == end)
    return;
  throw ParseException("text left over after the value: " + quotedExcerpt(textBetween(pos, end)));
}

void rethrowFromDeserializeAttr(const RangeException& e, const char* attributeName) {
  throw RangeException("attribute '" + String(attributeName) + "': " + e.message());
}

}  // namespace Vel
