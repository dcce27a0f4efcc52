#include "host/AgentHost.h"

#include <dlfcn.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "BfPdIngressMirrorLagGroup/ShadowReconciler.h"
#include "Vel/Allocate.h"
#include "Vel/Exception.h"
#include "config/ConfigError.h"
#include "core/ApplyError.h"

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
  throw ConfigError("", std::string(what) + " '" + word + "' is not a number");
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
    throw std::invalid_argument("usage: member ID selector N | member ID del");
  const std::uint32_t id = numberOf(words[1], "member");
  eraseWhere(document["members"], "id", id);
  if (select)
    document["members"].push_back({{"id", id}, {"selector", numberOf(words[3], "selector")}});
}

// entry SESSION member|group ID | entry SESSION del
void editEntry(nlohmann::json& document, const std::vector<std::string>& words) {
  const bool point = words.size() == 4 && (words[2] == "member" || words[2] == "group");
  if (!point && !(words.size() == 3 && words[2] == "del"))
    throw std::invalid_argument("usage: entry SESSION member|group ID | entry SESSION del");
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
    throw std::invalid_argument("usage: group ID member M add|del|active|inactive");
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
      throw std::invalid_argument("a group member is add, del, active or inactive");
    }
    return;
  }
  throw std::invalid_argument("group " + words[1] + " is not configured");
}

AgentHost::Answer refused(const std::string& why) {
  return {1, why + "\n"};
}

}  // namespace

AgentHost::AgentHost(const AgentOptions& options) : options_(options), state_(options.state) {
  pdLib_ = load(options_.pdLib);
  if (auto attach = reinterpret_cast<int (*)(const char*)>(dlsym(pdLib_, "chipsim_attach"))) {
    if (attach(options_.chip.c_str()) != 0)
      throw std::runtime_error("cannot attach chip '" + options_.chip + "'");
  }
  keys_ = Vel::allocate<MbbVaultKey::VaultKeyManager>(options_.shadow);
  {
    const auto pd = Vel::allocate<BfPdIngressMirrorLagGroup::BfPdIngressMirrorLagGroupIntf>(
        options_.pdLib, pdLib_, options_.session);
    const auto settled =
        BfPdIngressMirrorLagGroup::ShadowReconciler(*keys_, *pd, options_.device).reconcile();
    startLog_.push_back("settled " + std::to_string(settled.total()) + " unfinished records");
  }
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
  agentTable_ = std::make_unique<AgentTable>(table_, profile_);
  applier_ = std::make_unique<ConfigApplier>(*agentTable_);
  startLog_.push_back(
      "adopted " + std::to_string(table_->helper()->sdkHandles()->entries().size()) + " entries, " +
      std::to_string(table_->helper()->sdkHandles()->members().size()) + " members");

  std::optional<AgentConfig> start = options_.discardState ? std::nullopt : state_.read();
  if (!start && !options_.config.empty()) {
    std::ifstream in(options_.config);
    if (!in)
      throw std::runtime_error("cannot read " + options_.config);
    std::stringstream text;
    text << in.rdbuf();
    start = AgentConfig::fromText(text.str());
  }
  const std::vector<std::uint32_t> oldGroups = recordedGroups();
  const Answer answer = apply(start.value_or(AgentConfig()));
  if (answer.status != 0)
    throw std::runtime_error(answer.output);
  startLog_.push_back("applied " + std::to_string(applier_->changes().size()) + " changes, " +
                      std::to_string(running_.groups.size()) + " groups created anew");
  startLog_.push_back("removed " + std::to_string(removeLeftovers(oldGroups)) +
                      " objects left behind");
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
  std::size_t removed = 0;
  for (std::uint16_t session : agentTable_->sessions()) {
    if (running_.entries.count(session) == 0) {
      agentTable_->entryDel(session);
      ++removed;
    }
  }
  const IngressMirrorLagGroupTableHandles& handles = *table_->helper()->sdkHandles();
  std::vector<std::uint32_t> current;
  for (auto slot = handles.groups().begin(); slot; ++slot)
    current.push_back(slot.value());
  auto& pd = *table_->helper()->pdLib();
  const std::uint32_t session = sm_->sessionHandle();
  for (std::uint32_t handle : oldGroups) {
    if (std::find(current.begin(), current.end(), handle) != current.end())
      continue;
    // Gone already (6) is as good as deleted.
    const pipe_status status = pd.p4_pd_kestro_switch_mirrorLagPortActionProfile_del_group(
        session, options_.device, handle);
    removed += status == 0 ? 1 : 0;
  }
  std::vector<std::pair<BfnTable::BfnMemberId, std::uint32_t>> stale;
  for (auto slot = handles.members().begin(); slot; ++slot) {
    if (running_.members.count(slot.key().value()) == 0)
      stale.emplace_back(slot.key(), slot.value());
  }
  for (const auto& [id, handle] : stale) {
    if (pd.p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member(session, options_.device,
                                                                     handle) == 0) {
      table_->helper()->sdkHandles()->memberDel(id);
      ++removed;
    }
  }
  return removed;
}

AgentHost::~AgentHost() = default;

AgentHost::Answer AgentHost::run(const std::vector<std::string>& words, const std::string& body) {
  if (words.empty())
    return refused("no command");
  try {
    const std::string& command = words[0];
    if (command == "apply")
      return apply(AgentConfig::fromText(body));
    if (command == "show" && words.size() >= 2 && words[1] == "config")
      return {0, running_.toJson().dump(2) + "\n"};
    if (command == "member" || command == "group" || command == "entry")
      return edit(words);
    if (command == "get" || command == "set")
      return attribute(words);
    if (command == "check")
      return check();
    return refused("unknown command '" + command + "'");
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
    return refused(std::string("failed, nothing changed: ") + e.what());
  }
  running_ = wanted;
  state_.write(running_);
  std::string output;
  for (const std::string& change : applier_->changes())
    output += change + "\n";
  for (const std::string& note : running_.notes())
    output += "note: " + note + "\n";
  return {0, output};
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

Vel::Ptr<Vel::PtrInterface> AgentHost::root(const std::string& name) const {
  if (name == "sm")
    return sm_;
  if (name == "table")
    return table_;
  if (name == "profile")
    return profile_;
  throw ConfigError("", "a path starts with sm, table or profile, not '" + name + "'");
}

AgentHost::Answer AgentHost::attribute(const std::vector<std::string>& words) {
  const bool set = words[0] == "set";
  if (words.size() != (set ? 3u : 2u))
    return refused(set ? "usage: set PATH VALUE" : "usage: get PATH");
  const std::string& path = words[1];
  const std::size_t slash = path.find('/');
  if (slash == std::string::npos)
    return refused("a path is ROOT/NAME[/NAME...], ROOT being sm, table or profile");
  const Vel::Ptr<Vel::PtrInterface> object = root(path.substr(0, slash));
  const std::string rest = path.substr(slash + 1);
  if (!set)
    return {0, AttributePath::get(object, rest) + "\n"};
  AttributePath::set(object, rest, words[2]);
  return {0, ""};
}

AgentHost::Answer AgentHost::check() const {
  auto chipCheck = reinterpret_cast<const char* (*)()>(dlsym(pdLib_, "chipsim_check"));
  if (chipCheck == nullptr)
    return {0, "the chip offers no check\n"};
  const char* fault = chipCheck();
  if (fault != nullptr)
    return refused(std::string("chip: ") + fault);
  return {0, "chip coherent\n"};
}

}  // namespace mirrorlag_agent
