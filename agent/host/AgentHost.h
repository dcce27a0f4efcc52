#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "BfIngressMirrorLagGroup/BfIngressMirrorLagGroup.h"
#include "Vault/SegmentFile.h"
#include "config/AgentConfig.h"
#include "core/AgentTable.h"
#include "core/ConfigApplier.h"
#include "host/AgentOptions.h"
#include "host/StateFile.h"

namespace mirrorlag_agent {

// The agent as a host of the plug-in. Start-up, in this order: load the PD
// library by its file name (and, on the software chip, attach the named chip,
// making it when absent), attach the shadow tables of the base name, settle
// them against the chip, find the plug-in's two factories by name and make the
// table and the action-profile entity, set the state machine's session, adopt
// the entries the table adopted, then apply the kept state (or the start-up
// configuration). Adopted entries and members are modified, not added again.
//
// Then it answers commands, each a list of words and, for apply, the text of
// a configuration (see run()). Every committed change is kept in the state
// file before the answer goes out.
class AgentHost {
 public:
  // The status of a command that is not one the agent knows, or misses words.
  static constexpr int badCommandStatus = 2;

  // The answer to one command: 0 done, 1 refused or failed, 2 a bad command;
  // the output.
  struct Answer {
    int status = 0;
    std::string output;
  };

  explicit AgentHost(const AgentOptions& options);
  ~AgentHost();
  AgentHost(const AgentHost&) = delete;
  AgentHost& operator=(const AgentHost&) = delete;

  // Commands (see protocol/ControlCommands.h):
  //   apply                          (the configuration in `body`)
  //   show entries|members|groups|handles|shadow|config [--json]
  //   member ID selector N | member ID del
  //   group ID member M add|del|active|inactive
  //   entry SESSION member|group ID | entry SESSION del
  //   get PATH | set PATH VALUE      (PATH from sm, table or profile, e.g. sm/sessionHandle)
  //   trace NAME=LEVEL
  //   check
  // Each change made is logged, one line each with its outcome.
  Answer run(const std::vector<std::string>& words, const std::string& body);

  const AgentConfig& running() const noexcept { return running_; }

 private:
  // The kept state, or (none kept, or --discard-state) the start-up
  // configuration; none of either is the empty configuration.
  AgentConfig startConfig() const;
  // The steps of start-up, in their order.
  // The name of the segment whose lock an agent holds for its chip's life.
  static std::string claimName(const std::string& chip) { return chip + "-agent"; }
  // Holds the chip for this agent's life: a second agent on it is refused at
  // once ("chip 'x' is in use by process N").
  void claimChip();
  void attachChip();
  // Opens the shadow tables; damaged ones are made anew (tablesMadeAnew_).
  void openShadowTables();
  void settleShadowTables();
  void makeTableAndProfile(const AgentConfig& start);
  // Entries the chip holds that no shadow record names (lost with damaged
  // tables, or cut off by a kill), looked up by session: those of the start
  // configuration, or every session when the tables were made anew. They go
  // into the handle registry, so that the apply modifies them (and removes
  // the ones no configuration names) instead of adding them again.
  void adoptUnrecordedEntries(const AgentConfig& start);
  // Records an adopted entry in the shadow tables, as its add would have, so
  // that the next start finds it recorded.
  void recordAdopted(
      const Vel::Ptr<const BfIngressMirrorLagGroup::IngressMirrorLagGroupMatchSpec>& match,
      std::uint32_t handle);
  void applyAtStart(const AgentConfig& start);
  Answer apply(const AgentConfig& wanted);
  // After an apply made `running_` what it is: keeps it in the state file and
  // logs each change; gives the changes, a line each.
  std::string applied(const std::vector<std::string>& changes);
  // After a restart's apply: deletes from the chip what the instances before
  // left and the configuration does not name (entries, the groups that were
  // created anew, members); gives how many objects went.
  std::size_t removeLeftovers(const std::vector<std::uint32_t>& oldGroups);
  // Entries of sessions the configuration does not name; the default entry
  // when it names none.
  std::size_t removeStaleEntries();
  // Every group but the configured ones: those recorded before the apply
  // and those the plug-in adopted that the configuration does not name.
  std::size_t removeOldGroups(const std::vector<std::uint32_t>& oldGroups);
  // Members the configuration does not name.
  std::size_t removeStaleMembers();
  // Members and groups in the chip that the plug-in holds no handle of: made
  // by a process killed before it could record them (found with the PD
  // library's read-back, when it has one).
  std::size_t removeUnrecorded();
  // The group handles the shadow tables know of: recorded and replaced ones.
  std::vector<std::uint32_t> recordedGroups() const;
  Answer edit(const std::vector<std::string>& words);
  Answer attribute(const std::vector<std::string>& words);
  Answer show(const std::vector<std::string>& words) const;
  Answer trace(const std::vector<std::string>& words) const;
  Answer check() const;
  void log(const std::string& line) const;
  Vel::Ptr<Vel::PtrInterface> root(const std::string& name) const;

  AgentOptions options_;
  std::unique_ptr<Vault::SegmentFile> chipClaim_;
  void* pdLib_ = nullptr;
  void* plugin_ = nullptr;
  Vel::Ptr<MbbVaultKey::VaultKeyManager> keys_;
  Vel::Ptr<BfIngressMirrorLagGroup::IngressMirrorLagGroupTable> table_;
  Vel::Ptr<BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfile> profile_;
  Vel::Ptr<BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm> sm_;
  std::unique_ptr<AgentTable> agentTable_;
  std::unique_ptr<ConfigApplier> applier_;
  StateFile state_;
  AgentConfig running_;
  bool tablesMadeAnew_ = false;
};

}  // namespace mirrorlag_agent
