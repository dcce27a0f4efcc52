#pragma once

#include "Vel/TypeRecord.h"

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMatchSpec.h"
#include "BfnTable/BfnGroupId.h"
#include "BfnTable/BfnMemberId.h"
#include "BfnTable/BfnSdkHandle.h"
#include "Vel/Entity.h"
#include "Vel/HashMap2018.h"

#include <unordered_map>

namespace BfIngressMirrorLagGroup {

// The SDK handle of every object the program has created in the chip: one per
// match entry (keyed by the very match-spec object, not its value), per
// action-profile member and per selector group. A look-up of an absent key
// gives 0; handles are stored only after the PD call that made them succeeded.
class IngressMirrorLagGroupTableHandles : public Vel::Entity {
 public:
  using MatchSpec = Vel::Ptr<const IngressMirrorLagGroupMatchSpec>;
  using EntryMap = Vel::HashMap2018<MatchSpec, BfnTable::BfnSdkEntryHandle>;
  using GroupMap = Vel::HashMap2018<BfnTable::BfnGroupId, BfnTable::BfnSdkGroupHandle>;
  using MemberMap = Vel::HashMap2018<BfnTable::BfnMemberId, BfnTable::BfnSdkMemberHandle>;

  IngressMirrorLagGroupTableHandles() = default;
  ~IngressMirrorLagGroupTableHandles() override;
  // The framework's record of this type (see reflect/).
  static const Vel::TypeRecord& typeRecord();
  const Vel::TypeRecord* fwkType() const override;

  // The registry has no name of its own.
  Vel::Name name() const override { return Vel::Name(); }

  BfnTable::BfnSdkEntryHandle entry(const MatchSpec& match) const;
  BfnTable::BfnSdkGroupHandle group(BfnTable::BfnGroupId groupId) const;
  BfnTable::BfnSdkMemberHandle member(BfnTable::BfnMemberId memberId) const;

  // Overwrite the handle of a present key in place, or add the key.
  void entryIs(const MatchSpec& match, BfnTable::BfnSdkEntryHandle handle);
  void groupIs(BfnTable::BfnGroupId groupId, BfnTable::BfnSdkGroupHandle handle);
  void memberIs(BfnTable::BfnMemberId memberId, BfnTable::BfnSdkMemberHandle handle);

  // Add a key that is not present (asserted).
  void newEntry(const MatchSpec& match, BfnTable::BfnSdkEntryHandle handle);
  void newGroup(BfnTable::BfnGroupId groupId, BfnTable::BfnSdkGroupHandle handle);
  void newMember(BfnTable::BfnMemberId memberId, BfnTable::BfnSdkMemberHandle handle);

  // Remove a key; give the handle it had, or 0 when it was absent.
  BfnTable::BfnSdkEntryHandle entryDel(const MatchSpec& match);
  BfnTable::BfnSdkGroupHandle groupDel(BfnTable::BfnGroupId groupId);
  BfnTable::BfnSdkMemberHandle memberDel(BfnTable::BfnMemberId memberId);

  void entryDelAll();
  void groupDelAll();
  void memberDelAll();

  // The id that holds `handle`, found without a walk (the default id when no
  // id holds it; the first in walking order should two hold it).
  BfnTable::BfnMemberId memberIdOf(BfnTable::BfnSdkMemberHandle handle) const;
  BfnTable::BfnGroupId groupIdOf(BfnTable::BfnSdkGroupHandle handle) const;

  // The collections, for walking them.
  const EntryMap& entries() const noexcept { return entry_; }
  const GroupMap& groups() const noexcept { return group_; }
  const MemberMap& members() const noexcept { return member_; }

 private:
  EntryMap entry_;
  GroupMap group_;
  MemberMap member_;
  // For each member and group handle: the last id registered with it and how
  // many ids hold it, kept in step with the maps by every change.
  template <class Id>
  struct Holders {
    Id id{};
    unsigned holders = 0;
  };
  std::unordered_map<BfnTable::BfnSdkGroupHandle, Holders<BfnTable::BfnGroupId>> groupIdOfHandle_;
  std::unordered_map<BfnTable::BfnSdkMemberHandle, Holders<BfnTable::BfnMemberId>>
      memberIdOfHandle_;
};

}  // namespace BfIngressMirrorLagGroup

#include "BfIngressMirrorLagGroup/hw/CLinkageFactory.h"

BF_C_LINKAGE_FACTORY_BEGIN
// Makes an empty registry. Exported by plain name for hosts that find it with dlsym.
extern "C" Vel::Ptr<BfIngressMirrorLagGroup::IngressMirrorLagGroupTableHandles>
ingressMirrorLagGroupTableHandlesFactory();
BF_C_LINKAGE_FACTORY_END
