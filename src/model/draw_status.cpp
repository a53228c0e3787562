#include "model/draw_status.h"

#include <algorithm>
#include <cmath>

#include "model/text_util.h"

namespace quorvex {

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return 0;
}

namespace {

char Upper(char c) { return (c >= 'a' && c <= 'z') ? c - 'a' + 'A' : c; }

// Mid(text, start, 2) read as a two-digit hexadecimal number.
int HexPair(std::string_view text, std::size_t start) {
  auto digit = [&text](std::size_t i) {
    return i < text.size() ? HexDigit(Upper(text[i])) : 0;
  };
  return 16 * digit(start) + digit(start + 1);
}

// A channel less `darken`, truncated, never below 0.
int Shade(int base, double darken) {
  return std::max(0, static_cast<int>(std::trunc(base - darken)));
}

Rgb ShadeAll(Rgb base, double darken) {
  return {Shade(base.r, darken), Shade(base.g, darken), Shade(base.b, darken)};
}

}  // namespace

Rgb HexColour(std::string_view colour) {
  if (!colour.empty() && colour.front() == '#') colour.remove_prefix(1);
  return {HexPair(colour, 0), HexPair(colour, 2), HexPair(colour, 4)};
}

StatusDrawing DrawStatus(int width, int height, std::string_view colour,
                         std::string text, TextSize text_size) {
  StatusDrawing d;
  const Rgb base = HexColour(colour);
  if (height >= kMinimumShadedHeight) {
    const int middle = static_cast<int>(RoundHalfEven(height / 2.0));
    const double step = 50.0 / middle;
    d.rows.reserve(static_cast<std::size_t>(height) + 1);
    for (int y = 0; y < middle; ++y)
      d.rows.push_back(ShadeAll(base, 50 - y * step));
    for (int y = middle; y <= height; ++y)
      d.rows.push_back(ShadeAll(base, (y - middle) * step));
  } else {
    d.rows.assign(static_cast<std::size_t>(std::max(height, 0)), base);
  }
  d.text_x = (width - text_size.width) / 2.0;
  d.text_y = (height - text_size.height) / 2.0;
  d.text = std::move(text);
  return d;
}

}  // namespace quorvex
