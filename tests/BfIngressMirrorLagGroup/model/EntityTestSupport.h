#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfile.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileEntry.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileEntryNotifieeConst.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileNotifiee.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileNotifieeConst.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupGroup.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupGroupNotifieeConst.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMember.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMemberNotifieeConst.h"
#include "BfIngressMirrorLagGroup/model/SetLagMemberSelectorActionProfileSpec.h"
#include "Vel/ActivityManager.h"
#include "Vel/AllocTrackTypeInfo.h"
#include "Vel/Allocate.h"
#include "Vel/Ptr.h"

// Recording notifiees of the configuration entities, and the fixture that the
// entity tests share.
namespace BfIngressMirrorLagGroup::EntityTesting {

using Log = std::vector<std::string>;
using Profile = IngressMirrorLagGroupActionProfile;
using Entry = IngressMirrorLagGroupActionProfileEntry;
using Group = IngressMirrorLagGroupGroup;
using Member = IngressMirrorLagGroupMember;
using Spec = SetLagMemberSelectorActionProfileSpec;

inline std::string keyed(const char* callback, std::uint32_t key) {
  return std::string(callback) + "(" + std::to_string(key) + ")";
}

// Writes "<name>.<callback>" to a shared log for every callback it gets, then
// runs the test's action, if one is set, with the callback's text. NotifieeT
// is the notifiee class of the entity observed.
template <class NotifieeT>
class Recording : public NotifieeT {
 public:
  using Action = std::function<void(const std::string& callback)>;

  Recording(std::string name, Log* log) : name_(std::move(name)), log_(log) {}

  // Follows `notifier` and registers with it.
  void follow(const Vel::Ptr<const Vel::PtrInterface>& notifier) {
    this->notifierIs(notifier);
    this->isRegisteredNotifieeIs(true);
  }

  void onZeroReferences() override { record("onZeroReferences()"); }

  Action action;

 protected:
  void record(const std::string& callback) {
    log_->push_back(name_ + "." + callback);
    // The action may destroy this recorder: run a copy, and touch nothing of
    // the recorder afterwards.
    const Action copy = action;
    if (copy)
      copy(callback);
  }

 private:
  std::string name_;
  Log* log_;
};

template <class NotifieeT>
class BasicProfileRecorder : public Recording<NotifieeT> {
 public:
  using Recording<NotifieeT>::Recording;
  void onGroup(BfnTable::BfnGroupId id) override { this->record(keyed("onGroup", id)); }
  void onGroupvelImmediate() override { this->record("onGroupvelImmediate()"); }
  void onGroup() override { this->record("onGroup()"); }
  void onEntry(BfnTable::BfnMemberId id) override { this->record(keyed("onEntry", id)); }
  void onEntryvelImmediate() override { this->record("onEntryvelImmediate()"); }
  void onEntry() override { this->record("onEntry()"); }
};

using ProfileRecorder = BasicProfileRecorder<Profile::NotifieeConst>;
using MutatingProfileRecorder = BasicProfileRecorder<Profile::Notifiee>;

class EntryRecorder : public Recording<Entry::NotifieeConst> {
 public:
  using Recording::Recording;
  void onAction() override { record("onAction()"); }
};

class GroupRecorder : public Recording<Group::NotifieeConst> {
 public:
  using Recording::Recording;
  void onMember(BfnTable::BfnMemberId id) override { record(keyed("onMember", id)); }
  void onMembervelImmediate() override { record("onMembervelImmediate()"); }
  void onMember() override { record("onMember()"); }
};

class MemberRecorder : public Recording<Member::NotifieeConst> {
 public:
  using Recording::Recording;
  void onActive() override { record("onActive()"); }
};

// Base of the entity tests: gives a log and recorders, and checks after each
// test that no deferred notification waits and that no object is left alive.
class EntityTest : public ::testing::Test {
 protected:
  void TearDown() override {
    EXPECT_EQ(Vel::ActivityManager::instance().pending(), 0u);
    Vel::ActivityManager::instance().deleteAll();
    expectNothingAlive();
  }

  // Every object made through the framework's allocation in the test is gone:
  // entities, slots, specs and notifiees alike.
  static void expectNothingAlive() {
    for (const Vel::AllocTrackTypeInfo* record : Vel::AllocTrackTypeInfo::all())
      EXPECT_EQ(record->liveObjects(), 0u) << record->typeName();
  }

  template <class T>
  static std::size_t alive() {
    return Vel::AllocTrackTypeInfo::of<T>().liveObjects();
  }

  // A recorder of type R that follows and is registered with `notifier`.
  template <class R>
  Vel::Ptr<R> recorder(const std::string& name, const Vel::Ptr<const Vel::PtrInterface>& notifier) {
    Vel::Ptr<R> made = Vel::allocate<R>(name, &log);
    made->follow(notifier);
    return made;
  }

  // A recorder of type R that is in the notifiee list of `notifier` without
  // following it, so that it does not keep the notifier alive.
  template <class R>
  Vel::Ptr<R> listedRecorder(const std::string& name, const Vel::PtrInterface& notifier) {
    Vel::Ptr<R> made = Vel::allocate<R>(name, &log);
    notifier.notifieeList()->newMember(made.get());
    return made;
  }

  static Vel::Ptr<Spec> spec(std::uint16_t selector) {
    Vel::Ptr<Spec> made = Vel::allocate<Spec>();
    made->lagMemberSelectorIs(selector);
    return made;
  }

  static Vel::Ptr<Entry> entry(std::uint32_t memberId, std::uint16_t selector = 1) {
    return Vel::allocate<Entry>(BfnTable::BfnMemberId(memberId), spec(selector));
  }

  Log log;
};

}  // namespace BfIngressMirrorLagGroup::EntityTesting
