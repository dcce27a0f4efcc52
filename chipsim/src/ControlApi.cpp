// The test control of the chip (chipsim/chipsim.h), exported by C name.

#include <cerrno>
#include <chrono>
#include <cstring>
#include <string>
#include <thread>

#include "Attachment.h"
#include "Chip.h"
#include "ChipChecker.h"
#include "ChipDump.h"
#include "KillSwitch.h"
#include "PdFunction.h"
#include "Segment.h"
#include "chipsim/chipsim.h"

using chipsim::Attachment;
using chipsim::Chip;

namespace {

// Runs f(chip) under the chip's lock; 0 or an errno value.
template <class F>
int withChip(F&& f) {
  try {
    return Attachment::instance().use(std::forward<F>(f));
  } catch (...) {
    return ENOMEM;
  }
}

// A value read from the chip under its lock, or `fallback` when there is no chip.
template <class T, class F>
T readChip(T fallback, F&& read) {
  T value = fallback;
  withChip([&](Chip& chip) { value = read(chip); });
  return value;
}

// A look-up's result, or why the chip could not be had, locked or trusted.
int lookup(uint32_t pipe, uint16_t session, uint32_t hash, uint16_t* selector) {
  int result = 0;
  const int error =
      withChip([&](Chip& chip) { result = chip.lookup(pipe, session, hash, selector); });
  return error != 0 ? error : result;
}

}  // namespace

extern "C" {

void chipsim_config_default(chipsim_config* config) {
  if (config != nullptr) {
    *config = {.device_id = 0,
               .pipes = 4,
               .entries = 65536,
               .members = 16384,
               .groups = 4096,
               .max_group_size = 256,
               .log_lines = 16384};
  }
}

int chipsim_configure(const chipsim_config* config) {
  return config == nullptr ? EINVAL : Attachment::instance().configure(*config);
}

int chipsim_config_get(chipsim_config* config) {
  if (config == nullptr) {
    return EINVAL;
  }
  return withChip([&](Chip& chip) { *config = chip.config(); });
}

int chipsim_attach(const char* name) {
  try {
    return Attachment::instance().attach(name, true);
  } catch (...) {
    return ENOMEM;
  }
}

int chipsim_attach_existing(const char* name) {
  try {
    return name == nullptr ? EINVAL : Attachment::instance().attach(name, false);
  } catch (...) {
    return ENOMEM;
  }
}

int chipsim_unlink(const char* name) {
  try {
    return chipsim::Segment::unlink(name);
  } catch (...) {
    return ENOMEM;
  }
}

const char* chipsim_name(void) {
  thread_local std::string name;
  try {
    name = Attachment::instance().name();
  } catch (...) {
    name.clear();
  }
  return name.c_str();
}

int chipsim_reset(void) {
  try {
    return Attachment::instance().reset();
  } catch (...) {
    return ENOMEM;
  }
}

int chipsim_fail_next(const char* pd_function, int status, unsigned count) {
  auto function = pd_function ? chipsim::pdFunctionNamed(pd_function) : std::nullopt;
  if (!function || (status == 0 && count != 0)) {
    return EINVAL;
  }
  return withChip([&](Chip& chip) { chip.calls().failNext(*function, status, count); });
}

int64_t chipsim_calls(const char* pd_function) {
  auto function = pd_function ? chipsim::pdFunctionNamed(pd_function) : std::nullopt;
  if (!function) {
    return -1;
  }
  return readChip<int64_t>(
      0, [&](Chip& chip) { return static_cast<int64_t>(chip.calls().calls(*function)); });
}

uint32_t chipsim_entries(void) {
  return readChip<uint32_t>(0, [](Chip& chip) { return chip.table().pool().used(); });
}

uint32_t chipsim_members(void) {
  return readChip<uint32_t>(0, [](Chip& chip) { return chip.members().pool().used(); });
}

uint32_t chipsim_groups(void) {
  return readChip<uint32_t>(0, [](Chip& chip) { return chip.groups().pool().used(); });
}

int chipsim_lookup_on_pipe(uint32_t pipe, uint16_t session, uint32_t hash, uint16_t* selector) {
  if (pipe == P4_PD_ALL_PIPES) {
    return EINVAL;
  }
  return lookup(pipe, session, hash, selector);
}

int chipsim_lookup(uint16_t session, uint32_t hash, uint16_t* selector) {
  return lookup(P4_PD_ALL_PIPES, session, hash, selector);
}

uint32_t chipsim_log_count(void) {
  return readChip<uint32_t>(0, [](Chip& chip) { return chip.log().count(); });
}

const char* chipsim_log_line(uint32_t index) {
  thread_local chipsim::LineBuilder line;
  bool found = readChip<bool>(false, [&](Chip& chip) {
    const chipsim::LogRecord* record = chip.log().record(index);
    if (record != nullptr) {
      line = chipsim::LineBuilder();
      record->formatInto(line);
    }
    return record != nullptr;
  });
  return found ? line.text() : nullptr;
}

void chipsim_log_clear(void) {
  withChip([](Chip& chip) { chip.log().clear(); });
}

int chipsim_dump(FILE* out) {
  if (out == nullptr) {
    return EINVAL;
  }
  std::string name = chipsim_name();
  return withChip([&](Chip& chip) { chipsim::ChipDump(chip, name).write(out); });
}

int chipsim_examine(const char** fault) {
  thread_local std::string text;
  std::optional<std::string> found;
  int error = withChip([&](Chip& chip) { found = chipsim::ChipChecker(chip).check(); });
  if (error == EUCLEAN || error == ETIMEDOUT) {
    found = Attachment::lastFault();
  } else if (error != 0) {
    found = std::string("no chip: ") + std::strerror(error);
  } else if (found) {
    error = EUCLEAN;
  }
  if (found) {
    text = *found;
  }
  if (fault != nullptr) {
    *fault = found ? text.c_str() : nullptr;
  }
  return error;
}

const char* chipsim_last_fault(void) {
  return Attachment::lastFault().c_str();
}

const char* chipsim_check(void) {
  const char* fault = nullptr;
  chipsim_examine(&fault);
  return fault;
}

int chipsim_hold_lock_for_test(unsigned ms, void (*locked)(void* context), void* context) {
  return withChip([&](Chip& chip) {
    uint32_t& entries = chip.header().entries.used;
    chip.journal().set(entries, entries + 1000);
    if (locked != nullptr) {
      locked(context);
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
    chip.journal().rollback();
  });
}

void chipsim_kill_after_changes_for_test(unsigned changes) {
  chipsim::KillSwitch::arm(changes);
}

}  // extern "C"
