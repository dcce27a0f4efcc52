#include "Vel/TraceHandle.h"

#include <charconv>
#include <cstdlib>
#include <mutex>
#include <unordered_map>

#include "Vel/Format.h"
#include "Vel/ParseException.h"
#include "Vel/RangeException.h"

namespace Vel {

namespace {

// Every trace state of the process: the name and the level + 1. Elements never
// move or go away, so handles keep pointers into them.
struct Registry {
  std::mutex mutex;
  std::unordered_map<String, std::atomic<unsigned>> states;
};

Registry& registry() {
  static Registry* instance = new Registry;  // handles may trace during static destruction
  return *instance;
}

unsigned enabledBelowOf(int level) {
  return static_cast<unsigned>(level + 1);
}

[[noreturn]] void throwLevelOutOfRange(const String& name, const std::string& levelText) {
  throwRangeException(format("trace level %s of \"%s\" is not in %d..%d", levelText.c_str(),
                             name.c_str(), TraceHandle::off, TraceHandle::maxLevel));
}

void checkLevel(const String& name, int level) {
  if (level < TraceHandle::off || level > TraceHandle::maxLevel) {
    throwLevelOutOfRange(name, std::to_string(level));
  }
}

int parseLevel(const String& name, const std::string& levelText) {
  int level = 0;
  const char* end = levelText.data() + levelText.size();
  const auto [next, error] = std::from_chars(levelText.data(), end, level);
  if (error == std::errc::result_out_of_range)
    throwLevelOutOfRange(name, levelText);
  if (error != std::errc() || next != end) {
    throw ParseException(
        format("trace level \"%s\" of \"%s\" is not a number", levelText.c_str(), name.c_str()));
  }
  checkLevel(name, level);
  return level;
}

TraceHandle::LevelSetting parseSetting(const std::string& item) {
  const std::size_t equals = item.find('=');
  if (equals == std::string::npos) {
    throw ParseException(
        format("trace setting \"%s\" is not of the form name=level", item.c_str()));
  }
  String name = item.substr(0, equals);
  if (name.empty())
    throw ParseException(format("trace setting \"%s\" has no name", item.c_str()));
  const int level = parseLevel(name, item.substr(equals + 1));
  return {std::move(name), level};
}

}  // namespace

TraceHandle::TraceHandle(const char* name, int flag) {
  checkLevel(name, flag);
  Registry& r = registry();
  std::lock_guard<std::mutex> lock(r.mutex);
  auto& state = *r.states.try_emplace(name, enabledBelowOf(flag)).first;
  name_ = &state.first;
  enabledBelow_ = &state.second;
}

void TraceHandle::levelIs(int level) const {
  checkLevel(name(), level);
  enabledBelow_->store(enabledBelowOf(level), std::memory_order_relaxed);
}

void TraceHandle::levelIs(const char* name, int level) {
  TraceHandle(name).levelIs(level);
}

std::vector<TraceHandle::LevelSetting> TraceHandle::levelSettings(const String& text) {
  std::vector<LevelSetting> settings;
  if (text.empty())
    return settings;
  for (std::size_t start = 0;;) {
    const std::size_t comma = text.find(',', start);
    settings.push_back(parseSetting(text.substr(start, comma - start)));
    if (comma == String::npos)
      return settings;
    start = comma + 1;
  }
}

void TraceHandle::levelsIs(const String& text) {
  for (const auto& [name, level] : levelSettings(text))
    levelIs(name.c_str(), level);
}

void TraceHandle::levelsIsFromEnvironment() {
  if (const char* text = std::getenv(environmentVariable))
    levelsIs(text);
}

}  // namespace Vel
