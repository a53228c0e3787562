#include "sim/sim_knobs.h"

#include <gtest/gtest.h>

namespace quorvex {
namespace {

TEST(SimKnobsTest, SetsEachKindFromItsTextWithinItsBounds) {
  SimKnobs k;
  EXPECT_EQ(SetKnob(&k, "latency", "2.5"), "");
  EXPECT_DOUBLE_EQ(k.latency, 2.5);
  EXPECT_EQ(SetKnob(&k, "latency", "0"), "");
  EXPECT_NE(SetKnob(&k, "latency", "-0.001"), "");
  EXPECT_NE(SetKnob(&k, "latency", "2s"), "");
  EXPECT_DOUBLE_EQ(k.latency, 0);  // a refused value changes nothing

  // A chance is at most 1.
  EXPECT_EQ(SetKnob(&k, "lost_click_chance", "1"), "");
  EXPECT_DOUBLE_EQ(k.lost_click_chance, 1);
  EXPECT_EQ(SetKnob(&k, "lost_click_chance", "1.001"),
            "knob lost_click_chance takes a chance from 0 to 1, got '1.001'");

  // Counts are whole; some must be at least 1.
  EXPECT_EQ(SetKnob(&k, "signon_failures", "0"), "");
  EXPECT_EQ(SetKnob(&k, "max_body_chars", "500"), "");
  EXPECT_EQ(k.max_body_chars, 500u);
  EXPECT_NE(SetKnob(&k, "max_body_chars", "1.5"), "");
  EXPECT_NE(SetKnob(&k, "display_lines", "0"), "");
  EXPECT_EQ(SetKnob(&k, "display_lines", "1"), "");
  EXPECT_EQ(k.display_lines, 1);

  // Switches.
  EXPECT_TRUE(k.room_style_controls);  // the room as the real client has it
  EXPECT_EQ(SetKnob(&k, "room_style_controls", "0"), "");
  EXPECT_FALSE(k.room_style_controls);
  EXPECT_EQ(SetKnob(&k, "close_needs_two", "true"), "");
  EXPECT_TRUE(k.close_needs_two);
  EXPECT_NE(SetKnob(&k, "close_needs_two", "yes"), "");

  EXPECT_EQ(
      SetKnob(&k, "lost_clicks", "1").rfind("unknown knob 'lost_clicks'", 0),
      0u);
}

TEST(SimKnobsTest, EveryKnobCanBeSet) {
  SimKnobs k;
  for (const std::string& name : KnobNames()) {
    EXPECT_EQ(SetKnob(nullptr, name, "1"), "") << name;
    EXPECT_EQ(SetKnob(&k, name, "1"), "") << name;
  }
  EXPECT_EQ(KnobNames().size(), 16u);
}

TEST(SimKnobsTest, EachValueReadsBackAsItWasSet) {
  SimKnobs k;
  ASSERT_EQ(SetKnob(&k, "latency", "0.4"), "");
  ASSERT_EQ(SetKnob(&k, "lost_click_chance", "0.7"), "");
  ASSERT_EQ(SetKnob(&k, "close_needs_two", "true"), "");
  ASSERT_EQ(SetKnob(&k, "max_body_chars", "2147483647"), "");
  EXPECT_EQ(KnobValue(k, "latency"), "0.4");
  EXPECT_EQ(KnobValue(k, "close_needs_two"), "1");
  EXPECT_EQ(KnobValue(k, "max_body_chars"), "2147483647");
  EXPECT_EQ(KnobValue(k, "no_such_knob"), "");
  // Every knob, written back through its text, stays as it was.
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
