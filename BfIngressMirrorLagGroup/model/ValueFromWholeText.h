#pragma once

#include "Vel/String.h"
#include "Vel/TextParse.h"

namespace BfIngressMirrorLagGroup {

// Reads a value of T from the whole of `text` with T's parsing constructor and
// refuses text left over after it: how a value is built from text by name.
template <class T>
T valueFromWholeText(const Vel::String& text) {
  Vel::String::IteratorConst pos = text.begin();
  T value(pos, text.end());
  Vel::strepToValueEnd(pos, text.end());
  return value;
}

}  // namespace BfIngressMirrorLagGroup
