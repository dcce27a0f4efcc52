#pragma once

#include <string_view>

namespace mirrorlag_agent {

// The commands the agent answers on its control socket, with their usage and
// a line of help: the agent's usage messages, the client's help and the
// shell's completion all come from this list.
struct ControlCommand {
  std::string_view name;
  std::string_view usage;
  std::string_view help;
};

inline constexpr ControlCommand kControlCommands[] = {
    {"apply", "apply FILE", "apply a configuration file (checked whole, then the difference)"},
    {"show", "show entries|members|groups|handles|shadow|config [--json]",
     "the running configuration and what the plug-in holds for it"},
    {"member", "member ID selector N | member ID del", "add, change or remove a member"},
    {"group", "group ID member M add|del|active|inactive", "edit a group's members"},
    {"entry", "entry SESSION member|group ID | entry SESSION del",
     "point a session's entry at a member or group, or remove it"},
    {"get", "get PATH", "an attribute by name (sm/..., table/..., profile/...)"},
    {"set", "set PATH VALUE", "set an attribute by name"},
    {"trace", "trace NAME=LEVEL", "set a trace level (-1 off .. 9)"},
    {"check", "check", "the chip's coherence and the agent's view against the chip"},
};

// What `show` shows; "config" prints the running configuration as JSON.
inline constexpr std::string_view kShowSubjects[] = {"entries", "members", "groups",
                                                     "handles", "shadow",  "config"};

// The option that makes `show` print JSON.
inline constexpr std::string_view kJsonOption = "--json";

// The usage of command `name`; empty for a name that is not a command.
constexpr std::string_view usageOf(std::string_view name) {
  for (const ControlCommand& command : kControlCommands) {
    if (command.name == name)
      return command.usage;
  }
  return {};
}

}  // namespace mirrorlag_agent
