#include "TableFixture.h"

#include <dlfcn.h>

#include <cstdio>

#include "Pd/PipeStatus.h"
#include "Vel/Allocate.h"

namespace BfIngressMirrorLagGroup {

namespace {

template <class Map, class Out>
void copyHandles(const Map& map, Out& out) {
  for (auto slot = map.begin(); slot; ++slot)
    out.emplace_back(slot.key(), slot.value());
}

}  // namespace

void TableFixture::SetUp() {
  chipsim_config config{};
  chip.configDefault(&config);
  config.device_id = kDevice;
  ASSERT_EQ(chip.configure(&config), 0);
  ASSERT_EQ(chip.attach(nullptr), 0);
  chipHandle = dlopen(CHIPSIM_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(chipHandle, nullptr) << dlerror();
  helper = ingressMirrorLagGroupTableHelperFactory(kDevice, kPipe);
  helper->pdLibIs(CHIPSIM_LIBRARY, chipHandle, kSession);
  helper->sdkHandlesIs();
  statusManager = Vel::allocate<OrderedStatusManager>(&events);
  keyManager = Vel::allocate<OrderedKeyManager>(&events);
  table = Vel::allocate<IngressMirrorLagGroupTable>(helper, keyManager, statusManager);
}

void TableFixture::TearDown() {
  EXPECT_EQ(chipFault(), "");
  table = nullptr;
  helper = nullptr;
  statusManager = nullptr;
  keyManager = nullptr;
  if (chipHandle != nullptr)
    dlclose(chipHandle);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<IngressMirrorLagGroupTable>().liveObjects(), 0u);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<IngressMirrorLagGroupTableHelper>().liveObjects(), 0u);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<IngressMirrorLagGroupTableHandles>().liveObjects(), 0u);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<IngressMirrorLagGroupMatchSpec>().liveObjects(), 0u);
}

Vel::Ptr<IngressMirrorLagGroupTable> TableFixture::tableOnPipe(std::uint16_t pipe) {
  auto other = ingressMirrorLagGroupTableHelperFactory(kDevice, pipe);
  other->pdLibIs(CHIPSIM_LIBRARY, chipHandle, kSession);
  other->sdkHandlesIs();
  return Vel::allocate<IngressMirrorLagGroupTable>(other, nullptr, nullptr);
}

Vel::Ptr<const IngressMirrorLagGroupMatchSpec> TableFixture::matchOf(std::uint16_t session) {
  auto match = Vel::allocate<IngressMirrorLagGroupMatchSpec>();
  match->ingMirrorMdMirrorSessionIs(session);
  return match;
}

IngressMirrorLagGroupTableEntry TableFixture::memberEntry(
    const Vel::Ptr<const IngressMirrorLagGroupMatchSpec>& match, std::uint32_t memberId) {
  return IngressMirrorLagGroupTableEntry(match, {memberId, true});
}

IngressMirrorLagGroupTableEntry TableFixture::groupEntry(
    const Vel::Ptr<const IngressMirrorLagGroupMatchSpec>& match, std::uint32_t groupId) {
  return IngressMirrorLagGroupTableEntry(match, {groupId, false});
}

std::uint32_t TableFixture::memberIs(std::uint32_t memberId, std::uint16_t selector) {
  const p4_pd_kestro_switch_setLagMemberSelector_action_spec_t spec{selector};
  std::uint32_t handle = 0;
  EXPECT_EQ(chip.addMember(kSession, {kDevice, kPipe}, &spec, &handle), PIPE_STATUS_SUCCESS);
  registry().memberIs(memberId, handle);
  return handle;
}

std::uint32_t TableFixture::groupIs(std::uint32_t groupId) {
  std::uint32_t handle = 0;
  EXPECT_EQ(chip.createGroup(kSession, {kDevice, kPipe}, 4, &handle), PIPE_STATUS_SUCCESS);
  registry().groupIs(groupId, handle);
  return handle;
}

RegistrySnapshot TableFixture::snapshot() const {
  RegistrySnapshot result;
  for (auto slot = registry().entries().begin(); slot; ++slot)
    result.entries.emplace_back(slot.key().get(), slot.value());
  copyHandles(registry().members(), result.members);
  copyHandles(registry().groups(), result.groups);
  return result;
}

void TableFixture::startLog() {
  chip.logClear();
  events.clear();
  statusManager->clear();
  keyManager->clear();
}

std::vector<std::string> TableFixture::logLines() {
  std::vector<std::string> lines;
  const auto& lib = chipsim_test::chipsim();
  const std::uint32_t count = lib.logCount();
  for (std::uint32_t i = 0; i < count; ++i)
    lines.emplace_back(lib.logLine(i));
  return lines;
}

std::string TableFixture::lastLine() {
  const std::vector<std::string> lines = logLines();
  return lines.empty() ? "" : lines.back();
}

std::string TableFixture::chipFault() {
  const char* fault = chipsim_test::chipsim().check();
  return fault != nullptr ? fault : "";
}

std::string targetArgs(std::uint32_t session, std::uint8_t device, std::uint16_t pipe) {
  char text[64];
  std::snprintf(text, sizeof text, "sess=%u, dev=%u, pipe=0x%x", session, unsigned{device},
                unsigned{pipe});
  return text;
}

}  // namespace BfIngressMirrorLagGroup
