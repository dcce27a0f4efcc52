#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "BfIngressMirrorLagGroup/BfIngressMirrorLagGroup.h"
#include "support/ChipsimLibrary.h"
#include "support/PdFunctionNames.h"

namespace BfIngressMirrorLagGroup {

// What the status manager and the key manager were told, in order, each with
// the number of chip calls logged by then: "initAdtStatus 5 @0" is
// initAdtStatus for member 5 before any PD call, "allocAnon 5 @0" the key
// reserved for member or group 5.
using ManagerEvents = std::vector<std::string>;

// A status manager that also notes every call in a shared event list.
class EventStatusManager : public BfnTableStatusManager::StatusManager {
 public:
  explicit EventStatusManager(ManagerEvents* events) : events_(events) {}
  void initAdtStatus(BfnTable::BfnMemberId memberId) override;
  void initSelGroupStatus(BfnTable::BfnGroupId groupId) override;
  void resyncSelAdtStatus() override;

 private:
  ManagerEvents* events_;
};

// An in-process key manager that also notes its allocAnon calls.
class EventKeyManager : public MbbVaultKey::VaultKeyManager {
 public:
  explicit EventKeyManager(ManagerEvents* events) : events_(events) {}
  EntryKey allocAnon(std::uint32_t n) override;

 private:
  ManagerEvents* events_;
};

// The action-profile state machine on device 3, pipe 2, bound to a fresh
// private chip through the chip model's library (loaded with dlopen as a host
// loads a PD library). The PD object's session is 7 and the state machine's
// sessionHandle 9, so that every logged call shows which one it took. The
// managers note every call. Each test ends by checking that the chip is
// coherent; the state machine is dropped then (deleting what is left in the
// chip), and no reactor, entity or helper may be left alive.
class ActionProfileFixture : public testing::Test {
 protected:
  using Sm = IngressMirrorLagGroupActionProfileSm;

  static constexpr std::uint8_t kDevice = 3;
  static constexpr std::uint16_t kPipe = 2;
  static constexpr std::uint32_t kPdSession = 7;
  static constexpr std::uint32_t kSmSession = 9;

  void SetUp() override;
  void TearDown() override;

  // Makes the state machine on `entity` (the fixture's profile by default).
  void makeSm();
  void makeSmOn(const Vel::Ptr<IngressMirrorLagGroupActionProfile>& entity);

  // A setLagMemberSelector action spec, and an entry holding one.
  static Vel::Ptr<const IngressMirrorLagGroupBaseActionProfileSpec> selectorAction(
      std::uint16_t selector);
  static Vel::Ptr<IngressMirrorLagGroupActionProfileEntry> entryOf(std::uint32_t memberId,
                                                                   std::uint16_t selector);
  // Configures member `memberId` with `selector` in the profile.
  Vel::Ptr<IngressMirrorLagGroupActionProfileEntry> memberIs(std::uint32_t memberId,
                                                             std::uint16_t selector);
  // Configures group `groupId` of `size` with its initial member.
  Vel::Ptr<IngressMirrorLagGroupGroup> groupIs(std::uint32_t groupId, unsigned size,
                                               std::uint32_t initialMemberId);

  IngressMirrorLagGroupTableHandles& registry() const { return *helper->sdkHandles(); }
  std::uint32_t memberHandle(std::uint32_t memberId) const {
    return registry().member(BfnTable::BfnMemberId(memberId));
  }
  std::uint32_t groupHandle(std::uint32_t groupId) const {
    return registry().group(BfnTable::BfnGroupId(groupId));
  }
  // The registry's members and groups as (id, handle) pairs, in its order.
  std::vector<std::pair<std::uint32_t, std::uint32_t>> registryMembers() const;
  std::vector<std::pair<std::uint32_t, std::uint32_t>> registryGroups() const;

  // Forgets the chip's call log and the managers' events.
  void startLog();
  static std::vector<std::string> logLines();
  // The chip's check: empty when the chip is coherent.
  static std::string chipFault();

  // Log lines of the member and group PD calls, as the chip writes them.
  static std::string addMemberLine(std::uint16_t selector, std::uint32_t handle);
  static std::string modifyMemberLine(std::uint32_t handle, std::uint16_t selector);
  static std::string delMemberLine(std::uint32_t handle);
  static std::string createGroupLine(std::uint32_t size, std::uint32_t handle);
  static std::string delGroupLine(std::uint32_t handle);
  static std::string addMemberToGroupLine(std::uint32_t group, std::uint32_t member);
  static std::string delMemberFromGroupLine(std::uint32_t group, std::uint32_t member);
  static std::string memberStateLine(std::uint32_t group, std::uint32_t member, int state);

  const chipsim_test::ChipsimLibrary& chip = chipsim_test::chipsim();
  void* chipHandle = nullptr;
  ManagerEvents events;
  Vel::Ptr<IngressMirrorLagGroupTableHelper> helper;
  Vel::Ptr<EventStatusManager> statusManager;
  Vel::Ptr<EventKeyManager> keyManager;
  Vel::Ptr<IngressMirrorLagGroupActionProfile> profile;
  Vel::Ptr<Sm> sm;
};

}  // namespace BfIngressMirrorLagGroup
