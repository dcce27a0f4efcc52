#pragma once

#include <cstdint>

#include "BfPdIngressMirrorLagGroup/PdFunctionTable.h"
#include "Vel/Entity.h"

namespace BfPdIngressMirrorLagGroup {

// The PD interface of the ingressMirrorLagGroup table: the PD library's
// dynamic-load handle, the SDK session id and the PD functions resolved from
// the library. Every function is resolved when the handle is given; a library
// that lacks one is refused at once, naming the function and the library.
class BfPdIngressMirrorLagGroupIntf : public Vel::Entity, public PdFunctionTable {
 public:
  // Throws Vel::RangeException when the library lacks a PD function.
  BfPdIngressMirrorLagGroupIntf(Vel::Name name, void* dlHandle, std::uint32_t sessionId);

  void* dlHandle() const noexcept { return dlHandle_; }
  // Resolves every PD function again from the new handle; on failure
  // (Vel::RangeException) the object keeps its old handle and functions.
  void dlHandleIs(void* dlHandle);

  std::uint32_t sessionId() const noexcept { return sessionId_; }
  void sessionIdIs(std::uint32_t sessionId) noexcept { sessionId_ = sessionId; }

  // The PD functions resolved from a dynamic-load handle.
  static PdFunctionTable resolve(const Vel::Name& libraryName, void* dlHandle);

 private:
  void* dlHandle_;
  std::uint32_t sessionId_;
};

}  // namespace BfPdIngressMirrorLagGroup
