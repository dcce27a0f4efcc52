#include "TableInstance.h"

#include "BfPdIngressMirrorLagGroup/ShadowReconciler.h"
#include "Vel/Allocate.h"

namespace BfIngressMirrorLagGroup {

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
  profile_ = ingressMirrorLagGroupActionProfileFactory(table_);
  stateMachine().sessionHandleIs(kSession);
  matches_ = matchesBySession();
}

TableInstance::~TableInstance() {
  IngressMirrorLagGroupActionProfileSm& sm = stateMachine();
  sm.ingressMirrorLagGroupActionProfileDel();
  // Reactors without their state machine delete nothing when they go.
  for (auto reactor = sm.actionProfileIterator(); reactor.valid(); ++reactor)
    reactor.ptr()->ingressMirrorLagGroupActionProfileSmIs(nullptr);
  for (auto reactor = sm.groupIterator(); reactor.valid(); ++reactor)
    reactor.ptr()->ingressMirrorLagGroupActionProfileSmIs(nullptr);
  sm.deleteRef();
}

IngressMirrorLagGroupActionProfileSm& TableInstance::stateMachine() const {
  IngressMirrorLagGroupActionProfileSm* sm = nullptr;
  profile_->notifieeList()->doVisit([&sm](Vel::PtrInterface::NotifieeConst& notifiee) {
    if (sm == nullptr)
      sm = dynamic_cast<IngressMirrorLagGroupActionProfileSm*>(notifiee.actsm());
  });
  return *sm;
}

void TableInstance::apply(const WantedConfig& config) {
  for (const auto& [id, selector] : config.members)
    memberIs(id, selector);
  for (const auto& [id, size] : config.groups)
    groupIs(id, size, config.groupMembers.at(id));
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
  switch (random / 3 % 5) {
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
    case 3:
      table_->entryIs(
          IngressMirrorLagGroupTableEntry(table_->defaultMatchSpec(), {memberId, true}));
      break;
    default:
      toggleGroupMember(random / 13);
      break;
  }
}

// Through the configuration: a member the registry holds a handle for (one
// adopted after a restart) is modified, any other added.
void TableInstance::memberIs(std::uint32_t id, std::uint16_t selector) {
  const BfnTable::BfnMemberId memberId(id);
  if (const auto existing = profile_->entry(memberId)) {
    if (existing->action()->lagMemberSelector() == selector)
      return;
  }
  auto action = Vel::allocate<SetLagMemberSelectorActionProfileSpec>();
  action->lagMemberSelectorIs(selector);
  profile_->entryIs(Vel::allocate<IngressMirrorLagGroupActionProfileEntry>(memberId, action));
}

// Through the configuration: a group is created anew in the chip, with its
// initial member; the other members join it with their active flags.
void TableInstance::groupIs(std::uint32_t id, std::uint32_t size,
                            const WantedConfig::GroupMembers& members) {
  const auto group = profile_->groupIs(BfnTable::BfnGroupId(id), size, members.front().first,
                                       setLagMemberSelectorActionProfileSpec);
  for (const auto& [memberId, active] : members)
    group->memberIs(BfnTable::BfnMemberId(memberId))->activeIs(active);
}

// Switches the active flag of one member of one group, other than the
// group's initial member, as a host in service does.
void TableInstance::toggleGroupMember(std::uint32_t random) {
  std::vector<Vel::Ptr<IngressMirrorLagGroupMember>> members;
  for (auto group = profile_->groupIterator(); group.valid(); ++group) {
    for (auto member = group.ptr()->memberIterator(); member.valid(); ++member) {
      if (member.key().value() != group.ptr()->initialMemberId())
        members.push_back(member.ptr());
    }
  }
  if (!members.empty()) {
    const auto& member = members[random % members.size()];
    member->activeIs(!member->active());
  }
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
