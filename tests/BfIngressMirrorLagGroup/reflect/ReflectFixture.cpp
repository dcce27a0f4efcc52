#include "ReflectFixture.h"

#include <dlfcn.h>

#include "Vel/ActivityManager.h"
#include "Vel/AllocTrackTypeInfo.h"
#include "Vel/Allocate.h"
#include "Vel/AttributeRecord.h"
#include "Vel/BuiltinType.h"

namespace BfIngressMirrorLagGroup {

namespace {

// "sess=9, dev=3": the session and device of a call on an existing handle.
std::string handleArgs(std::uint32_t session) {
  return "sess=" + std::to_string(session) + ", dev=3";
}

// "sess=7, dev=3, pipe=0x2": the session and device target of a creating call.
std::string targetArgs(std::uint32_t session) {
  return "sess=" + std::to_string(session) + ", dev=3, pipe=0x2";
}

}  // namespace

Vel::GenericValue u16(std::uint16_t v) {
  return Vel::BuiltinType<std::uint16_t>::value(v);
}

Vel::GenericValue u32(std::uint32_t v) {
  return Vel::BuiltinType<std::uint32_t>::value(v);
}

Vel::GenericValue boolean(bool v) {
  return Vel::BuiltinType<bool>::value(v);
}

Vel::GenericValue keyOf(const Vel::GenericIf& object, std::string_view name,
                        const Vel::String& text) {
  const Vel::TypeRecord* keyType = object.attributeRecord(name).keyType();
  EXPECT_NE(keyType, nullptr) << name;
  return keyType != nullptr ? keyType->valueFromText(text) : Vel::GenericValue();
}

Vel::GenericValue selectorActionType() {
  return Vel::GenericIf::valueFromText(
      "BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileType",
      "'setLagMemberSelectorActionProfileSpec'");
}

void RawRecorder::onRawAttribute(unsigned attributeNumber, const Vel::GenericValue* key) {
  std::string entry = std::to_string(attributeNumber);
  if (key != nullptr) {
    entry += ":" + Vel::GenericIf(*key).text();
    keyTypes.push_back(key->type()->name());
  }
  seen.push_back(entry);
}

void ReflectFixture::SetUp() {
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
  profile = Vel::allocate<IngressMirrorLagGroupActionProfile>("ingressMirrorLagGroup");
}

void ReflectFixture::TearDown() {
  EXPECT_EQ(chipFault(), "");
  if (sm != nullptr) {
    // Groups first, so that the members they hold may go.
    sm->groupDelAll();
    sm->actionProfileDelAll();
  }
  sm = nullptr;
  profile = nullptr;
  helper = nullptr;
  Vel::ActivityManager::instance().deleteAll();
  if (chipHandle != nullptr)
    dlclose(chipHandle);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Sm>().liveObjects(), 0u);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Sm::VelActionProfile>().liveObjects(), 0u);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Sm::VelGroup>().liveObjects(), 0u);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Sm::VelGroup::VelGroupMember>().liveObjects(), 0u);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<IngressMirrorLagGroupActionProfile>().liveObjects(), 0u);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<IngressMirrorLagGroupTableHelper>().liveObjects(), 0u);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<RawRecorder>().liveObjects(), 0u);
}

void ReflectFixture::makeSm() {
  sm = Sm::IngressMirrorLagGroupActionProfileSmIs(profile, helper, nullptr, nullptr);
  sm->sessionHandleIs(kSmSession);
}

Vel::Ptr<const IngressMirrorLagGroupBaseActionProfileSpec> ReflectFixture::selectorAction(
    std::uint16_t selector) {
  auto action = Vel::allocate<SetLagMemberSelectorActionProfileSpec>();
  action->lagMemberSelectorIs(selector);
  return action;
}

Vel::Ptr<IngressMirrorLagGroupActionProfileEntry> ReflectFixture::entryOf(std::uint32_t memberId,
                                                                          std::uint16_t selector) {
  return Vel::allocate<IngressMirrorLagGroupActionProfileEntry>(BfnTable::BfnMemberId(memberId),
                                                                selectorAction(selector));
}

Vel::Ptr<IngressMirrorLagGroupActionProfileEntry> ReflectFixture::memberIs(std::uint32_t memberId,
                                                                           std::uint16_t selector) {
  auto entry = entryOf(memberId, selector);
  profile->entryIs(entry);
  return entry;
}

Vel::Ptr<IngressMirrorLagGroupGroup> ReflectFixture::groupIs(std::uint32_t groupId, unsigned size,
                                                             std::uint32_t initialMemberId) {
  return profile->groupIs(BfnTable::BfnGroupId(groupId), size, initialMemberId,
                          setLagMemberSelectorActionProfileSpec);
}

std::uint32_t ReflectFixture::memberHandle(std::uint32_t memberId) const {
  return helper->sdkHandles()->member(BfnTable::BfnMemberId(memberId));
}

std::uint32_t ReflectFixture::groupHandle(std::uint32_t groupId) const {
  return helper->sdkHandles()->group(BfnTable::BfnGroupId(groupId));
}

void ReflectFixture::startLog() const {
  chip.logClear();
}

std::vector<std::string> ReflectFixture::logLines() {
  std::vector<std::string> lines;
  const auto& lib = chipsim_test::chipsim();
  const std::uint32_t count = lib.logCount();
  for (std::uint32_t i = 0; i < count; ++i)
    lines.emplace_back(lib.logLine(i));
  return lines;
}

std::string ReflectFixture::chipFault() {
  const char* fault = chipsim_test::chipsim().check();
  return fault != nullptr ? fault : "";
}

std::string ReflectFixture::addMemberLine(std::uint16_t selector, std::uint32_t handle) {
  return chipsim_test::kAddMember + "(" + targetArgs(kPdSession) +
         ", selector=" + std::to_string(selector) + ") = 0 mbr=" + std::to_string(handle);
}

std::string ReflectFixture::modifyMemberLine(std::uint32_t handle, std::uint16_t selector,
                                             std::uint32_t session) {
  return chipsim_test::kModifyMember + "(" + handleArgs(session) +
         ", mbr=" + std::to_string(handle) + ", selector=" + std::to_string(selector) + ") = 0";
}

std::string ReflectFixture::delMemberLine(std::uint32_t handle) {
  return chipsim_test::kDelMember + "(" + handleArgs(kSmSession) +
         ", mbr=" + std::to_string(handle) + ") = 0";
}

std::string ReflectFixture::createGroupLine(std::uint32_t size, std::uint32_t handle) {
  return chipsim_test::kCreateGroup + "(" + targetArgs(kSmSession) +
         ", size=" + std::to_string(size) + ") = 0 grp=" + std::to_string(handle);
}

std::string ReflectFixture::delGroupLine(std::uint32_t handle) {
  return chipsim_test::kDelGroup + "(" + handleArgs(kSmSession) +
         ", grp=" + std::to_string(handle) + ") = 0";
}

std::string ReflectFixture::addMemberToGroupLine(std::uint32_t group, std::uint32_t member) {
  return chipsim_test::kAddMemberToGroup + "(" + handleArgs(kSmSession) +
         ", grp=" + std::to_string(group) + ", mbr=" + std::to_string(member) + ") = 0";
}

std::string ReflectFixture::delMemberFromGroupLine(std::uint32_t group, std::uint32_t member) {
  return chipsim_test::kDelMemberFromGroup + "(" + handleArgs(kSmSession) +
         ", grp=" + std::to_string(group) + ", mbr=" + std::to_string(member) + ") = 0";
}

std::string ReflectFixture::memberStateLine(std::uint32_t group, std::uint32_t member, int state) {
  return chipsim_test::kGroupMemberStateSet + "(" + handleArgs(kSmSession) +
         ", grp=" + std::to_string(group) + ", mbr=" + std::to_string(member) +
         ", state=" + std::to_string(state) + ") = 0";
}

}  // namespace BfIngressMirrorLagGroup
