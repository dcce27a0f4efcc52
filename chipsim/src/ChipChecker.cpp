#include "ChipChecker.h"

#include <set>

#include "SegmentLayout.h"

namespace chipsim {

void ChipChecker::fail(std::string fault) {
  if (!fault_) {
    fault_ = std::move(fault);
  }
}

std::optional<std::string> ChipChecker::check() {
  checkHeader();
  checkPool("entries", chip_.table().pool(), chip_.config().entries + 1);
  checkPool("members", chip_.members().pool(), chip_.config().members);
  checkPool("groups", chip_.groups().pool(), chip_.config().groups);
  if (!fault_) {
    checkEntries();
    checkKeyIndex();
    checkGroups();
    checkReferences();
  }
  return fault_;
}

void ChipChecker::checkHeader() {
  const ChipHeader& header = chip_.header();
  if (header.journalCount != 0 || header.resetting != 0) {
    fail("a call was left unfinished");
  }
  if (header.entryScope != P4_PD_ENTRY_SCOPE_ALL_PIPES &&
      header.entryScope != P4_PD_ENTRY_SCOPE_SINGLE_PIPE) {
    fail("bad entry scope " + std::to_string(header.entryScope));
  }
  if (header.logCount > header.config.log_lines || header.logHead > header.config.log_lines) {
    fail("call log out of bounds");
  }
}

template <class Record>
void ChipChecker::checkPool(const char* what, const SlotPool<Record>& pool, uint32_t modulus) {
  const ChipHeader::Pool& state = pool.state();
  std::string name = what;
  if (state.watermark > pool.capacity() || state.used > state.watermark) {
    fail(name + ": used " + std::to_string(state.used) + " of watermark " +
         std::to_string(state.watermark));
    return;
  }
  uint32_t live = 0;
  for (uint32_t slot = 0; slot < state.watermark; ++slot) {
    const Record& record = pool.at(slot);
    if (record.inUse) {
      ++live;
      if (record.handle == 0 || (record.handle - 1) % modulus != slot) {
        fail(name + ": slot " + std::to_string(slot) + " has handle " +
             std::to_string(record.handle));
      }
    }
  }
  if (live != state.used) {
    fail(name + ": " + std::to_string(live) + " live, counted " + std::to_string(state.used));
  }
  uint32_t free = 0;
  uint32_t last = 0;
  for (uint32_t next = state.freeHead; next != 0; next = pool.at(next - 1).nextFree) {
    if (next > state.watermark || pool.at(next - 1).inUse || ++free > state.watermark) {
      fail(name + ": broken free list");
      return;
    }
    last = next;
  }
  if (free != state.watermark - state.used || last != state.freeTail) {
    fail(name + ": free list holds " + std::to_string(free) + " slots");
  }
}

void ChipChecker::checkEntries() {
  const MatchTable& table = chip_.table();
  auto checkTarget = [&](const EntryRecord& entry) {
    bool exists = entry.isGroup ? chip_.groups().find(entry.target) != nullptr
                                : chip_.members().find(entry.target) != nullptr;
    if (!exists || !chip_.header().acceptsPipe(entry.pipe)) {
      fail("entry " + std::to_string(entry.handle) + " points at nothing");
    }
  };
  table.pool().forEach(checkTarget);
  const EntryRecord& fallback = table.defaultEntry();
  if (fallback.handle != chip_.config().entries + 1) {
    fail("default entry has handle " + std::to_string(fallback.handle));
  }
  if (fallback.inUse) {
    checkTarget(fallback);
  }
}

void ChipChecker::checkKeyIndex() {
  const MatchTable& table = chip_.table();
  uint32_t chained = 0;
  for (uint32_t key = 0; key < SegmentLayout::kKeys; ++key) {
    std::vector<const EntryRecord*> chain;
    for (uint32_t next = table.keyChain(static_cast<uint16_t>(key)); next != 0;) {
      if (next > table.pool().state().watermark || chained++ > table.pool().used()) {
        fail("broken key chain of " + std::to_string(key));
        return;
      }
      const EntryRecord& entry = table.pool().at(next - 1);
      if (!entry.inUse || entry.key != key) {
        fail("key chain of " + std::to_string(key) + " holds a stranger");
      }
      for (const EntryRecord* other : chain) {
        if (table.overlap(other->pipe, entry.pipe)) {
          fail("key " + std::to_string(key) + " twice in one pipe scope");
        }
      }
      chain.push_back(&entry);
      next = entry.nextSameKey;
    }
  }
  if (chained != table.pool().used()) {
    fail("key index holds " + std::to_string(chained) + " entries");
  }
}

void ChipChecker::checkGroups() {
  const GroupTable& groups = chip_.groups();
  groups.pool().forEach([&](const GroupRecord& group) {
    std::string name = "group " + std::to_string(group.handle);
    if (group.maxSize == 0 || group.maxSize > chip_.config().max_group_size ||
        group.size > group.maxSize) {
      fail(name + ": size " + std::to_string(group.size) + " of " + std::to_string(group.maxSize));
      return;
    }
    std::set<uint32_t> seen;
    for (const GroupSlot& slot : groups.membersOf(group)) {
      if (chip_.members().find(slot.member) == nullptr || !seen.insert(slot.member).second ||
          slot.inactive > P4_PD_GROUP_MEMBER_INACTIVE) {
        fail(name + ": bad member " + std::to_string(slot.member));
      }
    }
  });
}

void ChipChecker::checkReferences() {
  std::vector<uint32_t> memberEntries(chip_.config().members);
  std::vector<uint32_t> memberGroups(chip_.config().members);
  std::vector<uint32_t> groupEntries(chip_.config().groups);
  const MemberTable& members = chip_.members();
  const GroupTable& groups = chip_.groups();
  auto countEntry = [&](const EntryRecord& entry) {
    if (entry.isGroup) {
      if (const GroupRecord* group = groups.find(entry.target)) {
        ++groupEntries[groups.pool().slotOf(*group)];
      }
    } else if (const MemberRecord* member = members.find(entry.target)) {
      ++memberEntries[members.pool().slotOf(*member)];
    }
  };
  chip_.table().pool().forEach(countEntry);
  if (chip_.table().defaultEntry().inUse) {
    countEntry(chip_.table().defaultEntry());
  }
  groups.pool().forEach([&](const GroupRecord& group) {
    for (const GroupSlot& slot : groups.membersOf(group)) {
      if (const MemberRecord* member = members.find(slot.member)) {
        ++memberGroups[members.pool().slotOf(*member)];
      }
    }
  });
  members.pool().forEach([&](const MemberRecord& member) {
    uint32_t slot = members.pool().slotOf(member);
    if (member.entryRefs != memberEntries[slot] || member.groupRefs != memberGroups[slot]) {
      fail("member " + std::to_string(member.handle) + " has wrong reference counts");
    }
  });
  groups.pool().forEach([&](const GroupRecord& group) {
    if (group.entryRefs != groupEntries[groups.pool().slotOf(group)]) {
      fail("group " + std::to_string(group.handle) + " has a wrong reference count");
    }
  });
}

}  // namespace chipsim
