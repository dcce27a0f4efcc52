// The reflective record of the action-profile configuration: its group and
// entry collections, edited through their mutators so that the changes are
// notified (and a following state machine programs the chip).

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfile.h"
#include "BfIngressMirrorLagGroup/reflect/CollectionOperation.h"
#include "BfIngressMirrorLagGroup/reflect/IngressMirrorLagGroupActionProfileGenericNotifiee.h"
#include "BfIngressMirrorLagGroup/reflect/PlatformTypeRecords.h"
#include "Vel/EntityType.h"
#include "Vel/GenericKeyIterator.h"

namespace BfIngressMirrorLagGroup {

namespace {

using Profile = IngressMirrorLagGroupActionProfile;
using GroupId = BfnTable::BfnGroupId;
using MemberId = BfnTable::BfnMemberId;

// Code 1 of `group` is groupIs(groupId, groupSize, initialMemberId, actionType).
Vel::GenericReply groupOperation(Vel::GenericCall& call, Profile& profile) {
  return collectionOperation<GroupId>(
      call, profile.groups(), profile.groupCollection().buckets(),
      [&](GroupId id) { return profile.group(id); },
      [&] {
        return profile.groupIs(call.arg<GroupId>(0), call.arg<std::uint32_t>(1),
                               call.arg<std::uint32_t>(2),
                               call.arg<IngressMirrorLagGroupActionProfileType>(3));
      },
      [&](GroupId id) { return profile.groupDel(id); });
}

// Code 1 of `entry` is entryIs(entry).
Vel::GenericReply entryOperation(Vel::GenericCall& call, Profile& profile) {
  return collectionOperation<MemberId>(
      call, profile.entries(), profile.entryCollection().buckets(),
      [&](MemberId id) { return profile.entry(id); },
      [&] {
        const auto entry = call.arg<Vel::Ptr<Profile::Entry>>(0);
        profile.entryIs(entry);
        return entry;
      },
      [&](MemberId id) { return profile.entryDel(id); });
}

Vel::GenericReply attribute(Vel::GenericCall& call) {
  Profile& profile = call.object<Profile>();
  switch (call.attributeNumber()) {
    case Profile::groupAttribute:
      return groupOperation(call, profile);
    case Profile::entryAttribute:
      return entryOperation(call, profile);
  }
  return call.notOwned();
}

std::vector<Vel::GenericValue> keys(const Vel::GenericValue& self,
                                    const Vel::AttributeRecord& attribute) {
  const auto profile = self.get<Vel::Ptr<const Profile>>();
  return attribute.number() == Profile::groupAttribute
             ? keysOf(attribute, profile->groupIteratorConst())
             : keysOf(attribute, profile->entryIteratorConst());
}

bool walked(const Vel::AttributeRecord& attribute) {
  return attribute.number() == Profile::groupAttribute ||
         attribute.number() == Profile::entryAttribute;
}

Vel::Ptr<Vel::GenericIterator> iterator(const Vel::GenericValue& self,
                                        const Vel::AttributeRecord& attribute) {
  if (!walked(attribute))
    return nullptr;
  return Vel::GenericKeyIterator::make(self, attribute, keys(self, attribute));
}

Vel::Ptr<Vel::GenericIterator> iteratorAtKey(const Vel::GenericValue& self,
                                             const Vel::AttributeRecord& attribute,
                                             const Vel::GenericValue& key) {
  if (!walked(attribute))
    return nullptr;
  return Vel::GenericKeyIterator::makeAt(self, attribute, keys(self, attribute), key);
}

constexpr unsigned collectionFlags = Vel::AttributeRecord::collection |
                                     Vel::AttributeRecord::readWrite |
                                     Vel::AttributeRecord::notifying;

}  // namespace

const Vel::TypeRecord& IngressMirrorLagGroupActionProfile::typeRecord() {
  static const Vel::TypeRecord record(
      "BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfile", Vel::TypeRecord::Kind::entity,
      &Vel::entityType(),
      {{"group", IngressMirrorLagGroupGroup::typeRecord(), groupAttribute, collectionFlags,
        &bfnGroupIdType()},
       {"entry", IngressMirrorLagGroupActionProfileEntry::typeRecord(), entryAttribute,
        collectionFlags, &bfnMemberIdType()}},
      {.attribute = &attribute,
       .iterator = &iterator,
       .iteratorAtKey = &iteratorAtKey,
       .notifiee = &IngressMirrorLagGroupActionProfileGenericNotifiee::factory});
  return record;
}

const Vel::TypeRecord* IngressMirrorLagGroupActionProfile::fwkType() const {
  return &typeRecord();
}

}  // namespace BfIngressMirrorLagGroup
