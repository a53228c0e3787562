#include "win32/code_page.h"

#include <cstdint>

#include "model/utf8.h"

namespace quorvex::win32 {

namespace {

// The characters of bytes 0x80 to 0x9F; the rest of the code page is
// Latin-1.
constexpr char32_t kHigh[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char32_t ByteToChar(unsigned char b) {
  return b >= 0x80 && b <= 0x9F ? kHigh[b - 0x80] : b;
}

// The byte of a character, or '?' when the code page has none.
char CharToByte(char32_t c) {
  if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) return static_cast<char>(c);
  for (int i = 0; i < 32; ++i)
    if (kHigh[i] == c) return static_cast<char>(0x80 + i);
  return '?';
}

void AppendUtf8(char32_t c, std::string* out) {
  if (c < 0x80) {
    out->push_back(static_cast<char>(c));
  } else if (c < 0x800) {
    out->push_back(static_cast<char>(0xC0 | (c >> 6)));
    out->push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else if (c < 0x10000) {
    out->push_back(static_cast<char>(0xE0 | (c >> 12)));
    out->push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out->push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else {
    out->push_back(static_cast<char>(0xF0 | (c >> 18)));
    out->push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
    out->push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out->push_back(static_cast<char>(0x80 | (c & 0x3F)));
  }
}

}  // namespace

std::string Utf8ToCp1252(std::string_view utf8) {
  std::string out;
  out.reserve(utf8.size());
  for (std::size_t i = 0; i < utf8.size();) {
    const char32_t c = NextUtf8(utf8, &i);
    out.push_back(c == kMalformedUtf8 ? '?' : CharToByte(c));
  }
  return out;
}

std::string Cp1252ToUtf8(std::string_view bytes) {
  std::string out;
  out.reserve(bytes.size());
  for (char b : bytes)
    AppendUtf8(ByteToChar(static_cast<unsigned char>(b)), &out);
  return out;
}

std::wstring Utf8ToWide(std::string_view utf8) {
  std::wstring out;
  out.reserve(utf8.size());
  for (std::size_t i = 0; i < utf8.size();) {
    char32_t c = NextUtf8(utf8, &i);
    if (c == kMalformedUtf8) c = 0xFFFD;
    if (c >= 0x10000) {
      c -= 0x10000;
      out.push_back(static_cast<wchar_t>(0xD800 + (c >> 10)));
      out.push_back(static_cast<wchar_t>(0xDC00 + (c & 0x3FF)));
    } else {
      out.push_back(static_cast<wchar_t>(c));
    }
  }
  return out;
}

namespace {

// Decodes UTF-16 (2-byte wchar_t on the platform), calling `fn` per
// character; a lone surrogate is U+FFFD.
template <typename Fn>
void ForEachWide(std::wstring_view wide, Fn fn) {
  for (std::size_t i = 0; i < wide.size(); ++i) {
    char32_t c = static_cast<char32_t>(wide[i]) & 0xFFFF;
    if (c >= 0xD800 && c <= 0xDBFF && i + 1 < wide.size()) {
      const char32_t low = static_cast<char32_t>(wide[i + 1]) & 0xFFFF;
      if (low >= 0xDC00 && low <= 0xDFFF) {
        c = 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
        ++i;
      }
    }
    if (c >= 0xD800 && c <= 0xDFFF) c = 0xFFFD;
    fn(c);
  }
}

}  // namespace

std::string WideToUtf8(std::wstring_view wide) {
  std::string out;
  ForEachWide(wide, [&](char32_t c) { AppendUtf8(c, &out); });
  return out;
}

std::string WideThroughCp1252(std::wstring_view wide) {
  std::string bytes;
  ForEachWide(wide, [&](char32_t c) { bytes.push_back(CharToByte(c)); });
  return Cp1252ToUtf8(bytes);
}

}  // namespace quorvex::win32
