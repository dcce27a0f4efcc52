#include "Vel/Expect.h"

#include <array>

#include "Vel/Format.h"
#include "Vel/RangeException.h"

namespace Vel {

namespace {

// How many scopes of each id are open on this thread.
struct OpenScopes {
  std::array<unsigned, Expect::maxId + 1> count{};
  unsigned depth = 0;
};

thread_local OpenScopes openScopes;

}  // namespace

Expect::Expect(unsigned exceptionId) : id_(exceptionId) {
  if (exceptionId > maxId) {
    throwRangeException(format("exception id %u is not in 0..%u", exceptionId, maxId));
  }
  ++openScopes.count[id_];
  ++openScopes.depth;
}

Expect::~Expect() {
  --openScopes.count[id_];
  --openScopes.depth;
}

bool Expect::isExpected(unsigned exceptionId) noexcept {
  return exceptionId <= maxId && openScopes.count[exceptionId] > 0;
}

ExceptionIdSet Expect::expected() noexcept {
  ExceptionIdSet set = 0;
  for (unsigned id = 0; id <= maxId; ++id) {
    if (openScopes.count[id] > 0)
      set |= ExceptionIdSet{1} << id;
  }
  return set;
}

unsigned Expect::depth() noexcept {
  return openScopes.depth;
}

}  // namespace Vel
