#pragma once

#include <string_view>

#include "Vel/Ptr.h"
#include "Vel/PtrInterface.h"
#include "Vel/String.h"

namespace BfIngressMirrorLagGroup {

// Reads and sets an attribute of an object by a path of attribute names, as a
// host's command line does: "sessionHandle" of the state machine,
// "helper/deviceId", or, through a collection element given by its key in
// brackets, "entry[5]/action/lagMemberSelector" of the action profile. Values
// go in and out as their text form (a number, True or False, a value's text).
// Every step uses the framework's reflection (Vel::GenericIf) on the run-time
// type of the object reached, so writes go through the same mutators as code
// does, with their notifications. An attribute of a shared object that is not
// an entity (an entry's action, for example) is refused: its holder would not
// hear of the change.
//
// Errors are Vel::RangeException with a message naming the path: an unknown
// attribute name, a key or value whose text does not parse, an element that
// is absent, a step through a null reference or a write to a read-only
// attribute.
class AttributePath {
 public:
  AttributePath() = delete;

  static Vel::String get(const Vel::Ptr<const Vel::PtrInterface>& root, std::string_view path);
  static void set(const Vel::Ptr<Vel::PtrInterface>& root, std::string_view path,
                  const Vel::String& text);
};

}  // namespace BfIngressMirrorLagGroup
