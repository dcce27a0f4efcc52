#include "Velo/HexDump.h"

namespace Velo {

std::string hexDump(const void* bytes, std::size_t size) {
  static constexpr char kDigits[] = "0123456789abcdef";
  const auto* p = static_cast<const unsigned char*>(bytes);
  std::string text;
  text.reserve(size * 3);
  for (std::size_t i = 0; i < size; ++i) {
    if (i != 0) {
      text += ' ';
    }
    text += kDigits[p[i] >> 4];
    text += kDigits[p[i] & 0xf];
  }
  return text;
}

}  // namespace Velo
