#pragma once

#include <cstdint>

namespace BfPdIngressMirrorLagGroup {

// What a reconciliation of the shadow tables did with the intents it found.
struct ShadowReconciliation {
  std::uint32_t completed = 0;  // finished: the object was found in the chip
  std::uint32_t restored = 0;   // back to the record they replaced: the object is still there
  std::uint32_t removed = 0;    // gone: no object in the chip, or one recorded already
  std::uint32_t unsettled = 0;  // left as intents: the chip gave no clear answer

  std::uint32_t total() const noexcept { return completed + restored + removed + unsettled; }
  bool operator==(const ShadowReconciliation&) const = default;
};

}  // namespace BfPdIngressMirrorLagGroup
