#include "Vel/AllocTrackTypeInfo.h"

#include <cxxabi.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <mutex>

namespace Vel {

namespace {

std::string demangle(const char* mangled) {
  int status = 0;
  std::unique_ptr<char, decltype(&std::free)> name(
      abi::__cxa_demangle(mangled, nullptr, nullptr, &status), &std::free);
  return status == 0 && name ? std::string(name.get()) : std::string(mangled);
}

struct Registry {
  std::mutex mutex;
  std::vector<const AllocTrackTypeInfo*> records;
};

Registry& registry() {
  static Registry* instance = new Registry;  // outlives every record, even at exit
  return *instance;
}

}  // namespace

AllocTrackTypeInfo::AllocTrackTypeInfo(const std::type_info& type)
    : typeName_(demangle(type.name())) {
  Registry& r = registry();
  std::lock_guard<std::mutex> lock(r.mutex);
  r.records.push_back(this);
}

AllocTrackTypeInfo::~AllocTrackTypeInfo() {
  Registry& r = registry();
  std::lock_guard<std::mutex> lock(r.mutex);
  r.records.erase(std::remove(r.records.begin(), r.records.end(), this), r.records.end());
}

const AllocTrackTypeInfo* AllocTrackTypeInfo::find(const std::string& typeName) {
  Registry& r = registry();
  std::lock_guard<std::mutex> lock(r.mutex);
  for (const AllocTrackTypeInfo* record : r.records) {
    if (record->typeName() == typeName)
      return record;
  }
  return nullptr;
}

std::vector<const AllocTrackTypeInfo*> AllocTrackTypeInfo::all() {
  Registry& r = registry();
  std::lock_guard<std::mutex> lock(r.mutex);
  return r.records;
}

std::size_t AllocTrackTypeInfo::liveObjectsOfAllTypes() {
  std::size_t live = 0;
  for (const AllocTrackTypeInfo* record : all())
    live += record->liveObjects();
  return live;
}

}  // namespace Vel
