#include "Vel/Expect.h"

#include <array>

#include "Vel/Format.h"
#include "Vel/RangeException.h"

namespace Vel {

// How many scopes of each id are open on a thread.
struct Expect::OpenScopes {
  std::array<unsigned, Expect::maxId + 1> count{};
  unsigned depth = 0;
};

thread_local Expect::OpenScopes Expect::openScopes_;

Expect::Expect(unsigned exceptionId) : id_(exceptionId), scopes_(&openScopes_) {
  if (exceptionId > maxId) {
    throwRangeException(format("exception id %u is not in 0..%u", exceptionId, maxId));
  }
  ++scopes_->count[id_];
  ++scopes_->depth;
}

Expect::~Expect() {
  --scopes_->count[id_];
  --scopes_->depth;
}

bool Expect::isExpected(unsigned exceptionId) noexcept {
  return exceptionId <= maxId && openScopes_.count[exceptionId] > 0;
}

ExceptionIdSet Expect::expected() noexcept {
  ExceptionIdSet set = 0;
  for (unsigned id = 0; id <= maxId; ++id) {
    if (openScopes_.count[id] > 0)
      set |= ExceptionIdSet{1} << id;
  }
  return set;
}

unsigned Expect::depth() noexcept {
  return openScopes_.depth;
}

}  // namespace Vel
