#include "Vel/BulkChange.h"

#include <algorithm>
#include <exception>
#include <vector>

#include "Quill/Assert.h"
#include "Vel/Entity.h"
#include "Vel/NotifieeList.h"

namespace Vel {

namespace {

// The bulk changes open on this thread, outermost first.
std::vector<BulkChange*>& openScopes() {
  thread_local std::vector<BulkChange*> scopes;
  return scopes;
}

bool sameAttribute(const BulkChange& scope, const Entity& notifier, unsigned attributeNumber) {
  return scope.notifier().get() == &notifier && scope.attributeNumber() == attributeNumber;
}

// The outermost open scope of the attribute, or null.
BulkChange* outermostScope(const Entity& notifier, unsigned attributeNumber) {
  for (BulkChange* scope : openScopes()) {
    if (sameAttribute(*scope, notifier, attributeNumber))
      return scope;
  }
  return nullptr;
}

}  // namespace

BulkChange::BulkChange(const Ptr<Entity>& notifier, unsigned attributeNumber)
    : notifier_(notifier),
      attributeNumber_(attributeNumber),
      exceptionsAtOpen_(std::uncaught_exceptions()) {
  QUILL_ASSERT(notifier != nullptr);
  openScopes().push_back(this);
}

BulkChange::~BulkChange() noexcept(false) {
  std::vector<BulkChange*>& scopes = openScopes();
  scopes.erase(std::find(scopes.begin(), scopes.end(), this));
  if (changed_ && !unwinding())
    deliverImmediate();
}

bool BulkChange::changeIsHeld(const Entity& notifier, unsigned attributeNumber) noexcept {
  BulkChange* scope = outermostScope(notifier, attributeNumber);
  if (scope == nullptr)
    return false;
  scope->changed_ = true;
  return true;
}

bool BulkChange::unwinding() const noexcept {
  return std::uncaught_exceptions() > exceptionsAtOpen_;
}

void BulkChange::deliverImmediate() {
  NotifieeList* list = notifier_->notifieeList();
  const unsigned attributeNumber = attributeNumber_;
  list->doVisit([attributeNumber](PtrInterface::NotifieeConst& notifiee) {
    notifiee.handleNotification(attributeNumber, NotificationKind::immediate);
  });
}

}  // namespace Vel
