#include "support/ChipContents.h"

#include <cstdio>
#include <cstdlib>
#include <sstream>

#include "support/ChipsimLibrary.h"

namespace shadow_test {

namespace {

// The members of a group line: "members=[7 active, 9 inactive]".
std::map<std::uint32_t, bool> parseGroupMembers(const std::string& line) {
  std::map<std::uint32_t, bool> members;
  const std::size_t open = line.find("members=[");
  if (open == std::string::npos)
    return members;
  std::istringstream list(line.substr(open + 9, line.find(']', open) - open - 9));
  std::string item;
  while (std::getline(list, item, ',')) {
    unsigned handle = 0;
    char state[16] = {};
    if (std::sscanf(item.c_str(), " %u %15s", &handle, state) == 2)
      members[handle] = std::string(state) == "active";
  }
  return members;
}

}  // namespace

ChipContents ChipContents::read() {
  char* text = nullptr;
  std::size_t size = 0;
  FILE* out = open_memstream(&text, &size);
  chipsim_test::chipsim().dump(out);
  std::fclose(out);
  std::string dump(text, size);
  std::free(text);
  return parse(dump);
}

ChipContents ChipContents::parse(const std::string& dump) {
  ChipContents contents;
  std::istringstream lines(dump);
  std::string line;
  while (std::getline(lines, line)) {
    unsigned handle = 0;
    unsigned session = 0;
    if (std::sscanf(line.c_str(), "  entry %u: mirror_session=%u", &handle, &session) == 2) {
      contents.entries[handle] = static_cast<std::uint16_t>(session);
    } else if (std::sscanf(line.c_str(), "default entry %u:", &handle) == 1) {
      if (line.find("not set") == std::string::npos) {
        contents.defaultEntry = handle;
      }
    } else if (std::sscanf(line.c_str(), "  mbr %u:", &handle) == 1) {
      contents.members.insert(handle);
    } else if (std::sscanf(line.c_str(), "  grp %u:", &handle) == 1) {
      contents.groups.insert(handle);
      contents.groupMembers[handle] = parseGroupMembers(line);
    }
  }
  return contents;
}

}  // namespace shadow_test
