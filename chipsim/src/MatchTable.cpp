#include "MatchTable.h"

#include <string>

namespace chipsim {

MatchTable::MatchTable(ChipHeader& header, Journal& journal, ChipDamage& damage,
                       EntryRecord* records, uint32_t* keyIndex, MemberTable& members,
                       GroupTable& groups) noexcept
    : header_(header),
      journal_(journal),
      damage_(damage),
      keyIndex_(keyIndex),
      members_(members),
      groups_(groups),
      pool_(header.entries, journal, records, header.config.entries, header.config.entries + 1),
      defaultEntry_(records[header.config.entries]) {}

void MatchTable::clearDefault() noexcept {
  defaultEntry_ = EntryRecord{};
  defaultEntry_.handle = header_.config.entries + 1;
}

bool MatchTable::scopedPerPipe() const noexcept {
  return header_.entryScope == P4_PD_ENTRY_SCOPE_SINGLE_PIPE;
}

bool MatchTable::overlap(uint32_t a, uint32_t b) const noexcept {
  return !scopedPerPipe() || a == b || a == P4_PD_ALL_PIPES || b == P4_PD_ALL_PIPES;
}

EntryRecord* MatchTable::find(uint32_t handle) const noexcept {
  if (handle == defaultEntry_.handle) {
    return defaultEntry_.inUse ? &defaultEntry_ : nullptr;
  }
  return pool_.find(handle);
}

bool MatchTable::actionExists(ActionRef action) const noexcept {
  return action.isGroup ? groups_.find(action.handle) != nullptr
                        : members_.find(action.handle) != nullptr;
}

void MatchTable::addRef(ActionRef action, int delta) noexcept {
  if (action.isGroup) {
    if (GroupRecord* group = groups_.find(action.handle)) {
      groups_.addEntryRef(*group, delta);
    }
  } else if (MemberRecord* member = members_.find(action.handle)) {
    members_.addEntryRef(*member, delta);
  }
}

void MatchTable::point(EntryRecord& entry, ActionRef action) noexcept {
  addRef(action, +1);
  journal_.set(entry.target, action.handle);
  journal_.set(entry.isGroup, uint8_t{action.isGroup});
}

void MatchTable::unpoint(EntryRecord& entry) noexcept {
  addRef({entry.target, entry.isGroup != 0}, -1);
}

uint32_t MatchTable::follow(uint32_t link, uint16_t key, uint32_t& steps) const {
  if (link > pool_.capacity() || ++steps > pool_.capacity()) {
    damage_.found(
        "the key chain of mirror session " + std::to_string(key) +
        (link > pool_.capacity() ? " links to slot " + std::to_string(link) : " runs in a circle"));
    return 0;
  }
  return link;
}

const EntryRecord* MatchTable::covering(uint32_t pipe, uint16_t key) const noexcept {
  uint32_t steps = 0;
  for (uint32_t next = follow(keyIndex_[key], key, steps); next != 0;) {
    const EntryRecord& entry = pool_.at(next - 1);
    if (!entry.inUse || entry.key != key) {
      damage_.found("the key chain of mirror session " + std::to_string(key) +
                    " holds an entry that is not of it");
      return nullptr;
    }
    if (overlap(entry.pipe, pipe)) {
      return &entry;
    }
    next = follow(entry.nextSameKey, key, steps);
  }
  return nullptr;
}

Status MatchTable::add(p4_pd_device_target_t target, const MatchSpec* match, ActionRef action,
                       uint32_t* handle) noexcept {
  if (!header_.acceptsTarget(target) || match == nullptr || handle == nullptr) {
    return kInvalidArgument;
  }
  if (!actionExists(action)) {
    return kNotFound;
  }
  uint16_t key = match->ingMirrorMdMirrorSession;
  if (covering(target.pipe_id, key) != nullptr) {
    return kAlreadyExists;
  }
  uint32_t slot = pool_.allocate();
  if (slot == pool_.kNone) {
    return kNoSpace;
  }
  EntryRecord& entry = pool_.at(slot);
  journal_.set(entry.key, key);
  journal_.set(entry.pipe, target.pipe_id);
  point(entry, action);
  journal_.set(entry.nextSameKey, keyIndex_[key]);
  journal_.set(keyIndex_[key], slot + 1);
  *handle = entry.handle;
  return kSuccess;
}

Status MatchTable::modify(int32_t deviceId, uint32_t handle, ActionRef action) noexcept {
  if (!header_.acceptsDevice(deviceId)) {
    return kInvalidArgument;
  }
  EntryRecord* entry = find(handle);
  if (entry == nullptr || !actionExists(action)) {
    return kNotFound;
  }
  unpoint(*entry);
  point(*entry, action);
  return kSuccess;
}

void MatchTable::unlinkKey(EntryRecord& entry) noexcept {
  uint32_t slot = pool_.slotOf(entry) + 1;
  uint32_t* link = &keyIndex_[entry.key];
  uint32_t steps = 0;
  while (follow(*link, entry.key, steps) != 0 && *link != slot) {
    link = &pool_.at(*link - 1).nextSameKey;
  }
  if (damage_.fault()) {
    return;
  }
  if (*link == slot) {
    journal_.set(*link, entry.nextSameKey);
  }
  journal_.set(entry.nextSameKey, 0u);
}

Status MatchTable::remove(int32_t deviceId, uint32_t handle) noexcept {
  if (!header_.acceptsDevice(deviceId) || (handle == defaultEntry_.handle)) {
    return kInvalidArgument;  // the default entry is reset, not deleted
  }
  EntryRecord* entry = pool_.find(handle);
  if (entry == nullptr) {
    return kNotFound;
  }
  unpoint(*entry);
  unlinkKey(*entry);
  pool_.release(pool_.slotOf(*entry));
  return kSuccess;
}

Status MatchTable::setDefault(p4_pd_device_target_t target, ActionRef action,
                              uint32_t* handle) noexcept {
  if (!header_.acceptsTarget(target) || handle == nullptr) {
    return kInvalidArgument;
  }
  if (!actionExists(action)) {
    return kNotFound;
  }
  if (defaultEntry_.inUse) {
    unpoint(defaultEntry_);
  }
  journal_.set(defaultEntry_.pipe, target.pipe_id);
  point(defaultEntry_, action);
  journal_.set(defaultEntry_.inUse, uint8_t{1});
  *handle = defaultEntry_.handle;
  return kSuccess;
}

Status MatchTable::resetDefault(p4_pd_device_target_t target) noexcept {
  if (!header_.acceptsTarget(target)) {
    return kInvalidArgument;
  }
  if (defaultEntry_.inUse) {
    unpoint(defaultEntry_);
    journal_.set(defaultEntry_.inUse, uint8_t{0});
  }
  return kSuccess;
}

Status MatchTable::setProperty(int32_t deviceId, uint32_t property, uint32_t value) noexcept {
  if (!header_.acceptsDevice(deviceId) || property != P4_PD_TABLE_PROPERTY_ENTRY_SCOPE ||
      (value != P4_PD_ENTRY_SCOPE_ALL_PIPES && value != P4_PD_ENTRY_SCOPE_SINGLE_PIPE)) {
    return kInvalidArgument;
  }
  if (value != header_.entryScope && pool_.used() != 0) {
    return kInvalidArgument;  // the scope of a table holding entries cannot change
  }
  journal_.set(header_.entryScope, value);
  return kSuccess;
}

Status MatchTable::read(int32_t deviceId, uint32_t handle, MatchSpec* match, uint32_t* action,
                        bool* isGroup) const noexcept {
  if (!header_.acceptsDevice(deviceId) || match == nullptr || action == nullptr ||
      isGroup == nullptr) {
    return kInvalidArgument;
  }
  const EntryRecord* entry = find(handle);
  if (entry == nullptr) {
    return kNotFound;
  }
  match->ingMirrorMdMirrorSession = entry->key;
  *action = entry->target;
  *isGroup = entry->isGroup != 0;
  return kSuccess;
}

Status MatchTable::lookup(p4_pd_device_target_t target, const MatchSpec* match,
                          uint32_t* handle) const noexcept {
  if (!header_.acceptsTarget(target) || match == nullptr || handle == nullptr) {
    return kInvalidArgument;
  }
  const EntryRecord* entry = covering(target.pipe_id, match->ingMirrorMdMirrorSession);
  if (entry == nullptr) {
    return kNotFound;
  }
  *handle = entry->handle;
  return kSuccess;
}

}  // namespace chipsim
