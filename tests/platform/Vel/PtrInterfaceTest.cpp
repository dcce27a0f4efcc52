#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "Vel/AllocTrackTypeInfo.h"
#include "Vel/Allocate.h"
#include "Vel/ObjectReference.h"
#include "Vel/Ptr.h"
#include "Vel/PtrInterface.h"

namespace {

using Vel::PtrInterface;

class Plain : public PtrInterface {};

// Records the framework's calls at the end of its life in a log.
class Watched : public PtrInterface {
 public:
  explicit Watched(std::vector<std::string>* log) : log_(log) {}
  ~Watched() override { log_->push_back("destroyed"); }
  void zeroReferencesIs(bool zero) override {
    log_->push_back(zero ? "zeroReferencesIs(true)" : "zeroReferencesIs(false)");
  }

 private:
  std::vector<std::string>* log_;
};

// Takes a new reference to itself when its last one goes, as long as asked to.
class Rescued : public Watched {
 public:
  using Watched::Watched;
  void zeroReferencesIs(bool zero) override {
    Watched::zeroReferencesIs(zero);
    if (keepAlive)
      rescuer = this;
  }

  bool keepAlive = true;
  Vel::Ptr<Rescued> rescuer;
};

// Takes and drops a reference to itself, once, when its last one goes, as a
// notifiee that looks at the dying object would.
class LookedAtWhenDying : public Watched {
 public:
  using Watched::Watched;
  void zeroReferencesIs(bool zero) override {
    Watched::zeroReferencesIs(zero);
    if (lookedAt_)
      return;
    lookedAt_ = true;
    Vel::Ptr<LookedAtWhenDying> look(this);
  }

 private:
  bool lookedAt_ = false;
};

template <class T>
std::size_t live() {
  return Vel::AllocTrackTypeInfo::of<T>().liveObjects();
}

// Switches atomic reference counting on for a scope and back off after it.
class ThreadSafePtrScope {
 public:
  ThreadSafePtrScope() : before_(Vel::threadSafePtr()) { Vel::threadSafePtrIs(true); }
  ~ThreadSafePtrScope() { Vel::threadSafePtrIs(before_); }

 private:
  bool before_;
};

TEST(PtrInterfaceTest, ReferenceWordLayout) {
  EXPECT_EQ(PtrInterface::refCountMask, 0x5fffffffu);
  EXPECT_EQ(PtrInterface::markedForDeletionBit, 0x80000000u);
  EXPECT_EQ(PtrInterface::referencedInTextBit, 0x20000000u);
}

TEST(PtrInterfaceTest, MarkedForDeletionIsTheTopBitAndNotCounted) {
  for (bool threadSafe : {false, true}) {
    SCOPED_TRACE(threadSafe ? "atomic counts" : "plain counts");
    const bool before = Vel::threadSafePtr();
    Vel::threadSafePtrIs(threadSafe);
    {
      Vel::Ptr<Plain> first = Vel::allocate<Plain>();
      Vel::Ptr<Plain> second = first;
      EXPECT_FALSE(first->velMarkedForDeletion());
      EXPECT_EQ(first->referenceWord(), 2u);

      first->velMarkedForDeletionIs(true);
      EXPECT_TRUE(first->velMarkedForDeletion());
      EXPECT_EQ(first->referenceWord(), 0x80000002u);
      EXPECT_EQ(first->referenceWord() >> 31, 1u);
      EXPECT_EQ(first->references(), 2u);
      {
        Vel::Ptr<Plain> third = first;
        EXPECT_EQ(first->referenceWord(), 0x80000003u);
        EXPECT_EQ(first->references(), 3u);
      }
      EXPECT_EQ(first->referenceWord(), 0x80000002u);

      first->velMarkedForDeletionIs(false);
      EXPECT_FALSE(first->velMarkedForDeletion());
      EXPECT_EQ(first->referenceWord(), 2u);
      EXPECT_EQ(first->references(), 2u);
    }
    Vel::threadSafePtrIs(before);
    EXPECT_EQ(live<Plain>(), 0u);
  }
}

TEST(PtrInterfaceTest, MarkedObjectStillDiesWithItsLastReference) {
  std::vector<std::string> log;
  {
    Vel::Ptr<Watched> object = Vel::allocate<Watched>(&log);
    object->velMarkedForDeletionIs(true);
  }
  EXPECT_EQ(log, (std::vector<std::string>{"zeroReferencesIs(true)", "destroyed"}));
  EXPECT_EQ(live<Watched>(), 0u);
}

TEST(PtrInterfaceTest, ReferencedInTextFlagIsNotCounted) {
  {
    Vel::Ptr<Plain> object = Vel::allocate<Plain>();
    EXPECT_NE(Vel::ObjectReference::idOf(object.get()), 0u);
    EXPECT_EQ(object->referenceWord(), 0x20000001u);
    EXPECT_EQ(object->references(), 1u);
    Vel::Ptr<Plain> copy = object;
    EXPECT_EQ(object->referenceWord(), 0x20000002u);
    EXPECT_EQ(object->references(), 2u);

    object->flagIs(PtrInterface::referencedInTextBit, false);
    EXPECT_EQ(object->referenceWord(), 2u);
    object->flagIs(PtrInterface::referencedInTextBit, true);
    EXPECT_EQ(object->references(), 2u);
  }
  EXPECT_EQ(live<Plain>(), 0u);
}

TEST(PtrInterfaceTest, BitThirtyIsInsideTheCountMask) {
  Vel::Ptr<Plain> object = Vel::allocate<Plain>();
  object->flagIs(0x40000000u, true);
  EXPECT_EQ(object->references(), 0x40000001u);
  object->flagIs(0x40000000u, false);
  EXPECT_EQ(object->references(), 1u);
}

TEST(PtrInterfaceTest, LastReleaseAnnouncesZeroThenDestroys) {
  std::vector<std::string> log;
  Vel::Ptr<Watched> object = Vel::allocate<Watched>(&log);
  Vel::Ptr<Watched> copy = object;
  object = nullptr;
  EXPECT_TRUE(log.empty());
  EXPECT_EQ(live<Watched>(), 1u);
  copy = nullptr;
  EXPECT_EQ(log, (std::vector<std::string>{"zeroReferencesIs(true)", "destroyed"}));
  EXPECT_EQ(live<Watched>(), 0u);
}

TEST(PtrInterfaceTest, ReferenceTakenAtZeroKeepsTheObjectAlive) {
  std::vector<std::string> log;
  Rescued* raw = nullptr;
  {
    Vel::Ptr<Rescued> object = Vel::allocate<Rescued>(&log);
    raw = object.get();
  }
  EXPECT_EQ(log, (std::vector<std::string>{"zeroReferencesIs(true)"}));
  EXPECT_EQ(live<Rescued>(), 1u);
  EXPECT_EQ(raw->references(), 1u);

  // Rescued once more, then let go for good.
  Vel::Ptr<Rescued> again = std::move(raw->rescuer);
  again = nullptr;
  EXPECT_EQ(log, (std::vector<std::string>{"zeroReferencesIs(true)", "zeroReferencesIs(true)"}));
  EXPECT_EQ(raw->references(), 1u);
  raw->keepAlive = false;
  Vel::Ptr<Rescued> last = std::move(raw->rescuer);
  last = nullptr;
  EXPECT_EQ(log, (std::vector<std::string>{"zeroReferencesIs(true)", "zeroReferencesIs(true)",
                                           "zeroReferencesIs(true)", "destroyed"}));
  EXPECT_EQ(live<Rescued>(), 0u);
}

// A notifiee that looks at the dying object (takes and drops a reference inside
// zeroReferencesIs) must not make the object die twice.
TEST(PtrInterfaceTest, ReferenceTakenAndDroppedAtZeroDestroysOnce) {
  std::vector<std::string> log;
  { Vel::Ptr<LookedAtWhenDying> object = Vel::allocate<LookedAtWhenDying>(&log); }
  EXPECT_EQ(log, (std::vector<std::string>{"zeroReferencesIs(true)", "destroyed"}));
  EXPECT_EQ(live<LookedAtWhenDying>(), 0u);
}

TEST(PtrInterfaceDeathTest, ReleasingAnUnreferencedObjectIsAnAssertion) {
  Plain object;
  EXPECT_DEATH(object.deleteRef(),
               "^.*platform/Vel/PtrInterface\\.h:[0-9]+: (std::)?uint32_t "
               "Vel::PtrInterface::dropReference\\(\\) "
               "const: Assertion '\\(before & refCountMask\\) != 0' failed\\.\n$");
}

TEST(PtrInterfaceTest, CopyOfAnObjectStartsUnreferencedAndUnflagged) {
  Vel::Ptr<Plain> original = Vel::allocate<Plain>();
  original->velMarkedForDeletionIs(true);
  Plain copy(*original);
  EXPECT_EQ(copy.referenceWord(), 0u);
  EXPECT_EQ(copy.velAllocTrack(), nullptr);
  copy = *original;
  EXPECT_EQ(copy.referenceWord(), 0u);
  EXPECT_EQ(original->referenceWord(), 0x80000001u);
  EXPECT_EQ(original->velAllocTrack(), &Vel::AllocTrackTypeInfo::of<Plain>());
}

TEST(PtrInterfaceTest, DefaultsOfTheFrameworkHooks) {
  Vel::Ptr<Plain> object = Vel::allocate<Plain>();
  EXPECT_EQ(object->notifieeList(), nullptr);
  EXPECT_EQ(object->fwkType(), nullptr);
  EXPECT_FALSE(object->hasNotificationActive());
  object->hasNotificationActiveIs(true);
  EXPECT_TRUE(object->hasNotificationActive());
  object->hasNotificationActiveIs(false);
  EXPECT_FALSE(object->hasNotificationActive());
}

TEST(ThreadSafePtrTest, SwitchIsOffByDefaultAndCanBeTurnedOn) {
  EXPECT_FALSE(Vel::threadSafePtr());
  {
    ThreadSafePtrScope scope;
    EXPECT_TRUE(Vel::threadSafePtr());
  }
  EXPECT_FALSE(Vel::threadSafePtr());
}

TEST(ThreadSafePtrTest, CopyReleasePairsFromTwoThreadsKeepTheExactCount) {
  constexpr int pairs = 1000000;
  ThreadSafePtrScope scope;
  Vel::Ptr<Plain> object = Vel::allocate<Plain>();
  auto copyAndRelease = [&object] {
    for (int i = 0; i < pairs; ++i) {
      Vel::Ptr<Plain> copy = object;
    }
  };
  std::thread first(copyAndRelease);
  std::thread second(copyAndRelease);
  first.join();
  second.join();
  EXPECT_EQ(object->referenceWord(), 1u);
  EXPECT_EQ(live<Plain>(), 1u);
  object = nullptr;
  EXPECT_EQ(live<Plain>(), 0u);
}

TEST(ThreadSafePtrTest, NoReferenceTakenFromThreadsIsLost) {
  constexpr std::uint32_t perThread = 500000;
  ThreadSafePtrScope scope;
  Vel::Ptr<Plain> object = Vel::allocate<Plain>();
  auto run = [&object](void (PtrInterface::*step)() const noexcept) {
    auto repeat = [&object, step] {
      for (std::uint32_t i = 0; i < perThread; ++i)
        ((*object).*step)();
    };
    std::thread first(repeat);
    std::thread second(repeat);
    first.join();
    second.join();
  };
  run(&PtrInterface::newRef);
  EXPECT_EQ(object->references(), 1 + 2 * perThread);
  run(&PtrInterface::deleteRef);
  EXPECT_EQ(object->references(), 1u);
  object = nullptr;
  EXPECT_EQ(live<Plain>(), 0u);
}

TEST(ThreadSafePtrTest, FlagChangesDoNotDisturbCountsFromOtherThreads) {
  constexpr int rounds = 200000;
  ThreadSafePtrScope scope;
  Vel::Ptr<Plain> object = Vel::allocate<Plain>();
  std::thread counter([&object] {
    for (int i = 0; i < rounds; ++i) {
      Vel::Ptr<Plain> copy = object;
    }
  });
  std::thread marker([&object] {
    for (int i = 0; i < rounds; ++i)
      object->velMarkedForDeletionIs(i % 2 == 0);
  });
  counter.join();
  marker.join();
  EXPECT_EQ(object->referenceWord(), 1u);  // the last round cleared the mark
  object = nullptr;
  EXPECT_EQ(live<Plain>(), 0u);
}

TEST(ThreadSafePtrTest, ObjectReleasedFromManyThreadsDiesOnce) {
  ThreadSafePtrScope scope;
  for (int round = 0; round < 200; ++round) {
    std::vector<std::string> log;
    std::vector<std::thread> holders;
    {
      Vel::Ptr<Watched> object = Vel::allocate<Watched>(&log);
      for (int t = 0; t < 4; ++t) {
        holders.emplace_back([copy = object]() mutable { copy = nullptr; });
      }
    }
    for (std::thread& holder : holders)
      holder.join();
    ASSERT_EQ(log, (std::vector<std::string>{"zeroReferencesIs(true)", "destroyed"}));
  }
  EXPECT_EQ(live<Watched>(), 0u);
}

}  // namespace
