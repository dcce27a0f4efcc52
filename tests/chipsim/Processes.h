#pragma once

#include <sys/types.h>

#include <functional>

namespace chipsim_test {

// Runs `body` in a child process, which exits with what it returns.
pid_t runChild(const std::function<int()>& body);

// Waits for a child: its exit status, or minus the signal that ended it.
int waitChild(pid_t child);

}  // namespace chipsim_test
