#pragma once

#include <Pd/KestroSwitchPd.h>

#include "ActionRef.h"
#include "ChipDamage.h"
#include "ChipHeader.h"
#include "EntryRecord.h"
#include "GroupTable.h"
#include "Journal.h"
#include "MemberTable.h"
#include "SlotPool.h"
#include "Status.h"

namespace chipsim {

// The ingressMirrorLagGroup match table: entries from a mirror session to a
// member or a selector group, unique per key within their pipe scope, and the
// table's default entry, which has a handle of its own that never changes.
//
// Pipe scope: with P4_PD_ENTRY_SCOPE_ALL_PIPES every entry covers every pipe;
// with P4_PD_ENTRY_SCOPE_SINGLE_PIPE an entry covers the pipe it was added
// with, or every pipe when added with P4_PD_ALL_PIPES. Two entries with one key
// may not cover a pipe in common.
class MatchTable {
 public:
  using MatchSpec = p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_t;

  MatchTable(ChipHeader& header, Journal& journal, ChipDamage& damage, EntryRecord* records,
             uint32_t* keyIndex, MemberTable& members, GroupTable& groups) noexcept;

  Status add(p4_pd_device_target_t target, const MatchSpec* match, ActionRef action,
             uint32_t* handle) noexcept;
  Status modify(int32_t deviceId, uint32_t handle, ActionRef action) noexcept;
  Status remove(int32_t deviceId, uint32_t handle) noexcept;
  Status setDefault(p4_pd_device_target_t target, ActionRef action, uint32_t* handle) noexcept;
  Status resetDefault(p4_pd_device_target_t target) noexcept;
  Status setProperty(int32_t deviceId, uint32_t property, uint32_t value) noexcept;
  Status read(int32_t deviceId, uint32_t handle, MatchSpec* match, uint32_t* action,
              bool* isGroup) const noexcept;
  // The handle of the entry with the match's key that covers the target's pipe.
  Status lookup(p4_pd_device_target_t target, const MatchSpec* match,
                uint32_t* handle) const noexcept;

  // The entry with `key` whose scope overlaps that of `pipe`, or nullptr: the
  // entry a packet coming in on `pipe` matches, or the one a new entry for
  // `pipe` would clash with.
  const EntryRecord* covering(uint32_t pipe, uint16_t key) const noexcept;

  // The default entry's record; inUse tells whether it is set.
  const EntryRecord& defaultEntry() const noexcept { return defaultEntry_; }
  const SlotPool<EntryRecord>& pool() const noexcept { return pool_; }
  uint32_t keyChain(uint16_t key) const noexcept { return keyIndex_[key]; }
  bool scopedPerPipe() const noexcept;

  // Whether an entry of pipe `a` and one of pipe `b` cover a pipe in common.
  bool overlap(uint32_t a, uint32_t b) const noexcept;

  // Prepares the default entry's record of an empty table.
  void clearDefault() noexcept;

 private:
  // The slot + 1 that follows `link` in the chain of `key`, checked: a link
  // outside the table, or a chain longer than the table, is damage (0 then).
  uint32_t follow(uint32_t link, uint16_t key, uint32_t& steps) const;
  EntryRecord* find(uint32_t handle) const noexcept;
  bool actionExists(ActionRef action) const noexcept;
  void addRef(ActionRef action, int delta) noexcept;
  void point(EntryRecord& entry, ActionRef action) noexcept;
  void unpoint(EntryRecord& entry) noexcept;
  void unlinkKey(EntryRecord& entry) noexcept;

  ChipHeader& header_;
  Journal& journal_;
  ChipDamage& damage_;
  uint32_t* keyIndex_;
  MemberTable& members_;
  GroupTable& groups_;
  SlotPool<EntryRecord> pool_;
  EntryRecord& defaultEntry_;
};

}  // namespace chipsim
