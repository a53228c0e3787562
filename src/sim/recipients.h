// The client's reading of a recipients field: commas separate names, a
// name in parentheses is a blind copy, so "(a)(b)(c)" is three blind
// copies and "joe, (ann)" one copy and one blind copy.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quorvex {

struct Recipients {
  std::vector<std::string> to;     // in the order written
  std::vector<std::string> blind;  // likewise
  bool empty() const { return to.empty() && blind.empty(); }
  // Everyone, copies first.
  std::vector<std::string> All() const;
};

Recipients ParseRecipients(std::string_view field);

// Screen names are the same person whatever their case and spacing.
std::string ScreenNameKey(std::string_view name);

}  // namespace quorvex
