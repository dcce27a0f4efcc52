#include "ChipDump.h"

namespace chipsim {

namespace {

const char* targetLabel(const EntryRecord& entry) {
  return entry.isGroup ? "grp" : "mbr";
}

}  // namespace

ChipDump::ChipDump(const Chip& chip, std::string name) noexcept
    : chip_(chip), name_(std::move(name)) {}

void ChipDump::write(std::FILE* out) const {
  const chipsim_config& config = chip_.config();
  std::fprintf(out, "chip %s: device %d, %u pipes, entry scope %s\n", name_.c_str(),
               config.device_id, config.pipes,
               chip_.table().scopedPerPipe() ? "per pipe" : "all pipes");
  writeEntries(out);
  writeMembers(out);
  writeGroups(out);
}

void ChipDump::writeEntries(std::FILE* out) const {
  const MatchTable& table = chip_.table();
  std::fprintf(out, "entries: %u of %u\n", table.pool().used(), table.pool().capacity());
  table.pool().forEach([&](const EntryRecord& entry) {
    std::fprintf(out, "  entry %u: mirror_session=%u pipe=0x%x %s=%u\n", entry.handle,
                 unsigned{entry.key}, entry.pipe, targetLabel(entry), entry.target);
  });
  const EntryRecord& fallback = table.defaultEntry();
  if (fallback.inUse) {
    std::fprintf(out, "default entry %u: %s=%u pipe=0x%x\n", fallback.handle, targetLabel(fallback),
                 fallback.target, fallback.pipe);
  } else {
    std::fprintf(out, "default entry %u: not set\n", fallback.handle);
  }
}

void ChipDump::writeMembers(std::FILE* out) const {
  const auto& pool = chip_.members().pool();
  std::fprintf(out, "members: %u of %u\n", pool.used(), pool.capacity());
  pool.forEach([&](const MemberRecord& member) {
    std::fprintf(out, "  mbr %u: selector=%u entries=%u groups=%u\n", member.handle,
                 unsigned{member.selector}, member.entryRefs, member.groupRefs);
  });
}

void ChipDump::writeGroups(std::FILE* out) const {
  const GroupTable& groups = chip_.groups();
  std::fprintf(out, "groups: %u of %u\n", groups.pool().used(), groups.pool().capacity());
  groups.pool().forEach([&](const GroupRecord& group) {
    std::fprintf(out, "  grp %u: max_size=%u entries=%u members=[", group.handle, group.maxSize,
                 group.entryRefs);
    const char* separator = "";
    for (const GroupSlot& slot : groups.membersOf(group)) {
      std::fprintf(out, "%s%u %s", separator, slot.member,
                   slot.inactive == P4_PD_GROUP_MEMBER_ACTIVE ? "active" : "inactive");
      separator = ", ";
    }
    std::fprintf(out, "]\n");
  });
}

}  // namespace chipsim
