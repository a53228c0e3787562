#include "model/draw_status.h"

#include <gtest/gtest.h>

namespace quorvex {
namespace {

TEST(DrawStatusTest, ColoursReadLeniently) {
  const Rgb normal{68, 136, 187};
  EXPECT_EQ(HexColour("#4488BB"), normal);
  EXPECT_EQ(HexColour("4488BB"), normal);   // the "#" is optional
  EXPECT_EQ(HexColour("#4488bb"), normal);  // digits are upper-cased
  EXPECT_EQ(HexColour("#66AADD"), (Rgb{102, 170, 221}));
  // Only one "#" is dropped; a second one is a digit that reads as 0.
  EXPECT_EQ(HexColour("##4488BB"), (Rgb{4, 72, 139}));
  EXPECT_EQ(HexColour("#4G88BB"), (Rgb{64, 136, 187}));
  EXPECT_EQ(HexColour("#FF"), (Rgb{255, 0, 0}));  // missing digits are 0
  EXPECT_EQ(HexColour(""), (Rgb{0, 0, 0}));
  // The edges of both digit ranges, and the characters just beside them.
  EXPECT_EQ(HexDigit('0'), 0);
  EXPECT_EQ(HexDigit('9'), 9);
  EXPECT_EQ(HexDigit('A'), 10);
  EXPECT_EQ(HexDigit('F'), 15);
  for (char c : {'/', ':', '@', 'G', 'a'}) EXPECT_EQ(HexDigit(c), 0) << c;
}

TEST(DrawStatusTest, BandIsDarkAtTheEdgesAndBaseInTheMiddle) {
  // 20 rows: the middle is row 10, one step is 5.
  StatusDrawing d = DrawStatus(200, 20, "#4488BB", "status: idle", {60, 13});
  ASSERT_EQ(d.rows.size(), 21u);               // rows 0 to H
  EXPECT_EQ(d.rows[0], (Rgb{18, 86, 137}));    // 50 darker
  EXPECT_EQ(d.rows[1], (Rgb{23, 91, 142}));    // one step lighter
  EXPECT_EQ(d.rows[9], (Rgb{63, 131, 182}));   // last row of the upper half
  EXPECT_EQ(d.rows[10], (Rgb{68, 136, 187}));  // the base at the middle
  EXPECT_EQ(d.rows[11], (Rgb{63, 131, 182}));
  EXPECT_EQ(d.rows[20], (Rgb{18, 86, 137}));  // below the picture
  EXPECT_EQ(d.text, "status: idle");
  EXPECT_DOUBLE_EQ(d.text_x, 70);
  EXPECT_DOUBLE_EQ(d.text_y, 3.5);
}

TEST(DrawStatusTest, ShadesTruncateAndStopAtBlack) {
  // 7 rows: the middle rounds half to even (3.5 -> 4), the step is 12.5.
  StatusDrawing d = DrawStatus(10, 7, "#142801", "", {});
  ASSERT_EQ(d.rows.size(), 8u);
  EXPECT_EQ(d.rows[0], (Rgb{0, 0, 0}));    // 20 - 50, 40 - 50, 1 - 50
  EXPECT_EQ(d.rows[1], (Rgb{0, 2, 0}));    // 40 - 37.5 truncates to 2
  EXPECT_EQ(d.rows[3], (Rgb{7, 27, 0}));   // 20 - 12.5, 40 - 12.5
  EXPECT_EQ(d.rows[4], (Rgb{20, 40, 1}));  // the middle
  EXPECT_EQ(d.rows[5], (Rgb{7, 27, 0}));
  // 5 rows: 2.5 rounds to 2, so the lower half is the longer one.
  StatusDrawing five = DrawStatus(10, 5, "#646464", "", {});
  ASSERT_EQ(five.rows.size(), 6u);
  EXPECT_EQ(five.rows[2], (Rgb{100, 100, 100}));
  EXPECT_EQ(five.rows[5], (Rgb{25, 25, 25}));  // (5 - 2) x 25
}

TEST(DrawStatusTest, LowPicturesAreFlatAndWideTextsStartLeftOfTheEdge) {
  const Rgb base{68, 136, 187};
  // Two rows is the lowest shaded band: the middle is row 1, step 50.
  StatusDrawing two = DrawStatus(50, 2, "#4488BB", "x", {4, 2});
  ASSERT_EQ(two.rows.size(), 3u);
  EXPECT_EQ(two.rows[0], (Rgb{18, 86, 137}));
  EXPECT_EQ(two.rows[1], base);
  // One row would divide by zero: it is painted flat.
  StatusDrawing one = DrawStatus(50, 1, "#4488BB", "x", {4, 2});
  EXPECT_EQ(one.rows, std::vector<Rgb>{base});
  EXPECT_TRUE(DrawStatus(50, 0, "#4488BB", "x", {}).rows.empty());
  EXPECT_TRUE(DrawStatus(50, -3, "#4488BB", "x", {}).rows.empty());
  // A text wider and higher than the picture is centred all the same.
  StatusDrawing wide = DrawStatus(100, 10, "#4488BB", "long", {131, 14});
  EXPECT_DOUBLE_EQ(wide.text_x, -15.5);
  EXPECT_DOUBLE_EQ(wide.text_y, -2);
}

}  // namespace
}  // namespace quorvex
