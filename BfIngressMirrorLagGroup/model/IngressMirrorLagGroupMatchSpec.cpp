#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMatchSpec.h"

namespace BfIngressMirrorLagGroup {

const Vel::TypeRecord& IngressMirrorLagGroupMatchSpec::typeRecord() {
  static const Vel::TypeRecord record("BfIngressMirrorLagGroup::IngressMirrorLagGroupMatchSpec",
                                      Vel::TypeRecord::Kind::object);
  return record;
}

const Vel::TypeRecord* IngressMirrorLagGroupMatchSpec::fwkType() const {
  return &typeRecord();
}

}  // namespace BfIngressMirrorLagGroup
