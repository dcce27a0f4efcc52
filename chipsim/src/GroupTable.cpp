#include "GroupTable.h"

namespace chipsim {

GroupTable::GroupTable(ChipHeader& header, Journal& journal, GroupRecord* records, GroupSlot* slots,
                       MemberTable& members) noexcept
    : header_(header),
      journal_(journal),
      slots_(slots),
      members_(members),
      pool_(header.groups, journal, records, header.config.groups, header.config.groups) {}

Status GroupTable::create(p4_pd_device_target_t target, uint32_t maxSize,
                          uint32_t* handle) noexcept {
  if (!header_.acceptsTarget(target) || maxSize == 0 || maxSize > header_.config.max_group_size ||
      handle == nullptr) {
    return kInvalidArgument;
  }
  uint32_t slot = pool_.allocate();
  if (slot == pool_.kNone) {
    return kNoSpace;
  }
  GroupRecord& group = pool_.at(slot);
  journal_.set(group.maxSize, maxSize);
  journal_.set(group.size, 0u);
  journal_.set(group.entryRefs, 0u);
  *handle = group.handle;
  return kSuccess;
}

Status GroupTable::remove(int32_t deviceId, uint32_t handle) noexcept {
  if (!header_.acceptsDevice(deviceId)) {
    return kInvalidArgument;
  }
  GroupRecord* group = find(handle);
  if (group == nullptr) {
    return kNotFound;
  }
  if (group->entryRefs != 0) {
    return kInUse;
  }
  for (const GroupSlot& slot : membersOf(*group)) {
    if (MemberRecord* member = members_.find(slot.member)) {
      members_.addGroupRef(*member, -1);
    }
  }
  journal_.set(group->size, 0u);
  pool_.release(pool_.slotOf(*group));
  return kSuccess;
}

Status GroupTable::resolve(int32_t deviceId, uint32_t group, uint32_t member,
                           GroupRecord*& groupRecord, MemberRecord*& memberRecord) const noexcept {
  if (!header_.acceptsDevice(deviceId)) {
    return kInvalidArgument;
  }
  groupRecord = find(group);
  memberRecord = members_.find(member);
  return groupRecord != nullptr && memberRecord != nullptr ? kSuccess : kNotFound;
}

Status GroupTable::addMember(int32_t deviceId, uint32_t group, uint32_t member) noexcept {
  GroupRecord* groupRecord;
  MemberRecord* memberRecord;
  if (Status status = resolve(deviceId, group, member, groupRecord, memberRecord)) {
    return status;
  }
  if (slotOf(*groupRecord, member) != nullptr) {
    return kAlreadyExists;
  }
  if (groupRecord->size >= groupRecord->maxSize) {
    return kNoSpace;
  }
  GroupSlot& slot = slots_[pool_.slotOf(*groupRecord) * uint64_t{header_.config.max_group_size} +
                           groupRecord->size];
  journal_.set(slot.member, member);
  journal_.set(slot.inactive, uint8_t{P4_PD_GROUP_MEMBER_ACTIVE});
  journal_.set(groupRecord->size, groupRecord->size + 1);
  members_.addGroupRef(*memberRecord, +1);
  return kSuccess;
}

Status GroupTable::removeMember(int32_t deviceId, uint32_t group, uint32_t member) noexcept {
  GroupRecord* groupRecord;
  MemberRecord* memberRecord;
  if (Status status = resolve(deviceId, group, member, groupRecord, memberRecord)) {
    return status;
  }
  GroupSlot* slot = slotOf(*groupRecord, member);
  if (slot == nullptr) {
    return kNotFound;
  }
  // Closes the gap, so that the members stay in the order they were added.
  std::span<GroupSlot> slots = membersOf(*groupRecord);
  for (GroupSlot* next = slot + 1; next != slots.data() + slots.size(); ++slot, ++next) {
    journal_.set(slot->member, next->member);
    journal_.set(slot->inactive, next->inactive);
  }
  journal_.set(groupRecord->size, groupRecord->size - 1);
  members_.addGroupRef(*memberRecord, -1);
  return kSuccess;
}

Status GroupTable::setMemberState(int32_t deviceId, uint32_t group, uint32_t member,
                                  int32_t state) noexcept {
  if (state != P4_PD_GROUP_MEMBER_ACTIVE && state != P4_PD_GROUP_MEMBER_INACTIVE) {
    return kInvalidArgument;
  }
  GroupRecord* groupRecord;
  MemberRecord* memberRecord;
  if (Status status = resolve(deviceId, group, member, groupRecord, memberRecord)) {
    return status;
  }
  GroupSlot* slot = slotOf(*groupRecord, member);
  if (slot == nullptr) {
    return kNotFound;
  }
  journal_.set(slot->inactive, static_cast<uint8_t>(state));
  return kSuccess;
}

void GroupTable::addEntryRef(GroupRecord& group, int delta) noexcept {
  journal_.set(group.entryRefs, group.entryRefs + static_cast<uint32_t>(delta));
}

std::span<GroupSlot> GroupTable::membersOf(const GroupRecord& group) const noexcept {
  uint32_t size = group.size <= header_.config.max_group_size ? group.size : 0;
  return {slots_ + pool_.slotOf(group) * uint64_t{header_.config.max_group_size}, size};
}

GroupSlot* GroupTable::slotOf(const GroupRecord& group, uint32_t member) const noexcept {
  for (GroupSlot& slot : membersOf(group)) {
    if (slot.member == member) {
      return &slot;
    }
  }
  return nullptr;
}

std::optional<uint32_t> GroupTable::pick(const GroupRecord& group, uint32_t hash) const noexcept {
  uint32_t active = 0;
  for (const GroupSlot& slot : membersOf(group)) {
    active += slot.inactive == P4_PD_GROUP_MEMBER_ACTIVE;
  }
  if (active == 0) {
    return std::nullopt;
  }
  uint32_t wanted = hash % active;
  for (const GroupSlot& slot : membersOf(group)) {
    if (slot.inactive == P4_PD_GROUP_MEMBER_ACTIVE && wanted-- == 0) {
      return slot.member;
    }
  }
  return std::nullopt;
}

Status GroupTable::next(int32_t deviceId, uint32_t after, uint32_t* handle) const noexcept {
  if (!header_.acceptsDevice(deviceId) || handle == nullptr) {
    return kInvalidArgument;
  }
  return pool_.next(after, handle);
}

}  // namespace chipsim
