// What reading an entry back costs as the action profile grows: entry(match)
// and entryByHandle of an entry on a member and of one on a group, with 1
// member and 1 group registered, and with 16384 members and 4096 groups (a
// full profile). The read-back finds the member's or group's id by its handle;
// its cost must not grow with the profile. A summary gives the full profile's
// time over the small one's for each read (target: flat, at most 1.2).

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "BfIngressMirrorLagGroup/BfIngressMirrorLagGroup.h"
#include "RatioArguments.h"
#include "TimesReporter.h"
#include "Vel/Allocate.h"
#include "chipsim/chipsim.h"
#include "support/ChipsimLibrary.h"

namespace {

using BfIngressMirrorLagGroup::IngressMirrorLagGroupMatchSpec;
using BfIngressMirrorLagGroup::IngressMirrorLagGroupMemberOrGroupOrNone;
using BfIngressMirrorLagGroup::IngressMirrorLagGroupTable;
using BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry;

constexpr std::uint8_t kDevice = 0;
constexpr p4_pd_device_target_t kTarget{kDevice, P4_PD_ALL_PIPES};
constexpr std::uint32_t kSession = 1;
constexpr std::uint32_t kFullMembers = 16384;
constexpr std::uint32_t kFullGroups = 4096;
constexpr double kFlatTarget = 1.2;

// The chip model's library, loaded as a host loads a PD library.
const chipsim_test::ChipsimLibrary& chip() {
  return chipsim_test::chipsim();
}

// A table on an empty chip whose registry holds `members` members and
// `groups` groups, with an entry of session 1 on the last member and one of
// session 2 on the last group.
struct Profile {
  Profile(std::uint32_t members, std::uint32_t groups) {
    chip().reset();
    table = ingressMirrorLagGroupTableFactory(nullptr, nullptr, chip().handle, kSession, kDevice,
                                              P4_PD_ALL_PIPES, CHIPSIM_LIBRARY);
    auto& registry = *table->helper()->sdkHandles();
    p4_pd_kestro_switch_setLagMemberSelector_action_spec_t action{7};
    std::uint32_t member = 0;
    for (std::uint32_t id = 1; id <= members; ++id) {
      chip().addMember(kSession, kTarget, &action, &member);
      registry.memberIs(BfnTable::BfnMemberId(id), member);
    }
    std::uint32_t group = 0;
    for (std::uint32_t id = 1; id <= groups; ++id) {
      chip().createGroup(kSession, kTarget, 1, &group);
      chip().addMemberToGroup(kSession, kDevice, group, member);
      registry.groupIs(BfnTable::BfnGroupId(id), group);
    }
    onMember = matchOf(1);
    onGroup = matchOf(2);
    table->entryIs(IngressMirrorLagGroupTableEntry(
        onMember, IngressMirrorLagGroupMemberOrGroupOrNone(members, true)));
    table->entryIs(IngressMirrorLagGroupTableEntry(
        onGroup, IngressMirrorLagGroupMemberOrGroupOrNone(groups, false)));
    memberEntry = registry.entry(onMember);
    groupEntry = registry.entry(onGroup);
  }

  static IngressMirrorLagGroupTable::MatchSpec matchOf(std::uint16_t session) {
    auto match = Vel::allocate<IngressMirrorLagGroupMatchSpec>();
    match->ingMirrorMdMirrorSessionIs(session);
    return match;
  }

  Vel::Ptr<IngressMirrorLagGroupTable> table;
  IngressMirrorLagGroupTable::MatchSpec onMember;
  IngressMirrorLagGroupTable::MatchSpec onGroup;
  std::uint32_t memberEntry = 0;
  std::uint32_t groupEntry = 0;
};

// The profile's size of a run: 0 small, 1 full.
Profile& profileOf(const benchmark::State& state) {
  static std::map<std::int64_t, Profile*> profiles;
  Profile*& profile = profiles[state.range(0)];
  if (profile == nullptr) {
    profile = state.range(0) == 0 ? new Profile(1, 1) : new Profile(kFullMembers, kFullGroups);
  }
  return *profile;
}

void entryByMatch(benchmark::State& state) {
  Profile& profile = profileOf(state);
  const auto& match = state.range(1) == 0 ? profile.onMember : profile.onGroup;
  for (auto _ : state)
    benchmark::DoNotOptimize(profile.table->entry(match));
}

void entryByHandle(benchmark::State& state) {
  Profile& profile = profileOf(state);
  const std::uint32_t handle = state.range(1) == 0 ? profile.memberEntry : profile.groupEntry;
  for (auto _ : state)
    benchmark::DoNotOptimize(profile.table->entryByHandle(handle));
}

BENCHMARK(entryByMatch)->ArgNames({"full", "group"})->ArgsProduct({{0, 1}, {0, 1}});
BENCHMARK(entryByHandle)->ArgNames({"full", "group"})->ArgsProduct({{0, 1}, {0, 1}});

// The console report, then each read's time with a full profile over its
// time with a small one (CPU time, the steadier on a loaded machine).
class RatioReporter : public TimesReporter {
 public:
  void Finalize() override {
    ConsoleReporter::Finalize();
    std::printf(
        "\nread-back with 16384 members and 4096 groups over 1 and 1 (target: at most "
        "%.1f)\n",
        kFlatTarget);
    for (const char* read : {"entryByMatch", "entryByHandle"}) {
      for (const char* target : {"0", "1"}) {
        const std::string suffix = std::string("/group:") + target;
        const double small = times(std::string(read) + "/full:0" + suffix).cpu;
        const double full = times(std::string(read) + "/full:1" + suffix).cpu;
        std::printf("  %-13s on a %-6s small %7.1f ns full %7.1f ns ratio %.2f\n", read,
                    target[0] == '1' ? "group" : "member", small, full, ratio(full, small));
      }
    }
  }
};

}  // namespace

int main(int argc, char** argv) {
  std::vector<char*> arguments = ratioArguments(argc, argv);
  int count = static_cast<int>(arguments.size()) - 1;
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
    return 1;
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}
