#pragma once

#include <algorithm>
#include <cstdint>
#include <type_traits>

#include "Velo/PodArrayOversize.h"

namespace Velo {

// A fixed-capacity array that is plain data, for records kept in shared
// memory: an unsigned 32-bit element count followed by room for `Capacity`
// elements. `Tag` makes arrays of the same element and capacity distinct types.
template <class Element, class Tag, std::uint32_t Capacity>
class PodArray {
  static_assert(std::is_trivially_copyable_v<Element>, "PodArray holds plain data");

 public:
  using value_type = Element;
  static constexpr std::uint32_t kCapacity = Capacity;

  static constexpr std::uint32_t capacity() noexcept { return Capacity; }
  std::uint32_t size() const noexcept { return count_; }
  bool empty() const noexcept { return count_ == 0; }
  const Element* data() const noexcept { return elements_; }
  const Element* begin() const noexcept { return elements_; }
  const Element* end() const noexcept { return elements_ + count_; }
  const Element& operator[](std::uint32_t i) const noexcept { return elements_[i]; }

  // Takes `count` elements from `source`. A count past the capacity changes
  // nothing and throws Quill::InvalidSizeException with the source's bytes.
  void set(std::uint32_t count, const Element* source) {
    if (count > Capacity) {
      throwPodArrayOversize(Capacity, count, source, std::size_t{count} * sizeof(Element));
    }
    std::copy(source, source + count, elements_);
    std::fill(elements_ + count, elements_ + Capacity, Element{});
    count_ = count;
  }

  friend bool operator==(const PodArray& a, const PodArray& b) {
    return a.count_ == b.count_ && std::equal(a.begin(), a.end(), b.begin());
  }

 private:
  std::uint32_t count_ = 0;
  Element elements_[Capacity] = {};
};

}  // namespace Velo
