#pragma once

namespace Vel {

// How a type's reflective function answered a call: it answered it, the
// attribute is the type's own but does not offer the operation, or the attribute
// is not the type's own, so that the framework asks the base type.
enum class GenericReply { answered, notSupported, notOwned };

}  // namespace Vel
