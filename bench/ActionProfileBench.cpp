// What the action-profile state machine adds to the chip's own cost, with the
// plug-in's tracing off:
// - a member added and deleted through the configuration entity (entity
//   mutator -> notification -> member reactor -> PD call) against the raw PD
//   add and delete, with 1, 1024 and 16384 members already configured;
// - a selector group of 8 members created and deleted through the
//   configuration (group, initial member, 7 more members; then the group's
//   deletion, which takes its members out first) against the raw PD calls
//   that it makes, with 1 and 4096 groups configured;
// - a group member's `active` flag switched off and on again against two raw
//   state changes, with 1 and 4096 groups configured.
// A summary of configuration time over raw time per size ends the run.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "BfIngressMirrorLagGroup/BfIngressMirrorLagGroup.h"
#include "Vel/Allocate.h"
#include "chipsim/chipsim.h"
#include "support/ChipsimLibrary.h"

namespace {

using namespace BfIngressMirrorLagGroup;
using Sm = IngressMirrorLagGroupActionProfileSm;
using PdActionSpec = p4_pd_kestro_switch_setLagMemberSelector_action_spec_t;

constexpr std::uint8_t kDevice = 0;
constexpr std::uint16_t kPipe = P4_PD_ALL_PIPES;
constexpr p4_pd_device_target_t kTarget{kDevice, kPipe};
constexpr std::uint32_t kSession = 1;
// Members of the measured group; the measured member's and group's ids come
// after those of the configured ones.
constexpr std::uint32_t kGroupMembers = 8;
constexpr std::uint32_t kMaxConfigured = 16384;
constexpr std::uint32_t kMaxGroups = 4096;

// The chip model's library, loaded as a host loads a PD library. Its chips
// have room for every configured member and group and the measured ones.
const chipsim_test::ChipsimLibrary& chip() {
  static const chipsim_test::ChipsimLibrary& lib = []() -> const chipsim_test::ChipsimLibrary& {
    const chipsim_test::ChipsimLibrary& loaded = chipsim_test::chipsim();
    chipsim_config config{};
    loaded.configDefault(&config);
    config.members = kMaxConfigured + 2 * kGroupMembers;
    config.groups = kMaxGroups + 2;
    loaded.configure(&config);
    return loaded;
  }();
  return lib;
}

Vel::Ptr<IngressMirrorLagGroupActionProfileEntry> entryOf(std::uint32_t memberId) {
  auto action = Vel::allocate<SetLagMemberSelectorActionProfileSpec>();
  action->lagMemberSelectorIs(static_cast<std::uint16_t>(memberId));
  return Vel::allocate<IngressMirrorLagGroupActionProfileEntry>(BfnTable::BfnMemberId(memberId),
                                                                action);
}

// A fresh chip and a state machine on it, following a configuration of
// `members` members (ids 1..members) and `groups` groups of one member each
// (ids 1..groups, initial member 1), and the members of the measured group.
struct Setup {
  Setup(std::uint32_t members, std::uint32_t groups) {
    chip().reset();
    helper = ingressMirrorLagGroupTableHelperFactory(kDevice, kPipe);
    helper->pdLibIs(CHIPSIM_LIBRARY, chip().handle, kSession);
    helper->sdkHandlesIs();
    profile = Vel::allocate<IngressMirrorLagGroupActionProfile>("ingressMirrorLagGroup");
    sm = Sm::IngressMirrorLagGroupActionProfileSmIs(profile, helper, nullptr, nullptr);
    sm->sessionHandleIs(kSession);
    for (std::uint32_t id = 1; id <= std::max(members, 1u); ++id)
      profile->entryIs(entryOf(id));
    for (std::uint32_t id = 1; id <= groups; ++id)
      profile->groupIs(BfnTable::BfnGroupId(id), kGroupMembers, 1,
                       setLagMemberSelectorActionProfileSpec);
    for (std::uint32_t i = 1; i <= kGroupMembers; ++i)
      profile->entryIs(entryOf(firstGroupMemberId() + i - 1));
  }

  // The configuration is taken down as a host would: groups first, so that
  // their members may go.
  ~Setup() {
    profile->groupDelAll();
    profile->entryDelAll();
  }

  static std::uint32_t firstGroupMemberId() { return kMaxConfigured + 1; }
  static std::uint32_t measuredMemberId() { return kMaxConfigured + kGroupMembers + 1; }
  static BfnTable::BfnGroupId measuredGroupId() { return BfnTable::BfnGroupId(kMaxGroups + 1); }

  Vel::Ptr<IngressMirrorLagGroupTableHelper> helper;
  Vel::Ptr<IngressMirrorLagGroupActionProfile> profile;
  Vel::Ptr<Sm> sm;
};

std::uint32_t count(const benchmark::State& state) {
  return static_cast<std::uint32_t>(state.range(0));
}

void rawMemberAddDelete(benchmark::State& state) {
  Setup setup(count(state), 0);
  const PdActionSpec spec{7};
  for (auto _ : state) {
    std::uint32_t member = 0;
    if (chip().addMember(kSession, kTarget, &spec, &member) != 0 ||
        chip().delMember(kSession, kDevice, member) != 0) {
      state.SkipWithError("raw PD call failed");
      break;
    }
  }
  state.counters["members"] = static_cast<double>(chip().members());
}

void configMemberAddDelete(benchmark::State& state) {
  Setup setup(count(state), 0);
  const auto entry = entryOf(Setup::measuredMemberId());
  for (auto _ : state) {
    setup.profile->entryIs(entry);
    benchmark::DoNotOptimize(setup.profile->entryDel(entry->memberId()));
  }
  state.counters["members"] = static_cast<double>(chip().members());
}

void rawGroupCreateDelete(benchmark::State& state) {
  Setup setup(1, count(state));
  std::vector<std::uint32_t> members;
  for (std::uint32_t i = 0; i < kGroupMembers; ++i)
    members.push_back(
        setup.helper->sdkHandles()->member(BfnTable::BfnMemberId(Setup::firstGroupMemberId() + i)));
  for (auto _ : state) {
    std::uint32_t group = 0;
    pipe_status status = chip().createGroup(kSession, kTarget, kGroupMembers, &group);
    for (std::uint32_t member : members)
      status |= chip().addMemberToGroup(kSession, kDevice, group, member);
    for (std::uint32_t member : members)
      status |= chip().delMemberFromGroup(kSession, kDevice, group, member);
    status |= chip().delGroup(kSession, kDevice, group);
    if (status != 0) {
      state.SkipWithError("raw PD call failed");
      break;
    }
  }
  state.counters["groups"] = static_cast<double>(chip().groups());
}

void configGroupCreateDelete(benchmark::State& state) {
  Setup setup(1, count(state));
  for (auto _ : state) {
    const auto group =
        setup.profile->groupIs(Setup::measuredGroupId(), kGroupMembers, Setup::firstGroupMemberId(),
                               setLagMemberSelectorActionProfileSpec);
    for (std::uint32_t i = 1; i < kGroupMembers; ++i)
      group->memberIs(BfnTable::BfnMemberId(Setup::firstGroupMemberId() + i));
    benchmark::DoNotOptimize(setup.profile->groupDel(Setup::measuredGroupId()));
  }
  state.counters["groups"] = static_cast<double>(chip().groups());
}

void rawMemberToggle(benchmark::State& state) {
  Setup setup(1, count(state));
  const std::uint32_t group = setup.helper->sdkHandles()->group(BfnTable::BfnGroupId(1));
  const std::uint32_t member = setup.helper->sdkHandles()->member(BfnTable::BfnMemberId(1));
  for (auto _ : state) {
    if (chip().groupMemberStateSet(kSession, kDevice, group, member, P4_PD_GROUP_MEMBER_INACTIVE) !=
            0 ||
        chip().groupMemberStateSet(kSession, kDevice, group, member, P4_PD_GROUP_MEMBER_ACTIVE) !=
            0) {
      state.SkipWithError("raw PD call failed");
      break;
    }
  }
}

void configMemberToggle(benchmark::State& state) {
  Setup setup(1, count(state));
  const auto member =
      setup.profile->group(BfnTable::BfnGroupId(1))->member(BfnTable::BfnMemberId(1));
  for (auto _ : state) {
    member->activeIs(false);
    member->activeIs(true);
  }
}

BENCHMARK(rawMemberAddDelete)->ArgName("members")->Arg(1)->Arg(1024)->Arg(16384);
BENCHMARK(configMemberAddDelete)->ArgName("members")->Arg(1)->Arg(1024)->Arg(16384);
BENCHMARK(rawGroupCreateDelete)->ArgName("groups")->Arg(1)->Arg(4096);
BENCHMARK(configGroupCreateDelete)->ArgName("groups")->Arg(1)->Arg(4096);
BENCHMARK(rawMemberToggle)->ArgName("groups")->Arg(1)->Arg(4096);
BENCHMARK(configMemberToggle)->ArgName("groups")->Arg(1)->Arg(4096);

// The console report, followed by the time of each configuration run over the
// raw run of the same size, in real and in CPU time.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.run_type == Run::RT_Iteration && !run.error_occurred)
        times_[run.benchmark_name()] = {run.GetAdjustedRealTime(), run.GetAdjustedCPUTime()};
    }
  }

  void Finalize() override {
    ConsoleReporter::Finalize();
    std::printf("\nconfiguration over raw PD calls (target: at most 3, flat in the size)\n");
    summary("member add+delete", "MemberAddDelete/members:", {"1", "1024", "16384"});
    summary("group of 8 create+delete", "GroupCreateDelete/groups:", {"1", "4096"});
    summary("member active off+on", "MemberToggle/groups:", {"1", "4096"});
  }

 private:
  struct Times {
    double real = 0;
    double cpu = 0;
  };

  void summary(const char* what, const std::string& name, const std::vector<const char*>& sizes) {
    for (const char* size : sizes) {
      const Times raw = times_["raw" + name + size];
      const Times config = times_["config" + name + size];
      std::printf(
          "  %-26s size=%-6s real: raw %8.1f ns config %8.1f ns ratio %.2f   "
          "cpu: raw %8.1f ns config %8.1f ns ratio %.2f\n",
          what, size, raw.real, config.real, ratio(config.real, raw.real), raw.cpu, config.cpu,
          ratio(config.cpu, raw.cpu));
    }
  }

  static double ratio(double config, double raw) { return raw > 0 ? config / raw : 0.0; }

  std::map<std::string, Times> times_;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv))
    return 1;
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}
