#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfile.h"

#include <cstdint>
#include <optional>
#include <utility>

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileNotifieeConst.h"
#include "Vel/Allocate.h"
#include "Vel/NameInUseException.h"
#include "Vel/NotifieeList.h"
#include "Vel/RangeException.h"
#include "Vel/String.h"
#include "Vel/ValueToStrep.h"

namespace BfIngressMirrorLagGroup {

namespace {

// Initial bucket count of both collections.
constexpr std::uint32_t initialCollectionSize = 4;

const char* const qualifiedTypeName = "BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfile";

// Refuses a null element handed to the mutator of a collection attribute.
[[noreturn]] void throwNullParameter(const char* attribute) {
  Vel::throwRangeException(Vel::String("null _") + attribute + " parameter to mutator for " +
                           qualifiedTypeName + "::" + attribute + " not allowed\"");
}

// Refuses to make `existing` again with another value of one of its
// constructor parameters: `requested` is the text of the value asked for,
// `current` that of the value it was made with.
[[noreturn]] void throwReinstantiation(const IngressMirrorLagGroupGroup& existing,
                                       const char* attribute, const Vel::String& requested,
                                       const Vel::String& current) {
  throw Vel::NameInUseException(
      "Reinstantiating the entity with fullName " + Vel::valueToStrep(existing.fullName()) +
      " where constructor parameter attribute '" + attribute + "' has a different value of " +
      requested + " than the current value of " + current + " not allowed");
}

// Checks the constructor values of an existing group against those asked for,
// in the order of the constructor's parameters.
void checkSameConstructorValues(const IngressMirrorLagGroupGroup& existing, unsigned int groupSize,
                                unsigned int initialMemberId,
                                IngressMirrorLagGroupActionProfileType actionType) {
  if (groupSize != existing.groupSize()) {
    throwReinstantiation(existing, "groupSize", Vel::valueToStrep(groupSize),
                         Vel::valueToStrep(existing.groupSize()));
  }
  if (initialMemberId != existing.initialMemberId()) {
    throwReinstantiation(existing, "initialMemberId", Vel::valueToStrep(initialMemberId),
                         Vel::valueToStrep(existing.initialMemberId()));
  }
  if (actionType != existing.actionType()) {
    throwReinstantiation(existing, "actionType", valueToStrep(actionType),
                         valueToStrep(existing.actionType()));
  }
}

}  // namespace

IngressMirrorLagGroupActionProfile::IngressMirrorLagGroupActionProfile(Vel::Name name)
    : Vel::Entity(std::move(name)),
      groups_(initialCollectionSize),
      entries_(initialCollectionSize) {}

IngressMirrorLagGroupActionProfile::~IngressMirrorLagGroupActionProfile() {
  groupDelAll();
  notifieeList()->deleteAll();
  entries_.deleteAll();
}

Vel::Ptr<IngressMirrorLagGroupActionProfileEntry> IngressMirrorLagGroupActionProfile::entry(
    BfnTable::BfnMemberId memberId) {
  const Vel::Ptr<EntryMap::Slot> slot = entries_.find(memberId);
  return slot ? slot->value() : nullptr;
}

Vel::Ptr<const IngressMirrorLagGroupActionProfileEntry> IngressMirrorLagGroupActionProfile::entry(
    BfnTable::BfnMemberId memberId) const {
  const Vel::Ptr<const EntryMap::Slot> slot = entries_.find(memberId);
  return slot ? slot->value() : nullptr;
}

void IngressMirrorLagGroupActionProfile::entryIs(const Vel::Ptr<Entry>& entry) {
  if (!entry)
    throwNullParameter("entry");
  const BfnTable::BfnMemberId memberId = entry->memberId();
  if (const Vel::Ptr<EntryMap::Slot> slot = entries_.find(memberId)) {
    if (slot->value() == entry)
      return;
    slot->valueIs(entry);
  } else {
    entries_.insert(entry);
  }
  entryNotify(memberId);
}

Vel::Ptr<IngressMirrorLagGroupActionProfileEntry> IngressMirrorLagGroupActionProfile::entryDel(
    BfnTable::BfnMemberId memberId) {
  std::optional<Vel::Ptr<Entry>> removed = entries_.remove(memberId);
  if (!removed)
    return nullptr;
  entryNotify(memberId);
  return std::move(*removed);
}

void IngressMirrorLagGroupActionProfile::entryDelAll() {
  for (EntryMap::Iterator current = entries_.iterator(); current.valid(); ++current)
    entryDel(current.key());
}

Vel::Ptr<IngressMirrorLagGroupGroup> IngressMirrorLagGroupActionProfile::group(
    BfnTable::BfnGroupId groupId) {
  return groups_.find(groupId);
}

Vel::Ptr<const IngressMirrorLagGroupGroup> IngressMirrorLagGroupActionProfile::group(
    BfnTable::BfnGroupId groupId) const {
  return groups_.find(groupId);
}

Vel::Ptr<IngressMirrorLagGroupGroup> IngressMirrorLagGroupActionProfile::groupIs(
    BfnTable::BfnGroupId groupId, unsigned int groupSize, unsigned int initialMemberId,
    IngressMirrorLagGroupActionProfileType actionType) {
  if (Vel::Ptr<Group> existing = groups_.find(groupId)) {
    checkSameConstructorValues(*existing, groupSize, initialMemberId, actionType);
    return existing;
  }
  Vel::Ptr<Group> added = Vel::allocate<Group>(groupId, groupSize, initialMemberId, actionType);
  added->hasNotificationActiveIs(true);
  added->parentAttrIs(groupAttribute, "group");
  groups_.insert(added);
  added->parentIs(this);
  groupNotify(groupId);
  return added;
}

Vel::Ptr<IngressMirrorLagGroupGroup> IngressMirrorLagGroupActionProfile::groupDel(
    BfnTable::BfnGroupId groupId) {
  Vel::Ptr<Group> removed = groups_.remove(groupId);
  if (!removed)
    return nullptr;
  removed->parentIs(nullptr);
  groupNotify(groupId);
  return removed;
}

void IngressMirrorLagGroupActionProfile::groupDelAll() {
  for (GroupMap::Iterator current = groups_.iterator(); current.valid(); ++current)
    groupDel(current.key());
}

void IngressMirrorLagGroupActionProfile::entryNotify(BfnTable::BfnMemberId memberId) {
  notify<NotifieeConst>(entryAttribute,
                        [memberId](NotifieeConst& notifiee) { notifiee.onEntry(memberId); });
}

void IngressMirrorLagGroupActionProfile::groupNotify(BfnTable::BfnGroupId groupId) {
  notify<NotifieeConst>(groupAttribute,
                        [groupId](NotifieeConst& notifiee) { notifiee.onGroup(groupId); });
}

}  // namespace BfIngressMirrorLagGroup
