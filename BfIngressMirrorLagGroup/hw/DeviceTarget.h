#pragma once

#include "BfIngressMirrorLagGroup/hw/IngressMirrorLagGroupTableHelper.h"
#include "Pd/KestroSwitchPd.h"

namespace BfIngressMirrorLagGroup {

// The device target of PD calls that create something: the helper's device id
// widened to a signed 32-bit number and its pipe id widened to 32 bits.
inline p4_pd_device_target_t deviceTarget(const IngressMirrorLagGroupTableHelper& helper) noexcept {
  return p4_pd_device_target_t{static_cast<p4_pd_device_id_t>(helper.deviceId()),
                               static_cast<std::uint32_t>(helper.devPipeId())};
}

// The device of PD calls that act on an existing handle: the device id alone.
inline p4_pd_device_id_t deviceId(const IngressMirrorLagGroupTableHelper& helper) noexcept {
  return static_cast<p4_pd_device_id_t>(helper.deviceId());
}

}  // namespace BfIngressMirrorLagGroup
