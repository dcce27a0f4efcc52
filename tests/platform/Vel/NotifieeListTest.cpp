#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "Vel/NotifieeList.h"
#include "Vel/PtrInterfaceNotifieeConst.h"

namespace {

using Vel::NotifieeList;
using Names = std::vector<std::string>;

// A list member with a name, and an action that a visit runs when it reaches it.
class Member : public Vel::PtrInterface::NotifieeConst {
 public:
  explicit Member(std::string name) : name(std::move(name)) {}

  std::string name;
  std::function<void()> onVisit;
};

Member& asMember(Vel::PtrInterface::NotifieeConst& notifiee) {
  return static_cast<Member&>(notifiee);
}

// Visits the list once, running each member's action, and returns the names of
// the members visited, in order.
Names visit(NotifieeList& list) {
  Names visited;
  list.doVisit([&visited](Vel::PtrInterface::NotifieeConst& notifiee) {
    Member& member = asMember(notifiee);
    visited.push_back(member.name);
    const std::function<void()> action = member.onVisit;
    if (action)
      action();
  });
  return visited;
}

class NotifieeListTest : public ::testing::Test {
 protected:
  void SetUp() override {
    for (Member* member : {&a, &b, &c, &d})
      list.newMember(member);
  }

  NotifieeList list;
  Member a{"a"}, b{"b"}, c{"c"}, d{"d"}, e{"e"};
};

TEST(NotifieeListEmptyTest, NewListIsEmpty) {
  NotifieeList list;
  EXPECT_TRUE(list.empty());
  EXPECT_EQ(list.size(), 0u);
  EXPECT_EQ(visit(list), Names{});
}

TEST_F(NotifieeListTest, VisitsMembersInTheOrderTheyWereAdded) {
  EXPECT_FALSE(list.empty());
  EXPECT_EQ(list.size(), 4u);
  EXPECT_EQ(visit(list), (Names{"a", "b", "c", "d"}));
}

TEST_F(NotifieeListTest, MemberIsNotAddedTwice) {
  list.newMember(&b);
  EXPECT_EQ(list.size(), 4u);
  EXPECT_EQ(visit(list), (Names{"a", "b", "c", "d"}));
}

TEST_F(NotifieeListTest, DeleteMemberTakesOnlyThatMemberOut) {
  list.deleteMember(&b);
  EXPECT_EQ(list.size(), 3u);
  EXPECT_FALSE(list.isMember(&b));
  EXPECT_TRUE(list.isMember(&c));
  EXPECT_EQ(visit(list), (Names{"a", "c", "d"}));
}

TEST_F(NotifieeListTest, DeletingANonMemberOrNullChangesNothing) {
  list.deleteMember(&e);
  list.deleteMember(nullptr);
  EXPECT_EQ(list.size(), 4u);
  EXPECT_EQ(visit(list), (Names{"a", "b", "c", "d"}));
}

TEST_F(NotifieeListTest, DeleteAllEmptiesTheList) {
  list.deleteAll();
  EXPECT_TRUE(list.empty());
  EXPECT_EQ(visit(list), Names{});
  list.newMember(&c);
  EXPECT_EQ(visit(list), Names{"c"});
}

TEST_F(NotifieeListTest, MembersWithNotificationOffAreSkipped) {
  b.hasNotificationActiveIs(false);
  d.hasNotificationActiveIs(false);
  EXPECT_EQ(visit(list), (Names{"a", "c"}));
  EXPECT_EQ(list.size(), 4u);
  b.hasNotificationActiveIs(true);
  EXPECT_EQ(visit(list), (Names{"a", "b", "c"}));
}

TEST_F(NotifieeListTest, MemberSwitchedOffByAnEarlierCallbackIsSkipped) {
  a.onVisit = [this] { c.hasNotificationActiveIs(false); };
  EXPECT_EQ(visit(list), (Names{"a", "b", "d"}));
}

TEST_F(NotifieeListTest, MemberDeletingItselfDuringAVisitLetsTheOthersBeVisited) {
  b.onVisit = [this] { list.deleteMember(&b); };
  EXPECT_EQ(visit(list), (Names{"a", "b", "c", "d"}));
  EXPECT_EQ(list.size(), 3u);
  EXPECT_EQ(visit(list), (Names{"a", "c", "d"}));
}

TEST_F(NotifieeListTest, MemberDeletedByAnEarlierCallbackIsNotVisited) {
  a.onVisit = [this] { list.deleteMember(&c); };
  EXPECT_EQ(visit(list), (Names{"a", "b", "d"}));
  EXPECT_EQ(list.size(), 3u);
}

TEST_F(NotifieeListTest, MemberAlreadyVisitedCanBeDeletedByALaterCallback) {
  c.onVisit = [this] { list.deleteMember(&a); };
  EXPECT_EQ(visit(list), (Names{"a", "b", "c", "d"}));
  EXPECT_EQ(visit(list), (Names{"b", "c", "d"}));
}

TEST_F(NotifieeListTest, MembersDestroyedDuringAVisitAreNeverTouched) {
  auto doomed = std::make_unique<Member>("doomed");
  auto self = std::make_unique<Member>("self");
  list.deleteAll();
  list.newMember(&a);
  list.newMember(self.get());
  list.newMember(doomed.get());
  list.newMember(&b);
  // A member destroyed during the visit takes itself out of the list first, as
  // a registered notifiee's destructor does.
  self->onVisit = [&] {
    list.deleteMember(doomed.get());
    doomed.reset();
    list.deleteMember(self.get());
    self.reset();
  };
  EXPECT_EQ(visit(list), (Names{"a", "self", "b"}));
  EXPECT_EQ(visit(list), (Names{"a", "b"}));
}

TEST_F(NotifieeListTest, DeleteAllDuringAVisitEndsTheVisit) {
  b.onVisit = [this] { list.deleteAll(); };
  EXPECT_EQ(visit(list), (Names{"a", "b"}));
  EXPECT_TRUE(list.empty());
  EXPECT_EQ(visit(list), Names{});
}

TEST_F(NotifieeListTest, MemberAddedDuringAVisitIsFirstVisitedByTheNextOne) {
  b.onVisit = [this] { list.newMember(&e); };
  EXPECT_EQ(visit(list), (Names{"a", "b", "c", "d"}));
  EXPECT_EQ(list.size(), 5u);
  b.onVisit = nullptr;
  EXPECT_EQ(visit(list), (Names{"a", "b", "c", "d", "e"}));
}

TEST_F(NotifieeListTest, MemberDeletedAndAddedAgainDuringAVisitMovesToTheEnd) {
  a.onVisit = [this] {
    list.deleteMember(&c);
    list.newMember(&c);
  };
  EXPECT_EQ(visit(list), (Names{"a", "b", "d"}));
  EXPECT_EQ(list.size(), 4u);
  a.onVisit = nullptr;
  EXPECT_EQ(visit(list), (Names{"a", "b", "d", "c"}));
}

TEST_F(NotifieeListTest, NestedVisitsEachSeeTheListAsTheyFindIt) {
  Names inner;
  // While the outer visit is at a, b is deleted and e added, then an inner
  // visit runs: it sees e, the outer one does not.
  a.onVisit = [&] {
    a.onVisit = nullptr;
    list.deleteMember(&b);
    list.newMember(&e);
    inner = visit(list);
  };
  const Names outer = visit(list);
  EXPECT_EQ(inner, (Names{"a", "c", "d", "e"}));
  EXPECT_EQ(outer, (Names{"a", "c", "d"}));
  EXPECT_EQ(visit(list), (Names{"a", "c", "d", "e"}));
}

TEST_F(NotifieeListTest, SlotsEmptiedInAnInnerVisitStayUntilTheOuterVisitEnds) {
  // If the inner visit compacted the list, the outer one, at position 1, would
  // miss c.
  b.onVisit = [&] {
    b.onVisit = nullptr;
    c.onVisit = [&] { list.deleteMember(&b); };
    visit(list);
    c.onVisit = nullptr;
  };
  EXPECT_EQ(visit(list), (Names{"a", "b", "c", "d"}));
  EXPECT_EQ(visit(list), (Names{"a", "c", "d"}));
}

TEST_F(NotifieeListTest, ExceptionFromACallbackLeavesTheVisitAndTheListConsistent) {
  b.onVisit = [this] {
    list.deleteMember(&a);
    list.newMember(&e);
    throw std::runtime_error("b failed");
  };
  Names visited;
  try {
    list.doVisit([&visited](Vel::PtrInterface::NotifieeConst& notifiee) {
      Member& member = asMember(notifiee);
      visited.push_back(member.name);
      if (member.onVisit)
        member.onVisit();
    });
    ADD_FAILURE() << "the exception did not leave the visit";
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(std::string(error.what()), "b failed");
  }
  EXPECT_EQ(visited, (Names{"a", "b"}));
  EXPECT_EQ(list.size(), 4u);
  b.onVisit = nullptr;
  EXPECT_EQ(visit(list), (Names{"b", "c", "d", "e"}));
  // No visit is left running: a deletion takes effect at once again.
  list.deleteMember(&c);
  EXPECT_EQ(visit(list), (Names{"b", "d", "e"}));
}

TEST(NotifieeListDeathTest, NullMemberIsAnAssertion) {
  NotifieeList list;
  EXPECT_DEATH(list.newMember(nullptr),
               "^.*platform/Vel/NotifieeList\\.cpp:[0-9]+: void "
               "Vel::NotifieeList::newMember\\((Vel::NotifieeList::)?Member ?\\*\\): "
               "Assertion 'member != nullptr' failed\\.\n$");
}

TEST(NotifieeListDeathTest, ListDestroyedWhileVisitedIsAnAssertion) {
  auto list = std::make_unique<NotifieeList>();
  Member only("only");
  list->newMember(&only);
  EXPECT_DEATH(list->doVisit([&list](Vel::PtrInterface::NotifieeConst&) { list.reset(); }),
               "^.*platform/Vel/NotifieeList\\.cpp:[0-9]+: "
               "Vel::NotifieeList::~NotifieeList\\(\\): "
               "Assertion 'visits_ == 0' failed\\.\n$");
}

}  // namespace
