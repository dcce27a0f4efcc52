#include "BfIngressMirrorLagGroup/reflect/IngressMirrorLagGroupActionProfileEntryGenericNotifiee.h"

namespace BfIngressMirrorLagGroup {

void IngressMirrorLagGroupActionProfileEntryGenericNotifiee::onAction() {
  forwardRawAttribute(IngressMirrorLagGroupActionProfileEntry::actionAttribute);
}

}  // namespace BfIngressMirrorLagGroup
