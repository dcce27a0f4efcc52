#include "BfIngressMirrorLagGroup/hw/IngressMirrorLagGroupTableHandles.h"

#include <optional>

#include "Quill/Assert.h"
#include "Vel/Allocate.h"

namespace BfIngressMirrorLagGroup {

namespace {

// A member's or group's handle, or nothing for an id the registry lacks.
using MaybeHandle = std::optional<std::uint32_t>;

// The handle under a key, 0 when the key is absent.
template <class Map>
typename Map::Value handleOf(const Map& map, const typename Map::Key& key) {
  const typename Map::Value* handle = map.valueOf(key);
  return handle != nullptr ? *handle : typename Map::Value{0};
}

// Most keys are new (a handle is registered after its object was created):
// one look-up adds them, and a present key keeps its slot with the new handle.
template <class Map>
void overwriteOrAdd(Map& map, const typename Map::Key& key, typename Map::Value handle) {
  if (!map.insert(key, handle))
    map.find(key)->valueIs(handle);
}

template <class Map>
void add(Map& map, const typename Map::Key& key, typename Map::Value handle) {
  const bool added = static_cast<bool>(map.insert(key, handle));
  QUILL_ASSERT(added);
}

template <class Map>
typename Map::Value removeKey(Map& map, const typename Map::Key& key) {
  return map.remove(key).value_or(typename Map::Value{0});
}

// The id under which `map` holds `handle`, first in walking order; the
// default id when it holds none.
template <class Map>
typename Map::Key walkForHandle(const Map& map, typename Map::Value handle) {
  for (auto slot = map.begin(); slot; ++slot) {
    if (slot.value() == handle)
      return slot.key();
  }
  return typename Map::Key{};
}

// The id that holds `handle`: the default id when none does, the indexed one
// when it is the only id holding the handle and still holds it (as handles
// are unique, nearly always), else (two ids were given one handle) the first
// a walk finds.
template <class Map, class Index>
typename Map::Key idOf(const Map& map, const Index& index, typename Map::Value handle) {
  const auto found = index.find(handle);
  if (found == index.end())
    return typename Map::Key{};
  const auto indexed = map.find(found->second.id);
  if (found->second.holders == 1 && indexed && indexed->value() == handle)
    return found->second.id;
  return walkForHandle(map, handle);
}

// The handle under a key, or nothing when the key is absent.
template <class Map>
MaybeHandle heldHandle(const Map& map, const typename Map::Key& key) {
  const auto slot = map.find(key);
  return slot ? MaybeHandle(slot->value()) : std::nullopt;
}

// Keeps `index` in step with `id` moving from holding `before` (nothing: the
// id was absent) to holding `after` (nothing: the id goes).
template <class Index, class Key>
void reindex(Index& index, const Key& id, MaybeHandle before, MaybeHandle after) {
  if (before) {
    const auto found = index.find(*before);
    if (found != index.end() && --found->second.holders == 0)
      index.erase(found);
  }
  if (after) {
    auto& holders = index[*after];
    holders.id = id;
    ++holders.holders;
  }
}

}  // namespace

IngressMirrorLagGroupTableHandles::~IngressMirrorLagGroupTableHandles() = default;

BfnTable::BfnSdkEntryHandle IngressMirrorLagGroupTableHandles::entry(const MatchSpec& match) const {
  return handleOf(entry_, match);
}

BfnTable::BfnSdkGroupHandle IngressMirrorLagGroupTableHandles::group(
    BfnTable::BfnGroupId groupId) const {
  return handleOf(group_, groupId);
}

BfnTable::BfnSdkMemberHandle IngressMirrorLagGroupTableHandles::member(
    BfnTable::BfnMemberId memberId) const {
  return handleOf(member_, memberId);
}

void IngressMirrorLagGroupTableHandles::entryIs(const MatchSpec& match,
                                                BfnTable::BfnSdkEntryHandle handle) {
  overwriteOrAdd(entry_, match, handle);
}

void IngressMirrorLagGroupTableHandles::groupIs(BfnTable::BfnGroupId groupId,
                                                BfnTable::BfnSdkGroupHandle handle) {
  reindex(groupIdOfHandle_, groupId, heldHandle(group_, groupId), MaybeHandle(handle));
  overwriteOrAdd(group_, groupId, handle);
}

void IngressMirrorLagGroupTableHandles::memberIs(BfnTable::BfnMemberId memberId,
                                                 BfnTable::BfnSdkMemberHandle handle) {
  reindex(memberIdOfHandle_, memberId, heldHandle(member_, memberId), MaybeHandle(handle));
  overwriteOrAdd(member_, memberId, handle);
}

void IngressMirrorLagGroupTableHandles::newEntry(const MatchSpec& match,
                                                 BfnTable::BfnSdkEntryHandle handle) {
  add(entry_, match, handle);
}

void IngressMirrorLagGroupTableHandles::newGroup(BfnTable::BfnGroupId groupId,
                                                 BfnTable::BfnSdkGroupHandle handle) {
  add(group_, groupId, handle);
  reindex(groupIdOfHandle_, groupId, MaybeHandle(), MaybeHandle(handle));
}

void IngressMirrorLagGroupTableHandles::newMember(BfnTable::BfnMemberId memberId,
                                                  BfnTable::BfnSdkMemberHandle handle) {
  add(member_, memberId, handle);
  reindex(memberIdOfHandle_, memberId, MaybeHandle(), MaybeHandle(handle));
}

BfnTable::BfnSdkEntryHandle IngressMirrorLagGroupTableHandles::entryDel(const MatchSpec& match) {
  return removeKey(entry_, match);
}

BfnTable::BfnSdkGroupHandle IngressMirrorLagGroupTableHandles::groupDel(
    BfnTable::BfnGroupId groupId) {
  const MaybeHandle held = heldHandle(group_, groupId);
  reindex(groupIdOfHandle_, groupId, held, MaybeHandle());
  return removeKey(group_, groupId);
}

BfnTable::BfnSdkMemberHandle IngressMirrorLagGroupTableHandles::memberDel(
    BfnTable::BfnMemberId memberId) {
  const MaybeHandle held = heldHandle(member_, memberId);
  reindex(memberIdOfHandle_, memberId, held, MaybeHandle());
  return removeKey(member_, memberId);
}

void IngressMirrorLagGroupTableHandles::entryDelAll() {
  entry_.deleteAll();
}

void IngressMirrorLagGroupTableHandles::groupDelAll() {
  group_.deleteAll();
  groupIdOfHandle_.clear();
}

void IngressMirrorLagGroupTableHandles::memberDelAll() {
  member_.deleteAll();
  memberIdOfHandle_.clear();
}

BfnTable::BfnMemberId IngressMirrorLagGroupTableHandles::memberIdOf(
    BfnTable::BfnSdkMemberHandle handle) const {
  return idOf(member_, memberIdOfHandle_, handle);
}

BfnTable::BfnGroupId IngressMirrorLagGroupTableHandles::groupIdOf(
    BfnTable::BfnSdkGroupHandle handle) const {
  return idOf(group_, groupIdOfHandle_, handle);
}

}  // namespace BfIngressMirrorLagGroup

Vel::Ptr<BfIngressMirrorLagGroup::IngressMirrorLagGroupTableHandles>
ingressMirrorLagGroupTableHandlesFactory() {
  return Vel::allocate<BfIngressMirrorLagGroup::IngressMirrorLagGroupTableHandles>();
}
