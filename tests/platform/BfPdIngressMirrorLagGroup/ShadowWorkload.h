#pragma once

#include <cstdint>
#include <map>
#include <random>

#include "ShadowChipFixture.h"

namespace shadow_test {

// A process's random programming of the chip through a recording PD
// interface object, as a plug-in would make it: keys first, then the call.
// It starts from what the shadow tables record (the objects it may use and
// delete) and keeps that up to date from the calls' answers. Every call may
// fail; a shadow table too full for an intent is passed over.
class ShadowWorkload {
 public:
  ShadowWorkload(VaultKeyManager& keys, PdIntf& pd, std::uint32_t seed);

  // Makes one random call.
  void step();

 private:
  static constexpr std::uint32_t kMemberIds = 12;
  static constexpr std::uint32_t kGroupIds = 6;
  static constexpr std::uint16_t kSessions = 12;
  static constexpr p4_pd_device_target_t kAllPipes{0, P4_PD_ALL_PIPES};

  void addMember();
  void createGroup();
  void addEntry();
  void deleteEntry();
  void deleteMember();
  void deleteGroup();
  void addMemberToGroup();
  void setOrResetDefault();

  std::uint32_t below(std::uint32_t bound) { return random_() % bound; }
  // A random element of `handles`, or 0 when it is empty.
  template <class Key>
  std::pair<Key, std::uint32_t> pick(const std::map<Key, std::uint32_t>& handles);

  VaultKeyManager& keys_;
  PdIntf& pd_;
  std::mt19937 random_;
  std::map<std::uint16_t, std::uint32_t> entries_;  // mirror session -> entry handle
  std::map<std::uint32_t, std::uint32_t> members_;  // member id -> handle
  std::map<std::uint32_t, std::uint32_t> groups_;   // group id -> handle
  VaultKeyManager::MatchSpec defaultMatch_;
};

}  // namespace shadow_test
