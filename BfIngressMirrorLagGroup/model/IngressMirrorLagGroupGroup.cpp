#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupGroup.h"

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupGroupNotifieeConst.h"
#include "Vel/Allocate.h"
#include "Vel/NotifieeList.h"
#include "Vel/ValueToStrep.h"

namespace BfIngressMirrorLagGroup {

namespace {

// Initial bucket count of the member collection.
constexpr std::uint32_t memberMapInitialSize = 4;

}  // namespace

IngressMirrorLagGroupGroup::IngressMirrorLagGroupGroup(
    BfnTable::BfnGroupId groupId, unsigned int groupSize, unsigned int initialMemberId,
    IngressMirrorLagGroupActionProfileType actionType)
    : Vel::Entity(Vel::valueToStrep(groupId.value())),
      groupId_(groupId),
      groupSize_(groupSize),
      initialMemberId_(initialMemberId),
      actionType_(actionType),
      members_(memberMapInitialSize) {}

// The removals are announced to the notifiees still listed; then they are
// dropped, and only then does the (empty) collection go.
IngressMirrorLagGroupGroup::~IngressMirrorLagGroupGroup() {
  memberDelAll();
  notifieeList()->deleteAll();
  members_.deleteAll();
}

Vel::Ptr<IngressMirrorLagGroupMember> IngressMirrorLagGroupGroup::member(
    BfnTable::BfnMemberId memberId) {
  return members_.find(memberId);
}

Vel::Ptr<const IngressMirrorLagGroupMember> IngressMirrorLagGroupGroup::member(
    BfnTable::BfnMemberId memberId) const {
  return members_.find(memberId);
}

Vel::Ptr<IngressMirrorLagGroupMember> IngressMirrorLagGroupGroup::memberIs(
    BfnTable::BfnMemberId memberId) {
  if (Vel::Ptr<IngressMirrorLagGroupMember> existing = members_.find(memberId))
    return existing;
  Vel::Ptr<IngressMirrorLagGroupMember> added =
      Vel::allocate<IngressMirrorLagGroupMember>(memberId);
  added->parentAttrIs(memberAttribute, "member");
  members_.insert(added);
  added->parentIs(this);
  memberNotify(memberId);
  return added;
}

Vel::Ptr<IngressMirrorLagGroupMember> IngressMirrorLagGroupGroup::memberDel(
    BfnTable::BfnMemberId memberId) {
  Vel::Ptr<IngressMirrorLagGroupMember> removed = members_.remove(memberId);
  if (!removed)
    return nullptr;
  removed->parentIs(nullptr);
  memberNotify(memberId);
  return removed;
}

void IngressMirrorLagGroupGroup::memberDelAll() {
  for (MemberMap::Iterator current = members_.iterator(); current.valid(); ++current)
    memberDel(current.key());
}

void IngressMirrorLagGroupGroup::memberNotify(BfnTable::BfnMemberId memberId) {
  notify<NotifieeConst>(memberAttribute,
                        [memberId](NotifieeConst& notifiee) { notifiee.onMember(memberId); });
}

}  // namespace BfIngressMirrorLagGroup
