#pragma once

namespace Vel {

// Key policy of Vel::HashMap2018 for maps whose key is not part of the value:
// the key is given on insert and kept in the slot beside the value.
struct ExternalKey {};

}  // namespace Vel
