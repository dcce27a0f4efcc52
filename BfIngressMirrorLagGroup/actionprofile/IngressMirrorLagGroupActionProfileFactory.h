#pragma once

#include "BfIngressMirrorLagGroup/hw/CLinkageFactory.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfile.h"
#include "BfIngressMirrorLagGroup/table/IngressMirrorLagGroupTable.h"
#include "Vel/Ptr.h"

BF_C_LINKAGE_FACTORY_BEGIN
// Makes the action-profile configuration entity "ingressMirrorLagGroup" of a
// table made by ingressMirrorLagGroupTableFactory, the host's second entry
// point into the plug-in. Exported by plain name for hosts that find it with
// dlsym.
//
// The entity is followed by the action-profile state machine (made on the
// table's helper, key manager and status manager), which programs the chip as
// the host edits the entity. The state machine lives as long as the process.
// With a key manager, the registry's member and group handles are refilled
// from the action-data and selector-group shadow tables, so that members the
// host configures again are modified, not added again. With a status manager,
// resyncSelAdtStatus() ends the construction. Nothing is programmed.
//
// A key manager without its action-data or selector-group shadow table stops
// the process with an assertion; a damaged shadow table is reported to it and
// read up to the damage.
extern "C" Vel::Ptr<BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfile>
ingressMirrorLagGroupActionProfileFactory(
    Vel::Ptr<BfIngressMirrorLagGroup::IngressMirrorLagGroupTable> table);
BF_C_LINKAGE_FACTORY_END
