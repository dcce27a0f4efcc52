// Fuzzes the chip with damage to its memory: a small chip with members, a
// group and entries is made in a named segment, the input's patches are
// written over its bytes (all but its lock), and the chip is then attached,
// examined, dumped, forwarded through and called as a host and the tool do.
// Every call must end with a result or an error, never a crash or a hang.
//
// Input: patches of [offset: 4 bytes][length: 1 byte][bytes].

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "Pd/KestroSwitchPd.h"
#include "chipsim/chipsim.h"
#include "chipsim/src/ChipHeader.h"

namespace {

const std::string kName = "/chipsim-fuzz-" + std::to_string(getpid());
constexpr p4_pd_device_target_t kAllPipes{0, P4_PD_ALL_PIPES};
constexpr std::uint32_t kSession = 1;
constexpr int kMembers = 4;

// A chip of a small make-up holding two members, a group and two entries.
void makeChip() {
  const chipsim_config config{.device_id = 0,
                              .pipes = 2,
                              .entries = 8,
                              .members = kMembers,
                              .groups = 2,
                              .max_group_size = 3,
                              .log_lines = 16};
  chipsim_unlink(kName.c_str());
  chipsim_configure(&config);
  chipsim_attach(kName.c_str());
  p4_pd_kestro_switch_setLagMemberSelector_action_spec_t action{7};
  std::uint32_t member = 0, other = 0, group = 0, entry = 0;
  p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_with_setLagMemberSelector(
      kSession, kAllPipes, &action, &member);
  p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_with_setLagMemberSelector(
      kSession, kAllPipes, &action, &other);
  p4_pd_kestro_switch_mirrorLagPortActionProfile_create_group(kSession, kAllPipes, 3, &group);
  p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_to_group(kSession, 0, group, member);
  p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_t match{5};
  p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry(kSession, kAllPipes, &match, member, &entry);
  match.ingMirrorMdMirrorSession = 6;
  p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry_with_selector(kSession, kAllPipes, &match,
                                                                    group, &entry);
  chipsim_attach(nullptr);
}

// Writes the input's patches over the segment, leaving its lock alone.
void damage(const std::uint8_t* data, std::size_t size) {
  const int fd = shm_open(kName.c_str(), O_RDWR, 0);
  struct stat status {};
  if (fd < 0 || fstat(fd, &status) != 0 || status.st_size == 0)
    std::abort();
  const auto length = static_cast<std::size_t>(status.st_size);
  void* mapped = mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
  close(fd);
  auto* base = static_cast<std::uint8_t*>(mapped);
  const std::size_t lockStart = offsetof(chipsim::ChipHeader, mutex);
  const std::size_t lockEnd = lockStart + sizeof(pthread_mutex_t);
  while (size >= 5) {
    std::uint32_t offset = 0;
    std::memcpy(&offset, data, sizeof offset);
    std::size_t count = data[4];
    data += 5;
    size -= 5;
    count = count < size ? count : size;
    for (std::size_t i = 0; i < count; ++i) {
      const std::size_t at = (offset + i) % length;
      if (at < lockStart || at >= lockEnd)
        base[at] = data[i];
    }
    data += count;
    size -= count;
  }
  munmap(mapped, length);
}

// What a host and the tool do with the chip.
void use() {
  if (chipsim_attach_existing(kName.c_str()) != 0)
    return;
  const char* fault = nullptr;
  chipsim_examine(&fault);
  if (FILE* null = std::fopen("/dev/null", "w")) {
    chipsim_dump(null);
    std::fclose(null);
  }
  for (std::uint32_t i = 0; i < chipsim_log_count() && i < 64; ++i)
    chipsim_log_line(i);
  std::uint16_t selector = 0;
  for (std::uint16_t session = 4; session < 8; ++session)
    chipsim_lookup(session, session * 7u, &selector);
  p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_t match{5};
  std::uint32_t handle = 0;
  p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry(kSession, kAllPipes, &match, 1, &handle);
  p4_pd_kestro_switch_ingressMirrorLagGroup_table_delete(kSession, 0, 1);
  p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member_from_group(kSession, 0, 1, 1);
  p4_pd_kestro_switch_mirrorLagPortActionProfile_del_group(kSession, 0, 1);
  p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member(kSession, 0, 2);
  // A walk of the members ends within the profile's size, however damaged.
  std::uint32_t next = 0;
  int steps = 0;
  for (int status =
           p4_pd_kestro_switch_mirrorLagPortActionProfile_get_first_member(kSession, 0, &next);
       status == 0; status = p4_pd_kestro_switch_mirrorLagPortActionProfile_get_next_member(
                        kSession, 0, next, &next)) {
    if (++steps > kMembers)
      __builtin_trap();
  }
  chipsim_attach(nullptr);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  setenv("CHIPSIM_LOCK_WAIT_MS", "20", 1);
  std::atexit([] { chipsim_unlink(kName.c_str()); });
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  makeChip();
  damage(data, size);
  use();
  return 0;
}
