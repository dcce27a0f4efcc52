#include "BfIngressMirrorLagGroup/hw/IngressMirrorLagGroupTableHelper.h"

#include <utility>

#include "Vel/Allocate.h"

namespace BfIngressMirrorLagGroup {

namespace {

// Clears a field and detaches what it held from its parent; gives it back.
template <class T>
Vel::Ptr<T> detach(Vel::Ptr<T>& field) {
  Vel::Ptr<T> value = std::exchange(field, nullptr);
  if (value)
    value->parentIs(nullptr);
  return value;
}

}  // namespace

IngressMirrorLagGroupTableHelper::IngressMirrorLagGroupTableHelper(std::uint8_t deviceId,
                                                                   std::uint16_t devPipeId)
    : deviceId_(deviceId), devPipeId_(devPipeId) {}

IngressMirrorLagGroupTableHelper::~IngressMirrorLagGroupTableHelper() {
  sdkHandlesDel();
  pdLibDel();
}

Vel::Ptr<IngressMirrorLagGroupTableHelper::PdLib> IngressMirrorLagGroupTableHelper::pdLibIs(
    Vel::Name pdLibName, void* dlHandle, std::uint32_t sessionId) {
  if (pdLib_) {
    const bool sameLibrary = pdLib_->name() == pdLibName;
    pdLib_->dlHandleIs(dlHandle);
    pdLib_->sessionIdIs(sessionId);
    if (sameLibrary)
      return pdLib_;
    pdLib_->parentIs(nullptr);
  }
  Vel::Ptr<PdLib> bound = Vel::allocate<PdLib>(std::move(pdLibName), dlHandle, sessionId);
  bound->hasNotificationActiveIs(true);
  pdLib_ = bound;
  return bound;
}

Vel::Ptr<IngressMirrorLagGroupTableHelper::PdLib> IngressMirrorLagGroupTableHelper::pdLibDel() {
  return detach(pdLib_);
}

Vel::Ptr<IngressMirrorLagGroupTableHandles> IngressMirrorLagGroupTableHelper::sdkHandlesIs() {
  if (!sdkHandles_)
    sdkHandles_ = ingressMirrorLagGroupTableHandlesFactory();
  return sdkHandles_;
}

Vel::Ptr<IngressMirrorLagGroupTableHandles> IngressMirrorLagGroupTableHelper::sdkHandlesDel() {
  return detach(sdkHandles_);
}

}  // namespace BfIngressMirrorLagGroup

Vel::Ptr<BfIngressMirrorLagGroup::IngressMirrorLagGroupTableHelper>
ingressMirrorLagGroupTableHelperFactory(std::uint8_t deviceId, std::uint16_t devPipeId) {
  auto helper =
      Vel::allocate<BfIngressMirrorLagGroup::IngressMirrorLagGroupTableHelper>(deviceId, devPipeId);
  helper->hasNotificationActiveIs(true);
  return helper;
}
