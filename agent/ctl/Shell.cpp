#include "ctl/Shell.h"

#include <readline/history.h>
#include <readline/readline.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <sstream>

#include <nlohmann/json.hpp>

#include "protocol/ControlCommands.h"

namespace mirrorlag_agent {

namespace {

// The shell's own commands, besides the agent's.
constexpr ControlCommand kShellCommands[] = {{"help", "help", "this list"},
                                             {"quit", "quit", "leave the shell"}};

// The column where the help of a command starts; a longer usage puts it on
// the next line.
constexpr std::size_t kHelpColumn = 44;

std::string helpLine(const ControlCommand& command) {
  std::string line = "  " + std::string(command.usage);
  if (line.size() >= kHelpColumn)
    line += "\n";
  line.resize(line.back() == '\n' ? line.size() + kHelpColumn : kHelpColumn, ' ');
  return line + std::string(command.help) + "\n";
}

// The names of the commands, the agent's and the shell's.
std::vector<std::string> commandNames() {
  std::vector<std::string> names;
  for (const ControlCommand& command : kControlCommands)
    names.emplace_back(command.name);
  for (const ControlCommand& command : kShellCommands)
    names.emplace_back(command.name);
  return names;
}

Shell* activeShell = nullptr;

std::vector<std::string> wordsOf(const std::string& line) {
  std::istringstream in(line);
  std::vector<std::string> words;
  for (std::string word; in >> word;)
    words.push_back(word);
  return words;
}

std::string historyFile() {
  const char* home = std::getenv("HOME");
  return std::string(home != nullptr ? home : ".") + "/.mirrorlagctl_history";
}

// readline's generator over the shell's completions of the word at the cursor.
char* generate(const char* text, int state) {
  static std::vector<std::string> matches;
  static std::size_t next = 0;
  if (state == 0) {
    const std::string line(rl_line_buffer, static_cast<std::size_t>(rl_point));
    std::vector<std::string> words = wordsOf(line);
    if (!line.empty() && line.back() != ' ' && !words.empty())
      words.pop_back();
    matches = activeShell->completions(words, text);
    next = 0;
  }
  return next < matches.size() ? strdup(matches[next++].c_str()) : nullptr;
}

char** complete(const char* text, int, int) {
  rl_attempted_completion_over = 1;
  return rl_completion_matches(text, &generate);
}

}  // namespace

std::string Shell::helpText() {
  std::string text = "commands:\n";
  for (const ControlCommand& command : kControlCommands)
    text += helpLine(command);
  for (const ControlCommand& command : kShellCommands)
    text += helpLine(command);
  return text;
}

std::vector<std::string> Shell::completions(const std::vector<std::string>& words,
                                            const std::string& text) const {
  std::vector<std::string> candidates;
  const std::size_t index = words.size();
  if (index == 0) {
    candidates = commandNames();
  } else if (words[0] == "show" && index == 1) {
    candidates.assign(std::begin(kShowSubjects), std::end(kShowSubjects));
  } else if (words[0] == "show" && index == 2) {
    candidates = {std::string(kJsonOption)};
  } else if (words[0] == "member") {
    candidates = index == 1   ? memberIds_
                 : index == 2 ? std::vector<std::string>{"selector", "del"}
                              : std::vector<std::string>{};
  } else if (words[0] == "group") {
    if (index == 1)
      candidates = groupIds_;
    else if (index == 2)
      candidates = {"member"};
    else if (index == 3)
      candidates = memberIds_;
    else if (index == 4)
      candidates = {"add", "del", "active", "inactive"};
  } else if (words[0] == "entry") {
    if (index == 1)
      candidates = sessions_;
    else if (index == 2)
      candidates = {"member", "group", "del"};
    else if (index == 3)
      candidates = words[2] == "group" ? groupIds_ : memberIds_;
  } else if ((words[0] == "get" || words[0] == "set") && index == 1) {
    candidates = {"sm/", "table/", "profile/"};
  }
  std::vector<std::string> result;
  for (const std::string& candidate : candidates) {
    if (candidate.rfind(text, 0) == 0)
      result.push_back(candidate);
  }
  return result;
}

void Shell::refreshIds() {
  memberIds_.clear();
  groupIds_.clear();
  sessions_.clear();
  const ControlClient::Answer answer = client_.run({"show", "config"});
  if (answer.status != 0)
    return;
  try {
    const nlohmann::json config = nlohmann::json::parse(answer.output);
    for (const auto& member : config.value("members", nlohmann::json::array()))
      memberIds_.push_back(std::to_string(member["id"].get<std::uint32_t>()));
    for (const auto& group : config.value("groups", nlohmann::json::array()))
      groupIds_.push_back(std::to_string(group["id"].get<std::uint32_t>()));
    for (const auto& entry : config.value("entries", nlohmann::json::array()))
      sessions_.push_back(std::to_string(entry["session"].get<std::uint32_t>()));
  } catch (const std::exception&) {
  }
}

int Shell::run() {
  activeShell = this;
  rl_attempted_completion_function = &complete;
  const std::string history = historyFile();
  // The history of earlier runs; a first run makes the file, so that each
  // line can then be appended to it as it is entered.
  if (read_history(history.c_str()) != 0)
    write_history(history.c_str());
  refreshIds();
  int status = 0;
  while (char* raw = readline("mirrorlag> ")) {
    const std::string line(raw);
    std::free(raw);
    const std::vector<std::string> words = wordsOf(line);
    if (words.empty())
      continue;
    add_history(line.c_str());
    append_history(1, history.c_str());
    if (words[0] == "quit" || words[0] == "exit")
      break;
    if (words[0] == "help") {
      std::fputs(helpText().c_str(), stdout);
      continue;
    }
    const ControlClient::Answer answer = client_.run(words);
    std::fputs(answer.output.c_str(), stdout);
    std::fflush(stdout);
    status = answer.status;
    refreshIds();
  }
  activeShell = nullptr;
  return status;
}

}  // namespace mirrorlag_agent
