#pragma once

#include "Vel/TypeRecord.h"

namespace BfIngressMirrorLagGroup {

// Records of the platform's types that the plug-in's attributes hold: the
// ids of members and groups (values, compared and written as their number)
// and the managers, the PD object and the match-spec base (objects).
const Vel::TypeRecord& bfnMemberIdType();
const Vel::TypeRecord& bfnGroupIdType();
const Vel::TypeRecord& vaultKeyManagerType();
const Vel::TypeRecord& statusManagerType();
const Vel::TypeRecord& pdIntfType();
const Vel::TypeRecord& matchSpecBaseType();

}  // namespace BfIngressMirrorLagGroup
