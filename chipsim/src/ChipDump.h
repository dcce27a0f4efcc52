#pragma once

#include <cstdio>
#include <string>

#include "Chip.h"

namespace chipsim {

// Writes a chip's tables as text, for people and for the chipsim tool:
//
//   chip NAME: device D, P pipes, entry scope all pipes|per pipe
//   entries: N of CAPACITY
//     entry H: mirror_session=K pipe=0xP mbr=M|grp=G
//   default entry H: mbr=M|grp=G pipe=0xP     (or: default entry H: not set)
//   members: N of CAPACITY
//     mbr H: selector=S entries=E groups=G
//   groups: N of CAPACITY
//     grp H: max_size=S entries=E members=[M active, M inactive]
//
// Objects come in the order of their slots. The caller holds the chip's lock.
class ChipDump {
 public:
  ChipDump(const Chip& chip, std::string name) noexcept;

  void write(std::FILE* out) const;

 private:
  void writeEntries(std::FILE* out) const;
  void writeMembers(std::FILE* out) const;
  void writeGroups(std::FILE* out) const;

  const Chip& chip_;
  std::string name_;
};

}  // namespace chipsim
