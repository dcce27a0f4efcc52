#pragma once

#include "Vel/InternalException.h"

namespace Vel {

// A scope in which the running code expects exceptions of one id (0 to 63).
// Scopes nest; the expected set is the union of every open scope of the thread.
class Expect {
 public:
  static constexpr unsigned maxId = 63;

  explicit Expect(unsigned exceptionId);
  ~Expect();
  Expect(const Expect&) = delete;
  Expect& operator=(const Expect&) = delete;

  unsigned exceptionId() const noexcept { return id_; }

  static bool isExpected(unsigned exceptionId) noexcept;
  static ExceptionIdSet expected() noexcept;
  // Number of scopes open on this thread.
  static unsigned depth() noexcept;

 private:
  struct OpenScopes;
  // The open scopes of each thread.
  static thread_local OpenScopes openScopes_;

  unsigned id_;
  // The open scopes of the thread that opened this one, found once: the scope
  // closes on the same thread.
  OpenScopes* scopes_;
};

}  // namespace Vel
