#include "ActionProfileFixture.h"

#include <dlfcn.h>

#include "Vel/Allocate.h"

namespace BfIngressMirrorLagGroup {

namespace {

std::string atCallCount() {
  return " @" + std::to_string(chipsim_test::chipsim().logCount());
}

template <class Map>
std::vector<std::pair<std::uint32_t, std::uint32_t>> idsAndHandles(const Map& map) {
  std::vector<std::pair<std::uint32_t, std::uint32_t>> result;
  for (auto slot = map.begin(); slot; ++slot)
    result.emplace_back(slot.key().value(), slot.value());
  return result;
}

// "sess=9, dev=3": the session and device of a call on an existing handle.
std::string handleArgs(std::uint32_t session) {
  return "sess=" + std::to_string(session) + ", dev=3";
}

// "sess=7, dev=3, pipe=0x2": the session and device target of a creating call.
std::string targetArgs(std::uint32_t session) {
  return "sess=" + std::to_string(session) + ", dev=3, pipe=0x2";
}

}  // namespace

void EventStatusManager::initAdtStatus(BfnTable::BfnMemberId memberId) {
  events_->push_back("initAdtStatus " + std::to_string(memberId.value()) + atCallCount());
  StatusManager::initAdtStatus(memberId);
}

void EventStatusManager::initSelGroupStatus(BfnTable::BfnGroupId groupId) {
  events_->push_back("initSelGroupStatus " + std::to_string(groupId.value()) + atCallCount());
  StatusManager::initSelGroupStatus(groupId);
}

void EventStatusManager::resyncSelAdtStatus() {
  events_->push_back("resyncSelAdtStatus" + atCallCount());
  StatusManager::resyncSelAdtStatus();
}

EventKeyManager::EntryKey EventKeyManager::allocAnon(std::uint32_t n) {
  events_->push_back("allocAnon " + std::to_string(n) + atCallCount());
  return VaultKeyManager::allocAnon(n);
}

void ActionProfileFixture::SetUp() {
  chipsim_config config{};
  chip.configDefault(&config);
  config.device_id = kDevice;
  ASSERT_EQ(chip.configure(&config), 0);
  ASSERT_EQ(chip.attach(nullptr), 0);
  chipHandle = dlopen(CHIPSIM_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(chipHandle, nullptr) << dlerror();
  helper = ingressMirrorLagGroupTableHelperFactory(kDevice, kPipe);
  helper->pdLibIs(CHIPSIM_LIBRARY, chipHandle, kPdSession);
  helper->sdkHandlesIs();
  statusManager = Vel::allocate<EventStatusManager>(&events);
  keyManager = Vel::allocate<EventKeyManager>(&events);
  profile = Vel::allocate<IngressMirrorLagGroupActionProfile>("ingressMirrorLagGroup");
}

void ActionProfileFixture::TearDown() {
  EXPECT_EQ(chipFault(), "");
  if (sm != nullptr) {
    // Groups first, so that the members they hold may go.
    sm->groupDelAll();
    sm->actionProfileDelAll();
  }
  sm = nullptr;
  profile = nullptr;
  helper = nullptr;
  statusManager = nullptr;
  keyManager = nullptr;
  if (chipHandle != nullptr)
    dlclose(chipHandle);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Sm>().liveObjects(), 0u);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Sm::VelActionProfile>().liveObjects(), 0u);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Sm::VelGroup>().liveObjects(), 0u);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Sm::VelGroup::VelGroupMember>().liveObjects(), 0u);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Sm::VelIngressMirrorLagGroupActionProfile>().liveObjects(),
            0u);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<IngressMirrorLagGroupActionProfile>().liveObjects(), 0u);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<IngressMirrorLagGroupTableHelper>().liveObjects(), 0u);
}

void ActionProfileFixture::makeSm() {
  makeSmOn(profile);
}

void ActionProfileFixture::makeSmOn(const Vel::Ptr<IngressMirrorLagGroupActionProfile>& entity) {
  sm = Sm::IngressMirrorLagGroupActionProfileSmIs(entity, helper, keyManager, statusManager);
  sm->sessionHandleIs(kSmSession);
}

Vel::Ptr<const IngressMirrorLagGroupBaseActionProfileSpec> ActionProfileFixture::selectorAction(
    std::uint16_t selector) {
  auto action = Vel::allocate<SetLagMemberSelectorActionProfileSpec>();
  action->lagMemberSelectorIs(selector);
  return action;
}

Vel::Ptr<IngressMirrorLagGroupActionProfileEntry> ActionProfileFixture::entryOf(
    std::uint32_t memberId, std::uint16_t selector) {
  return Vel::allocate<IngressMirrorLagGroupActionProfileEntry>(BfnTable::BfnMemberId(memberId),
                                                                selectorAction(selector));
}

Vel::Ptr<IngressMirrorLagGroupActionProfileEntry> ActionProfileFixture::memberIs(
    std::uint32_t memberId, std::uint16_t selector) {
  auto entry = entryOf(memberId, selector);
  profile->entryIs(entry);
  return entry;
}

Vel::Ptr<IngressMirrorLagGroupGroup> ActionProfileFixture::groupIs(std::uint32_t groupId,
                                                                   unsigned size,
                                                                   std::uint32_t initialMemberId) {
  return profile->groupIs(BfnTable::BfnGroupId(groupId), size, initialMemberId,
                          setLagMemberSelectorActionProfileSpec);
}

std::vector<std::pair<std::uint32_t, std::uint32_t>> ActionProfileFixture::registryMembers() const {
  return idsAndHandles(registry().members());
}

std::vector<std::pair<std::uint32_t, std::uint32_t>> ActionProfileFixture::registryGroups() const {
  return idsAndHandles(registry().groups());
}

void ActionProfileFixture::startLog() {
  chip.logClear();
  events.clear();
  statusManager->clear();
}

std::vector<std::string> ActionProfileFixture::logLines() {
  std::vector<std::string> lines;
  const auto& lib = chipsim_test::chipsim();
  const std::uint32_t count = lib.logCount();
  for (std::uint32_t i = 0; i < count; ++i)
    lines.emplace_back(lib.logLine(i));
  return lines;
}

std::string ActionProfileFixture::chipFault() {
  const char* fault = chipsim_test::chipsim().check();
  return fault != nullptr ? fault : "";
}

std::string ActionProfileFixture::addMemberLine(std::uint16_t selector, std::uint32_t handle) {
  return chipsim_test::kAddMember + "(" + targetArgs(kPdSession) +
         ", selector=" + std::to_string(selector) + ") = 0 mbr=" + std::to_string(handle);
}

std::string ActionProfileFixture::modifyMemberLine(std::uint32_t handle, std::uint16_t selector) {
  return chipsim_test::kModifyMember + "(" + handleArgs(kSmSession) +
         ", mbr=" + std::to_string(handle) + ", selector=" + std::to_string(selector) + ") = 0";
}

std::string ActionProfileFixture::delMemberLine(std::uint32_t handle) {
  return chipsim_test::kDelMember + "(" + handleArgs(kSmSession) +
         ", mbr=" + std::to_string(handle) + ") = 0";
}

std::string ActionProfileFixture::createGroupLine(std::uint32_t size, std::uint32_t handle) {
  return chipsim_test::kCreateGroup + "(" + targetArgs(kSmSession) +
         ", size=" + std::to_string(size) + ") = 0 grp=" + std::to_string(handle);
}

std::string ActionProfileFixture::delGroupLine(std::uint32_t handle) {
  return chipsim_test::kDelGroup + "(" + handleArgs(kSmSession) +
         ", grp=" + std::to_string(handle) + ") = 0";
}

std::string ActionProfileFixture::addMemberToGroupLine(std::uint32_t group, std::uint32_t member) {
  return chipsim_test::kAddMemberToGroup + "(" + handleArgs(kSmSession) +
         ", grp=" + std::to_string(group) + ", mbr=" + std::to_string(member) + ") = 0";
}

std::string ActionProfileFixture::delMemberFromGroupLine(std::uint32_t group,
                                                         std::uint32_t member) {
  return chipsim_test::kDelMemberFromGroup + "(" + handleArgs(kSmSession) +
         ", grp=" + std::to_string(group) + ", mbr=" + std::to_string(member) + ") = 0";
}

std::string ActionProfileFixture::memberStateLine(std::uint32_t group, std::uint32_t member,
                                                  int state) {
  return chipsim_test::kGroupMemberStateSet + "(" + handleArgs(kSmSession) +
         ", grp=" + std::to_string(group) + ", mbr=" + std::to_string(member) +
         ", state=" + std::to_string(state) + ") = 0";
}

}  // namespace BfIngressMirrorLagGroup
