#pragma once

#include <cstddef>
#include <initializer_list>
#include <utility>
#include <vector>

#include "Vel/GenericValue.h"

namespace Vel {

// The arguments of a reflective call, in order: the key of a look-up, the new
// value of a write, the arguments of a mutator or of a constructor.
class GenericArgs {
 public:
  GenericArgs() = default;
  GenericArgs(std::initializer_list<GenericValue> values) : values_(values) {}
  explicit GenericArgs(std::vector<GenericValue> values) : values_(std::move(values)) {}

  std::size_t size() const noexcept { return values_.size(); }
  // Argument i (from 0); a RangeException when the call has fewer arguments.
  const GenericValue& operator[](std::size_t i) const;
  // Argument i as a T (see GenericValue::get).
  template <class T>
  T get(std::size_t i) const {
    return (*this)[i].template get<T>();
  }

 private:
  std::vector<GenericValue> values_;
};

}  // namespace Vel
