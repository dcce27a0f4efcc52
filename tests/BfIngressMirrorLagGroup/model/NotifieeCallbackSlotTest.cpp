// The notifiee classes are an interface between separately built parts of the
// agent: their virtual functions must keep their positions, the framework's
// first and then each entity's callbacks in a fixed order.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <optional>

#include "EntityTestSupport.h"

namespace BfIngressMirrorLagGroup::EntityTesting {
namespace {

using Vel::PtrInterface;

// The position of a virtual function in the table of virtual functions, read
// from a pointer to it as the C++ ABI of the platform encodes one (a word with
// the slot's byte offset and a word with the this-adjustment); none for a
// function that is not virtual.
template <class F>
std::optional<std::ptrdiff_t> slotOf(F function) {
  static_assert(sizeof(F) == 2 * sizeof(std::ptrdiff_t));
  std::ptrdiff_t words[2];
  std::memcpy(words, &function, sizeof words);
  constexpr auto slotSize = static_cast<std::ptrdiff_t>(sizeof(void*));
#if defined(__arm__) || defined(__aarch64__)
  if ((words[1] & 1) == 0)
    return std::nullopt;
  return words[0] / slotSize;
#else
  if ((words[0] & 1) == 0)
    return std::nullopt;
  return (words[0] - 1) / slotSize;
#endif
}

// The slots of every notifiee, before the entity's own callbacks: the object's
// (with the two of the destructor after fwkType), then the notifiee's.
template <class N>
void expectFrameworkSlots() {
  EXPECT_EQ(slotOf(&N::notifieeList), 0);
  EXPECT_EQ(slotOf(&N::hasNotificationActiveIs), 1);
  EXPECT_EQ(slotOf(&N::zeroReferencesIs), 2);
  EXPECT_EQ(slotOf(&N::fwkType), 3);
  EXPECT_EQ(slotOf(&N::velReactor), 6);
  EXPECT_EQ(slotOf(&N::isRegisteredNotifieeIs), 7);
  EXPECT_EQ(slotOf(static_cast<void (N::*)(const Vel::Ptr<const PtrInterface>&)>(&N::notifierIs)),
            8);
  EXPECT_EQ(slotOf(&N::handleNotification), 9);
  EXPECT_EQ(slotOf(&N::onNotificationException), 10);
  EXPECT_EQ(slotOf(&N::onZeroReferences), 11);
  EXPECT_EQ(slotOf(&N::velFwkActivity), 12);
  EXPECT_EQ(slotOf(&N::actsm), 13);
}

constexpr std::ptrdiff_t firstCallbackSlot = 14;

TEST(SlotOfTest, TellsVirtualFromOtherFunctions) {
  EXPECT_EQ(slotOf(&Profile::NotifieeConst::isRegisteredNotifiee), std::nullopt);
  EXPECT_EQ(slotOf(&Profile::NotifieeConst::deferredNotificationIs), std::nullopt);
  EXPECT_NE(slotOf(&Profile::NotifieeConst::actsm), std::nullopt);
}

template <class N>
void expectProfileCallbackSlots() {
  expectFrameworkSlots<N>();
  using Group = void (N::*)(BfnTable::BfnGroupId);
  using Entry = void (N::*)(BfnTable::BfnMemberId);
  using Keyless = void (N::*)();
  EXPECT_EQ(slotOf(static_cast<Group>(&N::onGroup)), firstCallbackSlot);
  EXPECT_EQ(slotOf(&N::onGroupvelImmediate), firstCallbackSlot + 1);
  EXPECT_EQ(slotOf(static_cast<Keyless>(&N::onGroup)), firstCallbackSlot + 2);
  EXPECT_EQ(slotOf(static_cast<Entry>(&N::onEntry)), firstCallbackSlot + 3);
  EXPECT_EQ(slotOf(&N::onEntryvelImmediate), firstCallbackSlot + 4);
  EXPECT_EQ(slotOf(static_cast<Keyless>(&N::onEntry)), firstCallbackSlot + 5);
}

TEST(NotifieeCallbackSlotTest, ProfileNotifieeConstCallbacksFollowTheFrameworksSlots) {
  expectProfileCallbackSlots<Profile::NotifieeConst>();
}

TEST(NotifieeCallbackSlotTest, ProfileNotifieeHasTheSameSlots) {
  expectProfileCallbackSlots<Profile::Notifiee>();
}

TEST(NotifieeCallbackSlotTest, EntryNotifieeConstHasOnActionAfterTheFrameworksSlots) {
  expectFrameworkSlots<Entry::NotifieeConst>();
  EXPECT_EQ(slotOf(&Entry::NotifieeConst::onAction), firstCallbackSlot);
}

TEST(NotifieeCallbackSlotTest, GroupNotifieeConstCallbacksFollowTheFrameworksSlots) {
  using N = Group::NotifieeConst;
  expectFrameworkSlots<N>();
  EXPECT_EQ(slotOf(static_cast<void (N::*)(BfnTable::BfnMemberId)>(&N::onMember)),
            firstCallbackSlot);
  EXPECT_EQ(slotOf(&N::onMembervelImmediate), firstCallbackSlot + 1);
  EXPECT_EQ(slotOf(static_cast<void (N::*)()>(&N::onMember)), firstCallbackSlot + 2);
}

TEST(NotifieeCallbackSlotTest, MemberNotifieeConstHasOnActiveAfterTheFrameworksSlots) {
  expectFrameworkSlots<Member::NotifieeConst>();
  EXPECT_EQ(slotOf(&Member::NotifieeConst::onActive), firstCallbackSlot);
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup::EntityTesting
