#include "Vel/ObjectReference.h"

#include <mutex>
#include <unordered_map>

namespace Vel {

namespace {

struct Table {
  std::mutex mutex;
  std::uint64_t lastId = 0;
  std::unordered_map<const PtrInterface*, std::uint64_t> idByObject;
  std::unordered_map<std::uint64_t, const PtrInterface*> objectById;
};

Table& table() {
  static Table* instance = new Table;  // objects may die during static destruction
  return *instance;
}

}  // namespace

std::uint64_t ObjectReference::idOf(const PtrInterface* object) {
  if (object == nullptr)
    return 0;
  Table& t = table();
  std::lock_guard<std::mutex> lock(t.mutex);
  auto [it, inserted] = t.idByObject.try_emplace(object, t.lastId + 1);
  if (inserted) {
    ++t.lastId;
    t.objectById.emplace(it->second, object);
    object->flagIs(PtrInterface::referencedInTextBit, true);
  }
  return it->second;
}

Ptr<const PtrInterface> ObjectReference::resolve(std::uint64_t id) {
  Table& t = table();
  std::lock_guard<std::mutex> lock(t.mutex);
  auto it = t.objectById.find(id);
  if (it == t.objectById.end() || it->second->references() == 0)
    return nullptr;
  return Ptr<const PtrInterface>(it->second);
}

void ObjectReference::forget(const PtrInterface* object) noexcept {
  Table& t = table();
  std::lock_guard<std::mutex> lock(t.mutex);
  auto it = t.idByObject.find(object);
  if (it == t.idByObject.end())
    return;
  t.objectById.erase(it->second);
  t.idByObject.erase(it);
}

}  // namespace Vel
