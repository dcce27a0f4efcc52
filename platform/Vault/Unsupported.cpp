#include "Vault/Unsupported.h"

#include "Vel/OperationNotSupportedException.h"

namespace Vault {

void throwUnsupported(const std::string& message) {
  throw Vel::OperationNotSupportedException(message);
}

}  // namespace Vault
