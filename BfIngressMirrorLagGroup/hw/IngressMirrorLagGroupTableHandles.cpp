#include "BfIngressMirrorLagGroup/hw/IngressMirrorLagGroupTableHandles.h"

#include "Quill/Assert.h"
#include "Vel/Allocate.h"

namespace BfIngressMirrorLagGroup {

namespace {

// The handle under a key, 0 when the key is absent.
template <class Map>
typename Map::Value handleOf(const Map& map, const typename Map::Key& key) {
  const auto slot = map.find(key);
  return slot ? slot->value() : typename Map::Value{0};
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
  overwriteOrAdd(group_, groupId, handle);
}

void IngressMirrorLagGroupTableHandles::memberIs(BfnTable::BfnMemberId memberId,
                                                 BfnTable::BfnSdkMemberHandle handle) {
  overwriteOrAdd(member_, memberId, handle);
}

void IngressMirrorLagGroupTableHandles::newEntry(const MatchSpec& match,
                                                 BfnTable::BfnSdkEntryHandle handle) {
  add(entry_, match, handle);
}

void IngressMirrorLagGroupTableHandles::newGroup(BfnTable::BfnGroupId groupId,
                                                 BfnTable::BfnSdkGroupHandle handle) {
  add(group_, groupId, handle);
}

void IngressMirrorLagGroupTableHandles::newMember(BfnTable::BfnMemberId memberId,
                                                  BfnTable::BfnSdkMemberHandle handle) {
  add(member_, memberId, handle);
}

BfnTable::BfnSdkEntryHandle IngressMirrorLagGroupTableHandles::entryDel(const MatchSpec& match) {
  return removeKey(entry_, match);
}

BfnTable::BfnSdkGroupHandle IngressMirrorLagGroupTableHandles::groupDel(
    BfnTable::BfnGroupId groupId) {
  return removeKey(group_, groupId);
}

BfnTable::BfnSdkMemberHandle IngressMirrorLagGroupTableHandles::memberDel(
    BfnTable::BfnMemberId memberId) {
  return removeKey(member_, memberId);
}

void IngressMirrorLagGroupTableHandles::entryDelAll() {
  entry_.deleteAll();
}

void IngressMirrorLagGroupTableHandles::groupDelAll() {
  group_.deleteAll();
}

void IngressMirrorLagGroupTableHandles::memberDelAll() {
  member_.deleteAll();
}

}  // namespace BfIngressMirrorLagGroup

Vel::Ptr<BfIngressMirrorLagGroup::IngressMirrorLagGroupTableHandles>
ingressMirrorLagGroupTableHandlesFactory() {
  return Vel::allocate<BfIngressMirrorLagGroup::IngressMirrorLagGroupTableHandles>();
}
