#include "model/window_place.h"

#include <gtest/gtest.h>

#include <utility>

namespace quorvex {
namespace {

constexpr Box kScreen{0, 0, 1024, 768};
constexpr Box kMain{80, 60, 400, 340};
constexpr int kGap = 8;
constexpr int kStep = 24;

Box At(Corner p, int w, int h) { return {p.x, p.y, p.x + w, p.y + h}; }
using XYs = std::pair<int, int>;
XYs XY(Corner p) { return {p.x, p.y}; }

TEST(WindowPlaceTest, EachNewWindowOpensBesideTheLastWithoutCoveringIt) {
  std::vector<Box> open;
  // The first beside the main window, top edges level.
  Corner p = PlaceWindow(kMain, open, 300, 200, kScreen, kGap, kStep);
  EXPECT_EQ(XY(p), (XYs{408, 60}));
  open.push_back(At(p, 300, 200));
  // The next right of it; then the screen ends (716 + 300 = 1016 fits,
  // a third does not), and the next row begins under the lowest.
  p = PlaceWindow(kMain, open, 300, 250, kScreen, kGap, kStep);
  EXPECT_EQ(XY(p), (XYs{716, 60}));
  open.push_back(At(p, 300, 250));
  p = PlaceWindow(kMain, open, 100, 100, kScreen, kGap, kStep);
  EXPECT_EQ(XY(p), (XYs{408, 318}));  // under the taller one: 60 + 250 + 8
  open.push_back(At(p, 100, 100));
  for (std::size_t i = 0; i < open.size(); ++i)
    for (std::size_t j = i + 1; j < open.size(); ++j)
      EXPECT_FALSE(open[i].Overlaps(open[j])) << i << " " << j;
  for (const Box& b : open) EXPECT_FALSE(b.Overlaps(kMain));
  // A window closed leaves its place to the next one.
  open.erase(open.begin());
  p = PlaceWindow(kMain, open, 300, 200, kScreen, kGap, kStep);
  EXPECT_EQ(XY(p), (XYs{408, 60}));
}

TEST(WindowPlaceTest, AWindowFitsToTheLastPixelAndCascadesWhenNothingIsFree) {
  // Exactly as wide as the room right of the main window: it fits.
  Corner p = PlaceWindow(kMain, {}, 1024 - 408, 768 - 60, kScreen, kGap, kStep);
  EXPECT_EQ(XY(p), (XYs{408, 60}));
  // One pixel wider, or taller, and there is no free place: it cascades
  // from the main window, kept on the screen.
  p = PlaceWindow(kMain, {}, 1024 - 407, 100, kScreen, kGap, kStep);
  EXPECT_EQ(XY(p), (XYs{104, 84}));
  p = PlaceWindow(kMain, {}, 100, 768 - 59, kScreen, kGap, kStep);
  EXPECT_EQ(XY(p), (XYs{104, 59}));
  // With the screen full, each new window steps from the last one opened,
  // leaving its title bar in sight.
  const std::vector<Box> full{{408, 60, 1024, 768}, {500, 100, 700, 300}};
  p = PlaceWindow(kMain, full, 200, 200, kScreen, kGap, kStep);
  EXPECT_EQ(XY(p), (XYs{524, 124}));
}

TEST(WindowPlaceTest, BoxesThatOnlyTouchDoNotOverlap) {
  const Box a{0, 0, 10, 10};
  EXPECT_FALSE(a.Overlaps({10, 0, 20, 10}));
  EXPECT_FALSE(a.Overlaps({0, 10, 10, 20}));
  EXPECT_FALSE(a.Overlaps({-10, 0, 0, 10}));
  EXPECT_FALSE(a.Overlaps({0, -10, 10, 0}));
  EXPECT_TRUE(a.Overlaps({9, 9, 20, 20}));
  EXPECT_TRUE(a.Overlaps({-5, -5, 1, 1}));
}

}  // namespace
}  // namespace quorvex
