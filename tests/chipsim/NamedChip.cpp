#include "NamedChip.h"

#include <sys/mman.h>
#include <unistd.h>

namespace chipsim_test {

NamedChip::NamedChip(const std::string& what)
    : name_("/chipsim-test-" + what + "-" + std::to_string(getpid())) {
  shm_unlink(name_.c_str());
}

NamedChip::~NamedChip() {
  shm_unlink(name_.c_str());
}

}  // namespace chipsim_test
