#include "BfPdIngressMirrorLagGroup/BfPdIngressMirrorLagGroupIntf.h"

#include <dlfcn.h>

#include "Vel/Format.h"
#include "Vel/RangeException.h"

namespace BfPdIngressMirrorLagGroup {

namespace {

template <class Function>
Function resolveOne(const Vel::Name& libraryName, void* dlHandle, const char* functionName) {
  void* symbol = dlsym(dlHandle, functionName);
  if (symbol == nullptr) {
    Vel::throwRangeException(
        Vel::format("PD library '%s' has no function '%s'", libraryName.c_str(), functionName));
  }
  return reinterpret_cast<Function>(symbol);
}

}  // namespace

BfPdIngressMirrorLagGroupIntf::BfPdIngressMirrorLagGroupIntf(Vel::Name name, void* dlHandle,
                                                             std::uint32_t sessionId)
    : Vel::Entity(std::move(name)),
      PdFunctionTable(resolve(Vel::Entity::name(), dlHandle)),
      dlHandle_(dlHandle),
      sessionId_(sessionId) {
  recorderIs(&recorder_);
}

void BfPdIngressMirrorLagGroupIntf::dlHandleIs(void* dlHandle) {
  PdFunctionTable resolved = resolve(name(), dlHandle);
  resolved.recorderIs(&recorder_);
  static_cast<PdFunctionTable&>(*this) = resolved;
  dlHandle_ = dlHandle;
}

PdFunctionTable BfPdIngressMirrorLagGroupIntf::resolve(const Vel::Name& libraryName,
                                                       void* dlHandle) {
  PdFunctionTable table;
#define BF_PD_RESOLVE(fn, shortName) \
  table.fn = decltype(table.fn)(resolveOne<fn##_fn>(libraryName, dlHandle, #fn));
  KESTRO_SWITCH_PD_TABLE_FUNCTIONS(BF_PD_RESOLVE)
#undef BF_PD_RESOLVE
  return table;
}

}  // namespace BfPdIngressMirrorLagGroup
