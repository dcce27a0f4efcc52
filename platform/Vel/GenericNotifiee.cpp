#include "Vel/GenericNotifiee.h"

namespace Vel {

// Observers override what they watch; the default ignores the notification.
void GenericNotifiee::onRawAttribute(unsigned, const GenericValue*) {}

}  // namespace Vel
