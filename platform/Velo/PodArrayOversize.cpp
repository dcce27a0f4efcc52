#include "Velo/PodArrayOversize.h"

#include "Quill/InvalidSizeException.h"
#include "Vel/Format.h"
#include "Velo/HexDump.h"

namespace Velo {

void throwPodArrayOversize(std::uint32_t capacity, std::uint32_t count, const void* source,
                           std::size_t bytes) {
  throw Quill::InvalidSizeException(
      Vel::format("PodArray::set expected size <= %u, instead got %u. Buffer is at address: %p "
                  "with contents: ",
                  capacity, count, source) +
      hexDump(source, bytes));
}

}  // namespace Velo
