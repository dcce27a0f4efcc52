#include "BfIngressMirrorLagGroup/reflect/IngressMirrorLagGroupGroupGenericNotifiee.h"

namespace BfIngressMirrorLagGroup {

using Adapter = IngressMirrorLagGroupGroupGenericNotifiee;
using Group = IngressMirrorLagGroupGroup;

void Adapter::onMember(BfnTable::BfnMemberId memberId) {
  forwardRawAttribute(Group::memberAttribute, memberId);
}
void Adapter::onMembervelImmediate() {
  forwardRawAttribute(Group::memberAttribute);
}
void Adapter::onMember() {
  forwardRawAttribute(Group::memberAttribute);
}

}  // namespace BfIngressMirrorLagGroup
