#include "Vel/TypeNode.h"

#include <map>
#include <mutex>

#include "Vel/Format.h"
#include "Vel/NameInUseException.h"
#include "Vel/TypeRecord.h"

namespace Vel {

namespace {

struct Registry {
  std::mutex mutex;
  std::map<String, const TypeRecord*, std::less<>> byName;
  std::vector<const TypeRecord*> inOrder;
};

Registry& registry() {
  static Registry* instance = new Registry;  // records are looked up until the very end
  return *instance;
}

}  // namespace

void typeNodeIs(const TypeRecord& type) {
  Registry& r = registry();
  std::lock_guard<std::mutex> lock(r.mutex);
  auto [it, inserted] = r.byName.try_emplace(type.name(), &type);
  if (inserted) {
    r.inOrder.push_back(&type);
  } else if (it->second != &type) {
    throw NameInUseException(
        format("Type name '%s' is already registered for another type", type.name().c_str()));
  }
}

const TypeRecord* typeNode(std::string_view name) {
  Registry& r = registry();
  std::lock_guard<std::mutex> lock(r.mutex);
  auto it = r.byName.find(name);
  return it != r.byName.end() ? it->second : nullptr;
}

std::vector<const TypeRecord*> typeNodes() {
  Registry& r = registry();
  std::lock_guard<std::mutex> lock(r.mutex);
  return r.inOrder;
}

}  // namespace Vel
