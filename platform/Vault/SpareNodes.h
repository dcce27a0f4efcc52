#pragma once

#include <array>
#include <cstddef>
#include <utility>

namespace Vault {

// Keeps the nodes of the last few elements erased from a node-based standard
// container (map, set, unordered_map) and puts them back to use for the next
// elements inserted, so that a table whose records come and go (a chip object
// added, then deleted) does not allocate and free a node for each change. The
// container itself behaves exactly as with plain insert and erase.
template <class Container, std::size_t Kept = 4>
class SpareNodes {
 public:
  using Node = typename Container::node_type;
  using Iterator = typename Container::iterator;

  // Erases the element at `position`, keeping its node.
  void erase(Container& container, Iterator position) { keep(container.extract(position)); }

  // Sets `key` to `mapped` in a map: assigned when present, else inserted.
  template <class Key, class Mapped>
  void assign(Container& container, const Key& key, Mapped&& mapped) {
    const auto found = container.find(key);
    if (found != container.end()) {
      found->second = std::forward<Mapped>(mapped);
      return;
    }
    if (count_ == 0) {
      container.emplace(key, std::forward<Mapped>(mapped));
      return;
    }
    Node node = std::move(nodes_[--count_]);
    node.key() = key;
    node.mapped() = std::forward<Mapped>(mapped);
    container.insert(std::move(node));
  }

  // Adds `value` to a set, when absent.
  template <class Value>
  void add(Container& container, const Value& value) {
    if (count_ == 0) {
      container.insert(value);
      return;
    }
    Node node = std::move(nodes_[--count_]);
    node.value() = value;
    auto inserted = container.insert(std::move(node));
    if (!inserted.inserted)
      keep(std::move(inserted.node));
  }

 private:
  void keep(Node node) {
    if (count_ < Kept)
      nodes_[count_++] = std::move(node);
  }

  std::array<Node, Kept> nodes_;
  std::size_t count_ = 0;
};

}  // namespace Vault
