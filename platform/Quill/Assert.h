#pragma once

// Assertion reporting of the agent's debug support library. A failed assertion
// prints the asserted text, the source path, the line and the function, then
// stops the process. Failures of the caller's order are reported this way, never
// as exceptions.

namespace Quill {

// Prints "<file>:<line>: <function>: Assertion '<text>' failed." on stderr and
// aborts the process.
[[noreturn]] void assertionFailed(const char* text, const char* file, unsigned line,
                                  const char* function) noexcept;

}  // namespace Quill

// Asserts an expression; the report shows the expression as written.
#define QUILL_ASSERT(expr)       \
  ((expr) ? static_cast<void>(0) \
          : ::Quill::assertionFailed(#expr, __FILE__, __LINE__, __PRETTY_FUNCTION__))

// Asserts a condition but reports a text, a source path and a line given by the
// caller: used where the reported position is that of a table description
// rather than of the C++ source.
#define QUILL_ASSERT_AT(cond, text, file, line) \
  ((cond) ? static_cast<void>(0)                \
          : ::Quill::assertionFailed((text), (file), (line), __PRETTY_FUNCTION__))
