#pragma once

#include <atomic>
#include <utility>
#include <vector>

#include "Vel/String.h"

namespace Vel {

// A handle onto one process-wide trace state, known by name. The first handle
// of a name creates the state; every handle of that name shares its level, so a
// host can switch tracing of a whole component on or off by name.
//
// Levels run from 0 (least detail) to 9 (most); a trace at level L is written
// when L is at most the state's level. Level -1 means off.
class TraceHandle {
 public:
  static constexpr int off = -1;
  static constexpr int maxLevel = 9;
  // The environment variable from which a host reads trace settings.
  static constexpr const char* environmentVariable = "VEL_TRACE";

  // A name and the level to give it, as read from settings text.
  using LevelSetting = std::pair<String, int>;

  // `flag` is the level a state starts at when the name is new; a known name
  // keeps its level.
  explicit TraceHandle(const char* name, int flag = off);

  const String& name() const noexcept { return *name_; }
  int level() const noexcept { return static_cast<int>(enabledBelow()) - 1; }
  // Sets the level of every handle of this name: -1 (off) to 9.
  void levelIs(int level) const;

  // True when a trace at `level` is written: one relaxed load and one compare,
  // so that a disabled trace costs next to nothing.
  bool enabled(unsigned level) const noexcept { return level < enabledBelow(); }

  // Sets the level of the named state, creating the state if needed.
  static void levelIs(const char* name, int level);

  // Reads settings text of the form "name=level,name=level" (empty text: no
  // settings). Throws ParseException on text of another form and
  // RangeException on a level outside -1..9.
  static std::vector<LevelSetting> levelSettings(const String& text);
  // Applies settings text; nothing is changed when any part of it is wrong.
  static void levelsIs(const String& text);
  // Applies the settings in VEL_TRACE, when the variable is set.
  static void levelsIsFromEnvironment();

 private:
  // The state keeps level + 1, so that a single unsigned compare tells whether
  // a level is enabled: 0 for off, 10 when every level is.
  unsigned enabledBelow() const noexcept { return enabledBelow_->load(std::memory_order_relaxed); }

  const String* name_;
  std::atomic<unsigned>* enabledBelow_;
};

}  // namespace Vel
