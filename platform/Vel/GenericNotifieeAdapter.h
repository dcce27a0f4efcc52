#pragma once

#include <utility>

#include "Vel/Allocate.h"
#include "Vel/AttributeRecord.h"
#include "Vel/GenericNotifiee.h"
#include "Vel/GenericValue.h"
#include "Vel/Ptr.h"
#include "Vel/PtrInterface.h"

namespace Vel {

// Base of the adapters that carry an entity's notifications to a generic
// notifiee. `Notifiee` is the entity's notifiee interface; `Adapter`, the class
// derived from this one, overrides every callback of that interface and hands
// it on with forwardRawAttribute, keyed callbacks with their key:
//
//   class ShelfGenericNotifiee
//       : public GenericNotifieeAdapter<ShelfGenericNotifiee, Shelf::NotifieeConst> {
//    public:
//     void onBook(std::uint32_t id) override { forwardRawAttribute(258, id); }
//     void onBookvelImmediate() override { forwardRawAttribute(258); }
//     void onBook() override { forwardRawAttribute(258); }
//   };
//
// and the entity type's record names `&ShelfGenericNotifiee::factory` as its
// notifiee factory. An adapter without a generic notifiee forwards nothing.
//
// A generic notifiee may, inside onRawAttribute, drop the last reference to the
// adapter that calls it, unregister it, detach itself from it, or drop its own
// last reference: the adapter and the generic notifiee stay alive until the
// call returns, and the notifier's list is left to its safe visit.
template <class Adapter, class Notifiee>
class GenericNotifieeAdapter : public Notifiee {
 public:
  // The notifiee factory of the entity type: an adapter that follows the entity
  // `self`, registered with it and forwarding to `notifiee`. The entity keeps
  // it registered for as long as the caller holds the answer.
  static Ptr<PtrInterface> factory(const GenericValue& self, const Ptr<GenericNotifiee>& notifiee) {
    if (self.isNull())
      GenericNotifiee::unobservable(self);
    const Ptr<Adapter> adapter = allocate<Adapter>();
    adapter->notifierIs(self.object());
    if (!adapter->notifier())
      GenericNotifiee::unobservable(self);
    adapter->genericNotifieeIs(notifiee);
    adapter->isRegisteredNotifieeIs(true);
    return adapter;
  }

  const Ptr<GenericNotifiee>& genericNotifiee() const noexcept { return genericNotifiee_; }
  // Attaches another generic notifiee, or none (null).
  void genericNotifieeIs(const Ptr<GenericNotifiee>& notifiee) { genericNotifiee_ = notifiee; }

 protected:
  GenericNotifieeAdapter() = default;

  // Hands a key-less callback of the attribute on.
  void forwardRawAttribute(unsigned attributeNumber) { deliver(attributeNumber, nullptr); }
  // Hands a keyed callback of the collection attribute on, with its key wrapped
  // in the collection's key type.
  template <class Key>
  void forwardRawAttribute(unsigned attributeNumber, Key key) {
    if (!genericNotifiee_)
      return;
    const GenericValue wrapped =
        GenericNotifiee::notifiedAttribute(this->notifier().get(), attributeNumber)
            .key(std::move(key));
    deliver(attributeNumber, &wrapped);
  }

 private:
  void deliver(unsigned attributeNumber, const GenericValue* key) {
    const Ptr<GenericNotifiee> target = genericNotifiee_;
    if (!target)
      return;
    const Ptr<const PtrInterface> keepAlive =
        this->references() != 0 ? Ptr<const PtrInterface>(this) : nullptr;
    target->onRawAttribute(attributeNumber, key);
  }

  Ptr<GenericNotifiee> genericNotifiee_;
};

}  // namespace Vel
