#include "TableInstance.h"

#include "BfPdIngressMirrorLagGroup/ShadowReconciler.h"
#include "Vel/Allocate.h"
#include "support/PdFunctionNames.h"
#include "support/ShadowWalk.h"

namespace BfIngressMirrorLagGroup {

namespace {

constexpr p4_pd_device_target_t kTarget{TableInstance::kDevice, TableInstance::kPipe};

}  // namespace

TableInstance::TableInstance(const std::string& baseName, MbbVaultKey::ShadowCapacity capacity,
                             void* chipHandle, const Attached& attached)
    : keys_(Vel::allocate<MbbVaultKey::VaultKeyManager>(baseName, capacity)) {
  if (attached)
    attached(*keys_);
  {
    const auto settler = Vel::allocate<BfPdIngressMirrorLagGroup::BfPdIngressMirrorLagGroupIntf>(
        CHIPSIM_LIBRARY, chipHandle, kSession);
    settled_ = BfPdIngressMirrorLagGroup::ShadowReconciler(*keys_, *settler, kDevice).reconcile();
  }
  table_ = ingressMirrorLagGroupTableFactory(keys_, nullptr, chipHandle, kSession, kDevice, kPipe,
                                             CHIPSIM_LIBRARY);
  refillActionProfile();
  matches_ = matchesBySession();
}

void TableInstance::refillActionProfile() {
  for (const auto& record : shadow_test::walkShadow(keys_->adtVaultTableConfig()).records)
    registry().memberIs(keys_->anonId(record.key()), record.memberHandle());
  for (const auto& record : shadow_test::walkShadow(keys_->selGrpVaultTableConfig()).records)
    registry().groupIs(keys_->anonId(record.key()), record.groupHandle());
}

void TableInstance::apply(const WantedConfig& config) {
  for (const auto& [id, selector] : config.members)
    memberIs(id, selector);
  for (const auto& [id, size] : config.groups)
    groupIs(id, size);
  for (const auto& [session, target] : config.entries)
    entryIs(session, target);
  table_->entryIs(
      IngressMirrorLagGroupTableEntry(table_->defaultMatchSpec(), config.defaultTarget));
}

void TableInstance::change(const WantedConfig& config, std::uint32_t random) {
  auto entry = config.entries.begin();
  std::advance(entry, random % config.entries.size());
  const std::uint16_t session = entry->first;
  const std::uint32_t memberId = 1 + (random / 7) % config.members.size();
  switch (random / 3 % 4) {
    case 0:
      entryIs(session, {memberId, true});
      break;
    case 1:
      if (!config.groups.empty())
        entryIs(session,
                {1 + (random / 11) % static_cast<std::uint32_t>(config.groups.size()), false});
      break;
    case 2:
      if (matches_.count(session) != 0) {
        table_->entryDel(matches_[session]);
        matches_.erase(session);
      }
      entryIs(session, entry->second);
      break;
    default:
      table_->entryIs(
          IngressMirrorLagGroupTableEntry(table_->defaultMatchSpec(), {memberId, true}));
      break;
  }
}

void TableInstance::memberIs(std::uint32_t id, std::uint16_t selector) {
  if (registry().member(id) != 0)
    return;
  keys_->allocAnon(id);
  const p4_pd_kestro_switch_setLagMemberSelector_action_spec_t spec{selector};
  std::uint32_t handle = 0;
  const pipe_status status =
      pd().p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_with_setLagMemberSelector(
          kSession, kTarget, &spec, &handle);
  checkPdStatus(chipsim_test::kAddMember.c_str(), status);
  registry().memberIs(id, handle);
}

void TableInstance::groupIs(std::uint32_t id, std::uint32_t size) {
  if (registry().group(id) != 0)
    return;
  keys_->allocAnon(id);
  std::uint32_t handle = 0;
  const pipe_status status = pd().p4_pd_kestro_switch_mirrorLagPortActionProfile_create_group(
      kSession, kTarget, size, &handle);
  checkPdStatus(chipsim_test::kCreateGroup.c_str(), status);
  registry().groupIs(id, handle);
}

void TableInstance::entryIs(std::uint16_t session,
                            IngressMirrorLagGroupMemberOrGroupOrNone target) {
  auto found = matches_.find(session);
  if (found == matches_.end()) {
    auto match = Vel::allocate<IngressMirrorLagGroupMatchSpec>();
    match->ingMirrorMdMirrorSessionIs(session);
    found = matches_.emplace(session, match).first;
  }
  table_->entryIs(IngressMirrorLagGroupTableEntry(found->second, target));
}

std::map<std::uint16_t, IngressMirrorLagGroupTable::MatchSpec> TableInstance::matchesBySession()
    const {
  std::map<std::uint16_t, IngressMirrorLagGroupTable::MatchSpec> bySession;
  for (auto slot = registry().entries().begin(); slot; ++slot) {
    if (slot.key() != table_->defaultMatchSpec())
      bySession.emplace(slot.key()->ingMirrorMdMirrorSession(), slot.key());
  }
  return bySession;
}

std::map<std::uint16_t, std::uint32_t> TableInstance::handlesBySession() const {
  std::map<std::uint16_t, std::uint32_t> bySession;
  for (const auto& [session, match] : matchesBySession())
    bySession.emplace(session, registry().entry(match));
  return bySession;
}

}  // namespace BfIngressMirrorLagGroup
