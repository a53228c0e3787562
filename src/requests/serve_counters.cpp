#include "requests/serve_counters.h"

#include <limits>
#include <string>

#include "model/text_util.h"

namespace quorvex {

std::int32_t SaturatingAdd(std::int32_t a, std::int64_t n) {
  constexpr std::int64_t kMax = std::numeric_limits<std::int32_t>::max();
  constexpr std::int64_t kMin = std::numeric_limits<std::int32_t>::min();
  // Clamp n first so that the sum cannot overflow 64 bits either.
  if (n > kMax - kMin) n = kMax - kMin;
  if (n < kMin - kMax) n = kMin - kMax;
  std::int64_t sum = static_cast<std::int64_t>(a) + n;
  if (sum > kMax) return static_cast<std::int32_t>(kMax);
  if (sum < kMin) return static_cast<std::int32_t>(kMin);
  return static_cast<std::int32_t>(sum);
}

namespace {
// The stored total as a 32-bit number: a text that is no number counts
// from 0, and a value beyond the range is held at its edge.
std::int32_t StoredTotal(const Registry& registry) {
  double v = RoundHalfEven(
      Val(registry.GetSetting(kApp, "Settings", "TotalSent", "0")));
  if (v >= std::numeric_limits<std::int32_t>::max())
    return std::numeric_limits<std::int32_t>::max();
  if (v <= std::numeric_limits<std::int32_t>::min())
    return std::numeric_limits<std::int32_t>::min();
  return static_cast<std::int32_t>(v);
}
}  // namespace

void AdvanceServeCounters(const CounterView& view, std::int64_t n) {
  if (n <= 0) return;
  std::int32_t total = SaturatingAdd(StoredTotal(view.registry), n);
  view.registry.Save(kApp, "Settings", "TotalSent", std::to_string(total));
  view.settings.TotalSent = total;
  view.lblSent.Set(kTotalCount(total));

  ServeCounters& c = view.counters;
  c.session = SaturatingAdd(c.session, n);
  c.AOLCount = SaturatingAdd(c.AOLCount, n);
  c.CPUCount = SaturatingAdd(c.CPUCount, n);
  c.SentCount = SaturatingAdd(c.SentCount, n);
  view.lblSession.Set(kSessionCount(c.session));
}

}  // namespace quorvex
