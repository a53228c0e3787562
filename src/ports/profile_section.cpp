#include "ports/profile_section.h"

#include <algorithm>
#include <cmath>

#include "model/text_util.h"
#include "model/utf8.h"

namespace quorvex {

namespace {

// The index of "prefix" + index, when `key` (folded) is written that way:
// a decimal number as the list's save writes it, no sign, no leading zero.
std::int64_t IndexOf(std::string_view key, std::string_view prefix) {
  if (key.size() <= prefix.size() || key.substr(0, prefix.size()) != prefix)
    return -1;
  const std::string_view digits = key.substr(prefix.size());
  if (digits.size() > 15 || (digits.size() > 1 && digits[0] == '0')) return -1;
  std::int64_t index = 0;
  for (char c : digits) {
    if (c < '0' || c > '9') return -1;
    index = index * 10 + (c - '0');
  }
  return index;
}

}  // namespace

std::string CutProfileValue(std::string value) {
  value.resize(Utf8Offset(value, kProfileValueChars));
  return value;
}

ProfileSection::ProfileSection(const ProfileFile::Sections& sections,
                               std::string_view name) {
  for (const auto& [section, keys] : sections) {
    if (!EqualsIgnoreCase(section, name)) continue;
    for (const auto& [key, value] : keys) values_.emplace(LCase(key), value);
    return;
  }
}

std::string ProfileSection::Get(std::string_view key) const {
  auto it = values_.find(LCase(key));
  return it == values_.end() ? std::string() : CutProfileValue(it->second);
}

std::vector<std::string> ProfileSection::Numbered(
    std::string_view prefix, std::string_view total) const {
  std::vector<std::string> lines;
  if (!IsNumeric(total)) return lines;
  const double last = std::min(RoundHalfEven(Val(total) - 1),
                               static_cast<double>(kMaxLines - 1));
  // The last key present within the count.
  const std::string folded = LCase(prefix);
  std::int64_t last_present = -1;
  for (const auto& [key, value] : values_) {
    const std::int64_t i = IndexOf(key, folded);
    if (i > last_present && i <= last) last_present = i;
  }
  lines.reserve(static_cast<std::size_t>(last_present + 1));
  for (std::int64_t i = 0; i <= last_present; ++i)
    lines.push_back(Get(std::string(prefix) + std::to_string(i)));
  return lines;
}

}  // namespace quorvex
