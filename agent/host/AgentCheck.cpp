#include "host/AgentCheck.h"

#include <algorithm>
#include <limits>

namespace mirrorlag_agent {

namespace {

// "10 11 12", or "none".
std::string listed(const std::set<std::uint16_t>& selectors) {
  std::string text;
  for (std::uint16_t selector : selectors)
    text += (text.empty() ? "" : " ") + std::to_string(selector);
  return text.empty() ? "none" : text;
}

// "entries 2".
std::string countText(std::size_t count, const char* what) {
  return std::string(what) + " " + std::to_string(count);
}

// A session that no entry of `running` names; none when all are named.
std::optional<std::uint16_t> freeSession(const AgentConfig& running) {
  for (std::uint32_t session = 0; session <= std::numeric_limits<std::uint16_t>::max(); ++session) {
    if (running.entries.count(static_cast<std::uint16_t>(session)) == 0)
      return static_cast<std::uint16_t>(session);
  }
  return std::nullopt;
}

}  // namespace

std::vector<std::string> AgentCheck::faults() const {
  std::vector<std::string> faults;
  if (chip_.available()) {
    if (const auto fault = chip_.fault())
      faults.push_back("chip: " + *fault);
  }
  handleFaults(faults);
  if (chip_.available()) {
    countFaults(faults);
    forwardingFaults(faults);
  }
  return faults;
}

std::string AgentCheck::summary() const {
  const std::string counted = countText(running_.entries.size(), "entries") + ", " +
                              countText(running_.members.size(), "members") + ", " +
                              countText(running_.groups.size(), "groups");
  if (!chip_.available())
    return "the plug-in holds what is configured (" + counted + "); the chip offers no check";
  return "chip coherent; it holds and forwards what is configured (" + counted + ")";
}

void AgentCheck::handleFaults(std::vector<std::string>& faults) const {
  for (const auto& [session, target] : running_.entries) {
    if (table_.entryHandle(session) == 0)
      faults.push_back("entry " + std::to_string(session) + ": the plug-in holds no handle");
  }
  if (running_.defaultTarget && table_.defaultHandle() == 0)
    faults.push_back("default entry: the plug-in holds no handle");
  for (const auto& [id, selector] : running_.members) {
    if (table_.memberHandle(id) == 0)
      faults.push_back("member " + std::to_string(id) + ": the plug-in holds no handle");
  }
  for (const auto& [id, group] : running_.groups) {
    if (table_.groupHandle(id) == 0)
      faults.push_back("group " + std::to_string(id) + ": the plug-in holds no handle");
  }
}

void AgentCheck::countFaults(std::vector<std::string>& faults) const {
  const auto compare = [&faults](const char* what, std::size_t chip, std::size_t configured) {
    if (chip != configured) {
      faults.push_back(std::string("the chip holds ") + countText(chip, what) +
                       ", the configuration names " + countText(configured, what));
    }
  };
  compare("entries", chip_.entries(), running_.entries.size());
  compare("members", chip_.members(), running_.members.size());
  compare("groups", chip_.groups(), running_.groups.size());
}

void AgentCheck::forwardingFaults(std::vector<std::string>& faults) const {
  for (const auto& [session, target] : running_.entries) {
    const std::set<std::uint16_t> wanted = selectorsOf(target);
    bool byDefault = false;
    const std::set<std::uint16_t> got = forwarded(session, choices(target), byDefault);
    if (got != wanted || (byDefault && !got.empty())) {
      faults.push_back("session " + std::to_string(session) + ": the chip forwards to " +
                       listed(got) + (byDefault ? " by the default entry" : "") +
                       ", the configuration to " + listed(wanted));
    }
  }
  const std::optional<std::uint16_t> session = freeSession(running_);
  if (!session)
    return;
  const std::optional<ConfigTarget>& target = running_.defaultTarget;
  const std::set<std::uint16_t> wanted = target ? selectorsOf(*target) : std::set<std::uint16_t>();
  bool byDefault = false;
  const std::set<std::uint16_t> got = forwarded(*session, target ? choices(*target) : 1, byDefault);
  if (got != wanted) {
    faults.push_back("default entry: the chip forwards session " + std::to_string(*session) +
                     " to " + listed(got) + ", the configuration to " + listed(wanted));
  }
}

std::set<std::uint16_t> AgentCheck::selectorsOf(const ConfigTarget& target) const {
  if (target.member)
    return {running_.members.at(target.id)};
  std::set<std::uint16_t> selectors;
  for (const GroupMemberConfig& member : running_.groups.at(target.id).members) {
    if (member.active)
      selectors.insert(running_.members.at(member.id));
  }
  return selectors;
}

std::size_t AgentCheck::choices(const ConfigTarget& target) const {
  if (target.member)
    return 1;
  const std::vector<GroupMemberConfig>& members = running_.groups.at(target.id).members;
  return std::max<std::size_t>(
      1, std::count_if(members.begin(), members.end(),
                       [](const GroupMemberConfig& member) { return member.active; }));
}

std::set<std::uint16_t> AgentCheck::forwarded(std::uint16_t session, std::size_t hashes,
                                              bool& byDefault) const {
  std::set<std::uint16_t> selectors;
  for (std::uint32_t hash = 0; hash < hashes; ++hash) {
    if (const auto found = chip_.lookup(session, hash)) {
      selectors.insert(found->selector);
      byDefault = byDefault || found->byDefault;
    }
  }
  return selectors;
}

}  // namespace mirrorlag_agent
