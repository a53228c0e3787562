#include "sim/sim_knobs.h"

#include <gtest/gtest.h>

namespace quorvex {
namespace {

TEST(SimKnobsTest, TakesEachKindWithinItsBoundsAndRefusesTheRest) {
  struct Row {
    const char* knob;
    const char* text;
    const char* read;  // nullptr: refused, the knob left as it was
  };
  const Row rows[] = {{"latency", "2.5", "2.5"},
                      {"latency", "0", "0"},
                      {"latency", "-0.001", nullptr},
                      {"latency", "2s", nullptr},
                      {"lost_click_chance", "1", "1"},
                      {"lost_click_chance", "1.001", nullptr},
                      {"signon_failures", "0", "0"},
                      {"max_body_chars", "2147483647", "2147483647"},
                      {"max_body_chars", "1.5", nullptr},
                      {"display_lines", "0", nullptr},
                      {"display_lines", "1", "1"},
                      {"room_style_controls", "0", "0"},
                      {"close_needs_two", "true", "1"},
                      {"close_needs_two", "yes", nullptr}};
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.knob) + "=" + row.text);
    SimKnobs k;
    const std::string before = KnobValue(k, row.knob);
    const std::string error = SetKnob(&k, row.knob, row.text);
    EXPECT_EQ(error.empty(), row.read != nullptr) << error;
    EXPECT_EQ(KnobValue(k, row.knob), row.read ? row.read : before);
    EXPECT_EQ(SetKnob(nullptr, row.knob, row.text), error);  // checks only
  }
  EXPECT_EQ(SetKnob(nullptr, "lost_click_chance", "1.001"),
            "knob lost_click_chance takes a chance from 0 to 1, got '1.001'");
  EXPECT_EQ(SetKnob(nullptr, "lost_clicks", "1")
                .rfind("unknown knob 'lost_clicks'", 0),
            0u);
  EXPECT_EQ(KnobValue(SimKnobs{}, "no_such_knob"), "");
}

TEST(SimKnobsTest, EveryKnobWrittenBackThroughItsTextStaysAsItWas) {
  SimKnobs k;
  ASSERT_EQ(SetKnob(&k, "latency", "0.4"), "");
  ASSERT_EQ(SetKnob(&k, "lost_click_chance", "0.7"), "");
  ASSERT_EQ(SetKnob(&k, "close_needs_two", "true"), "");
  SimKnobs copy;
  copy.latency = 9;
  for (const std::string& name : KnobNames())
    ASSERT_EQ(SetKnob(&copy, name, KnobValue(k, name)), "") << name;
  for (const std::string& name : KnobNames())
    EXPECT_EQ(KnobValue(copy, name), KnobValue(k, name)) << name;
  EXPECT_EQ(copy.lost_click_chance, 0.7);
}

}  // namespace
}  // namespace quorvex
