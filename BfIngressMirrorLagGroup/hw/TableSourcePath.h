#pragma once

namespace BfIngressMirrorLagGroup {

// The source path of the table description from which the plug-in was made:
// traces and assertions report their position in that description.
inline constexpr const char* tableSourcePath =
    "bf_kestro_switch/vel/BfIngressMirrorLagGroup/BfIngressMirrorLagGroup";

}  // namespace BfIngressMirrorLagGroup
