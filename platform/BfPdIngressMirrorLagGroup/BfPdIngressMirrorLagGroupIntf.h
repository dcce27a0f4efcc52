#pragma once

#include <cstdint>

#include "BfPdIngressMirrorLagGroup/PdFunctionTable.h"
#include "BfPdIngressMirrorLagGroup/ShadowRecorder.h"
#include "MbbVaultKey/VaultKeyManager.h"
#include "Vel/Entity.h"
#include "Vel/Ptr.h"

namespace BfPdIngressMirrorLagGroup {

// The PD interface of the ingressMirrorLagGroup table: the PD library's
// dynamic-load handle, the SDK session id and the PD functions resolved from
// the library. Every function is resolved when the handle is given; a library
// that lacks one is refused at once, naming the function and the library.
//
// With a key manager that has shadow tables (vaultKeyManagerIs), the calls
// that create and delete chip objects are recorded in its shadow tables as
// ShadowRecorder describes; without one, every call goes straight to the
// library.
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

  // The key manager whose shadow tables record the calls; null: none.
  const Vel::Ptr<MbbVaultKey::VaultKeyManager>& vaultKeyManager() const noexcept {
    return recorder_.vaultKeyManager();
  }
  void vaultKeyManagerIs(Vel::Ptr<MbbVaultKey::VaultKeyManager> manager) noexcept {
    recorder_.vaultKeyManagerIs(std::move(manager));
  }
  const ShadowRecorder& recorder() const noexcept { return recorder_; }
  // Lets a test stop the process at a given point of every recorded call.
  void shadowProbeIs(ShadowRecorder::Probe probe) noexcept { recorder_.probeIs(probe); }

  // The PD functions resolved from a dynamic-load handle, recording nothing.
  static PdFunctionTable resolve(const Vel::Name& libraryName, void* dlHandle);

 private:
  void* dlHandle_;
  std::uint32_t sessionId_;
  ShadowRecorder recorder_;
};

}  // namespace BfPdIngressMirrorLagGroup
