#include "ToolRun.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "Processes.h"

namespace chipsim_test {

namespace {

// A temporary file that the tool writes one of its streams to.
class Capture {
 public:
  Capture() : path_("/tmp/chipsim-tool-XXXXXX") { fd_ = mkstemp(path_.data()); }
  ~Capture() {
    close(fd_);
    unlink(path_.c_str());
  }
  int fd() const { return fd_; }
  std::string text() const {
    std::ifstream in(path_);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
  }

 private:
  std::string path_;
  int fd_;
};

}  // namespace

ToolRun ToolRun::of(const std::vector<std::string>& arguments) {
  Capture out;
  Capture err;
  std::vector<char*> argv{const_cast<char*>(CHIPSIM_TOOL)};
  for (const std::string& argument : arguments) {
    argv.push_back(const_cast<char*>(argument.c_str()));
  }
  argv.push_back(nullptr);
  pid_t child = runChild([&] {
    dup2(out.fd(), STDOUT_FILENO);
    dup2(err.fd(), STDERR_FILENO);
    execv(CHIPSIM_TOOL, argv.data());
    return 127;
  });
  int status = waitChild(child);
  return {status, out.text(), err.text()};
}

}  // namespace chipsim_test
