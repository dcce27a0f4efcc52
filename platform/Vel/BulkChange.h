#pragma once

#include "Vel/Ptr.h"

namespace Vel {

class Entity;

// A scope around a bulk change of one collection attribute of an entity (many
// elements added or removed at once). While the scope is open the entity's
// keyed notifications of that attribute are held back and only recorded; when
// the scope closes and anything changed, every active notifiee gets the
// immediate key-less form of the notification once (handleNotification with
// NotificationKind::immediate), so that it reads the whole collection again.
// A scope that closes while an exception unwinds the stack delivers nothing.
// Scopes of the same attribute may nest: only the outermost one delivers.
// Scopes belong to the thread that opens them.
class BulkChange {
 public:
  BulkChange(const Ptr<Entity>& notifier, unsigned attributeNumber);
  // Delivers the immediate notification; an exception from a notifiee passes
  // on to the code that closes the scope.
  ~BulkChange() noexcept(false);
  BulkChange(const BulkChange&) = delete;
  BulkChange& operator=(const BulkChange&) = delete;

  const Ptr<Entity>& notifier() const noexcept { return notifier_; }
  unsigned attributeNumber() const noexcept { return attributeNumber_; }
  // Whether a change of the attribute was recorded in this scope.
  bool changed() const noexcept { return changed_; }

  // Called by an entity about to notify an attribute: when a bulk change of
  // that attribute is open, records the change in the outermost one and
  // returns true, and the keyed notification is held back.
  static bool changeIsHeld(const Entity& notifier, unsigned attributeNumber) noexcept;

 private:
  bool unwinding() const noexcept;
  void deliverImmediate();

  Ptr<Entity> notifier_;
  unsigned attributeNumber_;
  bool changed_ = false;
  int exceptionsAtOpen_;
};

}  // namespace Vel
