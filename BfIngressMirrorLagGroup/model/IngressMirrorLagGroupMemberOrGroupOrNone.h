#pragma once

#include "Vel/TypeRecord.h"

#include <cstdint>
#include <ostream>

#include "Vel/String.h"

namespace BfIngressMirrorLagGroup {

// What a match-table entry points at: an action-profile member (member true)
// or a selector group (member false), by the id the configuration gives it. The
// default value (id 0, member false) is "none", what an empty entry holds.
struct IngressMirrorLagGroupMemberOrGroupOrNone {
  std::uint32_t id = 0;
  bool member = false;

  constexpr IngressMirrorLagGroupMemberOrGroupOrNone() noexcept = default;
  constexpr IngressMirrorLagGroupMemberOrGroupOrNone(std::uint32_t memberOrGroupId,
                                                     bool isMember) noexcept
      : id(memberOrGroupId), member(isMember) {}
  // Reads the text form written by valueToStrep at pos and advances pos past
  // it. Text that is not that form raises the framework's ParseException (a
  // literal is missing) or RangeException naming the attribute (a value cannot
  // be read); pos is then left where it was.
  IngressMirrorLagGroupMemberOrGroupOrNone(Vel::String::IteratorConst& pos,
                                           const Vel::String::IteratorConst& end);

  // Reads the value from the whole of `text`; text left over is refused.
  static IngressMirrorLagGroupMemberOrGroupOrNone fromText(const Vel::String& text);
  // The framework's record of this type (see reflect/).
  static const Vel::TypeRecord& typeRecord();

  bool operator==(const IngressMirrorLagGroupMemberOrGroupOrNone& other) const noexcept {
    return id == other.id && member == other.member;
  }
};

// "Value('BfIngressMirrorLagGroup::IngressMirrorLagGroupMemberOrGroupOrNone', ** {'id': <id>,
// 'member': <True|False>})", the text the parsing constructor reads back.
Vel::String valueToStrep(const IngressMirrorLagGroupMemberOrGroupOrNone& value);
std::ostream& operator<<(std::ostream& out, const IngressMirrorLagGroupMemberOrGroupOrNone& value);

// Reads a memberOrGroup at pos as the parsing constructor does, for readers of
// values that hold one (found by Vel::deserializeAttr through argument lookup).
void sequenceToValue(Vel::String::IteratorConst& pos, const Vel::String::IteratorConst& end,
                     IngressMirrorLagGroupMemberOrGroupOrNone* out);

}  // namespace BfIngressMirrorLagGroup
