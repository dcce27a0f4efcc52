#include "host/AgentHost.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <stdexcept>

#include "BfPdIngressMirrorLagGroup/ShadowReconciler.h"
#include "Quill/CorruptionDetectedException.h"
#include "Vault/MbbPostcodef/ShadowOp.h"
#include "Vault/SegmentFile.h"
#include "Vault/TableInUseException.h"
#include "Vel/Allocate.h"
#include "Vel/Exception.h"
#include "Vel/TraceHandle.h"
#include "config/ConfigError.h"
#include "core/ApplyError.h"
#include "core/RestartApply.h"
#include "host/ActionProfileReadBack.h"
#include "host/AgentCheck.h"
#include "host/AgentReport.h"
#include "host/ChipProbe.h"
#include "protocol/ControlCommands.h"

namespace mirrorlag_agent {

namespace {

using namespace BfIngressMirrorLagGroup;

constexpr const char* pluginLibrary = "libBfIngressMirrorLagGroup.so";

void* load(const std::string& file) {
  void* handle = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr)
    throw std::runtime_error("cannot load " + file + ": " + dlerror());
  return handle;
}

template <class F>
F symbol(void* handle, const char* name, const std::string& file) {
  void* found = dlsym(handle, name);
  if (found == nullptr)
    throw std::runtime_error(file + " has no " + name);
  return reinterpret_cast<F>(found);
}

// The state machine that follows `profile`: the factory keeps it, and it is
// reached as the notifiee of the profile that belongs to a state machine.
Vel::Ptr<IngressMirrorLagGroupActionProfileSm> stateMachineOf(
    const Vel::Ptr<IngressMirrorLagGroupActionProfile>& profile) {
  Vel::Ptr<IngressMirrorLagGroupActionProfileSm> sm;
  profile->notifieeList()->doVisit([&sm](Vel::PtrInterface::NotifieeConst& notifiee) {
    if (!sm)
      sm = Vel::Ptr<IngressMirrorLagGroupActionProfileSm>(
          dynamic_cast<IngressMirrorLagGroupActionProfileSm*>(notifiee.actsm()));
  });
  return sm;
}

std::uint32_t numberOf(const std::string& word, const char* what) {
  try {
    std::size_t end = 0;
    const unsigned long value = std::stoul(word, &end);
    if (end == word.size() && value <= 0xFFFFFFFFul)
      return static_cast<std::uint32_t>(value);
  } catch (const std::exception&) {
  }
  throw std::invalid_argument(std::string(what) + " '" + word + "' is not a number");
}

std::string usage(std::string_view command) {
  return "usage: " + std::string(usageOf(command));
}

// Removes from a JSON array the items whose `key` is `value`.
void eraseWhere(nlohmann::json& items, const char* key, std::uint32_t value) {
  items.erase(std::remove_if(items.begin(), items.end(),
                             [&](const nlohmann::json& item) { return item[key] == value; }),
              items.end());
}

// The edits of the running configuration's JSON form that the client's
// commands make; a malformed command is an std::invalid_argument.

// member ID selector N | member ID del
void editMember(nlohmann::json& document, const std::vector<std::string>& words) {
  const bool select = words.size() == 4 && words[2] == "selector";
  if (!select && !(words.size() == 3 && words[2] == "del"))
    throw std::invalid_argument(usage("member"));
  const std::uint32_t id = numberOf(words[1], "member");
  eraseWhere(document["members"], "id", id);
  if (select)
    document["members"].push_back({{"id", id}, {"selector", numberOf(words[3], "selector")}});
}

// entry SESSION member|group ID | entry SESSION del
void editEntry(nlohmann::json& document, const std::vector<std::string>& words) {
  const bool point = words.size() == 4 && (words[2] == "member" || words[2] == "group");
  if (!point && !(words.size() == 3 && words[2] == "del"))
    throw std::invalid_argument(usage("entry"));
  const std::uint32_t session = numberOf(words[1], "session");
  eraseWhere(document["entries"], "session", session);
  if (point) {
    document["entries"].push_back(
        {{"session", session}, {words[2], numberOf(words[3], words[2].c_str())}});
  }
}

// group ID member M add|del|active|inactive
void editGroupMember(nlohmann::json& document, const std::vector<std::string>& words) {
  if (words.size() != 5 || words[2] != "member")
    throw std::invalid_argument(usage("group"));
  const std::uint32_t id = numberOf(words[1], "group");
  const std::uint32_t memberId = numberOf(words[3], "member");
  const std::string& action = words[4];
  for (auto& group : document["groups"]) {
    if (group["id"] != id)
      continue;
    auto& members = group["members"];
    if (action == "add") {
      members.push_back({{"id", memberId}});
    } else if (action == "del") {
      eraseWhere(members, "id", memberId);
    } else if (action == "active" || action == "inactive") {
      for (auto& member : members) {
        if (member["id"] == memberId)
          member["active"] = action == "active";
      }
    } else {
      throw std::invalid_argument(usage("group"));
    }
    return;
  }
  throw ConfigError("/groups", "group " + words[1] + " is not configured");
}

AgentHost::Answer refused(const std::string& why) {
  return {1, why + "\n"};
}

AgentHost::Answer badCommand(const std::string& why) {
  return {AgentHost::badCommandStatus, why + "\n"};
}

bool isShowSubject(std::string_view word) {
  return std::find(std::begin(kShowSubjects), std::end(kShowSubjects), word) !=
         std::end(kShowSubjects);
}

}  // namespace

AgentHost::AgentHost(const AgentOptions& options) : options_(options), state_(options.state) {
  // What to apply is read, and checked whole, before the chip is touched.
  const AgentConfig start = startConfig();
  attachChip();
  settleShadowTables();
  makeTableAndProfile(start);
  applyAtStart(start);
}

void AgentHost::claimChip() {
  try {
    chipClaim_ = std::make_unique<Vault::SegmentFile>(claimName(options_.chip));
  } catch (const Vault::TableInUseException& e) {
    throw std::runtime_error("chip '" + options_.chip + "' is in use by process " +
                             std::to_string(e.holder()));
  }
}

void AgentHost::attachChip() {
  claimChip();
  pdLib_ = load(options_.pdLib);
  if (auto attach = reinterpret_cast<int (*)(const char*)>(dlsym(pdLib_, "chipsim_attach"))) {
    if (attach(options_.chip.c_str()) != 0)
      throw std::runtime_error("cannot attach chip '" + options_.chip + "'");
  }
}

void AgentHost::openShadowTables() {
  try {
    keys_ = Vel::allocate<MbbVaultKey::VaultKeyManager>(options_.shadow);
  } catch (const Quill::CorruptionDetectedException& e) {
    // The records are lost; the chip still holds the objects, which this
    // start finds again by reading them back, and the tables are made anew.
    log("shadow tables '" + options_.shadow + "' are damaged (" + std::string(e.what()) +
        "): made anew, the chip's objects found again from the chip");
    MbbVaultKey::VaultKeyManager::unlink(options_.shadow);
    keys_ = Vel::allocate<MbbVaultKey::VaultKeyManager>(options_.shadow);
    tablesMadeAnew_ = true;
  }
}

void AgentHost::settleShadowTables() {
  openShadowTables();
  const auto pd = Vel::allocate<BfPdIngressMirrorLagGroup::BfPdIngressMirrorLagGroupIntf>(
      options_.pdLib, pdLib_, options_.session);
  const auto settled =
      BfPdIngressMirrorLagGroup::ShadowReconciler(*keys_, *pd, options_.device).reconcile();
  log("settled " + std::to_string(settled.total()) + " unfinished records");
}

void AgentHost::adoptUnrecordedEntries(const AgentConfig& start) {
  std::vector<std::uint16_t> sessions;
  if (tablesMadeAnew_) {
    for (std::uint32_t session = 0; session <= UINT16_MAX; ++session)
      sessions.push_back(static_cast<std::uint16_t>(session));
  } else {
    for (const auto& [session, target] : start.entries)
      sessions.push_back(session);
  }
  IngressMirrorLagGroupTableHandles& held = *table_->helper()->sdkHandles();
  std::set<std::uint16_t> recorded;
  for (auto slot = held.entries().begin(); slot; ++slot)
    recorded.insert(slot.key()->ingMirrorMdMirrorSession());
  auto& pd = *table_->helper()->pdLib();
  std::size_t adopted = 0;
  for (std::uint16_t session : sessions) {
    if (recorded.count(session) != 0)
      continue;
    p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_t key{session};
    std::uint32_t handle = 0;
    if (pd.p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_to_entry_hdl(
            sm_->sessionHandle(), {options_.device, options_.pipe}, &key, &handle) != 0)
      continue;
    auto match = Vel::allocate<IngressMirrorLagGroupMatchSpec>();
    match->ingMirrorMdMirrorSessionIs(session);
    held.entryIs(match, handle);
    recordAdopted(match, handle);
    ++adopted;
  }
  if (adopted != 0)
    log("found " + std::to_string(adopted) + " entries in the chip that no record names");
}

void AgentHost::recordAdopted(const Vel::Ptr<const IngressMirrorLagGroupMatchSpec>& match,
                              std::uint32_t handle) {
  using Vault::MbbPostcodef::EntryConfig;
  keys_->alloc(match, false);
  const EntryConfig record(keys_->entryKeyTake(),
                           Vault::MbbPostcodef::opIdOf(Vault::MbbPostcodef::ShadowOp::entryAdd),
                           handle, match->ingMirrorMdMirrorSession(), options_.pipe);
  keys_->entryShadow()->recordIs(record);
}

void AgentHost::makeTableAndProfile(const AgentConfig& start) {
  plugin_ = load(pluginLibrary);
  const auto tableFactory = symbol<decltype(&ingressMirrorLagGroupTableFactory)>(
      plugin_, "ingressMirrorLagGroupTableFactory", pluginLibrary);
  const auto profileFactory = symbol<decltype(&ingressMirrorLagGroupActionProfileFactory)>(
      plugin_, "ingressMirrorLagGroupActionProfileFactory", pluginLibrary);
  table_ = tableFactory(keys_, nullptr, pdLib_, options_.session, options_.device, options_.pipe,
                        options_.pdLib);
  profile_ = profileFactory(table_);
  sm_ = stateMachineOf(profile_);
  AttributePath::set(sm_, "sessionHandle", std::to_string(options_.session));
  adoptUnrecordedEntries(start);
  agentTable_ = std::make_unique<AgentTable>(table_, profile_);
  applier_ = std::make_unique<ConfigApplier>(*agentTable_);
  const IngressMirrorLagGroupTableHandles& held = *table_->helper()->sdkHandles();
  log("adopted " + std::to_string(held.entries().size()) + " entries, " +
      std::to_string(held.members().size()) + " members");
}

void AgentHost::applyAtStart(const AgentConfig& start) {
  const std::vector<std::uint32_t> oldGroups = recordedGroups();
  RestartApply restart(*agentTable_, *applier_);
  try {
    restart.apply(start, running_);
  } catch (const ApplyError& e) {
    const std::string failure = std::string("failed: ") + e.what();
    log(failure);
    throw std::runtime_error(failure);
  }
  applied(restart.changes());
  log("applied " + std::to_string(restart.changes().size()) + " changes, " +
      std::to_string(running_.groups.size()) + " groups created anew, " +
      std::to_string(restart.retiredGroups()) + " replaced groups deleted (" +
      std::to_string(restart.retiredForRoom()) + " first, to make room)");
  log("removed " + std::to_string(removeLeftovers(oldGroups)) + " objects left behind");
}

AgentConfig AgentHost::startConfig() const {
  if (!options_.discardState) {
    if (std::optional<AgentConfig> kept = state_.read())
      return *kept;
  }
  if (options_.config.empty())
    return AgentConfig();
  std::ifstream in(options_.config);
  if (!in)
    throw std::runtime_error("cannot read " + options_.config);
  std::stringstream text;
  text << in.rdbuf();
  try {
    return AgentConfig::fromText(text.str());
  } catch (const ConfigError& e) {
    throw ConfigError(e.path(), options_.config + ": " + e.what());
  }
}

std::vector<std::uint32_t> AgentHost::recordedGroups() const {
  std::vector<std::uint32_t> handles;
  for (const auto& record : keys_->groupShadow()->records()) {
    handles.push_back(record.groupHandle());
    if (record.replacedHandle() != 0)
      handles.push_back(record.replacedHandle());
  }
  return handles;
}

std::size_t AgentHost::removeLeftovers(const std::vector<std::uint32_t>& oldGroups) {
  return removeStaleEntries() + removeOldGroups(oldGroups) + removeStaleMembers() +
         removeUnrecorded();
}

std::size_t AgentHost::removeUnrecorded() {
  const ActionProfileReadBack chip(pdLib_);
  const std::uint32_t session = sm_->sessionHandle();
  const IngressMirrorLagGroupTableHandles& handles = *table_->helper()->sdkHandles();
  std::set<std::uint32_t> held;
  for (auto slot = handles.groups().begin(); slot; ++slot)
    held.insert(slot.value());
  std::size_t removed = 0;
  auto& pd = *table_->helper()->pdLib();
  for (std::uint32_t group : chip.groups(session, options_.device)) {
    if (held.count(group) == 0 && pd.p4_pd_kestro_switch_mirrorLagPortActionProfile_del_group(
                                      session, options_.device, group) == 0)
      ++removed;
  }
  held.clear();
  for (auto slot = handles.members().begin(); slot; ++slot)
    held.insert(slot.value());
  for (std::uint32_t member : chip.members(session, options_.device)) {
    if (held.count(member) == 0 && pd.p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member(
                                       session, options_.device, member) == 0)
      ++removed;
  }
  return removed;
}

std::size_t AgentHost::removeStaleEntries() {
  std::size_t removed = 0;
  for (std::uint16_t session : agentTable_->sessions()) {
    if (running_.entries.count(session) == 0) {
      agentTable_->entryDel(session);
      ++removed;
    }
  }
  if (!running_.defaultTarget && agentTable_->defaultHandle() != 0) {
    agentTable_->defaultDel();
    ++removed;
  }
  return removed;
}

std::size_t AgentHost::removeOldGroups(const std::vector<std::uint32_t>& oldGroups) {
  // The groups of the running configuration, all created by this instance.
  std::set<std::uint32_t> kept;
  for (const auto& [id, group] : running_.groups)
    kept.insert(agentTable_->groupHandle(id));
  IngressMirrorLagGroupTableHandles& handles = *table_->helper()->sdkHandles();
  std::set<std::uint32_t> old(oldGroups.begin(), oldGroups.end());
  std::vector<BfnTable::BfnGroupId> unconfigured;
  for (auto slot = handles.groups().begin(); slot; ++slot) {
    if (running_.groups.count(slot.key().value()) == 0) {
      unconfigured.push_back(slot.key());
      old.insert(slot.value());
    }
  }
  for (const BfnTable::BfnGroupId& id : unconfigured)
    handles.groupDel(id);
  std::size_t removed = 0;
  auto& pd = *table_->helper()->pdLib();
  for (std::uint32_t handle : old) {
    // A group gone already is as good as deleted.
    if (kept.count(handle) == 0 && pd.p4_pd_kestro_switch_mirrorLagPortActionProfile_del_group(
                                       sm_->sessionHandle(), options_.device, handle) == 0)
      ++removed;
  }
  return removed;
}

std::size_t AgentHost::removeStaleMembers() {
  IngressMirrorLagGroupTableHandles& handles = *table_->helper()->sdkHandles();
  std::vector<std::pair<BfnTable::BfnMemberId, std::uint32_t>> stale;
  for (auto slot = handles.members().begin(); slot; ++slot) {
    if (running_.members.count(slot.key().value()) == 0)
      stale.emplace_back(slot.key(), slot.value());
  }
  std::size_t removed = 0;
  auto& pd = *table_->helper()->pdLib();
  for (const auto& [id, handle] : stale) {
    if (pd.p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member(
            sm_->sessionHandle(), options_.device, handle) == 0) {
      handles.memberDel(id);
      ++removed;
    }
  }
  return removed;
}

AgentHost::~AgentHost() = default;

AgentHost::Answer AgentHost::run(const std::vector<std::string>& words, const std::string& body) {
  if (words.empty())
    return badCommand("no command");
  try {
    const std::string& command = words[0];
    if (command == "apply")
      return apply(AgentConfig::fromText(body));
    if (command == "show")
      return show(words);
    if (command == "member" || command == "group" || command == "entry")
      return edit(words);
    if (command == "get" || command == "set")
      return attribute(words);
    if (command == "trace")
      return trace(words);
    if (command == "check" && words.size() == 1)
      return check();
    if (command == "check")
      return badCommand(usage("check"));
    return badCommand("unknown command '" + command + "'");
  } catch (const std::invalid_argument& e) {
    return badCommand(e.what());
  } catch (const ConfigError& e) {
    return refused(std::string("refused: ") + e.what());
  } catch (const Vel::Exception& e) {
    return refused(e.message());
  } catch (const std::exception& e) {
    return refused(e.what());
  }
}

AgentHost::Answer AgentHost::apply(const AgentConfig& wanted) {
  try {
    applier_->apply(running_, wanted);
  } catch (const ApplyError& e) {
    const std::string failure = std::string("failed, nothing changed: ") + e.what();
    log(failure);
    return refused(failure);
  }
  running_ = wanted;
  std::string output = applied(applier_->changes());
  for (const std::string& note : running_.notes())
    output += "note: " + note + "\n";
  return {0, output};
}

std::string AgentHost::applied(const std::vector<std::string>& changes) {
  state_.write(running_);
  std::string output;
  for (const std::string& change : changes) {
    log(change + ": done");
    output += change + "\n";
  }
  return output;
}

// An edit of the running configuration, applied as a whole new configuration
// (checked first, then the difference).
AgentHost::Answer AgentHost::edit(const std::vector<std::string>& words) {
  nlohmann::json document = running_.toJson();
  const std::string& kind = words[0];
  if (kind == "member")
    editMember(document, words);
  else if (kind == "entry")
    editEntry(document, words);
  else
    editGroupMember(document, words);
  return apply(AgentConfig::fromJson(document));
}

void AgentHost::log(const std::string& line) const {
  if (options_.log == nullptr)
    return;
  std::fprintf(options_.log, "mirrorlag-agent: %s\n", line.c_str());
  std::fflush(options_.log);
}

// show SUBJECT [--json]
AgentHost::Answer AgentHost::show(const std::vector<std::string>& words) const {
  const bool json = words.size() == 3 && words[2] == kJsonOption;
  if ((words.size() != 2 && !json) || !isShowSubject(words[1]))
    return badCommand(usage("show"));
  if (words[1] == "config")
    return {0, running_.toJson().dump(2) + "\n"};
  const ShowTable table = AgentReport(running_, *agentTable_, *keys_).of(words[1]);
  return {0, json ? table.json().dump(2) + "\n" : table.text()};
}

// trace NAME=LEVEL
AgentHost::Answer AgentHost::trace(const std::vector<std::string>& words) const {
  if (words.size() != 2)
    return badCommand(usage("trace"));
  Vel::TraceHandle::levelsIs(words[1]);
  log("trace " + words[1] + ": done");
  return {0, ""};
}

Vel::Ptr<Vel::PtrInterface> AgentHost::root(const std::string& name) const {
  if (name == "sm")
    return sm_;
  if (name == "table")
    return table_;
  if (name == "profile")
    return profile_;
  throw std::runtime_error("a path starts with sm, table or profile, not '" + name + "'");
}

AgentHost::Answer AgentHost::attribute(const std::vector<std::string>& words) {
  const bool set = words[0] == "set";
  if (words.size() != (set ? 3u : 2u))
    return badCommand(usage(words[0]));
  const std::string& path = words[1];
  const std::size_t slash = path.find('/');
  if (slash == std::string::npos)
    return refused("a path is ROOT/NAME[/NAME...], ROOT being sm, table or profile");
  const Vel::Ptr<Vel::PtrInterface> object = root(path.substr(0, slash));
  const std::string rest = path.substr(slash + 1);
  try {
    if (!set)
      return {0, AttributePath::get(object, rest) + "\n"};
    AttributePath::set(object, rest, words[2]);
  } catch (const Vel::Exception& e) {
    // The message names the path from the root object; name it as it was given.
    std::string message = e.message();
    const std::string relative = "'" + rest + "'";
    if (const std::size_t at = message.find(relative); at != std::string::npos)
      message.replace(at, relative.size(), "'" + path + "'");
    return refused(message);
  }
  log("set " + path + " " + words[2] + ": done");
  return {0, ""};
}

AgentHost::Answer AgentHost::check() const {
  const ChipProbe chip(pdLib_);
  const AgentCheck checked(running_, *agentTable_, chip);
  const std::vector<std::string> faults = checked.faults();
  if (faults.empty())
    return {0, checked.summary() + "\n"};
  std::string output;
  for (const std::string& fault : faults)
    output += fault + "\n";
  return {1, output};
}

}  // namespace mirrorlag_agent
