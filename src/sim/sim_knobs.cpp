#include "sim/sim_knobs.h"

#include <charconv>
#include <cmath>
#include <functional>
#include <limits>

namespace quorvex {

namespace {

enum class Type { kSeconds, kChance, kCount, kSwitch };

struct Knob {
  const char* name;
  Type type;
  double max;  // the largest value taken (counts and seconds)
  std::function<void(SimKnobs&, double)> set;
  std::function<double(const SimKnobs&)> get;
};

const std::vector<Knob>& Knobs() {
  constexpr double kDay = 86400;
  constexpr double kMaxInt = std::numeric_limits<int>::max();
  static const std::vector<Knob> knobs = {
      {"latency", Type::kSeconds, kDay,
       [](SimKnobs& k, double v) { k.latency = v; },
       [](const SimKnobs& k) { return static_cast<double>(k.latency); }},
      {"busy", Type::kSeconds, kDay, [](SimKnobs& k, double v) { k.busy = v; },
       [](const SimKnobs& k) { return static_cast<double>(k.busy); }},
      {"lost_click_chance", Type::kChance, 1,
       [](SimKnobs& k, double v) { k.lost_click_chance = v; },
       [](const SimKnobs& k) {
         return static_cast<double>(k.lost_click_chance);
       }},
      {"display_lines", Type::kCount, 1000000,
       [](SimKnobs& k, double v) { k.display_lines = static_cast<int>(v); },
       [](const SimKnobs& k) { return static_cast<double>(k.display_lines); }},
      {"max_body_chars", Type::kCount, kMaxInt,
       [](SimKnobs& k, double v) {
         k.max_body_chars = static_cast<std::size_t>(v);
       },
       [](const SimKnobs& k) { return static_cast<double>(k.max_body_chars); }},
      {"send_time", Type::kSeconds, kDay,
       [](SimKnobs& k, double v) { k.send_time = v; },
       [](const SimKnobs& k) { return static_cast<double>(k.send_time); }},
      {"close_time", Type::kSeconds, kDay,
       [](SimKnobs& k, double v) { k.close_time = v; },
       [](const SimKnobs& k) { return static_cast<double>(k.close_time); }},
      {"close_needs_two", Type::kSwitch, 1,
       [](SimKnobs& k, double v) { k.close_needs_two = v != 0; },
       [](const SimKnobs& k) {
         return static_cast<double>(k.close_needs_two);
       }},
      {"start_time", Type::kSeconds, kDay,
       [](SimKnobs& k, double v) { k.start_time = v; },
       [](const SimKnobs& k) { return static_cast<double>(k.start_time); }},
      {"signon_step", Type::kSeconds, kDay,
       [](SimKnobs& k, double v) { k.signon_step = v; },
       [](const SimKnobs& k) { return static_cast<double>(k.signon_step); }},
      {"signon_failures", Type::kCount, 1000000,
       [](SimKnobs& k, double v) { k.signon_failures = static_cast<int>(v); },
       [](const SimKnobs& k) {
         return static_cast<double>(k.signon_failures);
       }},
      {"full_room_leave_time", Type::kSeconds, kDay,
       [](SimKnobs& k, double v) { k.full_room_leave_time = v; },
       [](const SimKnobs& k) {
         return static_cast<double>(k.full_room_leave_time);
       }},
      {"room_style_controls", Type::kSwitch, 1,
       [](SimKnobs& k, double v) { k.room_style_controls = v != 0; },
       [](const SimKnobs& k) {
         return static_cast<double>(k.room_style_controls);
       }},
      {"sent_fill_step", Type::kCount, 1000000,
       [](SimKnobs& k, double v) { k.sent_fill_step = static_cast<int>(v); },
       [](const SimKnobs& k) { return static_cast<double>(k.sent_fill_step); }},
      {"screen_width", Type::kCount, 100000,
       [](SimKnobs& k, double v) { k.screen_width = static_cast<int>(v); },
       [](const SimKnobs& k) { return static_cast<double>(k.screen_width); }},
      {"screen_height", Type::kCount, 100000,
       [](SimKnobs& k, double v) { k.screen_height = static_cast<int>(v); },
       [](const SimKnobs& k) { return static_cast<double>(k.screen_height); }},
  };
  return knobs;
}

// The value as a number of the knob's type; false when it is not one.
bool Parse(Type type, std::string_view text, double* out) {
  if (type == Type::kSwitch) {
    if (text == "1" || text == "true") return *out = 1, true;
    if (text == "0" || text == "false") return *out = 0, true;
    return false;
  }
  const char* end = text.data() + text.size();
  if (type == Type::kCount) {
    long long v = 0;
    auto [p, ec] = std::from_chars(text.data(), end, v);
    if (ec != std::errc() || p != end) return false;
    *out = static_cast<double>(v);
    return true;
  }
  double v = 0;
  auto [p, ec] = std::from_chars(text.data(), end, v);
  if (ec != std::errc() || p != end || !std::isfinite(v)) return false;
  *out = v;
  return true;
}

// Counts that must be at least 1 to make sense.
double Min(const Knob& k) {
  if (k.type != Type::kCount) return 0;
  const std::string_view n = k.name;
  return n == "display_lines" || n == "sent_fill_step" || n == "screen_width" ||
                 n == "screen_height"
             ? 1
             : 0;
}

std::string Expected(const Knob& k) {
  const auto max = static_cast<long long>(k.max);
  switch (k.type) {
    case Type::kSeconds:
      return "seconds from 0 to " + std::to_string(max);
    case Type::kChance:
      return "a chance from 0 to 1";
    case Type::kCount:
      return "a whole number from " +
             std::to_string(static_cast<long long>(Min(k))) + " to " +
             std::to_string(max);
    case Type::kSwitch:
      return "0, 1, false or true";
  }
  return "";
}

}  // namespace

std::string SetKnob(SimKnobs* knobs, std::string_view name,
                    std::string_view value) {
  for (const Knob& k : Knobs()) {
    if (name != k.name) continue;
    double v = 0;
    if (!Parse(k.type, value, &v) || v < Min(k) || v > k.max)
      return "knob " + std::string(name) + " takes " + Expected(k) + ", got '" +
             std::string(value) + "'";
    if (knobs) k.set(*knobs, v);
    return "";
  }
  std::string known;
  for (const Knob& k : Knobs())
    known += (known.empty() ? "" : ", ") + std::string(k.name);
  return "unknown knob '" + std::string(name) + "' (" + known + ")";
}

std::string KnobValue(const SimKnobs& knobs, std::string_view name) {
  for (const Knob& k : Knobs()) {
    if (name != k.name) continue;
    const double v = k.get(knobs);
    if (k.type == Type::kCount || k.type == Type::kSwitch)
      return std::to_string(static_cast<long long>(v));
    // The shortest text that reads back as the same number.
    char buf[64];
    auto [end, ec] = std::to_chars(buf, buf + sizeof buf, v);
    return ec == std::errc() ? std::string(buf, end) : std::string();
  }
  return "";
}

std::vector<std::string> KnobNames() {
  std::vector<std::string> names;
  for (const Knob& k : Knobs()) names.emplace_back(k.name);
  return names;
}

}  // namespace quorvex
