#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "BfIngressMirrorLagGroup/BfIngressMirrorLagGroup.h"
#include "config/ConfigTarget.h"
#include "config/GroupConfig.h"

namespace mirrorlag_agent {

// The agent's hold on the plug-in: the match table and the action-profile
// configuration entity that its factories made, and the match spec of each
// mirror session the agent has programmed (or adopted after a restart). Each
// operation is one edit of the plug-in's objects, programmed in the chip
// before it returns; a chip failure throws the plug-in's exception.
class AgentTable {
 public:
  using MatchSpec = BfIngressMirrorLagGroup::IngressMirrorLagGroupTable::MatchSpec;

  // Takes over the match specs of the entries the table adopted.
  AgentTable(Vel::Ptr<BfIngressMirrorLagGroup::IngressMirrorLagGroupTable> table,
             Vel::Ptr<BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfile> profile);

  const Vel::Ptr<BfIngressMirrorLagGroup::IngressMirrorLagGroupTable>& table() const noexcept {
    return table_;
  }
  const Vel::Ptr<BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfile>& profile()
      const noexcept {
    return profile_;
  }

  // The mirror sessions whose entries the agent holds (programmed or adopted).
  std::vector<std::uint16_t> sessions() const;
  // The chip's handle of the session's entry, of the default entry, of a
  // member or of a group; 0 when the plug-in holds none.
  std::uint32_t entryHandle(std::uint16_t session) const;
  std::uint32_t defaultHandle() const;
  std::uint32_t memberHandle(std::uint32_t id) const;
  std::uint32_t groupHandle(std::uint32_t id) const;

  void memberIs(std::uint32_t id, std::uint16_t selector);
  void memberDel(std::uint32_t id);
  // Creates the group with its first member as initial member, then the
  // others, inactive ones set so.
  void groupIs(std::uint32_t id, const GroupConfig& group);
  void groupDel(std::uint32_t id);
  void groupMemberIs(std::uint32_t groupId, std::uint32_t memberId, bool active);
  void groupMemberDel(std::uint32_t groupId, std::uint32_t memberId);
  void entryIs(std::uint16_t session, const ConfigTarget& target);
  // Deleting an entry or default entry that is not programmed does nothing.
  void entryDel(std::uint16_t session);
  void defaultIs(const ConfigTarget& target);
  void defaultDel();
  // The groups the plug-in holds, by id, with their chip handles.
  std::map<std::uint32_t, std::uint32_t> groupHandles() const;
  // Deletes from the chip a group the plug-in no longer holds (one an
  // earlier instance made, since replaced); gives the PD status.
  pipe_status retiredGroupDel(std::uint32_t handle);

 private:
  // Whether the chip holds an entry for this match spec.
  bool programmed(const MatchSpec& match) const;

  Vel::Ptr<BfIngressMirrorLagGroup::IngressMirrorLagGroupTable> table_;
  Vel::Ptr<BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfile> profile_;
  std::map<std::uint16_t, MatchSpec> matches_;
};

}  // namespace mirrorlag_agent
