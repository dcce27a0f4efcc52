#pragma once

#include <utility>

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMatchSpec.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMemberOrGroupOrNone.h"
#include "Vel/Ptr.h"

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

}  // namespace BfIngressMirrorLagGroup
