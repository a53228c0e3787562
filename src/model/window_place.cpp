#include "model/window_place.h"

#include <algorithm>

namespace quorvex {

Corner PlaceWindow(const Box& main, const std::vector<Box>& open, int width,
                   int height, const Box& screen, int gap, int step) {
  std::vector<Box> taken = open;
  taken.push_back(main);
  int row_top = main.top;
  // Each row lies under the lowest window of the one above it.
  while (row_top + height <= screen.bottom) {
    int x = main.right + gap;
    int row_bottom = row_top + height;
    while (x + width <= screen.right) {
      const Box here{x, row_top, x + width, row_top + height};
      auto covered =
          std::find_if(taken.begin(), taken.end(),
                       [&](const Box& b) { return b.Overlaps(here); });
      if (covered == taken.end()) return {x, row_top};
      x = covered->right + gap;
      row_bottom = std::max(row_bottom, covered->bottom);
    }
    // Every row keeps right of the main window, which it would cover.
    row_top = row_bottom + gap;
  }
  const Box& last = open.empty() ? main : open.back();
  const int x = std::clamp(last.left + step, screen.left,
                           std::max(screen.left, screen.right - width));
  const int y = std::clamp(last.top + step, screen.top,
                           std::max(screen.top, screen.bottom - height));
  return {x, y};
}

}  // namespace quorvex
