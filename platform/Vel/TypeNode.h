#pragma once

#include <string_view>
#include <vector>

namespace Vel {

class TypeRecord;

// The process-wide registry of type records by name. Every library registers the
// records of its types when it loads; the framework registers its own (the
// builtin numbers, bool, Vel::String, Vel::Name, Vel::Entity).

// Registers a record under its name. Registering the same record again does
// nothing; another record under a name in use raises NameInUseException.
void typeNodeIs(const TypeRecord& type);
// The record registered under the name, or null.
const TypeRecord* typeNode(std::string_view name);
// Every registered record, in the order of registration.
std::vector<const TypeRecord*> typeNodes();

}  // namespace Vel
