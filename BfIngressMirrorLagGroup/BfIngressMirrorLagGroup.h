#pragma once

// Every public type of the plug-in: the table model (match spec, action specs,
// table-entry values, the action-profile configuration and its notifiees), the
// hardware access layer (table helper, handle registry, SDK status rule and
// table exceptions), the match table with its factory, and the action-profile
// state machine with its factory and reactors.

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfile.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileEntry.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileEntryNotifieeConst.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileNotifiee.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileNotifieeConst.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileType.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupBaseActionProfileSpec.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupGroup.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupGroupNotifieeConst.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMatchSpec.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMember.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMemberNotifieeConst.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMemberOrGroupOrNone.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupTableEntry.h"
#include "BfIngressMirrorLagGroup/model/SetLagMemberSelectorActionProfileSpec.h"

#include "BfIngressMirrorLagGroup/hw/BfNoSysResources.h"
#include "BfIngressMirrorLagGroup/hw/BfNotSupported.h"
#include "BfIngressMirrorLagGroup/hw/BfTableException.h"
#include "BfIngressMirrorLagGroup/hw/BfTableFull.h"
#include "BfIngressMirrorLagGroup/hw/IngressMirrorLagGroupTableHandles.h"
#include "BfIngressMirrorLagGroup/hw/IngressMirrorLagGroupTableHelper.h"
#include "BfIngressMirrorLagGroup/hw/PdStatus.h"

#include "BfIngressMirrorLagGroup/table/IngressMirrorLagGroupTable.h"
#include "BfIngressMirrorLagGroup/table/IngressMirrorLagGroupTableFactory.h"

#include "BfIngressMirrorLagGroup/actionprofile/IngressMirrorLagGroupActionProfileFactory.h"
#include "BfIngressMirrorLagGroup/actionprofile/IngressMirrorLagGroupActionProfileSm.h"
#include "BfIngressMirrorLagGroup/actionprofile/VelActionProfile.h"
#include "BfIngressMirrorLagGroup/actionprofile/VelGroup.h"
#include "BfIngressMirrorLagGroup/actionprofile/VelGroupMember.h"
#include "BfIngressMirrorLagGroup/actionprofile/VelIngressMirrorLagGroupActionProfile.h"

#include "BfIngressMirrorLagGroup/reflect/AttributePath.h"
