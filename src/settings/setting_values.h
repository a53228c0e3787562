// The text forms of setting values as the registry holds them, and the
// conversions back. Every value is read leniently: a stored text that the
// old runtime could not convert (or that overflows the field) gives the
// field's default instead of stopping the program.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quorvex {

// "True" / "False", as flags are stored.
std::string FlagText(bool value);
// "on" / "off", as captions and input boxes show a flag.
std::string OnOff(bool value);

// "True"/"False" in any case, or numeric text (non-zero is true).
std::optional<bool> ParseFlag(std::string_view text);
// The leading number, rounded half to even; nullopt when it does not fit.
std::optional<std::int16_t> ParseInt16(std::string_view text);
std::optional<std::int32_t> ParseInt32(std::string_view text);
// The leading number as a single; nullopt when it does not fit.
std::optional<float> ParseSingle(std::string_view text);

// `value` rounded half to even when it fits in 16 bits.
std::optional<std::int16_t> ToInt16(double value);

}  // namespace quorvex
