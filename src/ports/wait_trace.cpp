#include "ports/wait_trace.h"

#include <string_view>
#include <vector>

namespace quorvex {
namespace {

struct Entry {
  const char* name;
  const char* function;
  const char* file;
  unsigned line;
};

std::vector<Entry>& Stack() {
  thread_local std::vector<Entry> stack;
  return stack;
}

std::string_view BaseName(std::string_view path) {
  const auto slash = path.find_last_of("/\\");
  return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

}  // namespace

WaitTrace::WaitTrace(const char* name, const char* function, const char* file,
                     unsigned line) {
  Stack().push_back({name, function, file, line});
}

WaitTrace::~WaitTrace() { Stack().pop_back(); }

int WaitTrace::Depth() { return static_cast<int>(Stack().size()); }

std::string WaitTrace::Describe() {
  const std::vector<Entry>& stack = Stack();
  if (stack.empty()) return "no wait";
  std::string out;
  for (auto it = stack.rbegin(); it != stack.rend(); ++it) {
    if (!out.empty()) out += " inside ";
    out += it->name && *it->name ? it->name : "a wait";
    out += " (";
    out += it->function ? it->function : "?";
    out += ", ";
    out += BaseName(it->file ? it->file : "?");
    out += ":" + std::to_string(it->line) + ")";
  }
  return out;
}

}  // namespace quorvex
