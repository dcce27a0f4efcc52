#pragma once

#include <string>

namespace Vault {

// Refuses an operation that a kind of table does not offer (the read-only
// adapter's writes and housekeeping, any use of a table that is not
// configured): throws Vel::OperationNotSupportedException with `message`.
[[noreturn]] void throwUnsupported(const std::string& message);

}  // namespace Vault
