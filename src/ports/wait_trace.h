// Which waits the program is in, innermost last: a wait pushes itself for
// as long as it polls, so that a host that sees the program stuck can say
// where. One thread, so one trace.
#pragma once

#include <string>

namespace quorvex {

// Where a wait was called from, filled in at the call site by default
// (std::source_location is not in every compiler the program is built
// with; these builtins are).
struct WaitPlace {
  constexpr WaitPlace(const char* function = __builtin_FUNCTION(),
                      const char* file = __builtin_FILE(),
                      unsigned line = __builtin_LINE())
      : function(function), file(file), line(line) {}
  const char* function;
  const char* file;
  unsigned line;
};

class WaitTrace {
 public:
  // `name` (may be null), `function`, `file` and `line` say which wait it
  // is; the texts must outlive the scope (literals or source locations).
  WaitTrace(const char* name, const char* function, const char* file,
            unsigned line);
  ~WaitTrace();
  WaitTrace(const WaitTrace&) = delete;
  WaitTrace& operator=(const WaitTrace&) = delete;

  // "NAME (FUNCTION, FILE:LINE)" for each wait, innermost first, joined by
  // " inside "; "no wait" when the program is in none.
  static std::string Describe();
  static int Depth();
};

}  // namespace quorvex
