#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "CallControl.h"
#include "CallLog.h"
#include "ChipDamage.h"
#include "ChipHeader.h"
#include "GroupTable.h"
#include "Journal.h"
#include "MatchTable.h"
#include "MemberTable.h"
#include "SegmentLayout.h"

namespace chipsim {

// The chip: a view on its memory (a private mapping or a shared-memory
// segment), laid out as SegmentLayout says, with its tables and test state.
// The caller holds the chip's lock (ChipLock) while it uses the view.
class Chip {
 public:
  // A view on memory that holds a chip (see isChip()).
  explicit Chip(std::byte* base) noexcept;
  Chip(const Chip&) = delete;
  Chip& operator=(const Chip&) = delete;

  // Makes an empty chip of `config` at `base`, in memory of the size its
  // SegmentLayout gives. The header's magic is written last.
  static void format(std::byte* base, const chipsim_config& config) noexcept;
  // Whether the `size` bytes at `base` hold a chip made by format().
  static bool isChip(const std::byte* base, uint64_t size) noexcept;
  // Why the `size` bytes at `base`, published as a chip, are not a sound one
  // of this version; nothing when they are.
  static std::optional<std::string> segmentFault(const std::byte* base, uint64_t size);

  // Empties the chip. A reset cut short by the death of its process is
  // finished by recover().
  void clear() noexcept;
  // Brings the chip back to a coherent state after a holder of its lock died.
  void recover() noexcept;

  // The first fault of the chip's header and counts that a call would trust
  // (its make-up, the pools' counts and free-list ends, the call log's ring,
  // the journal, the call counts), checked in constant time before each call;
  // nothing when they are sound. ChipChecker checks the records too.
  std::optional<std::string> headerFault() const;
  // What the running call found damaged on its way (see ChipDamage).
  ChipDamage& damage() noexcept { return damage_; }

  ChipHeader& header() const noexcept { return header_; }
  const chipsim_config& config() const noexcept { return header_.config; }
  Journal& journal() noexcept { return journal_; }
  MatchTable& table() noexcept { return table_; }
  MemberTable& members() noexcept { return members_; }
  GroupTable& groups() noexcept { return groups_; }
  CallLog& log() noexcept { return log_; }
  CallControl& calls() noexcept { return calls_; }
  const MatchTable& table() const noexcept { return table_; }
  const MemberTable& members() const noexcept { return members_; }
  const GroupTable& groups() const noexcept { return groups_; }

  // Forwards a packet coming in on `pipe` (chipsim_lookup_on_pipe), or, for
  // P4_PD_ALL_PIPES, on the first pipe that has a match entry for it
  // (chipsim_lookup).
  int lookup(uint32_t pipe, uint16_t key, uint32_t hash, uint16_t* selector) const noexcept;

 private:
  template <class T>
  T* at(uint64_t offset) const noexcept {
    return reinterpret_cast<T*>(base_ + offset);
  }
  // The match entry a packet of `key` coming in on `pipe` hits (lookup()).
  const EntryRecord* matchEntry(uint32_t pipe, uint16_t key) const noexcept;
  // The selector a match entry or the default entry gives, or nothing.
  bool selectorOf(const EntryRecord& entry, uint32_t hash, uint16_t* selector) const noexcept;

  std::byte* base_;
  ChipHeader& header_;
  // The make-up as the chip was attached: the layout rests on it.
  chipsim_config config_;
  SegmentLayout layout_;
  ChipDamage damage_;
  Journal journal_;
  MemberTable members_;
  GroupTable groups_;
  MatchTable table_;
  CallLog log_;
  CallControl calls_;
};

}  // namespace chipsim
