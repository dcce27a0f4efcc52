#include "core/AgentTable.h"

#include <utility>

#include "BfIngressMirrorLagGroup/hw/DeviceTarget.h"
#include "Vel/Allocate.h"

namespace mirrorlag_agent {

namespace {

using namespace BfIngressMirrorLagGroup;

IngressMirrorLagGroupMemberOrGroupOrNone targetOf(const ConfigTarget& target) {
  return IngressMirrorLagGroupMemberOrGroupOrNone(target.id, target.member);
}

}  // namespace

AgentTable::AgentTable(Vel::Ptr<IngressMirrorLagGroupTable> table,
                       Vel::Ptr<IngressMirrorLagGroupActionProfile> profile)
    : table_(std::move(table)), profile_(std::move(profile)) {
  const IngressMirrorLagGroupTableHandles& handles = *table_->helper()->sdkHandles();
  for (auto slot = handles.entries().begin(); slot; ++slot) {
    if (slot.key() != table_->defaultMatchSpec())
      matches_.emplace(slot.key()->ingMirrorMdMirrorSession(), slot.key());
  }
}

std::vector<std::uint16_t> AgentTable::sessions() const {
  std::vector<std::uint16_t> result;
  for (const auto& [session, match] : matches_)
    result.push_back(session);
  return result;
}

std::uint32_t AgentTable::entryHandle(std::uint16_t session) const {
  const auto found = matches_.find(session);
  return found == matches_.end() ? 0 : table_->helper()->sdkHandles()->entry(found->second);
}

std::uint32_t AgentTable::defaultHandle() const {
  const MatchSpec& match = table_->defaultMatchSpec();
  return match ? table_->helper()->sdkHandles()->entry(match) : 0;
}

std::uint32_t AgentTable::memberHandle(std::uint32_t id) const {
  return table_->helper()->sdkHandles()->member(BfnTable::BfnMemberId(id));
}

std::uint32_t AgentTable::groupHandle(std::uint32_t id) const {
  return table_->helper()->sdkHandles()->group(BfnTable::BfnGroupId(id));
}

void AgentTable::memberIs(std::uint32_t id, std::uint16_t selector) {
  auto action = Vel::allocate<SetLagMemberSelectorActionProfileSpec>();
  action->lagMemberSelectorIs(selector);
  const BfnTable::BfnMemberId memberId(id);
  if (const auto entry = profile_->entry(memberId))
    entry->actionIs(action);
  else
    profile_->entryIs(Vel::allocate<IngressMirrorLagGroupActionProfileEntry>(memberId, action));
}

void AgentTable::memberDel(std::uint32_t id) {
  profile_->entryDel(BfnTable::BfnMemberId(id));
}

void AgentTable::groupIs(std::uint32_t id, const GroupConfig& group) {
  profile_->groupIs(BfnTable::BfnGroupId(id), group.size, group.members.front().id,
                    setLagMemberSelectorActionProfileSpec);
  for (const GroupMemberConfig& member : group.members)
    groupMemberIs(id, member.id, member.active);
}

void AgentTable::groupDel(std::uint32_t id) {
  profile_->groupDel(BfnTable::BfnGroupId(id));
}

void AgentTable::groupMemberIs(std::uint32_t groupId, std::uint32_t memberId, bool active) {
  profile_->group(BfnTable::BfnGroupId(groupId))
      ->memberIs(BfnTable::BfnMemberId(memberId))
      ->activeIs(active);
}

void AgentTable::groupMemberDel(std::uint32_t groupId, std::uint32_t memberId) {
  profile_->group(BfnTable::BfnGroupId(groupId))->memberDel(BfnTable::BfnMemberId(memberId));
}

void AgentTable::entryIs(std::uint16_t session, const ConfigTarget& target) {
  auto found = matches_.find(session);
  if (found == matches_.end()) {
    auto match = Vel::allocate<IngressMirrorLagGroupMatchSpec>();
    match->ingMirrorMdMirrorSessionIs(session);
    found = matches_.emplace(session, match).first;
  }
  table_->entryIs(IngressMirrorLagGroupTableEntry(found->second, targetOf(target)));
}

void AgentTable::entryDel(std::uint16_t session) {
  const auto found = matches_.find(session);
  if (found == matches_.end())
    return;
  // An entry whose add the chip refused was never programmed.
  if (programmed(found->second))
    table_->entryDel(found->second);
  matches_.erase(found);
}

void AgentTable::defaultIs(const ConfigTarget& target) {
  table_->entryIs(IngressMirrorLagGroupTableEntry(table_->defaultMatchSpecIs(), targetOf(target)));
}

void AgentTable::defaultDel() {
  if (programmed(table_->defaultMatchSpecIs()))
    table_->entryDel(table_->defaultMatchSpecIs());
}

bool AgentTable::programmed(const MatchSpec& match) const {
  return table_->helper()->sdkHandles()->entry(match) != 0;
}

std::map<std::uint32_t, std::uint32_t> AgentTable::groupHandles() const {
  std::map<std::uint32_t, std::uint32_t> handles;
  const IngressMirrorLagGroupTableHandles& registry = *table_->helper()->sdkHandles();
  for (auto slot = registry.groups().begin(); slot; ++slot)
    handles.emplace(slot.key().value(), slot.value());
  return handles;
}

pipe_status AgentTable::retiredGroupDel(std::uint32_t handle) {
  const Vel::Ptr<IngressMirrorLagGroupTableHelper>& helper = table_->helper();
  auto& pd = *helper->pdLib();
  return pd.p4_pd_kestro_switch_mirrorLagPortActionProfile_del_group(pd.sessionId(),
                                                                     deviceId(*helper), handle);
}

}  // namespace mirrorlag_agent
