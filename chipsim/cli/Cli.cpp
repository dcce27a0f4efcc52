#include "Cli.h"

#include "HelpText.h"
#include "TrafficRun.h"

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <map>

#include "chipsim/chipsim.h"

Cli::Cli(std::vector<std::string> arguments) : arguments_(std::move(arguments)) {}

int Cli::usageError(const std::string& message) const {
  std::cerr << "chipsim: " << message << " (see chipsim --help)\n";
  return kUsage;
}

int Cli::failure(const std::string& message) const {
  std::cerr << "chipsim: " << message << "\n";
  return kFailed;
}

std::optional<uint64_t> Cli::number(const std::string& what, const std::string& text,
                                    uint64_t max) const {
  bool hex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
  const char* first = text.data() + (hex ? 2 : 0);
  const char* last = text.data() + text.size();
  uint64_t value = 0;
  auto [end, error] = std::from_chars(first, last, value, hex ? 16 : 10);
  if (text.empty() || error != std::errc() || end != last || value > max) {
    usageError("bad " + what + " '" + text + "'");
    return std::nullopt;
  }
  return value;
}

int Cli::run() {
  std::vector<std::string> operands;
  for (std::size_t i = 0; i < arguments_.size(); ++i) {
    const std::string& argument = arguments_[i];
    if (argument == "-h" || argument == "--help") {
      std::cout << kChipsimHelp;
      return 0;
    }
    if (argument == "--chip") {
      if (++i == arguments_.size()) {
        return usageError("--chip needs a NAME");
      }
      chip_ = arguments_[i];
    } else if (argument.rfind("--chip=", 0) == 0) {
      chip_ = argument.substr(7);
    } else if (argument.size() > 1 && argument[0] == '-' && operands.empty()) {
      return usageError("unknown option '" + argument + "'");
    } else {
      operands.push_back(argument);
    }
  }
  if (operands.empty()) {
    return usageError("no command");
  }
  if (chip_.empty()) {
    return usageError("no chip: give --chip NAME");
  }
  std::string command = operands.front();
  operands.erase(operands.begin());
  return dispatch(command, operands);
}

int Cli::dispatch(const std::string& command, const std::vector<std::string>& operands) {
  bool known = command == "dump" || command == "log" || command == "reset" || command == "fault" ||
               command == "forward" || command == "traffic";
  if (!known) {
    return usageError("unknown command '" + command + "'");
  }
  bool plain = command == "dump" || command == "log" || command == "reset";
  if (plain && !operands.empty()) {
    return usageError(command + " takes no arguments");
  }
  if (int error = chipsim_attach_existing(chip_.c_str())) {
    if (error == EUCLEAN) {
      return failure("chip '" + chip_ + "' is damaged: " + chipsim_last_fault());
    }
    if (error == ETIMEDOUT || error == EPERM) {
      return failure("chip '" + chip_ + "': " + chipsim_last_fault());
    }
    return failure("cannot attach to chip '" + chip_ + "': " + std::strerror(error));
  }
  // A reset empties even a damaged chip; every other command needs a sound one.
  if (command != "reset") {
    const char* fault = nullptr;
    const int state = chipsim_examine(&fault);
    if (state == EUCLEAN) {
      return failure("chip '" + chip_ + "' is damaged: " + fault);
    }
    if (state != 0) {
      return failure("chip '" + chip_ + "': " + fault);
    }
  }
  if (command == "dump") {
    return dump();
  }
  if (command == "log") {
    return log();
  }
  if (command == "reset") {
    return reset();
  }
  if (command == "traffic") {
    return traffic(operands);
  }
  return command == "fault" ? fault(operands) : forward(operands);
}

int Cli::dump() {
  if (int error = chipsim_dump(stdout)) {
    return failure(std::string("cannot dump the chip: ") + std::strerror(error));
  }
  return 0;
}

int Cli::log() {
  uint32_t count = chipsim_log_count();
  for (uint32_t i = 0; i < count; ++i) {
    if (const char* line = chipsim_log_line(i)) {
      std::cout << line << "\n";
    }
  }
  return 0;
}

int Cli::reset() {
  if (int error = chipsim_reset()) {
    return failure(std::string("cannot reset the chip: ") + std::strerror(error));
  }
  return 0;
}

int Cli::fault(const std::vector<std::string>& operands) {
  if (operands.size() < 2 || operands.size() > 3) {
    return usageError("fault needs FUNCTION STATUS [COUNT]");
  }
  std::optional<uint64_t> status = number("status", operands[1], INT32_MAX);
  std::optional<uint64_t> count =
      operands.size() == 3 ? number("count", operands[2], UINT32_MAX) : 1;
  if (!status || !count) {
    return kUsage;
  }
  if (*status == 0 && *count != 0) {
    return usageError("status 0 is not a fault");
  }
  if (chipsim_calls(operands[0].c_str()) < 0) {
    return usageError("unknown PD function '" + operands[0] + "'");
  }
  if (int error = chipsim_fail_next(operands[0].c_str(), static_cast<int>(*status),
                                    static_cast<unsigned>(*count))) {
    return failure(std::string("cannot inject the fault: ") + std::strerror(error));
  }
  return 0;
}

int Cli::forward(const std::vector<std::string>& operands) {
  if (operands.size() < 2 || operands.size() > 3) {
    return usageError("forward needs SESSION HASH [PIPE]");
  }
  std::optional<uint64_t> session = number("session", operands[0], UINT16_MAX);
  std::optional<uint64_t> hash = number("hash", operands[1], UINT32_MAX);
  std::optional<uint64_t> pipe =
      operands.size() == 3 ? number("pipe", operands[2], UINT32_MAX) : std::nullopt;
  if (!session || !hash || (operands.size() == 3 && !pipe)) {
    return kUsage;
  }
  uint16_t selector = 0;
  int result =
      pipe ? chipsim_lookup_on_pipe(static_cast<uint32_t>(*pipe), static_cast<uint16_t>(*session),
                                    static_cast<uint32_t>(*hash), &selector)
           : chipsim_lookup(static_cast<uint16_t>(*session), static_cast<uint32_t>(*hash),
                            &selector);
  switch (result) {
    case 0:
      std::cout << "selector " << selector << "\n";
      return 0;
    case CHIPSIM_DEFAULT_HIT:
      std::cout << "selector " << selector << " (default entry)\n";
      return 0;
    case CHIPSIM_MISS:
      std::cout << "miss\n";
      return 0;
    case EINVAL:
      return usageError("no pipe " + operands[2] + " on this chip");
    default:
      return failure(std::string("cannot forward: ") + std::strerror(result));
  }
}

int Cli::traffic(const std::vector<std::string>& operands) {
  std::uint64_t first = 0;
  std::uint64_t last = 63;
  std::uint64_t seconds = 10;
  for (std::size_t i = 0; i < operands.size(); ++i) {
    const std::string& option = operands[i];
    if (i + 1 == operands.size() || (option != "--sessions" && option != "--seconds"))
      return usageError("traffic takes --sessions A-B and --seconds S");
    const std::string& value = operands[++i];
    if (option == "--seconds") {
      std::optional<uint64_t> parsed = number("seconds", value, 86400);
      if (!parsed)
        return kUsage;
      seconds = *parsed;
      continue;
    }
    const std::size_t dash = value.find('-');
    std::optional<uint64_t> from = number("session", value.substr(0, dash), UINT16_MAX);
    std::optional<uint64_t> to =
        dash == std::string::npos ? from : number("session", value.substr(dash + 1), UINT16_MAX);
    if (!from || !to || *to < *from)
      return usageError("bad sessions '" + value + "'");
    first = *from;
    last = *to;
  }
  return TrafficRun(static_cast<std::uint16_t>(first), static_cast<std::uint16_t>(last), seconds)
      .run();
}
