// Value texts as the profile-string reader gives them back, shared by the
// in-memory and the file-backed profile files.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quorvex {

// Strips surrounding blanks (spaces and tabs), then one pair of matching
// surrounding quotes (" or '), as GetPrivateProfileStringA does.
inline std::string ProfileUnquote(std::string_view raw) {
  auto blank = [](char c) { return c == ' ' || c == '\t'; };
  std::size_t b = 0, e = raw.size();
  while (b < e && blank(raw[b])) ++b;
  while (e > b && blank(raw[e - 1])) --e;
  std::string_view v = raw.substr(b, e - b);
  if (v.size() >= 2 && (v.front() == '"' || v.front() == '\'') &&
      v.back() == v.front())
    v = v.substr(1, v.size() - 2);
  return std::string(v);
}

}  // namespace quorvex
