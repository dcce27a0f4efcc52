#include "RandomCaller.h"

namespace chipsim_test {

namespace {

constexpr std::size_t kRemembered = 64;
constexpr uint32_t kFunctions = 19;
constexpr uint32_t kEntryFunctions = 11;

}  // namespace

RandomCaller::RandomCaller(uint32_t seed) : pd_(chipsim()), random_(seed) {}

bool RandomCaller::chance(unsigned percent) {
  return below(100) < percent;
}

uint32_t RandomCaller::below(uint32_t bound) {
  return std::uniform_int_distribution<uint32_t>(0, bound - 1)(random_);
}

uint32_t RandomCaller::handle(const std::vector<uint32_t>& known) {
  if (!known.empty() && chance(85)) {
    return known[below(static_cast<uint32_t>(known.size()))];
  }
  switch (below(4)) {
    case 0:
      return 0;
    case 1:
      return UINT32_MAX;
    case 2:
      return below(100);
    default:
      return static_cast<uint32_t>(random_());
  }
}

int32_t RandomCaller::device() {
  return chance(95) ? 0 : static_cast<int32_t>(random_());
}

uint32_t RandomCaller::pipe() {
  if (chance(95)) {
    return chance(50) ? P4_PD_ALL_PIPES : below(4);
  }
  return static_cast<uint32_t>(random_());
}

p4_pd_device_target_t RandomCaller::target() {
  return {device(), pipe()};
}

void RandomCaller::remember(std::vector<uint32_t>& known, pipe_status status, uint32_t handle) {
  if (status != 0) {
    return;
  }
  if (known.size() < kRemembered) {
    known.push_back(handle);
  } else {
    known[below(kRemembered)] = handle;
  }
}

pipe_status RandomCaller::callOne() {
  uint32_t which = below(kFunctions + 1);
  if (which == kFunctions) {
    uint16_t selector = 0;
    pd_.lookup(static_cast<uint16_t>(below(8)), static_cast<uint32_t>(random_()),
               maybeNull(&selector));
    return 0;
  }
  ++pdCalls_;
  return which < kEntryFunctions ? callEntryFunction(which)
                                 : callProfileFunction(which - kEntryFunctions);
}

pipe_status RandomCaller::callEntryFunction(uint32_t which) {
  p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_t match{static_cast<uint16_t>(below(8))};
  uint32_t out = 0;
  bool isGroup = false;
  pipe_status status = 0;
  switch (which) {
    case 0:
      status = pd_.addEntry(1, target(), maybeNull(&match), handle(members_), maybeNull(&out));
      remember(entries_, status, out);
      return status;
    case 1:
      status = pd_.addEntryWithSelector(1, target(), maybeNull(&match), handle(groups_),
                                        maybeNull(&out));
      remember(entries_, status, out);
      return status;
    case 2:
      return pd_.modifyEntry(1, device(), handle(entries_), handle(members_));
    case 3:
      return pd_.modifyEntryWithSelector(1, device(), handle(entries_), handle(groups_));
    case 4:
      status = pd_.setDefaultEntry(1, target(), handle(members_), maybeNull(&out));
      remember(entries_, status, out);
      return status;
    case 5:
      status = pd_.setDefaultEntryWithSelector(1, target(), handle(groups_), maybeNull(&out));
      remember(entries_, status, out);
      return status;
    case 6:
      return pd_.tableDelete(1, device(), handle(entries_));
    case 7:
      return pd_.tableResetDefaultEntry(1, target());
    case 8:
      return pd_.setProperty(1, device(), chance(90) ? 1 : random_(), below(3));
    case 9:
      return pd_.getEntry(1, device(), handle(entries_), chance(50), maybeNull(&match),
                          maybeNull(&out), maybeNull(&isGroup));
    default:
      return pd_.matchSpecToEntryHdl(1, target(), maybeNull(&match), maybeNull(&out));
  }
}

pipe_status RandomCaller::callProfileFunction(uint32_t which) {
  p4_pd_kestro_switch_setLagMemberSelector_action_spec_t action{static_cast<uint16_t>(random_())};
  uint32_t out = 0;
  pipe_status status = 0;
  switch (which) {
    case 0:
      status = pd_.addMember(1, target(), maybeNull(&action), maybeNull(&out));
      remember(members_, status, out);
      return status;
    case 1:
      return pd_.modifyMember(1, device(), handle(members_), maybeNull(&action));
    case 2:
      return pd_.delMember(1, device(), handle(members_));
    case 3:
      status = pd_.createGroup(1, target(), chance(90) ? below(5) : random_(), maybeNull(&out));
      remember(groups_, status, out);
      return status;
    case 4:
      return pd_.delGroup(1, device(), handle(groups_));
    case 5:
      return pd_.addMemberToGroup(1, device(), handle(groups_), handle(members_));
    case 6:
      return pd_.delMemberFromGroup(1, device(), handle(groups_), handle(members_));
    default:
      return pd_.groupMemberStateSet(
          1, device(), handle(groups_), handle(members_),
          chance(95) ? static_cast<int32_t>(below(2)) : static_cast<int32_t>(random_()));
  }
}

}  // namespace chipsim_test
