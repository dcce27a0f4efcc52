#include "ManagerEvents.h"

#include "BfIngressMirrorLagGroup/BfIngressMirrorLagGroup.h"
#include "support/ChipsimLibrary.h"

namespace BfIngressMirrorLagGroup {

std::string sessionOf(const Vel::Ptr<const BfnTable::MatchSpecBase>& match) {
  const auto* spec = dynamic_cast<const IngressMirrorLagGroupMatchSpec*>(match.get());
  return spec != nullptr ? std::to_string(spec->ingMirrorMdMirrorSession()) : "?";
}

std::string atCallCount() {
  return " @" + std::to_string(chipsim_test::chipsim().logCount());
}

}  // namespace BfIngressMirrorLagGroup
