#pragma once

#include <Pd/KestroSwitchPd.h>

#include "ChipHeader.h"
#include "Journal.h"
#include "MemberRecord.h"
#include "SlotPool.h"
#include "Status.h"

namespace chipsim {

// The action profile's members, each carrying a LAG member selector.
class MemberTable {
 public:
  using ActionSpec = p4_pd_kestro_switch_setLagMemberSelector_action_spec_t;

  MemberTable(ChipHeader& header, Journal& journal, MemberRecord* records) noexcept;

  Status add(p4_pd_device_target_t target, const ActionSpec* spec, uint32_t* handle) noexcept;
  Status modify(int32_t deviceId, uint32_t handle, const ActionSpec* spec) noexcept;
  Status remove(int32_t deviceId, uint32_t handle) noexcept;

  MemberRecord* find(uint32_t handle) const noexcept { return pool_.find(handle); }
  // Counts a reference from an entry or a group in or out.
  void addEntryRef(MemberRecord& member, int delta) noexcept;
  void addGroupRef(MemberRecord& member, int delta) noexcept;

  // The member after the one `after` names (0: the first member), in the chip's order.
  Status next(int32_t deviceId, uint32_t after, uint32_t* handle) const noexcept;

  const SlotPool<MemberRecord>& pool() const noexcept { return pool_; }

 private:
  ChipHeader& header_;
  Journal& journal_;
  SlotPool<MemberRecord> pool_;
};

}  // namespace chipsim
