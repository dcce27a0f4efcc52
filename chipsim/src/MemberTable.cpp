#include "MemberTable.h"

namespace chipsim {

MemberTable::MemberTable(ChipHeader& header, Journal& journal, MemberRecord* records) noexcept
    : header_(header),
      journal_(journal),
      pool_(header.members, journal, records, header.config.members, header.config.members) {}

Status MemberTable::add(p4_pd_device_target_t target, const ActionSpec* spec,
                        uint32_t* handle) noexcept {
  if (!header_.acceptsTarget(target) || spec == nullptr || handle == nullptr) {
    return kInvalidArgument;
  }
  uint32_t slot = pool_.allocate();
  if (slot == pool_.kNone) {
    return kNoSpace;
  }
  MemberRecord& member = pool_.at(slot);
  journal_.set(member.selector, spec->lagMemberSelector);
  journal_.set(member.entryRefs, 0u);
  journal_.set(member.groupRefs, 0u);
  *handle = member.handle;
  return kSuccess;
}

Status MemberTable::modify(int32_t deviceId, uint32_t handle, const ActionSpec* spec) noexcept {
  if (!header_.acceptsDevice(deviceId) || spec == nullptr) {
    return kInvalidArgument;
  }
  MemberRecord* member = find(handle);
  if (member == nullptr) {
    return kNotFound;
  }
  journal_.set(member->selector, spec->lagMemberSelector);
  return kSuccess;
}

Status MemberTable::remove(int32_t deviceId, uint32_t handle) noexcept {
  if (!header_.acceptsDevice(deviceId)) {
    return kInvalidArgument;
  }
  MemberRecord* member = find(handle);
  if (member == nullptr) {
    return kNotFound;
  }
  if (member->entryRefs != 0 || member->groupRefs != 0) {
    return kInUse;
  }
  pool_.release(pool_.slotOf(*member));
  return kSuccess;
}

void MemberTable::addEntryRef(MemberRecord& member, int delta) noexcept {
  journal_.set(member.entryRefs, member.entryRefs + static_cast<uint32_t>(delta));
}

void MemberTable::addGroupRef(MemberRecord& member, int delta) noexcept {
  journal_.set(member.groupRefs, member.groupRefs + static_cast<uint32_t>(delta));
}

Status MemberTable::next(int32_t deviceId, uint32_t after, uint32_t* handle) const noexcept {
  if (!header_.acceptsDevice(deviceId) || handle == nullptr) {
    return kInvalidArgument;
  }
  return pool_.next(after, handle);
}

}  // namespace chipsim
