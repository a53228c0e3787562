#include "requests/serve_counters.h"

#include <gtest/gtest.h>

#include <limits>

#include "settings/memory_registry.h"

namespace quorvex {
namespace {

TEST(ServeCountersTest, TotalComesFromTheRegistryAndEverythingSaturates) {
  MemoryRegistry registry;
  Settings settings;
  ServeCounters counters;
  Label lblSent{"lblSent", ""}, lblSession{"lblSession", ""};
  CounterView view{counters, registry, settings, lblSent, lblSession};
  auto total = [&] {
    return registry.GetSetting(kApp, "Settings", "TotalSent", "");
  };

  registry.Save(kApp, "Settings", "TotalSent", "not a number");
  AdvanceServeCounters(view, 2);
  EXPECT_EQ(total(), "2");

  constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
  registry.Save(kApp, "Settings", "TotalSent", "2147483646");
  counters.session = kMax - 1;
  AdvanceServeCounters(view, std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(total(), "2147483647");
  EXPECT_EQ(settings.TotalSent, kMax);
  EXPECT_EQ(lblSent.caption(), "total: 2147483647");
  EXPECT_EQ(counters.session, kMax);
  EXPECT_EQ(counters.SentCount, kMax);
  EXPECT_EQ(lblSession.caption(), "session: 2147483647");
}

}  // namespace
}  // namespace quorvex
