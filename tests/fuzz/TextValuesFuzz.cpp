// Fuzzes the text readers of every registered type: the framework's own
// (numbers, booleans, strings, enumerations, references) and the plug-in's
// values (member-or-group, table entry) and enumeration. Text a reader takes
// must print back to text that reads to the same text; text it refuses must
// raise the framework's exception, never crash.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "BfIngressMirrorLagGroup/hw/IngressMirrorLagGroupTableHandles.h"
#include "Vel/Exception.h"
#include "Vel/GenericIf.h"
#include "Vel/TypeNode.h"
#include "Vel/TypeRecord.h"

namespace {

// Reads `text` as a value of `type`; a text that reads must round-trip.
void readAs(const Vel::TypeRecord& type, const Vel::String& text) {
  Vel::String printed;
  try {
    printed = Vel::GenericIf(type.valueFromText(text)).text();
  } catch (const Vel::Exception&) {
    return;
  }
  try {
    if (Vel::GenericIf(type.valueFromText(printed)).text() != printed)
      __builtin_trap();
  } catch (const Vel::Exception&) {
    __builtin_trap();  // a value's own text must read back
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // The first byte picks the type, the rest is the text.
  static const std::vector<const Vel::TypeRecord*> types = [] {
    ingressMirrorLagGroupTableHandlesFactory();  // loads the plug-in
    return Vel::typeNodes();
  }();
  if (size == 0 || types.empty())
    return 0;
  const Vel::TypeRecord& type = *types[data[0] % types.size()];
  readAs(type, Vel::String(reinterpret_cast<const char*>(data + 1), size - 1));
  return 0;
}
