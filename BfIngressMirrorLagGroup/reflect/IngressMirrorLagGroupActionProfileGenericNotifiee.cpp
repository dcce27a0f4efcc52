#include "BfIngressMirrorLagGroup/reflect/IngressMirrorLagGroupActionProfileGenericNotifiee.h"

namespace BfIngressMirrorLagGroup {

using Adapter = IngressMirrorLagGroupActionProfileGenericNotifiee;
using Profile = IngressMirrorLagGroupActionProfile;

void Adapter::onGroup(BfnTable::BfnGroupId groupId) {
  forwardRawAttribute(Profile::groupAttribute, groupId);
}
void Adapter::onGroupvelImmediate() {
  forwardRawAttribute(Profile::groupAttribute);
}
void Adapter::onGroup() {
  forwardRawAttribute(Profile::groupAttribute);
}
void Adapter::onEntry(BfnTable::BfnMemberId memberId) {
  forwardRawAttribute(Profile::entryAttribute, memberId);
}
void Adapter::onEntryvelImmediate() {
  forwardRawAttribute(Profile::entryAttribute);
}
void Adapter::onEntry() {
  forwardRawAttribute(Profile::entryAttribute);
}

}  // namespace BfIngressMirrorLagGroup
