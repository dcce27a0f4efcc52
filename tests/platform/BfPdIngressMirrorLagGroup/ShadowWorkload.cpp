#include "ShadowWorkload.h"

#include "Vel/Allocate.h"
#include "Vel/Exception.h"

namespace shadow_test {

ShadowWorkload::ShadowWorkload(VaultKeyManager& keys, PdIntf& pd, std::uint32_t seed)
    : keys_(keys), pd_(pd), random_(seed), defaultMatch_(Vel::allocate<BfnTable::MatchSpecBase>()) {
  for (const EntryConfig& record : keys.entryShadow()->records()) {
    if (shadowOpOf(record.opId()) == ShadowOp::entryAdd) {
      entries_[record.ingMirrorMdMirrorSession()] = record.entryHandle();
    }
  }
  for (const AdtEntryConfig& record : keys.memberShadow()->records()) {
    members_[keys.anonId(record.key())] = record.memberHandle();
  }
  for (const SelGrpEntryConfig& record : keys.groupShadow()->records()) {
    groups_[keys.anonId(record.key())] = record.groupHandle();
  }
}

void ShadowWorkload::step() {
  try {
    switch (below(10)) {
      case 0:
      case 1:
        return addMember();
      case 2:
        return createGroup();
      case 3:
      case 4:
        return addEntry();
      case 5:
        return deleteEntry();
      case 6:
        return deleteMember();
      case 7:
        return deleteGroup();
      case 8:
        return addMemberToGroup();
      default:
        return setOrResetDefault();
    }
  } catch (const Vel::Exception&) {
    // A shadow table without room for the intent: the call was not made.
  }
}

template <class Key>
std::pair<Key, std::uint32_t> ShadowWorkload::pick(const std::map<Key, std::uint32_t>& handles) {
  if (handles.empty()) {
    return {Key{}, 0};
  }
  auto chosen = handles.begin();
  std::advance(chosen, below(static_cast<std::uint32_t>(handles.size())));
  return *chosen;
}

void ShadowWorkload::addMember() {
  std::uint32_t id = below(kMemberIds);
  if (members_.count(id)) {
    return;
  }
  keys_.allocAnon(id);
  PdActionSpec spec{static_cast<std::uint16_t>(random_())};
  std::uint32_t handle = 0;
  if (pd_.p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_with_setLagMemberSelector(
          1, kAllPipes, &spec, &handle) == 0) {
    members_[id] = handle;
  }
}

void ShadowWorkload::createGroup() {
  std::uint32_t id = below(kGroupIds);
  if (groups_.count(id)) {
    return;
  }
  keys_.allocAnon(id);
  std::uint32_t handle = 0;
  if (pd_.p4_pd_kestro_switch_mirrorLagPortActionProfile_create_group(1, kAllPipes, 1 + below(4),
                                                                      &handle) == 0) {
    groups_[id] = handle;
  }
}

void ShadowWorkload::addEntry() {
  auto session = static_cast<std::uint16_t>(below(kSessions));
  if (entries_.count(session)) {
    return;
  }
  keys_.alloc(Vel::allocate<BfnTable::MatchSpecBase>(), false);
  PdMatchSpec match{session};
  std::uint32_t handle = 0;
  pipe_status status = 0;
  if (below(2) == 0) {
    status = pd_.p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry(
        1, kAllPipes, &match, pick(members_).second, &handle);
  } else {
    status = pd_.p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry_with_selector(
        1, kAllPipes, &match, pick(groups_).second, &handle);
  }
  if (status == 0) {
    entries_[session] = handle;
  }
}

void ShadowWorkload::deleteEntry() {
  auto [session, handle] = pick(entries_);
  if (handle != 0 &&
      pd_.p4_pd_kestro_switch_ingressMirrorLagGroup_table_delete(1, 0, handle) == 0) {
    entries_.erase(session);
  }
}

void ShadowWorkload::deleteMember() {
  auto [id, handle] = pick(members_);
  if (handle != 0 &&
      pd_.p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member(1, 0, handle) == 0) {
    members_.erase(id);
  }
}

void ShadowWorkload::deleteGroup() {
  auto [id, handle] = pick(groups_);
  if (handle != 0 &&
      pd_.p4_pd_kestro_switch_mirrorLagPortActionProfile_del_group(1, 0, handle) == 0) {
    groups_.erase(id);
  }
}

void ShadowWorkload::addMemberToGroup() {
  pd_.p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_to_group(1, 0, pick(groups_).second,
                                                                         pick(members_).second);
}

void ShadowWorkload::setOrResetDefault() {
  std::uint32_t handle = 0;
  switch (below(3)) {
    case 0:
      keys_.alloc(defaultMatch_, false);
      pd_.p4_pd_kestro_switch_ingressMirrorLagGroup_set_default_entry(
          1, kAllPipes, pick(members_).second, &handle);
      return;
    case 1:
      keys_.alloc(defaultMatch_, false);
      pd_.p4_pd_kestro_switch_ingressMirrorLagGroup_set_default_entry_with_selector(
          1, kAllPipes, pick(groups_).second, &handle);
      return;
    default:
      pd_.p4_pd_kestro_switch_ingressMirrorLagGroup_table_reset_default_entry(1, kAllPipes);
  }
}

}  // namespace shadow_test
