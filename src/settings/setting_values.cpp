#include "settings/setting_values.h"

#include <cmath>
#include <limits>

#include "model/text_util.h"

namespace quorvex {

std::string FlagText(bool value) { return value ? "True" : "False"; }

std::string OnOff(bool value) { return value ? "on" : "off"; }

std::optional<bool> ParseFlag(std::string_view text) {
  std::string t = Trim(text);
  if (EqualsIgnoreCase(t, "True")) return true;
  if (EqualsIgnoreCase(t, "False")) return false;
  if (IsNumeric(t)) return Val(t) != 0;
  return std::nullopt;
}

namespace {
template <typename Int>
std::optional<Int> ToInt(double value) {
  double r = RoundHalfEven(value);
  if (!std::isfinite(r) || r < std::numeric_limits<Int>::min() ||
      r > std::numeric_limits<Int>::max())
    return std::nullopt;
  return static_cast<Int>(r);
}
}  // namespace

std::optional<std::int16_t> ToInt16(double value) {
  return ToInt<std::int16_t>(value);
}

std::optional<std::int16_t> ParseInt16(std::string_view text) {
  return ToInt<std::int16_t>(Val(text));
}

std::optional<std::int32_t> ParseInt32(std::string_view text) {
  return ToInt<std::int32_t>(Val(text));
}

std::optional<float> ParseSingle(std::string_view text) {
  double v = Val(text);
  if (std::fabs(v) > std::numeric_limits<float>::max()) return std::nullopt;
  return static_cast<float>(v);
}

}  // namespace quorvex
