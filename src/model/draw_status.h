// The painter of the status strip and of every title bar, as a pure
// function: a view hands it the picture's size, the colour text and the
// size of the text in the picture's font, and draws what comes back (one
// colour per row, then the text at its position).
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quorvex {

struct Rgb {
  int r = 0;
  int g = 0;
  int b = 0;
  bool operator==(const Rgb&) const = default;
};

// The colour of a normal band and of a title bar being dragged.
inline constexpr const char* kBandColour = "#4488BB";
inline constexpr const char* kDragColour = "#66AADD";

// The text every window of the program paints on its title bar.
inline constexpr const char* kWindowTitle = "quorvex mail server by kestrin";

// A picture needs at least this many rows for a shaded band; a lower one
// (where the shading step would divide by zero) is painted flat in the
// base colour.
inline constexpr int kMinimumShadedHeight = 2;

struct TextSize {
  int width = 0;
  int height = 0;
};

struct StatusDrawing {
  // Row y is a line across the full width in rows[y]. There is one row
  // more than the picture is high: the last one falls below the picture
  // and is clipped, as the band's lower half runs from the middle to H.
  std::vector<Rgb> rows;
  // Where the text starts; negative when it is wider or higher than the
  // picture (it is then cut on both sides).
  double text_x = 0;
  double text_y = 0;
  std::string text;
};

// 0 to 15 for "0" to "9" and "A" to "F"; any other character, lower-case
// letters included, gives 0 without complaint.
int HexDigit(char c);
// Drops one leading "#", then reads characters 1-2, 3-4 and 5-6 as
// two-digit hexadecimal numbers, each digit upper-cased first. Missing
// characters read as 0.
Rgb HexColour(std::string_view colour);

// The band in `colour`, 50 darker at the top edge, the base colour at the
// middle, darkening again to the bottom; the text centred on it.
StatusDrawing DrawStatus(int width, int height, std::string_view colour,
                         std::string text, TextSize text_size);

}  // namespace quorvex
