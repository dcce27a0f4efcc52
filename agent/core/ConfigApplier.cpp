#include "core/ConfigApplier.h"

#include <exception>
#include <utility>

#include "config/ConfigError.h"
#include "core/ApplyError.h"

namespace mirrorlag_agent {

namespace {

std::string memberName(std::uint32_t id) {
  return "member " + std::to_string(id);
}
std::string groupName(std::uint32_t id) {
  return "group " + std::to_string(id);
}
std::string entryName(std::uint16_t session) {
  return "entry " + std::to_string(session);
}
std::string targetText(const ConfigTarget& target) {
  return (target.member ? "member " : "group ") + std::to_string(target.id);
}

const GroupMemberConfig* memberOf(const GroupConfig& group, std::uint32_t id) {
  for (const GroupMemberConfig& member : group.members) {
    if (member.id == id)
      return &member;
  }
  return nullptr;
}

// A group that stays must keep its size and initial member: the chip's group
// and the configured group cannot change them.
void checkGroupsKeepTheirShape(const AgentConfig& running, const AgentConfig& wanted) {
  for (const auto& [id, group] : wanted.groups) {
    const auto old = running.groups.find(id);
    if (old == running.groups.end())
      continue;
    if (old->second.size != group.size ||
        old->second.members.front().id != group.members.front().id) {
      throw ConfigError("/groups", groupName(id) +
                                       ": its size and first member cannot change while it "
                                       "exists; remove it first");
    }
  }
}

std::string messageOf(const std::exception& e) {
  return e.what();
}

}  // namespace

void ConfigApplier::apply(const AgentConfig& running, const AgentConfig& wanted) {
  checkGroupsKeepTheirShape(running, wanted);
  changes_.clear();
  undo_.clear();
  addPhase(running, wanted);
  removePhase(running, wanted);
  undo_.clear();
}

void ConfigApplier::change(std::string what, const std::function<void()>& doIt,
                           std::function<void()> undo) {
  // The undo is journalled first: a change the chip refused may have been
  // made in part (the configuration edited, the chip not), and is undone too.
  undo_.push_back(std::move(undo));
  try {
    doIt();
  } catch (const std::exception& e) {
    std::string message = what + ": " + messageOf(e);
    rollBack(message);
    throw ApplyError(message);
  }
  changes_.push_back(std::move(what));
}

void ConfigApplier::rollBack(std::string& message) noexcept {
  for (auto undo = undo_.rbegin(); undo != undo_.rend(); ++undo) {
    try {
      (*undo)();
    } catch (const std::exception& e) {
      message += "; an undo failed too: " + messageOf(e);
    }
  }
  undo_.clear();
  changes_.clear();
}

void ConfigApplier::addPhase(const AgentConfig& running, const AgentConfig& wanted) {
  AgentTable& t = table_;
  for (const auto& [id, selector] : wanted.members) {
    const auto old = running.members.find(id);
    if (old == running.members.end()) {
      change(
          memberName(id) + " add", [&t, id = id, s = selector] { t.memberIs(id, s); },
          [&t, id = id] { t.memberDel(id); });
    } else if (old->second != selector) {
      change(
          memberName(id) + " selector " + std::to_string(selector),
          [&t, id = id, s = selector] { t.memberIs(id, s); },
          [&t, id = id, s = old->second] { t.memberIs(id, s); });
    }
  }
  for (const auto& [id, group] : wanted.groups) {
    const auto old = running.groups.find(id);
    if (old == running.groups.end()) {
      change(
          groupName(id) + " add", [&t, id = id, g = group] { t.groupIs(id, g); },
          [&t, id = id] { t.groupDel(id); });
    } else {
      changeGroupMembers(id, old->second, group);
    }
  }
  for (const auto& [session, target] : wanted.entries) {
    const auto old = running.entries.find(session);
    if (old == running.entries.end()) {
      change(
          entryName(session) + " " + targetText(target),
          [&t, s = session, target = target] { t.entryIs(s, target); },
          [&t, s = session] { t.entryDel(s); });
    } else if (!(old->second == target)) {
      change(
          entryName(session) + " " + targetText(target),
          [&t, s = session, target = target] { t.entryIs(s, target); },
          [&t, s = session, before = old->second] { t.entryIs(s, before); });
    }
  }
  if (wanted.defaultTarget && wanted.defaultTarget != running.defaultTarget) {
    const auto before = running.defaultTarget;
    change(
        "default " + targetText(*wanted.defaultTarget),
        [&t, target = *wanted.defaultTarget] { t.defaultIs(target); },
        [&t, before] {
          if (before)
            t.defaultIs(*before);
          else
            t.defaultDel();
        });
  }
}

void ConfigApplier::changeGroupMembers(std::uint32_t id, const GroupConfig& running,
                                       const GroupConfig& wanted) {
  AgentTable& t = table_;
  // Members leave before others join, so that a full group can change members.
  for (const GroupMemberConfig& member : running.members) {
    if (memberOf(wanted, member.id) == nullptr) {
      change(
          groupName(id) + " " + memberName(member.id) + " del",
          [&t, id, member] { t.groupMemberDel(id, member.id); },
          [&t, id, member] { t.groupMemberIs(id, member.id, member.active); });
    }
  }
  for (const GroupMemberConfig& member : wanted.members) {
    const GroupMemberConfig* before = memberOf(running, member.id);
    const std::string name = groupName(id) + " " + memberName(member.id);
    if (before == nullptr) {
      change(
          name + " add", [&t, id, member] { t.groupMemberIs(id, member.id, member.active); },
          [&t, id, member] { t.groupMemberDel(id, member.id); });
    } else if (before->active != member.active) {
      change(
          name + (member.active ? " active" : " inactive"),
          [&t, id, member] { t.groupMemberIs(id, member.id, member.active); },
          [&t, id, member] { t.groupMemberIs(id, member.id, !member.active); });
    }
  }
}

void ConfigApplier::removePhase(const AgentConfig& running, const AgentConfig& wanted) {
  AgentTable& t = table_;
  if (running.defaultTarget && !wanted.defaultTarget) {
    change(
        "default del", [&t] { t.defaultDel(); },
        [&t, before = *running.defaultTarget] { t.defaultIs(before); });
  }
  for (const auto& [session, target] : running.entries) {
    if (wanted.entries.count(session) == 0) {
      change(
          entryName(session) + " del", [&t, s = session] { t.entryDel(s); },
          [&t, s = session, target = target] { t.entryIs(s, target); });
    }
  }
  for (const auto& [id, group] : running.groups) {
    if (wanted.groups.count(id) == 0) {
      change(
          groupName(id) + " del", [&t, id = id] { t.groupDel(id); },
          [&t, id = id, group = group] { t.groupIs(id, group); });
    }
  }
  for (const auto& [id, selector] : running.members) {
    if (wanted.members.count(id) == 0) {
      change(
          memberName(id) + " del", [&t, id = id] { t.memberDel(id); },
          [&t, id = id, s = selector] { t.memberIs(id, s); });
    }
  }
}

}  // namespace mirrorlag_agent
