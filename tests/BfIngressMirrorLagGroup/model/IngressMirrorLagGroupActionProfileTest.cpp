#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfile.h"

#include <gtest/gtest.h>

#include <set>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "EntityTestSupport.h"
#include "Vel/BitReverse.h"
#include "Vel/BulkChange.h"
#include "Vel/NameInUseException.h"
#include "Vel/NotifieeList.h"
#include "Vel/PtrInterface.h"
#include "Vel/RangeException.h"

namespace BfIngressMirrorLagGroup::EntityTesting {
namespace {

constexpr IngressMirrorLagGroupActionProfileType setLag = setLagMemberSelectorActionProfileSpec;

class IngressMirrorLagGroupActionProfileTest : public EntityTest {
 protected:
  void TearDown() override {
    profile = nullptr;
    EntityTest::TearDown();
  }

  Vel::Ptr<ProfileRecorder> profileRecorder(const std::string& name) {
    return recorder<ProfileRecorder>(name, profile);
  }

  // The message of the name-in-use exception that groupIs raises, or "" when
  // it raises none.
  std::string refusal(std::uint32_t groupId, unsigned groupSize, unsigned initialMemberId,
                      IngressMirrorLagGroupActionProfileType actionType) {
    try {
      profile->groupIs(groupId, groupSize, initialMemberId, actionType);
    } catch (const Vel::NameInUseException& e) {
      return e.message();
    }
    return "";
  }

  // "<prefix>(<key>)" for every group, then every entry, in the order in which
  // the collections are walked.
  Log groupsInOrder(const std::string& prefix) const {
    Log lines;
    for (auto it = profile->groupIteratorConst(); it.valid(); ++it)
      lines.push_back(keyed(prefix.c_str(), it.key()));
    return lines;
  }
  Log entriesInOrder(const std::string& prefix) const {
    Log lines;
    for (auto it = profile->entryIteratorConst(); it.valid(); ++it)
      lines.push_back(keyed(prefix.c_str(), it.key()));
    return lines;
  }

  Vel::Ptr<Profile> profile = Vel::allocate<Profile>("ingressMirrorLagGroup");
};

// --- construction, look-up, iteration ---

TEST_F(IngressMirrorLagGroupActionProfileTest, NewProfileHasItsGivenNameAndEmptyCollections) {
  EXPECT_EQ(profile->name(), "ingressMirrorLagGroup");
  EXPECT_EQ(profile->fullName(), "ingressMirrorLagGroup");
  EXPECT_EQ(profile->parent(), nullptr);
  EXPECT_EQ(profile->entries(), 0u);
  EXPECT_EQ(profile->groups(), 0u);
  EXPECT_TRUE(profile->notifieeList()->empty());
  EXPECT_EQ(profile->entry(7), nullptr);
  EXPECT_EQ(profile->group(5), nullptr);
  const Profile& constProfile = *profile;
  EXPECT_EQ(constProfile.entry(7), nullptr);
  EXPECT_EQ(constProfile.group(5), nullptr);
  EXPECT_FALSE(constProfile.entryIteratorConst().valid());
  EXPECT_FALSE(constProfile.groupIteratorConst().valid());
}

TEST_F(IngressMirrorLagGroupActionProfileTest, IteratorsVisitEveryEntryAndGroupOnce) {
  std::set<std::uint32_t> expected;
  for (std::uint32_t id = 0; id < 20; ++id) {
    profile->entryIs(entry(id));
    profile->groupIs(id, 8, 1, setLag);
    expected.insert(id);
  }
  std::set<std::uint32_t> entryKeys;
  std::set<std::uint32_t> entryValues;
  for (auto it = profile->entryIterator(); it.valid(); ++it) {
    entryKeys.insert(it.key());
    entryValues.insert(it.value()->memberId());
  }
  std::set<std::uint32_t> groupKeys;
  const Profile& constProfile = *profile;
  for (auto it = constProfile.groupIteratorConst(); it.valid(); ++it)
    groupKeys.insert(it.ptr()->groupId());
  EXPECT_EQ(entryKeys, expected);
  EXPECT_EQ(entryValues, expected);
  EXPECT_EQ(groupKeys, expected);
}

static_assert(std::is_same_v<Profile::GroupMap, Vel::HashMap<Group, BfnTable::BfnGroupId>>);
static_assert(
    std::is_same_v<Profile::EntryMap, Vel::HashMap2018<BfnTable::BfnMemberId, Vel::Ptr<Entry>,
                                                       Profile::EntryMemberId>>);

// Both collections start with four buckets; a group's bucket is the top bits
// of its bit-reversed id, two of them for four buckets and three for eight.
TEST_F(IngressMirrorLagGroupActionProfileTest, GroupsSitInTheBucketsOfTheirBitReversedIds) {
  const Profile::GroupMap& groups = profile->groupCollection();
  EXPECT_EQ(groups.buckets(), 4u);
  EXPECT_EQ(profile->entryCollection().buckets(), 4u);
  for (std::uint32_t id = 0; id < 4; ++id) {
    profile->groupIs(id, 8, 1, setLag);
    EXPECT_EQ(groups.bucketOf(id), Vel::bitReverse(id) >> 30) << id;
  }
  EXPECT_EQ(groups.buckets(), 4u);
  EXPECT_EQ(groupsInOrder("g"), (Log{"g(0)", "g(2)", "g(1)", "g(3)"}));
  profile->groupIs(4, 8, 1, setLag);
  EXPECT_EQ(groups.buckets(), 8u);
  for (std::uint32_t id = 0; id < 5; ++id)
    EXPECT_EQ(groups.bucketOf(id), Vel::bitReverse(id) >> 29) << id;
  EXPECT_EQ(groupsInOrder("g"), (Log{"g(0)", "g(4)", "g(2)", "g(1)", "g(3)"}));
  EXPECT_EQ(groups.size(), 5u);
}

TEST_F(IngressMirrorLagGroupActionProfileTest, EntrySlotsAreKeyedByTheMemberIdOfTheirEntry) {
  for (std::uint32_t id : {4u, 0u, 3u, 1u, 2u})
    profile->entryIs(entry(id));
  const Profile::EntryMap& entries = profile->entryCollection();
  EXPECT_EQ(entries.size(), 5u);
  EXPECT_EQ(entries.buckets(), 8u);
  EXPECT_EQ(entriesInOrder("e"), (Log{"e(0)", "e(4)", "e(2)", "e(1)", "e(3)"}));
  for (auto it = entries.iteratorConst(); it.valid(); ++it)
    EXPECT_EQ(it.ptr()->fwkKey(), it.value()->memberId());
}

// --- entries ---

TEST_F(IngressMirrorLagGroupActionProfileTest, EntryIsOfTheSameObjectTwiceNotifiesOnce) {
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  const Vel::Ptr<Entry> seven = entry(7);
  profile->entryIs(seven);
  profile->entryIs(seven);
  EXPECT_EQ(log, Log{"a.onEntry(7)"});
  EXPECT_EQ(profile->entry(7), seven);
  EXPECT_EQ(profile->entries(), 1u);
}

TEST_F(IngressMirrorLagGroupActionProfileTest,
       EntryIsOfAnotherObjectOfTheSameMemberIdNotifiesTwiceAndHoldsTheSecond) {
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  const Vel::Ptr<Entry> first = entry(7, 1);
  const Vel::Ptr<Entry> second = entry(7, 2);
  profile->entryIs(first);
  profile->entryIs(second);
  EXPECT_EQ(log, (Log{"a.onEntry(7)", "a.onEntry(7)"}));
  EXPECT_EQ(profile->entry(7), second);
  EXPECT_EQ(profile->entries(), 1u);
}

// The replacement is in place, and the entry it replaced already released,
// when the notifiees hear of it.
TEST_F(IngressMirrorLagGroupActionProfileTest, EntryIsNotifiesWithTheReplacementInPlace) {
  profile->entryIs(entry(7, 1));
  const Vel::Ptr<Entry> second = entry(7, 2);
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  bool inPlace = false;
  std::size_t entriesAlive = 0;
  a->action = [&](const std::string&) {
    inPlace = profile->entry(7) == second;
    entriesAlive = alive<Entry>();
  };
  profile->entryIs(second);
  EXPECT_EQ(log, Log{"a.onEntry(7)"});
  EXPECT_TRUE(inPlace);
  EXPECT_EQ(entriesAlive, 1u);
}

TEST_F(IngressMirrorLagGroupActionProfileTest, EntryDelNotifiesWithTheEntryAlreadyOut) {
  profile->entryIs(entry(7));
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  bool out = false;
  a->action = [&](const std::string&) { out = profile->entry(7) == nullptr; };
  const Vel::Ptr<Entry> removed = profile->entryDel(7);
  EXPECT_EQ(log, Log{"a.onEntry(7)"});
  EXPECT_TRUE(out);
  EXPECT_EQ(removed->memberId().value(), 7u);
}

// A notifiee's exception passes out of the mutator; the change stays made and
// the notifiees after the throwing one are not called.
TEST_F(IngressMirrorLagGroupActionProfileTest, ExceptionFromANotifieeReachesTheCallerOfEntryIs) {
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  const Vel::Ptr<ProfileRecorder> b = profileRecorder("b");
  a->action = [](const std::string&) { throw std::runtime_error("refused"); };
  const Vel::Ptr<Entry> seven = entry(7);
  EXPECT_THROW(profile->entryIs(seven), std::runtime_error);
  EXPECT_EQ(profile->entry(7), seven);
  EXPECT_EQ(log, Log{"a.onEntry(7)"});
  a->action = nullptr;
  profile->entryDel(7);
  EXPECT_EQ(log, (Log{"a.onEntry(7)", "a.onEntry(7)", "b.onEntry(7)"}));
}

TEST_F(IngressMirrorLagGroupActionProfileTest, ExceptionFromANotifieeReachesTheCallerOfGroupIs) {
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  a->action = [](const std::string&) { throw std::runtime_error("refused"); };
  EXPECT_THROW(profile->groupIs(5, 8, 1, setLag), std::runtime_error);
  ASSERT_NE(profile->group(5), nullptr);
  EXPECT_EQ(profile->group(5)->parent(), profile);
  EXPECT_EQ(log, Log{"a.onGroup(5)"});
}

TEST(IngressMirrorLagGroupActionProfileDeathTest, EntrySlotRefusesAnEntryOfAnotherMemberId) {
  Profile::EntryMap entries(4);
  const auto entryOf = [](std::uint32_t memberId) {
    return Vel::allocate<Entry>(BfnTable::BfnMemberId(memberId),
                                Vel::allocate<SetLagMemberSelectorActionProfileSpec>());
  };
  entries.insert(entryOf(7));
  const Vel::Ptr<Entry> stranger = entryOf(8);
  EXPECT_DEATH(entries.find(7)->valueIs(stranger),
               "^[^\n]*/platform/Vel/HashMap2018\\.h:[0-9]+: void Vel::HashMap2018<[^\n]*>::Slot::"
               "valueIs\\([^\n]*: Assertion 'fwkKey\\(\\) == KeyFunktor\\(\\)\\( _value \\)' "
               "failed\\.\n$");
}

TEST_F(IngressMirrorLagGroupActionProfileTest, ReplacedEntryIsReleased) {
  profile->entryIs(entry(7, 1));
  profile->entryIs(entry(7, 2));
  EXPECT_EQ(alive<Entry>(), 1u);
  EXPECT_EQ(profile->entry(7)->action()->lagMemberSelector(), 2u);
}

// The key of a slot is the member id of the entry it holds, and entryIs looks
// the slot up by that id: a replacement always has the slot's key.
TEST_F(IngressMirrorLagGroupActionProfileTest, EntryIsReplacesOnlyTheSlotOfTheEntrysOwnMemberId) {
  const Vel::Ptr<Entry> one = entry(1);
  profile->entryIs(one);
  profile->entryIs(entry(2, 1));
  const Vel::Ptr<Entry> two = entry(2, 9);
  profile->entryIs(two);
  EXPECT_EQ(profile->entry(1), one);
  EXPECT_EQ(profile->entry(2), two);
  for (auto it = profile->entryIterator(); it.valid(); ++it)
    EXPECT_EQ(it.key(), it.value()->memberId());
}

TEST_F(IngressMirrorLagGroupActionProfileTest, NullEntryIsARangeExceptionWithTheExactMessage) {
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  profile->entryIs(entry(7));
  try {
    profile->entryIs(nullptr);
    FAIL() << "no exception";
  } catch (const Vel::RangeException& e) {
    EXPECT_EQ(e.message(),
              "null _entry parameter to mutator for "
              "BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfile::entry not allowed\"");
  }
  EXPECT_EQ(profile->entries(), 1u);
  EXPECT_EQ(log, Log{"a.onEntry(7)"});
}

TEST_F(IngressMirrorLagGroupActionProfileTest, EntryIsLeavesTheEntryWithoutAParent) {
  const Vel::Ptr<Entry> seven = entry(7);
  profile->entryIs(seven);
  EXPECT_EQ(seven->parent(), nullptr);
  EXPECT_EQ(seven->fullName(), "7");
}

TEST_F(IngressMirrorLagGroupActionProfileTest, EntryDelReturnsTheRemovedEntryAndNotifies) {
  const Vel::Ptr<Entry> seven = entry(7);
  profile->entryIs(seven);
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  EXPECT_EQ(profile->entryDel(7), seven);
  EXPECT_EQ(profile->entry(7), nullptr);
  EXPECT_EQ(profile->entries(), 0u);
  EXPECT_EQ(log, Log{"a.onEntry(7)"});
}

TEST_F(IngressMirrorLagGroupActionProfileTest, EntryDelOfAnAbsentMemberIdIsNullAndNotifiesNothing) {
  profile->entryIs(entry(7));
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  EXPECT_EQ(profile->entryDel(8), nullptr);
  EXPECT_EQ(profile->entries(), 1u);
  EXPECT_TRUE(log.empty());
}

TEST_F(IngressMirrorLagGroupActionProfileTest, EntryDelAllOnAnEmptyProfileNotifiesNothing) {
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  profile->entryDelAll();
  EXPECT_TRUE(log.empty());
}

TEST_F(IngressMirrorLagGroupActionProfileTest, EntryDelAllOnNEntriesNotifiesNTimes) {
  for (std::uint32_t id = 0; id < 10; ++id)
    profile->entryIs(entry(id));
  const Log expected = entriesInOrder("a.onEntry");
  ASSERT_EQ(expected.size(), 10u);
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  profile->entryDelAll();
  EXPECT_EQ(log, expected);
  EXPECT_EQ(profile->entries(), 0u);
  EXPECT_EQ(alive<Entry>(), 0u);
}

// Each removal is announced while the entries after it are still held.
TEST_F(IngressMirrorLagGroupActionProfileTest, EntryDelAllAnnouncesEachRemovalBeforeTheNext) {
  for (std::uint32_t id = 0; id < 3; ++id)
    profile->entryIs(entry(id));
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  std::vector<std::size_t> held;
  a->action = [this, &held](const std::string&) { held.push_back(profile->entries()); };
  profile->entryDelAll();
  EXPECT_EQ(held, (std::vector<std::size_t>{2, 1, 0}));
}

// --- groups ---

TEST_F(IngressMirrorLagGroupActionProfileTest,
       GroupIsCreatesANamedGroupUnderTheProfileAndNotifies) {
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  const Vel::Ptr<Group> five = profile->groupIs(5, 8, 1, setLag);
  ASSERT_NE(five, nullptr);
  EXPECT_EQ(five->groupId().value(), 5u);
  EXPECT_EQ(five->groupSize(), 8u);
  EXPECT_EQ(five->initialMemberId(), 1u);
  EXPECT_EQ(five->actionType(), setLag);
  EXPECT_EQ(five->name(), "5");
  EXPECT_EQ(five->fullName(), "ingressMirrorLagGroup/group/5");
  EXPECT_EQ(five->parent(), profile);
  EXPECT_EQ(five->parentAttrName(), "group");
  EXPECT_EQ(five->parentAttrNumber(), 258u);
  EXPECT_TRUE(five->hasNotificationActive());
  EXPECT_EQ(profile->group(5), five);
  EXPECT_EQ(log, Log{"a.onGroup(5)"});
}

TEST_F(IngressMirrorLagGroupActionProfileTest,
       GroupIsWithIdenticalValuesReturnsTheSameGroupAndNotifiesOnlyOnCreation) {
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  const Vel::Ptr<Group> first = profile->groupIs(5, 8, 1, setLag);
  const Vel::Ptr<Group> second = profile->groupIs(5, 8, 1, setLag);
  EXPECT_EQ(first, second);
  EXPECT_EQ(profile->groups(), 1u);
  EXPECT_EQ(log, Log{"a.onGroup(5)"});
}

// The new group is switched on, named under the profile and in the collection
// when the notifiees hear of it.
TEST_F(IngressMirrorLagGroupActionProfileTest, GroupIsNotifiesWithTheGroupInPlace) {
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  Log seen;
  a->action = [&](const std::string&) {
    const Vel::Ptr<Group> five = profile->group(5);
    seen.push_back(five ? std::string(five->fullName()) +
                              (five->hasNotificationActive() ? " on" : "")
                        : "absent");
  };
  profile->groupIs(5, 8, 1, setLag);
  EXPECT_EQ(seen, Log{"ingressMirrorLagGroup/group/5 on"});
}

TEST_F(IngressMirrorLagGroupActionProfileTest, GroupDelNotifiesWithTheGroupOutAndOrphaned) {
  const Vel::Ptr<Group> five = profile->groupIs(5, 8, 1, setLag);
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  Log seen;
  a->action = [&](const std::string&) {
    seen.push_back(std::string(profile->group(5) ? "held " : "out ") +
                   std::string(five->fullName()));
  };
  profile->groupDel(5);
  EXPECT_EQ(seen, Log{"out 5"});
}

TEST_F(IngressMirrorLagGroupActionProfileTest, OtherGroupSizeIsRefusedWithTheNewValueFirst) {
  const Vel::Ptr<Group> five = profile->groupIs(5, 8, 1, setLag);
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  EXPECT_EQ(refusal(5, 4, 1, setLag),
            "Reinstantiating the entity with fullName 'ingressMirrorLagGroup/group/5' where "
            "constructor parameter attribute 'groupSize' has a different value of 4 than the "
            "current value of 8 not allowed");
  EXPECT_EQ(profile->group(5), five);
  EXPECT_EQ(five->groupSize(), 8u);
  EXPECT_TRUE(log.empty());
}

TEST_F(IngressMirrorLagGroupActionProfileTest,
       WhenGroupSizeAndInitialMemberIdDifferOnlyGroupSizeIsTold) {
  profile->groupIs(5, 8, 1, setLag);
  EXPECT_EQ(refusal(5, 4, 2, setLag),
            "Reinstantiating the entity with fullName 'ingressMirrorLagGroup/group/5' where "
            "constructor parameter attribute 'groupSize' has a different value of 4 than the "
            "current value of 8 not allowed");
}

TEST_F(IngressMirrorLagGroupActionProfileTest,
       WhenInitialMemberIdAndActionTypeDifferOnlyInitialMemberIdIsTold) {
  profile->groupIs(5, 8, 1, setLag);
  EXPECT_EQ(refusal(5, 8, 2, static_cast<IngressMirrorLagGroupActionProfileType>(1)),
            "Reinstantiating the entity with fullName 'ingressMirrorLagGroup/group/5' where "
            "constructor parameter attribute 'initialMemberId' has a different value of 2 than the "
            "current value of 1 not allowed");
}

TEST_F(IngressMirrorLagGroupActionProfileTest, WhenAllThreeDifferOnlyGroupSizeIsTold) {
  profile->groupIs(5, 8, 1, setLag);
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  EXPECT_EQ(refusal(5, 0, 2, static_cast<IngressMirrorLagGroupActionProfileType>(1)),
            "Reinstantiating the entity with fullName 'ingressMirrorLagGroup/group/5' where "
            "constructor parameter attribute 'groupSize' has a different value of 0 than the "
            "current value of 8 not allowed");
  EXPECT_EQ(alive<Group>(), 1u);
  EXPECT_TRUE(log.empty());
}

TEST_F(IngressMirrorLagGroupActionProfileTest, OtherInitialMemberIdIsRefused) {
  const Vel::Ptr<Group> five = profile->groupIs(5, 8, 1, setLag);
  EXPECT_EQ(refusal(5, 8, 3000000000u, setLag),
            "Reinstantiating the entity with fullName 'ingressMirrorLagGroup/group/5' where "
            "constructor parameter attribute 'initialMemberId' has a different value of "
            "3000000000 than the current value of 1 not allowed");
  EXPECT_EQ(five->initialMemberId(), 1u);
}

TEST_F(IngressMirrorLagGroupActionProfileTest, OtherActionTypeIsRefusedWithTheEnumerationsText) {
  profile->groupIs(5, 8, 1, setLag);
  const auto unknown = static_cast<IngressMirrorLagGroupActionProfileType>(1);
  EXPECT_EQ(refusal(5, 8, 1, unknown),
            "Reinstantiating the entity with fullName 'ingressMirrorLagGroup/group/5' where "
            "constructor parameter attribute 'actionType' has a different value of 1 than the "
            "current value of 'setLagMemberSelectorActionProfileSpec' not allowed");
}

TEST_F(IngressMirrorLagGroupActionProfileTest, RefusalNamesTheGroupByItsFullName) {
  const Vel::Ptr<Profile> other = Vel::allocate<Profile>("it's");
  other->groupIs(0, 8, 1, setLag);
  try {
    other->groupIs(0, 9, 1, setLag);
    FAIL() << "no exception";
  } catch (const Vel::NameInUseException& e) {
    EXPECT_EQ(e.message(),
              "Reinstantiating the entity with fullName 'it\\'s/group/0' where constructor "
              "parameter attribute 'groupSize' has a different value of 9 than the current "
              "value of 8 not allowed");
  }
}

TEST_F(IngressMirrorLagGroupActionProfileTest,
       GroupDelReturnsTheGroupWithItsParentClearedAndNotifies) {
  const Vel::Ptr<Group> five = profile->groupIs(5, 8, 1, setLag);
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  const Vel::Ptr<Group> removed = profile->groupDel(5);
  EXPECT_EQ(removed, five);
  EXPECT_EQ(removed->parent(), nullptr);
  EXPECT_EQ(removed->fullName(), "5");
  EXPECT_EQ(profile->group(5), nullptr);
  EXPECT_EQ(profile->groups(), 0u);
  EXPECT_EQ(log, Log{"a.onGroup(5)"});
}

TEST_F(IngressMirrorLagGroupActionProfileTest, GroupDelOfAnAbsentIdIsNullAndNotifiesNothing) {
  profile->groupIs(5, 8, 1, setLag);
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  EXPECT_EQ(profile->groupDel(6), nullptr);
  EXPECT_EQ(profile->groups(), 1u);
  EXPECT_TRUE(log.empty());
}

TEST_F(IngressMirrorLagGroupActionProfileTest, RemovedGroupKeepsItsMembers) {
  const Vel::Ptr<Group> five = profile->groupIs(5, 8, 1, setLag);
  five->memberIs(7);
  five->memberIs(8);
  const Vel::Ptr<Group> removed = profile->groupDel(5);
  EXPECT_EQ(removed->members(), 2u);
  EXPECT_NE(removed->member(7), nullptr);
}

TEST_F(IngressMirrorLagGroupActionProfileTest, GroupDelAllRemovesAndAnnouncesEveryGroup) {
  for (std::uint32_t id = 0; id < 10; ++id)
    profile->groupIs(id, 8, 1, setLag);
  const Log expected = groupsInOrder("a.onGroup");
  ASSERT_EQ(expected.size(), 10u);
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  profile->groupDelAll();
  EXPECT_EQ(log, expected);
  EXPECT_EQ(profile->groups(), 0u);
  EXPECT_EQ(alive<Group>(), 0u);
}

TEST_F(IngressMirrorLagGroupActionProfileTest, GroupDelAllOnAnEmptyProfileNotifiesNothing) {
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  profile->groupDelAll();
  EXPECT_TRUE(log.empty());
}

// --- name ---

TEST_F(IngressMirrorLagGroupActionProfileTest, NameIsFromBackupNeverNotifies) {
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  a->deferredNotificationIs(true);
  const Vel::Ptr<Group> five = profile->groupIs(5, 8, 1, setLag);
  log.clear();
  Vel::ActivityManager::instance().deleteAll();
  profile->nameIsFromBackup("restored");
  EXPECT_EQ(profile->name(), "restored");
  EXPECT_EQ(five->fullName(), "restored/group/5");
  EXPECT_EQ(Vel::ActivityManager::instance().pending(), 0u);
  EXPECT_TRUE(log.empty());
}

// --- notifiees ---

TEST_F(IngressMirrorLagGroupActionProfileTest,
       KeyedCallbacksReachEveryNotifieeInRegistrationOrder) {
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  const Vel::Ptr<ProfileRecorder> b = profileRecorder("b");
  profile->groupIs(5, 8, 1, setLag);
  profile->entryIs(entry(7));
  profile->entryNotify(9);
  profile->groupNotify(4);
  EXPECT_EQ(log, (Log{"a.onGroup(5)", "b.onGroup(5)", "a.onEntry(7)", "b.onEntry(7)",
                      "a.onEntry(9)", "b.onEntry(9)", "a.onGroup(4)", "b.onGroup(4)"}));
}

TEST_F(IngressMirrorLagGroupActionProfileTest, NotifieeUnregisteringItselfLetsTheOthersBeCalled) {
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  const Vel::Ptr<ProfileRecorder> b = profileRecorder("b");
  const Vel::Ptr<ProfileRecorder> c = profileRecorder("c");
  b->action = [&b](const std::string&) { b->isRegisteredNotifieeIs(false); };
  profile->entryIs(entry(7));
  profile->entryIs(entry(8));
  EXPECT_EQ(log,
            (Log{"a.onEntry(7)", "b.onEntry(7)", "c.onEntry(7)", "a.onEntry(8)", "c.onEntry(8)"}));
}

TEST_F(IngressMirrorLagGroupActionProfileTest, NotifieeUnregisteredByAnotherIsNotCalled) {
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  const Vel::Ptr<ProfileRecorder> b = profileRecorder("b");
  const Vel::Ptr<ProfileRecorder> c = profileRecorder("c");
  a->action = [&b](const std::string&) { b->isRegisteredNotifieeIs(false); };
  profile->groupIs(5, 8, 1, setLag);
  EXPECT_EQ(log, (Log{"a.onGroup(5)", "c.onGroup(5)"}));
  EXPECT_FALSE(profile->notifieeList()->isMember(b.get()));
}

TEST_F(IngressMirrorLagGroupActionProfileTest, NotifieeDestroyedByAnotherIsNotCalled) {
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  Vel::Ptr<ProfileRecorder> b = profileRecorder("b");
  const Vel::Ptr<ProfileRecorder> c = profileRecorder("c");
  a->action = [&b](const std::string&) { b = nullptr; };
  profile->groupIs(5, 8, 1, setLag);
  EXPECT_EQ(log, (Log{"a.onGroup(5)", "c.onGroup(5)"}));
  EXPECT_EQ(profile->notifieeList()->size(), 2u);
}

TEST_F(IngressMirrorLagGroupActionProfileTest,
       NotifieeUnregisteringAnEarlierOneLetsTheRestBeCalled) {
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  const Vel::Ptr<ProfileRecorder> b = profileRecorder("b");
  const Vel::Ptr<ProfileRecorder> c = profileRecorder("c");
  b->action = [&a](const std::string&) { a->isRegisteredNotifieeIs(false); };
  profile->entryIs(entry(7));
  profile->entryIs(entry(8));
  EXPECT_EQ(log,
            (Log{"a.onEntry(7)", "b.onEntry(7)", "c.onEntry(7)", "b.onEntry(8)", "c.onEntry(8)"}));
}

TEST_F(IngressMirrorLagGroupActionProfileTest, NotifieeDestroyingItselfLetsTheOthersBeCalled) {
  Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  const Vel::Ptr<ProfileRecorder> b = profileRecorder("b");
  a->action = [&a](const std::string&) { a = nullptr; };
  profile->groupIs(5, 8, 1, setLag);
  profile->groupDel(5);
  EXPECT_EQ(log, (Log{"a.onGroup(5)", "b.onGroup(5)", "b.onGroup(5)"}));
  EXPECT_EQ(profile->notifieeList()->size(), 1u);
}

TEST_F(IngressMirrorLagGroupActionProfileTest,
       NotifieeRegisteredInACallbackIsCalledFromTheNextOne) {
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  Vel::Ptr<ProfileRecorder> late;
  a->action = [&](const std::string&) {
    if (!late)
      late = profileRecorder("late");
  };
  profile->entryIs(entry(7));
  profile->entryIs(entry(8));
  EXPECT_EQ(log, (Log{"a.onEntry(7)", "a.onEntry(8)", "late.onEntry(8)"}));
}

TEST_F(IngressMirrorLagGroupActionProfileTest, ImmediateKeylessFormsComeFromABulkChange) {
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  {
    Vel::BulkChange groups(profile, Profile::groupAttribute);
    profile->groupIs(5, 8, 1, setLag);
    profile->groupIs(6, 8, 1, setLag);
    EXPECT_TRUE(log.empty());
  }
  EXPECT_EQ(log, Log{"a.onGroupvelImmediate()"});
  log.clear();
  {
    Vel::BulkChange entries(profile, Profile::entryAttribute);
    profile->entryIs(entry(7));
    profile->entryDel(7);
  }
  EXPECT_EQ(log, Log{"a.onEntryvelImmediate()"});
}

TEST_F(IngressMirrorLagGroupActionProfileTest, DeferredKeylessFormsComeFromTheActivityManager) {
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  a->deferredNotificationIs(true);
  profile->groupIs(5, 8, 1, setLag);
  profile->entryIs(entry(7));
  profile->entryIs(entry(8));
  EXPECT_EQ(log, (Log{"a.onGroup(5)", "a.onEntry(7)", "a.onEntry(8)"}));
  EXPECT_EQ(Vel::ActivityManager::instance().drain(), 2u);
  EXPECT_EQ(log,
            (Log{"a.onGroup(5)", "a.onEntry(7)", "a.onEntry(8)", "a.onGroup()", "a.onEntry()"}));
}

TEST_F(IngressMirrorLagGroupActionProfileTest, NotifieeFollowsOnlyAProfileAndMovesItsRegistration) {
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  EXPECT_EQ(a->notifier(), profile);
  const Vel::Ptr<Profile> other = Vel::allocate<Profile>("other");
  a->notifierIs(other);
  EXPECT_EQ(a->notifier(), other);
  EXPECT_TRUE(profile->notifieeList()->empty());
  EXPECT_TRUE(other->notifieeList()->isMember(a.get()));
  a->notifierIs(Vel::allocate<Group>(5, 8, 1, setLag));
  EXPECT_EQ(a->notifier(), nullptr);
  EXPECT_TRUE(other->notifieeList()->empty());
  EXPECT_TRUE(a->isRegisteredNotifiee());
  a->notifierIs(profile);
  profile->entryIs(entry(7));
  EXPECT_EQ(log, Log{"a.onEntry(7)"});
}

TEST_F(IngressMirrorLagGroupActionProfileTest, MutatingNotifieeFollowsOnlyAProfile) {
  const Vel::Ptr<MutatingProfileRecorder> a = recorder<MutatingProfileRecorder>("a", profile);
  EXPECT_TRUE(profile->notifieeList()->isMember(a.get()));
  a->notifierIs(Vel::allocate<Entry>(BfnTable::BfnMemberId(7), spec(1)));
  EXPECT_EQ(a->notifier(), nullptr);
  EXPECT_TRUE(profile->notifieeList()->empty());
  profile->groupIs(5, 8, 1, setLag);
  EXPECT_TRUE(log.empty());
}

// An observer of the profile as a mere entity, or a notifiee of another entity
// type put in the profile's list, is passed by; the profile's notifiees are
// still called.
TEST_F(IngressMirrorLagGroupActionProfileTest, NotifieesOfOtherInterfacesArePassedBy) {
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  const Vel::Ptr<Vel::Entity::NotifieeConst> general = Vel::allocate<Vel::Entity::NotifieeConst>();
  general->notifierIs(profile);
  general->isRegisteredNotifieeIs(true);
  const Vel::Ptr<GroupRecorder> stranger = listedRecorder<GroupRecorder>("stranger", *profile);
  const Vel::Ptr<ProfileRecorder> b = profileRecorder("b");
  profile->groupIs(5, 8, 1, setLag);
  profile->entryIs(entry(7));
  EXPECT_EQ(log, (Log{"a.onGroup(5)", "b.onGroup(5)", "a.onEntry(7)", "b.onEntry(7)"}));
  profile->notifieeList()->deleteMember(stranger.get());
}

TEST_F(IngressMirrorLagGroupActionProfileTest, NotifyWithoutNotifieesDoesNothing) {
  const Vel::Ptr<ProfileRecorder> idle = Vel::allocate<ProfileRecorder>("idle", &log);
  idle->deferredNotificationIs(true);
  idle->notifierIs(profile);
  profile->entryNotify(7);
  profile->groupNotify(5);
  EXPECT_TRUE(log.empty());
  EXPECT_EQ(Vel::ActivityManager::instance().pending(), 0u);
}

TEST_F(IngressMirrorLagGroupActionProfileTest, WorksTheSameWithThreadSafeReferenceCounts) {
  Vel::threadSafePtrIs(true);
  {
    const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
    profile->entryIs(entry(7));
    profile->groupIs(5, 8, 1, setLag)->memberIs(7);
    profile->entryDelAll();
    profile->groupDelAll();
  }
  profile = nullptr;
  Vel::threadSafePtrIs(false);
  EXPECT_EQ(log, (Log{"a.onEntry(7)", "a.onGroup(5)", "a.onEntry(7)", "a.onGroup(5)"}));
}

TEST_F(IngressMirrorLagGroupActionProfileTest, RegistrationMadeBeforeTheNotifierIsAppliedWithIt) {
  const Vel::Ptr<ProfileRecorder> a = Vel::allocate<ProfileRecorder>("a", &log);
  a->isRegisteredNotifieeIs(true);
  EXPECT_TRUE(a->isRegisteredNotifiee());
  EXPECT_TRUE(profile->notifieeList()->empty());
  a->notifierIs(profile);
  EXPECT_TRUE(profile->notifieeList()->isMember(a.get()));
  profile->groupIs(5, 8, 1, setLag);
  EXPECT_EQ(log, Log{"a.onGroup(5)"});
}

TEST_F(IngressMirrorLagGroupActionProfileTest, NotifieeWithNotificationOffIsPassedBy) {
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  const Vel::Ptr<ProfileRecorder> b = profileRecorder("b");
  a->hasNotificationActiveIs(false);
  profile->entryIs(entry(7));
  a->hasNotificationActiveIs(true);
  profile->entryDel(7);
  EXPECT_EQ(log, (Log{"b.onEntry(7)", "a.onEntry(7)", "b.onEntry(7)"}));
}

TEST_F(IngressMirrorLagGroupActionProfileTest, UnregisteredNotifieeIsNotCalled) {
  const Vel::Ptr<ProfileRecorder> a = profileRecorder("a");
  a->isRegisteredNotifieeIs(false);
  EXPECT_TRUE(profile->notifieeList()->empty());
  profile->entryIs(entry(7));
  a->isRegisteredNotifieeIs(true);
  a->isRegisteredNotifieeIs(true);
  EXPECT_EQ(profile->notifieeList()->size(), 1u);
  profile->entryDel(7);
  EXPECT_EQ(log, Log{"a.onEntry(7)"});
}

TEST_F(IngressMirrorLagGroupActionProfileTest, MutatingNotifieeCanEditTheProfileFromACallback) {
  const Vel::Ptr<MutatingProfileRecorder> a = recorder<MutatingProfileRecorder>("a", profile);
  const Vel::Ptr<Profile> notifier = a->notifier();
  EXPECT_EQ(notifier, profile);
  a->action = [&a](const std::string& callback) {
    if (callback == "onEntry(7)")
      a->notifier()->groupIs(3, 4, 7, setLag);
  };
  profile->entryIs(entry(7));
  EXPECT_EQ(log, (Log{"a.onEntry(7)", "a.onGroup(3)"}));
  EXPECT_NE(profile->group(3), nullptr);
}

TEST_F(IngressMirrorLagGroupActionProfileTest, NotifieeWithDefaultCallbacksIsToldNothingVisible) {
  const Vel::Ptr<Profile::NotifieeConst> plain = Vel::allocate<Profile::NotifieeConst>();
  plain->deferredNotificationIs(true);
  plain->notifierIs(profile);
  plain->isRegisteredNotifieeIs(true);
  {
    Vel::BulkChange groups(profile, Profile::groupAttribute);
    profile->groupIs(5, 8, 1, setLag);
  }
  profile->entryIs(entry(7));
  EXPECT_EQ(Vel::ActivityManager::instance().drain(), 2u);
  EXPECT_EQ(profile->groups(), 1u);
  EXPECT_EQ(profile->entries(), 1u);
}

// --- destruction ---

TEST_F(IngressMirrorLagGroupActionProfileTest,
       DestroyingTheProfileAnnouncesEachGroupRemovalAndReleasesEntriesSilently) {
  for (std::uint32_t id = 1; id <= 3; ++id)
    profile->groupIs(id, 8, 1, setLag);
  profile->entryIs(entry(7));
  profile->entryIs(entry(8));
  const Vel::Ptr<ProfileRecorder> a = listedRecorder<ProfileRecorder>("a", *profile);
  Log expected{"a.onZeroReferences()"};
  for (const std::string& line : groupsInOrder("a.onGroup"))
    expected.push_back(line);
  profile = nullptr;
  EXPECT_EQ(alive<Profile>(), 0u);
  EXPECT_EQ(alive<Group>(), 0u);
  EXPECT_EQ(alive<Entry>(), 0u);
  // Groups are walked in the order of their bit-reversed ids: 2 (01...), 1 (10...), 3 (11...).
  EXPECT_EQ(expected,
            (Log{"a.onZeroReferences()", "a.onGroup(2)", "a.onGroup(1)", "a.onGroup(3)"}));
  EXPECT_EQ(log, expected);
}

// The groups go first, while the entries are still held and the notifiees
// still listed; then the notifiees are dropped; the entries go last.
TEST_F(IngressMirrorLagGroupActionProfileTest,
       DestroyingTheProfileRemovesGroupsThenDropsNotifieesThenReleasesEntries) {
  profile->groupIs(1, 8, 1, setLag);
  profile->groupIs(2, 8, 1, setLag);
  profile->entryIs(entry(7));
  const Vel::Ptr<EntryRecorder> e = listedRecorder<EntryRecorder>("e", *profile->entry(7));
  const Vel::Ptr<ProfileRecorder> a = listedRecorder<ProfileRecorder>("a", *profile);
  const Profile* dying = profile.get();
  Log seen;
  const auto look = [dying, &seen](const std::string& callback) {
    seen.push_back(callback + " groups=" + std::to_string(dying->groups()) +
                   " entries=" + std::to_string(dying->entries()) +
                   " notifiees=" + std::to_string(dying->notifieeList()->size()));
  };
  a->action = look;
  e->action = look;
  profile = nullptr;
  EXPECT_EQ(seen, (Log{"onZeroReferences() groups=2 entries=1 notifiees=1",
                       "onGroup(2) groups=1 entries=1 notifiees=1",
                       "onGroup(1) groups=0 entries=1 notifiees=1",
                       "onZeroReferences() groups=0 entries=0 notifiees=0"}));
  EXPECT_EQ(log,
            (Log{"a.onZeroReferences()", "a.onGroup(2)", "a.onGroup(1)", "e.onZeroReferences()"}));
}

TEST_F(IngressMirrorLagGroupActionProfileTest,
       NotifieeDroppedByAnotherDuringDestructionHearsNoMoreRemovals) {
  for (std::uint32_t id = 1; id <= 3; ++id)
    profile->groupIs(id, 8, 1, setLag);
  const Vel::Ptr<ProfileRecorder> a = listedRecorder<ProfileRecorder>("a", *profile);
  const Vel::Ptr<ProfileRecorder> b = listedRecorder<ProfileRecorder>("b", *profile);
  const Vel::Ptr<ProfileRecorder> c = listedRecorder<ProfileRecorder>("c", *profile);
  const Profile* dying = profile.get();
  a->action = [dying, &b](const std::string& callback) {
    if (callback == "onGroup(2)")
      dying->notifieeList()->deleteMember(b.get());
  };
  profile = nullptr;
  EXPECT_EQ(log, (Log{"a.onZeroReferences()", "b.onZeroReferences()", "c.onZeroReferences()",
                      "a.onGroup(2)", "c.onGroup(2)", "a.onGroup(1)", "c.onGroup(1)",
                      "a.onGroup(3)", "c.onGroup(3)"}));
}

TEST_F(IngressMirrorLagGroupActionProfileTest,
       DestroyingTheProfileAnnouncesAGroupsRemovalBeforeTheGroupAnnouncesItsMembers) {
  Vel::Ptr<Group> five = profile->groupIs(5, 8, 1, setLag);
  five->memberIs(7);
  const Vel::Ptr<ProfileRecorder> a = listedRecorder<ProfileRecorder>("a", *profile);
  const Vel::Ptr<GroupRecorder> g = listedRecorder<GroupRecorder>("g", *five);
  five = nullptr;
  profile = nullptr;
  EXPECT_EQ(log,
            (Log{"a.onZeroReferences()", "a.onGroup(5)", "g.onZeroReferences()", "g.onMember(7)"}));
  EXPECT_EQ(alive<Member>(), 0u);
}

TEST_F(IngressMirrorLagGroupActionProfileTest, GroupHeldElsewhereOutlivesTheProfileWithoutParent) {
  const Vel::Ptr<Group> five = profile->groupIs(5, 8, 1, setLag);
  profile = nullptr;
  EXPECT_EQ(five->parent(), nullptr);
  EXPECT_EQ(five->fullName(), "5");
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup::EntityTesting
