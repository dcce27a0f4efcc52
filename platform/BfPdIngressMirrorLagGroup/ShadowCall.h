#pragma once

#include <cstdint>

#include "Vault/MbbPostcodef/ShadowOp.h"

namespace BfPdIngressMirrorLagGroup {

// What one creating or deleting PD call means to the shadow tables: the
// operation, and the call's arguments that the records keep or that name the
// object.
struct ShadowCall {
  Vault::MbbPostcodef::ShadowOp op = Vault::MbbPostcodef::ShadowOp::none;
  std::uint32_t devPipeId = 0;                 // creates and the default entry's reset
  std::uint16_t ingMirrorMdMirrorSession = 0;  // entry adds
  std::uint32_t maxGroupSize = 0;              // group creates
  std::uint32_t handle = 0;                    // the object a delete names
  const std::uint32_t* newHandle = nullptr;    // where a create puts its object's handle
};

}  // namespace BfPdIngressMirrorLagGroup
