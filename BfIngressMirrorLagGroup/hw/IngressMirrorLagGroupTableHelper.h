#pragma once

#include "Vel/TypeRecord.h"

#include <cstdint>

#include "BfIngressMirrorLagGroup/hw/CLinkageFactory.h"
#include "BfIngressMirrorLagGroup/hw/IngressMirrorLagGroupTableHandles.h"
#include "BfPdIngressMirrorLagGroup/BfPdIngressMirrorLagGroupIntf.h"
#include "Vel/Name.h"
#include "Vel/Ptr.h"

namespace BfIngressMirrorLagGroup {

// The one way the match table and the action-profile state machine reach the
// chip: the device and pipe every PD call targets, the binding to the PD
// library (the PD interface object) and the registry of SDK handles.
class IngressMirrorLagGroupTableHelper : public Vel::PtrInterface {
 public:
  using PdLib = BfPdIngressMirrorLagGroup::BfPdIngressMirrorLagGroupIntf;

  IngressMirrorLagGroupTableHelper(std::uint8_t deviceId, std::uint16_t devPipeId);
  ~IngressMirrorLagGroupTableHelper() override;
  // The framework's record of this type (see reflect/).
  static const Vel::TypeRecord& typeRecord();
  const Vel::TypeRecord* fwkType() const override;

  std::uint8_t deviceId() const noexcept { return deviceId_; }
  // 0xFFFF: all pipes of the device.
  std::uint16_t devPipeId() const noexcept { return devPipeId_; }
  const Vel::Ptr<IngressMirrorLagGroupTableHandles>& sdkHandles() const noexcept {
    return sdkHandles_;
  }
  const Vel::Ptr<PdLib>& pdLib() const noexcept { return pdLib_; }

  // Binds the PD library. The same library name keeps the bound object and only
  // refreshes its handle and session; another name replaces it (the old object
  // is refreshed too, then detached).
  Vel::Ptr<PdLib> pdLibIs(Vel::Name pdLibName, void* dlHandle, std::uint32_t sessionId);
  // Detaches and gives back the binding; null when there was none.
  Vel::Ptr<PdLib> pdLibDel();

  // The registry, made on first use.
  Vel::Ptr<IngressMirrorLagGroupTableHandles> sdkHandlesIs();
  // Detaches and gives back the registry; null when there was none.
  Vel::Ptr<IngressMirrorLagGroupTableHandles> sdkHandlesDel();

 private:
  const std::uint8_t deviceId_;
  const std::uint16_t devPipeId_;
  Vel::Ptr<IngressMirrorLagGroupTableHandles> sdkHandles_;
  Vel::Ptr<PdLib> pdLib_;
};

}  // namespace BfIngressMirrorLagGroup

BF_C_LINKAGE_FACTORY_BEGIN
// Makes a helper for a device and pipe, with its notification switched on.
// Exported by plain name for hosts that find it with dlsym.
extern "C" Vel::Ptr<BfIngressMirrorLagGroup::IngressMirrorLagGroupTableHelper>
ingressMirrorLagGroupTableHelperFactory(std::uint8_t deviceId, std::uint16_t devPipeId);
BF_C_LINKAGE_FACTORY_END
