#pragma once

namespace Vel {

// How a key-less notification of an attribute reaches a notifiee: `immediate`
// when a bulk change of the attribute closes (the notifiee's ...velImmediate()
// form), `deferred` when the activity manager drains its queue (the plain onX()
// form).
enum class NotificationKind { immediate, deferred };

}  // namespace Vel
