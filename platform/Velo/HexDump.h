#pragma once

#include <cstddef>
#include <string>

namespace Velo {

// Bytes as text for reports: each byte as two lowercase hex digits, bytes
// separated by one space ("0a ff 00"); no bytes give an empty text.
std::string hexDump(const void* bytes, std::size_t size);

}  // namespace Velo
