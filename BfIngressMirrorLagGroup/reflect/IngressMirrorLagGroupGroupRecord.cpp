// The reflective record of a selector group: its constructor values and the
// size cap, read only, and its member collection, edited through memberIs and
// memberDel so that the changes are notified.

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileType.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupGroup.h"
#include "BfIngressMirrorLagGroup/reflect/CollectionOperation.h"
#include "BfIngressMirrorLagGroup/reflect/IngressMirrorLagGroupGroupGenericNotifiee.h"
#include "BfIngressMirrorLagGroup/reflect/PlatformTypeRecords.h"
#include "Vel/BuiltinType.h"
#include "Vel/EntityType.h"
#include "Vel/GenericKeyIterator.h"

namespace BfIngressMirrorLagGroup {

namespace {

using Group = IngressMirrorLagGroupGroup;
using MemberId = BfnTable::BfnMemberId;

constexpr unsigned groupIdAttribute = 258;
constexpr unsigned groupSizeAttribute = 259;
constexpr unsigned initialMemberIdAttribute = 260;
constexpr unsigned actionTypeAttribute = 261;
constexpr unsigned maxGroupSizeAttribute = 262;

Vel::GenericReply memberOperation(Vel::GenericCall& call, Group& group) {
  return collectionOperation<MemberId>(
      call, group.members(), group.memberCollection().buckets(),
      [&](MemberId id) { return group.member(id); },
      [&] { return group.memberIs(call.arg<MemberId>(0)); },
      [&](MemberId id) { return group.memberDel(id); });
}

Vel::GenericReply attribute(Vel::GenericCall& call) {
  Group& group = call.object<Group>();
  switch (call.attributeNumber()) {
    case groupIdAttribute:
      return call.answerRead(group.groupId());
    case groupSizeAttribute:
      return call.answerRead(group.groupSize());
    case initialMemberIdAttribute:
      return call.answerRead(group.initialMemberId());
    case actionTypeAttribute:
      return call.answerRead(group.actionType());
    case maxGroupSizeAttribute:
      return call.answerRead(group.maxGroupSize());
    case Group::memberAttribute:
      return memberOperation(call, group);
  }
  return call.notOwned();
}

std::vector<Vel::GenericValue> memberKeys(const Vel::GenericValue& self,
                                          const Vel::AttributeRecord& attribute) {
  return keysOf(attribute, self.get<Vel::Ptr<const Group>>()->memberIteratorConst());
}

Vel::Ptr<Vel::GenericIterator> iterator(const Vel::GenericValue& self,
                                        const Vel::AttributeRecord& attribute) {
  if (attribute.number() != Group::memberAttribute)
    return nullptr;
  return Vel::GenericKeyIterator::make(self, attribute, memberKeys(self, attribute));
}

Vel::Ptr<Vel::GenericIterator> iteratorAtKey(const Vel::GenericValue& self,
                                             const Vel::AttributeRecord& attribute,
                                             const Vel::GenericValue& key) {
  if (attribute.number() != Group::memberAttribute)
    return nullptr;
  return Vel::GenericKeyIterator::makeAt(self, attribute, memberKeys(self, attribute), key);
}

}  // namespace

const Vel::TypeRecord& IngressMirrorLagGroupGroup::typeRecord() {
  static const Vel::TypeRecord record(
      "BfIngressMirrorLagGroup::IngressMirrorLagGroupGroup", Vel::TypeRecord::Kind::entity,
      &Vel::entityType(),
      {{"groupId", bfnGroupIdType(), groupIdAttribute, Vel::AttributeRecord::constructorArg},
       {"groupSize", Vel::BuiltinType<std::uint32_t>::instance(), groupSizeAttribute,
        Vel::AttributeRecord::constructorArg},
       {"initialMemberId", Vel::BuiltinType<std::uint32_t>::instance(), initialMemberIdAttribute,
        Vel::AttributeRecord::constructorArg},
       {"actionType", ingressMirrorLagGroupActionProfileTypeRecord(), actionTypeAttribute,
        Vel::AttributeRecord::constructorArg},
       {"maxGroupSize", Vel::BuiltinType<std::uint16_t>::instance(), maxGroupSizeAttribute},
       {"member", IngressMirrorLagGroupMember::typeRecord(), memberAttribute,
        Vel::AttributeRecord::collection | Vel::AttributeRecord::readWrite |
            Vel::AttributeRecord::notifying,
        &bfnMemberIdType()}},
      {.attribute = &attribute,
       .iterator = &iterator,
       .iteratorAtKey = &iteratorAtKey,
       .notifiee = &IngressMirrorLagGroupGroupGenericNotifiee::factory});
  return record;
}

const Vel::TypeRecord* IngressMirrorLagGroupGroup::fwkType() const {
  return &typeRecord();
}

}  // namespace BfIngressMirrorLagGroup
