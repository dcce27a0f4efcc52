#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "Vel/ActivityManager.h"
#include "Vel/AllocTrackTypeInfo.h"
#include "Vel/Allocate.h"
#include "Vel/Entity.h"
#include "Vel/EntityNotifieeConst.h"
#include "Vel/Ptr.h"

// A small entity family for the notification tests, written the way generated
// entity code is: a shelf with two keyed collection attributes (items and
// tags), its notifiee interface, and a notifiee that records what it is told.
namespace NotifyTestTypes {

using Log = std::vector<std::string>;

class Shelf : public Vel::Entity {
 public:
  static constexpr unsigned itemAttribute = 258;
  static constexpr unsigned tagAttribute = 259;

  class NotifieeConst;

  explicit Shelf(Vel::Name name = Vel::Name()) : Vel::Entity(std::move(name)) {}

  bool item(unsigned key) const { return items_.count(key) != 0; }
  void itemIs(unsigned key) {
    if (items_.insert(key).second)
      itemNotify(key);
  }
  void itemDel(unsigned key) {
    if (items_.erase(key) != 0)
      itemNotify(key);
  }
  void itemNotify(unsigned key);

  void tagIs(unsigned key) {
    if (tags_.insert(key).second)
      tagNotify(key);
  }
  void tagNotify(unsigned key);

 private:
  std::set<unsigned> items_;
  std::set<unsigned> tags_;
};

class Shelf::NotifieeConst : public Vel::Entity::NotifieeConst {
 public:
  Vel::Ptr<const Shelf> notifier() const {
    return Vel::static_ptr_cast<const Shelf>(Vel::Entity::NotifieeConst::notifier());
  }
  void notifierIs(const Vel::Ptr<const Vel::PtrInterface>& notifier) override {
    Vel::Entity::NotifieeConst::notifierIs(Vel::ptr_cast<const Shelf>(notifier));
  }

  void handleNotification(unsigned attributeNumber, Vel::NotificationKind kind) override {
    const bool immediate = kind == Vel::NotificationKind::immediate;
    if (attributeNumber == itemAttribute) {
      if (immediate)
        onItemvelImmediate();
      else
        onItem();
    }
    if (attributeNumber == tagAttribute) {
      if (immediate)
        onTagvelImmediate();
      else
        onTag();
    }
  }

  virtual void onItem(unsigned) {}
  virtual void onItemvelImmediate() {}
  virtual void onItem() {}
  virtual void onTag(unsigned) {}
  virtual void onTagvelImmediate() {}
  virtual void onTag() {}
};

inline void Shelf::itemNotify(unsigned key) {
  notify<NotifieeConst>(itemAttribute, [key](NotifieeConst& n) { n.onItem(key); });
}

inline void Shelf::tagNotify(unsigned key) {
  notify<NotifieeConst>(tagAttribute, [key](NotifieeConst& n) { n.onTag(key); });
}

// Writes "<name>.<callback>" to a shared log for every callback it gets, then
// runs the test's action, if one is set, with the callback's text.
class Recorder : public Shelf::NotifieeConst {
 public:
  using Action = std::function<void(const std::string& callback)>;

  Recorder(std::string name, Log* log) : name_(std::move(name)), log_(log) {}

  // Follows `shelf` and registers with it.
  Recorder(std::string name, Log* log, const Vel::Ptr<Shelf>& shelf)
      : Recorder(std::move(name), log) {
    notifierIs(shelf);
    isRegisteredNotifieeIs(true);
  }

  void onItem(unsigned key) override { record("onItem(" + std::to_string(key) + ")"); }
  void onItemvelImmediate() override { record("onItemvelImmediate()"); }
  void onItem() override { record("onItem()"); }
  void onTag(unsigned key) override { record("onTag(" + std::to_string(key) + ")"); }
  void onTagvelImmediate() override { record("onTagvelImmediate()"); }
  void onTag() override { record("onTag()"); }
  void onZeroReferences() override { record("onZeroReferences()"); }

  Action action;

 private:
  void record(const std::string& callback) {
    log_->push_back(name_ + "." + callback);
    // The action may destroy this recorder: run a copy of it, and touch nothing
    // of the recorder afterwards.
    const Action copy = action;
    if (copy)
      copy(callback);
  }

  std::string name_;
  Log* log_;
};

// Base of the notification test fixtures: after each test the activity
// manager's queue is dropped and no object of the family is left alive.
class NotificationTest : public ::testing::Test {
 protected:
  void TearDown() override {
    EXPECT_EQ(Vel::ActivityManager::instance().pending(), 0u);
    Vel::ActivityManager::instance().deleteAll();
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Shelf>().liveObjects(), 0u);
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Recorder>().liveObjects(), 0u);
  }

  Vel::Ptr<Recorder> recorder(const std::string& name, const Vel::Ptr<Shelf>& shelf) {
    return Vel::allocate<Recorder>(name, &log, shelf);
  }

  Log log;
};

}  // namespace NotifyTestTypes
