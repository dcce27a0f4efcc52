#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "ReflectFixture.h"
#include "Vel/Allocate.h"
#include "Vel/RangeException.h"

namespace BfIngressMirrorLagGroup {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Vel::GenericIf;
using Vel::GenericValue;

// The texts of the keys of a walk from `iterator` on.
std::vector<std::string> keysWalked(const Vel::Ptr<Vel::GenericIterator>& iterator) {
  std::vector<std::string> keys;
  for (; iterator->valid(); iterator->advance())
    keys.push_back(GenericIf(iterator->key()).text());
  return keys;
}

// The texts of the keys of a collection, in its own order.
template <class Walk>
std::vector<std::string> keysOf(Walk walk) {
  std::vector<std::string> keys;
  for (; walk.valid(); ++walk)
    keys.push_back(std::to_string(walk.key().value()));
  return keys;
}

// The profile's and the group's collections edited and walked through the
// framework's reflection, with the state machine following the profile: every
// edit goes through the collection's mutators, so the state machine programs
// the chip as it does for edits made in code.
class CollectionReflectionTest : public ReflectFixture {
 protected:
  void SetUp() override {
    ReflectFixture::SetUp();
    makeSm();
    profileAccess.emplace(profile);
  }
  void TearDown() override {
    profileAccess.reset();
    ReflectFixture::TearDown();
  }

  GenericValue entryValue(std::uint32_t memberId, std::uint16_t selector) const {
    return GenericValue(IngressMirrorLagGroupActionProfileEntry::typeRecord(),
                        entryOf(memberId, selector));
  }

  GenericIf& profileIf() { return *profileAccess; }

  // Made once the profile is.
  std::optional<GenericIf> profileAccess;
};

TEST_F(CollectionReflectionTest, EntryInsertedByCodeOneIsProgrammed) {
  startLog();
  const GenericValue inserted =
      profileIf().attribute("entry", GenericIf::opWrite, {entryValue(1, 100)});
  const auto entry = profile->entry(BfnTable::BfnMemberId(1));
  ASSERT_NE(entry, nullptr);
  EXPECT_EQ(inserted.object(), entry);
  EXPECT_EQ(entry->action()->lagMemberSelector(), 100u);
  EXPECT_THAT(logLines(), ElementsAre(addMemberLine(100, memberHandle(1))));
  EXPECT_EQ(chip.members(), 1u);
}

TEST_F(CollectionReflectionTest, EntryIsLookedUpCountedAndTested) {
  memberIs(1, 100);
  memberIs(2, 200);
  EXPECT_EQ(profileIf()
                .attribute("entry", GenericIf::opRead, {keyOf(profileIf(), "entry", "2")})
                .object(),
            profile->entry(BfnTable::BfnMemberId(2)));
  const GenericValue absent =
      profileIf().attribute("entry", GenericIf::opRead, {keyOf(profileIf(), "entry", "3")});
  EXPECT_TRUE(absent.isNull());
  EXPECT_EQ(absent.type(), &GenericIf::typeNamed(
                               "BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileEntry"));
  EXPECT_EQ(profileIf().attribute("entry", GenericIf::opSize).get<std::uint32_t>(), 2u);
  EXPECT_EQ(profileIf().attribute("entry", GenericIf::opBucketCount).get<std::uint32_t>(),
            profile->entryCollection().buckets());
  EXPECT_TRUE(profileIf()
                  .attribute("entry", GenericIf::opContains, {keyOf(profileIf(), "entry", "1")})
                  .get<bool>());
  EXPECT_FALSE(profileIf()
                   .attribute("entry", GenericIf::opContains, {keyOf(profileIf(), "entry", "3")})
                   .get<bool>());
}

TEST_F(CollectionReflectionTest, EntryDeletedByCodeTwoLeavesTheChip) {
  const auto entry = memberIs(1, 100);
  const std::uint32_t handle = memberHandle(1);
  startLog();
  const GenericValue removed =
      profileIf().attribute("entry", GenericIf::opDelete, {keyOf(profileIf(), "entry", "1")});
  EXPECT_EQ(removed.object(), entry);
  EXPECT_EQ(profile->entry(BfnTable::BfnMemberId(1)), nullptr);
  EXPECT_THAT(logLines(), ElementsAre(delMemberLine(handle)));
  EXPECT_EQ(chip.members(), 0u);
  // An absent entry: nothing removed, nothing programmed.
  startLog();
  EXPECT_TRUE(profileIf()
                  .attribute("entry", GenericIf::opDelete, {keyOf(profileIf(), "entry", "1")})
                  .isNull());
  EXPECT_THAT(logLines(), IsEmpty());
}

TEST_F(CollectionReflectionTest, GroupCreatedByCodeOneWithItsFourValuesIsProgrammed) {
  memberIs(1, 100);
  startLog();
  const GenericValue created = profileIf().attribute(
      "group", GenericIf::opWrite,
      {keyOf(profileIf(), "group", "10"), u32(4), u32(1), selectorActionType()});
  const auto group = profile->group(BfnTable::BfnGroupId(10));
  ASSERT_NE(group, nullptr);
  EXPECT_EQ(created.object(), group);
  EXPECT_EQ(group->groupSize(), 4u);
  EXPECT_EQ(group->initialMemberId(), 1u);
  EXPECT_THAT(logLines(), ElementsAre(createGroupLine(4, groupHandle(10)),
                                      addMemberToGroupLine(groupHandle(10), memberHandle(1))));
  // The same values again answer the same group and program nothing.
  startLog();
  EXPECT_EQ(
      profileIf()
          .attribute("group", GenericIf::opWrite,
                     {keyOf(profileIf(), "group", "10"), u32(4), u32(1), selectorActionType()})
          .object(),
      group);
  EXPECT_THAT(logLines(), IsEmpty());
  EXPECT_EQ(profileIf()
                .attribute("group", GenericIf::opRead, {keyOf(profileIf(), "group", "10")})
                .object(),
            group);
  EXPECT_EQ(profileIf().attribute("group", GenericIf::opSize).get<std::uint32_t>(), 1u);
  EXPECT_EQ(profileIf().attribute("group", GenericIf::opBucketCount).get<std::uint32_t>(),
            profile->groupCollection().buckets());
  EXPECT_TRUE(profileIf()
                  .attribute("group", GenericIf::opContains, {keyOf(profileIf(), "group", "10")})
                  .get<bool>());
  EXPECT_FALSE(profileIf()
                   .attribute("group", GenericIf::opContains, {keyOf(profileIf(), "group", "11")})
                   .get<bool>());
}

TEST_F(CollectionReflectionTest, GroupDeletedByCodeTwoLeavesTheChip) {
  memberIs(1, 100);
  const auto group = groupIs(10, 4, 1);
  const std::uint32_t handle = groupHandle(10);
  startLog();
  const GenericValue removed =
      profileIf().attribute("group", GenericIf::opDelete, {keyOf(profileIf(), "group", "10")});
  EXPECT_EQ(removed.object(), group);
  EXPECT_EQ(profile->group(BfnTable::BfnGroupId(10)), nullptr);
  EXPECT_EQ(chip.groups(), 0u);
  ASSERT_FALSE(logLines().empty());
  EXPECT_EQ(logLines().back(), delGroupLine(handle));
}

TEST_F(CollectionReflectionTest, MemberJoinsByCodeOneAndLeavesByCodeTwo) {
  memberIs(1, 100);
  memberIs(2, 200);
  const auto group = groupIs(10, 4, 1);
  GenericIf groupIf(group);
  startLog();
  const GenericValue joined =
      groupIf.attribute("member", GenericIf::opWrite, {keyOf(groupIf, "member", "2")});
  const auto member = group->member(BfnTable::BfnMemberId(2));
  ASSERT_NE(member, nullptr);
  EXPECT_EQ(joined.object(), member);
  EXPECT_THAT(logLines(), ElementsAre(addMemberToGroupLine(groupHandle(10), memberHandle(2))));
  EXPECT_EQ(
      groupIf.attribute("member", GenericIf::opRead, {keyOf(groupIf, "member", "2")}).object(),
      member);
  EXPECT_EQ(groupIf.attribute("member", GenericIf::opSize).get<std::uint32_t>(), 2u);
  EXPECT_EQ(groupIf.attribute("member", GenericIf::opBucketCount).get<std::uint32_t>(),
            group->memberCollection().buckets());
  EXPECT_TRUE(groupIf.attribute("member", GenericIf::opContains, {keyOf(groupIf, "member", "2")})
                  .get<bool>());

  startLog();
  const GenericValue left =
      groupIf.attribute("member", GenericIf::opDelete, {keyOf(groupIf, "member", "2")});
  EXPECT_EQ(left.object(), member);
  EXPECT_EQ(group->member(BfnTable::BfnMemberId(2)), nullptr);
  EXPECT_THAT(logLines(), ElementsAre(delMemberFromGroupLine(groupHandle(10), memberHandle(2))));
  EXPECT_FALSE(groupIf.attribute("member", GenericIf::opContains, {keyOf(groupIf, "member", "2")})
                   .get<bool>());
}

TEST_F(CollectionReflectionTest, StateMachineCollectionsShowWhatItsReactorsFollow) {
  const auto entry = memberIs(1, 100);
  const auto group = groupIs(10, 4, 1);
  GenericIf smIf(sm);
  EXPECT_EQ(smIf.attribute("actionProfile", GenericIf::opRead, {keyOf(smIf, "actionProfile", "1")})
                .object(),
            entry);
  EXPECT_EQ(smIf.attribute("group", GenericIf::opRead, {keyOf(smIf, "group", "10")}).object(),
            group);
  EXPECT_EQ(smIf.attribute("actionProfile", GenericIf::opSize).get<std::uint32_t>(), 1u);
  EXPECT_EQ(smIf.attribute("group", GenericIf::opSize).get<std::uint32_t>(), 1u);
  EXPECT_TRUE(
      smIf.attribute("actionProfile", GenericIf::opRead, {keyOf(smIf, "actionProfile", "2")})
          .isNull());
}

TEST_F(CollectionReflectionTest, EntriesAreWalkedInTheCollectionsOrder) {
  for (std::uint32_t id = 1; id <= 5; ++id)
    memberIs(id, static_cast<std::uint16_t>(100 * id));
  const std::vector<std::string> order = keysOf(profile->entryIteratorConst());
  ASSERT_EQ(order.size(), 5u);
  EXPECT_EQ(keysWalked(profileIf().iterator("entry")), order);

  const auto at = profileIf().iteratorAtKey("entry", keyOf(profileIf(), "entry", order[2]));
  ASSERT_TRUE(at->valid());
  EXPECT_EQ(GenericIf(at->key()).text(), order[2]);
  EXPECT_EQ(at->current().object(), profile->entry(BfnTable::BfnMemberId(std::stoul(order[2]))));
  EXPECT_EQ(keysWalked(at), std::vector<std::string>(order.begin() + 2, order.end()));
  EXPECT_FALSE(profileIf().iteratorAtKey("entry", keyOf(profileIf(), "entry", "9"))->valid());
}

TEST_F(CollectionReflectionTest, AnIteratorOnNoElementRefusesKeyAndCurrent) {
  const auto walk = profileIf().iterator("entry");
  EXPECT_FALSE(walk->valid());
  EXPECT_THROW(walk->key(), Vel::RangeException);
  EXPECT_THROW(walk->current(), Vel::RangeException);
}

TEST_F(CollectionReflectionTest, DeleteCurrentRemovesTheEntryThroughEntryDel) {
  memberIs(1, 100);
  memberIs(2, 200);
  const std::uint32_t handle = memberHandle(2);
  const auto entry = profile->entry(BfnTable::BfnMemberId(2));
  const auto at = profileIf().iteratorAtKey("entry", keyOf(profileIf(), "entry", "2"));
  ASSERT_TRUE(at->valid());
  startLog();
  EXPECT_EQ(at->deleteCurrent().object(), entry);
  EXPECT_EQ(profile->entry(BfnTable::BfnMemberId(2)), nullptr);
  EXPECT_THAT(logLines(), ElementsAre(delMemberLine(handle)));
  EXPECT_EQ(chip.members(), 1u);
}

TEST_F(CollectionReflectionTest, WalkDeletingEveryEntryEmptiesTheChip) {
  for (std::uint32_t id = 1; id <= 4; ++id)
    memberIs(id, static_cast<std::uint16_t>(100 * id));
  std::vector<std::string> deleted;
  for (auto walk = profileIf().iterator("entry"); walk->valid();) {
    deleted.push_back(GenericIf(walk->key()).text());
    walk->deleteCurrent();
  }
  EXPECT_EQ(deleted.size(), 4u);
  EXPECT_EQ(profile->entries(), 0u);
  EXPECT_EQ(chip.members(), 0u);
}

TEST_F(CollectionReflectionTest, GroupsAreWalkedAndDeletedThroughGroupDel) {
  memberIs(1, 100);
  groupIs(10, 4, 1);
  groupIs(11, 4, 1);
  groupIs(12, 4, 1);
  EXPECT_EQ(keysWalked(profileIf().iterator("group")), keysOf(profile->groupIteratorConst()));
  const std::uint32_t handle = groupHandle(11);
  const auto group = profile->group(BfnTable::BfnGroupId(11));
  const auto at = profileIf().iteratorAtKey("group", keyOf(profileIf(), "group", "11"));
  ASSERT_TRUE(at->valid());
  EXPECT_EQ(at->current().object(), group);
  startLog();
  EXPECT_EQ(at->deleteCurrent().object(), group);
  EXPECT_EQ(profile->group(BfnTable::BfnGroupId(11)), nullptr);
  ASSERT_FALSE(logLines().empty());
  EXPECT_EQ(logLines().back(), delGroupLine(handle));
  EXPECT_EQ(chip.groups(), 2u);
}

TEST_F(CollectionReflectionTest, MembersAreWalkedAndDeletedThroughMemberDel) {
  for (std::uint32_t id = 1; id <= 3; ++id)
    memberIs(id, static_cast<std::uint16_t>(100 * id));
  const auto group = groupIs(10, 4, 1);
  group->memberIs(BfnTable::BfnMemberId(2));
  group->memberIs(BfnTable::BfnMemberId(3));
  GenericIf groupIf(group);
  EXPECT_EQ(keysWalked(groupIf.iterator("member")), keysOf(group->memberIteratorConst()));
  const auto at = groupIf.iteratorAtKey("member", keyOf(groupIf, "member", "3"));
  ASSERT_TRUE(at->valid());
  const auto member = group->member(BfnTable::BfnMemberId(3));
  EXPECT_EQ(at->current().object(), member);
  startLog();
  EXPECT_EQ(at->deleteCurrent().object(), member);
  EXPECT_EQ(group->member(BfnTable::BfnMemberId(3)), nullptr);
  EXPECT_THAT(logLines(), ElementsAre(delMemberFromGroupLine(groupHandle(10), memberHandle(3))));
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
