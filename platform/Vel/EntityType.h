#pragma once

#include "Vel/TypeRecord.h"

namespace Vel {

// The type record of Vel::Entity, the base record of every entity type. It
// serves the attributes that every entity has, read-only and by their fixed
// numbers (see Entity::nameAttribute and the others): `name`, `fullName`,
// `parent`, `parentAttrName` and `entity` (the entity itself). A derived entity
// type's record names it as its base, and its attribute function replies
// notOwned for these numbers, so that reflective reads of them end here. The
// framework registers it as "Vel::Entity" when it loads.
const TypeRecord& entityType();

}  // namespace Vel
