#pragma once

#include "Vel/TypeRecord.h"

#include <cstddef>
#include <cstdint>

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileType.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMember.h"
#include "BfnTable/BfnGroupId.h"
#include "BfnTable/BfnMemberId.h"
#include "Vel/Entity.h"
#include "Vel/HashMap.h"
#include "Vel/HashMapLink.h"
#include "Vel/Ptr.h"

namespace BfIngressMirrorLagGroup {

// The configuration of one selector group of the action profile: its
// constructor values, fixed for life, and the set of action-profile members
// among which the chip selects. Created and held by the action profile's group
// collection, under the profile's `group` attribute.
class IngressMirrorLagGroupGroup : public Vel::Entity,
                                   public Vel::HashMapLink<IngressMirrorLagGroupGroup> {
 public:
  class NotifieeConst;

  using MemberMap = Vel::HashMap<IngressMirrorLagGroupMember, BfnTable::BfnMemberId>;

  // Number of the `member` attribute in notifications and parent links.
  static constexpr unsigned memberAttribute = 263;
  // Largest group the chip takes, whatever size is configured.
  static constexpr std::uint16_t maxGroupSizeValue = 120;

  // An empty group, named after its group id.
  IngressMirrorLagGroupGroup(BfnTable::BfnGroupId groupId, unsigned int groupSize,
                             unsigned int initialMemberId,
                             IngressMirrorLagGroupActionProfileType actionType);
  // Removes every member, each removal announced, before the group goes.
  ~IngressMirrorLagGroupGroup() override;
  // The framework's record of this type (see reflect/).
  static const Vel::TypeRecord& typeRecord();
  const Vel::TypeRecord* fwkType() const override;

  BfnTable::BfnGroupId groupId() const noexcept { return groupId_; }
  // The key of the group in the action profile's group collection.
  BfnTable::BfnGroupId fwkKey() const noexcept { return groupId_; }
  unsigned int groupSize() const noexcept { return groupSize_; }
  unsigned int initialMemberId() const noexcept { return initialMemberId_; }
  IngressMirrorLagGroupActionProfileType actionType() const noexcept { return actionType_; }
  std::uint16_t maxGroupSize() const noexcept { return maxGroupSizeValue; }

  // The member with this id, or null.
  Vel::Ptr<IngressMirrorLagGroupMember> member(BfnTable::BfnMemberId memberId);
  Vel::Ptr<const IngressMirrorLagGroupMember> member(BfnTable::BfnMemberId memberId) const;
  // Number of members.
  std::size_t members() const noexcept { return members_.size(); }
  // Walks the members in the collection's order; members may be removed meanwhile.
  MemberMap::Iterator memberIterator() { return members_.iterator(); }
  MemberMap::IteratorConst memberIteratorConst() const { return members_.iteratorConst(); }
  // The member collection itself, for readers of its bookkeeping (buckets, size).
  const MemberMap& memberCollection() const noexcept { return members_; }

  // The member with this id; a new one (active) when there was none, and the
  // notifiees are told (onMember).
  Vel::Ptr<IngressMirrorLagGroupMember> memberIs(BfnTable::BfnMemberId memberId);
  // Takes the member out of the group and returns it, its parent cleared; null,
  // and nobody told, when there was none.
  Vel::Ptr<IngressMirrorLagGroupMember> memberDel(BfnTable::BfnMemberId memberId);
  // Removes every member, one removal and one notification after another.
  void memberDelAll();
  // Tells every notifiee onMember(memberId).
  void memberNotify(BfnTable::BfnMemberId memberId);

 private:
  BfnTable::BfnGroupId groupId_;
  unsigned int groupSize_;
  unsigned int initialMemberId_;
  IngressMirrorLagGroupActionProfileType actionType_;
  MemberMap members_;
};

}  // namespace BfIngressMirrorLagGroup
