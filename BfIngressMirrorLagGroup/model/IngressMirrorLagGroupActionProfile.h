#pragma once

#include "Vel/TypeRecord.h"

#include <cstddef>

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileEntry.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileType.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupGroup.h"
#include "BfnTable/BfnGroupId.h"
#include "BfnTable/BfnMemberId.h"
#include "Vel/Entity.h"
#include "Vel/HashMap.h"
#include "Vel/HashMap2018.h"
#include "Vel/Name.h"
#include "Vel/Ptr.h"

namespace BfIngressMirrorLagGroup {

// The configuration of the table's action profile: the action-profile members
// ("entries", each a member id with its action) and the selector groups that
// the chip is to hold. It only stores, replaces, deletes and tells its
// notifiees; programming the chip is the notifiees' work.
class IngressMirrorLagGroupActionProfile : public Vel::Entity {
 public:
  class NotifieeConst;
  class Notifiee;

  using Entry = IngressMirrorLagGroupActionProfileEntry;
  using Group = IngressMirrorLagGroupGroup;

  // The key of an entry in the entry collection: its own member id.
  struct EntryMemberId {
    BfnTable::BfnMemberId operator()(const Vel::Ptr<Entry>& entry) const {
      return entry->memberId();
    }
  };

  using GroupMap = Vel::HashMap<Group, BfnTable::BfnGroupId>;
  using EntryMap = Vel::HashMap2018<BfnTable::BfnMemberId, Vel::Ptr<Entry>, EntryMemberId>;

  // Numbers of the `group` and `entry` attributes in notifications and parent links.
  static constexpr unsigned groupAttribute = 258;
  static constexpr unsigned entryAttribute = 259;

  explicit IngressMirrorLagGroupActionProfile(Vel::Name name);
  // Removes every group, each removal announced; then drops the notifiees and
  // releases the entries without telling anyone.
  ~IngressMirrorLagGroupActionProfile() override;
  // The framework's record of this type (see reflect/).
  static const Vel::TypeRecord& typeRecord();
  const Vel::TypeRecord* fwkType() const override;

  // The entry of this member id, or null.
  Vel::Ptr<Entry> entry(BfnTable::BfnMemberId memberId);
  Vel::Ptr<const Entry> entry(BfnTable::BfnMemberId memberId) const;
  std::size_t entries() const noexcept { return entries_.size(); }
  // Walks the entries (key() and value() of each); entries may be removed meanwhile.
  EntryMap::Iterator entryIterator() { return entries_.iterator(); }
  EntryMap::IteratorConst entryIteratorConst() const { return entries_.iteratorConst(); }
  // The entry collection itself, for readers of its bookkeeping (buckets, size).
  const EntryMap& entryCollection() const noexcept { return entries_; }

  // Holds `entry` under its member id, in place of any other entry of that id,
  // and tells the notifiees (onEntry); the entry already held changes nothing.
  // A null entry is a range exception.
  void entryIs(const Vel::Ptr<Entry>& entry);
  // Takes out the entry of this member id and returns it; null, and nobody
  // told, when there was none.
  Vel::Ptr<Entry> entryDel(BfnTable::BfnMemberId memberId);
  // Removes every entry, one removal and one notification after another.
  void entryDelAll();

  // The group of this id, or null.
  Vel::Ptr<Group> group(BfnTable::BfnGroupId groupId);
  Vel::Ptr<const Group> group(BfnTable::BfnGroupId groupId) const;
  std::size_t groups() const noexcept { return groups_.size(); }
  // Walks the groups in the collection's order; groups may be removed meanwhile.
  GroupMap::Iterator groupIterator() { return groups_.iterator(); }
  GroupMap::IteratorConst groupIteratorConst() const { return groups_.iteratorConst(); }
  // The group collection itself, for readers of its bookkeeping (buckets, size).
  const GroupMap& groupCollection() const noexcept { return groups_; }

  // The group of this id: a new one, announced (onGroup), when there was none;
  // the existing one when it was made with the same values. Other values for an
  // existing id are a name-in-use exception, and nothing changes.
  Vel::Ptr<Group> groupIs(BfnTable::BfnGroupId groupId, unsigned int groupSize,
                          unsigned int initialMemberId,
                          IngressMirrorLagGroupActionProfileType actionType);
  // Takes out the group of this id and returns it, its parent cleared; null,
  // and nobody told, when there was none.
  Vel::Ptr<Group> groupDel(BfnTable::BfnGroupId groupId);
  // Removes every group, one removal and one notification after another.
  void groupDelAll();

  // Tell every notifiee onEntry(memberId) / onGroup(groupId).
  void entryNotify(BfnTable::BfnMemberId memberId);
  void groupNotify(BfnTable::BfnGroupId groupId);

 private:
  GroupMap groups_;
  EntryMap entries_;
};

}  // namespace BfIngressMirrorLagGroup
