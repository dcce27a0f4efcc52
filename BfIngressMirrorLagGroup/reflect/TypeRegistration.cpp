// Registers the plug-in's fourteen types with the framework when the library
// loads, in their fixed order, after the standard streams (which the text
// forms use) are set up. The library is linked so that it is never unloaded
// (see its CMakeLists.txt): loading it again, or into a second host of the
// process, finds it loaded and registers nothing twice.

#include <ios>

#include "BfIngressMirrorLagGroup/BfIngressMirrorLagGroup.h"
#include "Vel/TypeNode.h"

namespace BfIngressMirrorLagGroup {

namespace {

const std::ios_base::Init streamsFirst;

[[maybe_unused]] const bool typesRegistered = [] {
  Vel::typeNodeIs(IngressMirrorLagGroupGroup::typeRecord());
  Vel::typeNodeIs(IngressMirrorLagGroupBaseActionProfileSpec::typeRecord());
  Vel::typeNodeIs(IngressMirrorLagGroupActionProfile::typeRecord());
  Vel::typeNodeIs(IngressMirrorLagGroupTableHelper::typeRecord());
  Vel::typeNodeIs(IngressMirrorLagGroupTableHandles::typeRecord());
  Vel::typeNodeIs(IngressMirrorLagGroupMember::typeRecord());
  Vel::typeNodeIs(IngressMirrorLagGroupMemberOrGroupOrNone::typeRecord());
  Vel::typeNodeIs(IngressMirrorLagGroupActionProfileEntry::typeRecord());
  Vel::typeNodeIs(IngressMirrorLagGroupActionProfileSm::typeRecord());
  Vel::typeNodeIs(IngressMirrorLagGroupMatchSpec::typeRecord());
  Vel::typeNodeIs(ingressMirrorLagGroupActionProfileTypeRecord());
  Vel::typeNodeIs(IngressMirrorLagGroupTableEntry::typeRecord());
  Vel::typeNodeIs(SetLagMemberSelectorActionProfileSpec::typeRecord());
  Vel::typeNodeIs(IngressMirrorLagGroupTable::typeRecord());
  return true;
}();

}  // namespace

}  // namespace BfIngressMirrorLagGroup
