#include "LockWait.h"

#include <sys/stat.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace chipsim {

unsigned LockWait::milliseconds() {
  // Read once: the setting is the process's, and calls are frequent.
  static const unsigned wait = [] {
    const char* text = std::getenv("CHIPSIM_LOCK_WAIT_MS");
    return text != nullptr ? static_cast<unsigned>(std::strtoul(text, nullptr, 10))
                           : kDefaultMilliseconds;
  }();
  return wait;
}

std::string LockWait::fileLockHolder(int fd) {
  struct stat status;
  if (fstat(fd, &status) != 0) {
    return "another process";
  }
  // Lines such as "1: FLOCK  ADVISORY  WRITE 1234 00:1a:5678 0 EOF"; a waiter's
  // line has "->" before FLOCK and is not a holder.
  const std::string inode = ":" + std::to_string(status.st_ino);
  std::ifstream locks("/proc/locks");
  for (std::string line; std::getline(locks, line);) {
    std::istringstream fields(line);
    std::string number, kind, mode, access, pid, file;
    fields >> number >> kind >> mode >> access >> pid >> file;
    if (kind == "FLOCK" && file.size() > inode.size() &&
        file.compare(file.size() - inode.size(), inode.size(), inode) == 0) {
      return "process " + pid;
    }
  }
  return "another process";
}

}  // namespace chipsim
