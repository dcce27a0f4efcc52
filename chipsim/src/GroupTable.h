#pragma once

#include <Pd/KestroSwitchPd.h>

#include <optional>
#include <span>

#include "ChipHeader.h"
#include "GroupRecord.h"
#include "GroupSlot.h"
#include "Journal.h"
#include "MemberTable.h"
#include "SlotPool.h"
#include "Status.h"

namespace chipsim {

// The action profile's selector groups: each holds up to its own maximum size
// of members, in the order they were added, each active or inactive.
class GroupTable {
 public:
  GroupTable(ChipHeader& header, Journal& journal, GroupRecord* records, GroupSlot* slots,
             MemberTable& members) noexcept;

  Status create(p4_pd_device_target_t target, uint32_t maxSize, uint32_t* handle) noexcept;
  Status remove(int32_t deviceId, uint32_t handle) noexcept;
  Status addMember(int32_t deviceId, uint32_t group, uint32_t member) noexcept;
  Status removeMember(int32_t deviceId, uint32_t group, uint32_t member) noexcept;
  Status setMemberState(int32_t deviceId, uint32_t group, uint32_t member, int32_t state) noexcept;

  GroupRecord* find(uint32_t handle) const noexcept { return pool_.find(handle); }
  void addEntryRef(GroupRecord& group, int delta) noexcept;

  // The group's members, in the order they were added.
  std::span<GroupSlot> membersOf(const GroupRecord& group) const noexcept;

  // The member handle that a packet with `hash` gets from the group: active
  // member number hash % (active members). Nothing when none is active.
  std::optional<uint32_t> pick(const GroupRecord& group, uint32_t hash) const noexcept;

  // The group after the one `after` names (0: the first group), in the chip's order.
  Status next(int32_t deviceId, uint32_t after, uint32_t* handle) const noexcept;

  const SlotPool<GroupRecord>& pool() const noexcept { return pool_; }

 private:
  // The group and member named by the handles, checked as every membership call checks them.
  Status resolve(int32_t deviceId, uint32_t group, uint32_t member, GroupRecord*& groupRecord,
                 MemberRecord*& memberRecord) const noexcept;
  GroupSlot* slotOf(const GroupRecord& group, uint32_t member) const noexcept;

  ChipHeader& header_;
  Journal& journal_;
  GroupSlot* slots_;
  MemberTable& members_;
  SlotPool<GroupRecord> pool_;
};

}  // namespace chipsim
