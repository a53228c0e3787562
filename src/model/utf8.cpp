#include "model/utf8.h"

namespace quorvex {

char32_t NextUtf8(std::string_view s, std::size_t* i) {
  const auto b = static_cast<unsigned char>(s[(*i)++]);
  if (b < 0x80) return b;
  int more = 0;
  char32_t c = 0, min = 0;
  if ((b & 0xE0) == 0xC0) {
    more = 1, c = b & 0x1F, min = 0x80;
  } else if ((b & 0xF0) == 0xE0) {
    more = 2, c = b & 0x0F, min = 0x800;
  } else if ((b & 0xF8) == 0xF0) {
    more = 3, c = b & 0x07, min = 0x10000;
  } else {
    return kMalformedUtf8;
  }
  std::size_t j = *i;
  for (int k = 0; k < more; ++k, ++j) {
    if (j >= s.size() || (static_cast<unsigned char>(s[j]) & 0xC0) != 0x80)
      return kMalformedUtf8;
    c = (c << 6) | (static_cast<unsigned char>(s[j]) & 0x3F);
  }
  if (c < min || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF))
    return kMalformedUtf8;
  *i = j;
  return c;
}

std::size_t Utf8Characters(std::string_view s) {
  std::size_t n = 0;
  for (std::size_t i = 0; i < s.size(); ++n) NextUtf8(s, &i);
  return n;
}

std::size_t Utf8Offset(std::string_view s, std::size_t chars) {
  std::size_t i = 0;
  for (; i < s.size() && chars > 0; --chars) NextUtf8(s, &i);
  return i;
}

}  // namespace quorvex
