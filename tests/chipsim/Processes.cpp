#include "Processes.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

namespace chipsim_test {

pid_t runChild(const std::function<int()>& body) {
  pid_t child = fork();
  if (child == 0) {
    _exit(body());
  }
  return child;
}

int waitChild(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) {
      return -1000;
    }
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

}  // namespace chipsim_test
