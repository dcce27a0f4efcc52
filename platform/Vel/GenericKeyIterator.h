#pragma once

#include <cstddef>
#include <vector>

#include "Vel/AttributeRecord.h"
#include "Vel/GenericIf.h"
#include "Vel/GenericIterator.h"

namespace Vel {

// The framework's iterator over a collection attribute, made from the keys of the
// collection in the collection's own order when the walk starts. It reaches the
// elements through the attribute's look-up and delete operations, so it needs
// nothing of the collection but its keys, and it tolerates any change of the
// collection during the walk: keys whose element has gone are passed over.
class GenericKeyIterator final : public GenericIterator {
 public:
  // An iterator standing on the first element, or on the element of `key`
  // (on none when the key is absent).
  static Ptr<GenericIterator> make(const GenericValue& self, const AttributeRecord& attribute,
                                   std::vector<GenericValue> keys);
  static Ptr<GenericIterator> makeAt(const GenericValue& self, const AttributeRecord& attribute,
                                     std::vector<GenericValue> keys, const GenericValue& key);

  // The keys of a range of elements, wrapped as the attribute's keys; keyOf
  // gives the key of one element of the range.
  template <class Range, class KeyOf>
  static std::vector<GenericValue> keysOf(const AttributeRecord& attribute, const Range& range,
                                          KeyOf keyOf) {
    std::vector<GenericValue> keys;
    for (const auto& element : range)
      keys.push_back(attribute.key(keyOf(element)));
    return keys;
  }

  GenericKeyIterator(const GenericValue& self, const AttributeRecord& attribute,
                     std::vector<GenericValue> keys);

  bool valid() const override;
  GenericValue key() const override;
  GenericValue current() const override;
  void advance() override;
  GenericValue deleteCurrent() override;

 private:
  // Stands on the first key from `position_` on whose element is present.
  void settle();
  void positionAt(const GenericValue& key);
  void needElement() const;

  GenericIf owner_;
  const AttributeRecord& attribute_;
  std::vector<GenericValue> keys_;
  std::size_t position_ = 0;
  GenericValue current_;
};

}  // namespace Vel
