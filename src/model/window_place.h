// Where a small window opens: beside the main window, never over a window
// already open, so that two windows can be told apart at a glance.
#pragma once

#include <vector>

namespace quorvex {

struct Box {
  int left = 0, top = 0, right = 0, bottom = 0;
  int Width() const { return right - left; }
  int Height() const { return bottom - top; }
  bool Overlaps(const Box& o) const {
    return left < o.right && o.left < right && top < o.bottom && o.top < bottom;
  }
};

// The top-left corner for a new window of `width` x `height`. It goes to
// the right of the main window, top edges level, and steps right past each
// open window it would cover; when the screen ends, the next row starts
// under the lowest window of the row. With no free place left on the
// screen, it cascades from the last window opened (`open.back()`) by
// `step`, so that at least that window's title bar stays in sight.
struct Corner {
  int x = 0, y = 0;
};
Corner PlaceWindow(const Box& main, const std::vector<Box>& open, int width,
                   int height, const Box& screen, int gap, int step);

}  // namespace quorvex
