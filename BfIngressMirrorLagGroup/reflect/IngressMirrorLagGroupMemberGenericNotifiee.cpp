#include "BfIngressMirrorLagGroup/reflect/IngressMirrorLagGroupMemberGenericNotifiee.h"

namespace BfIngressMirrorLagGroup {

void IngressMirrorLagGroupMemberGenericNotifiee::onActive() {
  forwardRawAttribute(IngressMirrorLagGroupMember::activeAttribute);
}

}  // namespace BfIngressMirrorLagGroup
