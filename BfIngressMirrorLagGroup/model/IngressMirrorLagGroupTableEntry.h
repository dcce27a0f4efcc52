#pragma once

#include "Vel/TypeRecord.h"

#include <ostream>
#include <utility>

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMatchSpec.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMemberOrGroupOrNone.h"
#include "Vel/Ptr.h"
#include "Vel/String.h"

namespace BfIngressMirrorLagGroup {

// One entry of the match table: a key and what it selects. A copy shares the
// match-spec object. Entries compare by the identity of their match-spec
// objects, not by key value: two entries with equal sessions in different spec
// objects are different entries.
class IngressMirrorLagGroupTableEntry {
 public:
  using MatchSpec = Vel::Ptr<const IngressMirrorLagGroupMatchSpec>;

  IngressMirrorLagGroupTableEntry() = default;
  IngressMirrorLagGroupTableEntry(MatchSpec match,
                                  IngressMirrorLagGroupMemberOrGroupOrNone memberOrGroup)
      : match_(std::move(match)), memberOrGroup_(memberOrGroup) {}
  // Reads the text form written by valueToStrep at pos and advances pos past
  // it. The match reference must name a live match spec. Text that is not that
  // form raises the framework's ParseException (a literal is missing) or
  // RangeException naming the attribute "match" or "memberOrGroup"; pos is then
  // left where it was and no reference is kept.
  IngressMirrorLagGroupTableEntry(Vel::String::IteratorConst& pos,
                                  const Vel::String::IteratorConst& end);

  // Reads the entry from the whole of `text`; text left over is refused.
  static IngressMirrorLagGroupTableEntry fromText(const Vel::String& text);
  // The framework's record of this type (see reflect/).
  static const Vel::TypeRecord& typeRecord();

  const MatchSpec& match() const noexcept { return match_; }
  void matchIs(MatchSpec match) noexcept { match_ = std::move(match); }
  const IngressMirrorLagGroupMemberOrGroupOrNone& memberOrGroup() const noexcept {
    return memberOrGroup_;
  }
  void memberOrGroupIs(IngressMirrorLagGroupMemberOrGroupOrNone memberOrGroup) noexcept {
    memberOrGroup_ = memberOrGroup;
  }

  bool operator==(const IngressMirrorLagGroupTableEntry& other) const noexcept {
    return match_ == other.match_ && memberOrGroup_ == other.memberOrGroup_;
  }
  // True for an empty entry (no match, memberOrGroup none).
  bool operator!() const noexcept { return *this == IngressMirrorLagGroupTableEntry(); }

 private:
  MatchSpec match_;
  IngressMirrorLagGroupMemberOrGroupOrNone memberOrGroup_;
};

// "Value('BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry', ** {'match': <reference>,
// 'memberOrGroup': <memberOrGroup text>})", the text the parsing constructor reads
// back; the reference is the framework's text of a reference to the match spec.
Vel::String valueToStrep(const IngressMirrorLagGroupTableEntry& entry);
std::ostream& operator<<(std::ostream& out, const IngressMirrorLagGroupTableEntry& entry);

}  // namespace BfIngressMirrorLagGroup
