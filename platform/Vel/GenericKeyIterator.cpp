#include "Vel/GenericKeyIterator.h"

#include <utility>

#include "Vel/Allocate.h"
#include "Vel/Format.h"
#include "Vel/RangeException.h"
#include "Vel/TypeRecord.h"

namespace Vel {

Ptr<GenericIterator> GenericKeyIterator::make(const GenericValue& self,
                                              const AttributeRecord& attribute,
                                              std::vector<GenericValue> keys) {
  return allocate<GenericKeyIterator>(self, attribute, std::move(keys));
}

Ptr<GenericIterator> GenericKeyIterator::makeAt(const GenericValue& self,
                                                const AttributeRecord& attribute,
                                                std::vector<GenericValue> keys,
                                                const GenericValue& key) {
  Ptr<GenericKeyIterator> iterator = allocate<GenericKeyIterator>(self, attribute, std::move(keys));
  iterator->positionAt(key);
  return iterator;
}

GenericKeyIterator::GenericKeyIterator(const GenericValue& self, const AttributeRecord& attribute,
                                       std::vector<GenericValue> keys)
    : owner_(self), attribute_(attribute), keys_(std::move(keys)) {
  settle();
}

bool GenericKeyIterator::valid() const {
  return position_ < keys_.size();
}

GenericValue GenericKeyIterator::key() const {
  needElement();
  return keys_[position_];
}

GenericValue GenericKeyIterator::current() const {
  needElement();
  return current_;
}

void GenericKeyIterator::advance() {
  if (!valid())
    return;
  ++position_;
  settle();
}

GenericValue GenericKeyIterator::deleteCurrent() {
  needElement();
  GenericValue removed = owner_.attribute(attribute_, GenericIf::opDelete, {keys_[position_]});
  advance();
  return removed;
}

void GenericKeyIterator::settle() {
  current_ = GenericValue();
  for (; position_ < keys_.size(); ++position_) {
    GenericValue element = owner_.attribute(attribute_, GenericIf::opRead, {keys_[position_]});
    if (!element.isNull()) {
      current_ = std::move(element);
      return;
    }
  }
}

void GenericKeyIterator::positionAt(const GenericValue& key) {
  for (; valid(); advance()) {
    GenericIf candidate(keys_[position_]);
    if (candidate.valueOperation(GenericIf::opEqual, {key}).get<bool>())
      return;
  }
}

void GenericKeyIterator::needElement() const {
  if (!valid()) {
    throwRangeException(format("Iterator over attribute '%s' stands on no element",
                               attribute_.qualifiedName().c_str()));
  }
}

}  // namespace Vel
