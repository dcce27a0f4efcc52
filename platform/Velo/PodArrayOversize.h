#pragma once

#include <cstddef>
#include <cstdint>

namespace Velo {

// Refuses `count` elements for a PodArray of `capacity`: throws
// Quill::InvalidSizeException "PodArray::set expected size <= <capacity>,
// instead got <count>. Buffer is at address: <source> with contents: <dump>",
// the dump being the `bytes` bytes of source as Velo::hexDump renders them.
[[noreturn]] void throwPodArrayOversize(std::uint32_t capacity, std::uint32_t count,
                                        const void* source, std::size_t bytes);

}  // namespace Velo
