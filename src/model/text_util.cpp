#include "model/text_util.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

#include "model/utf8.h"

namespace quorvex {

namespace {
char Lower(char c) { return (c >= 'A' && c <= 'Z') ? char(c - 'A' + 'a') : c; }
char Upper(char c) { return (c >= 'a' && c <= 'z') ? char(c - 'a' + 'A') : c; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
}  // namespace

// Texts are UTF-8. Besides ASCII, the Latin-1 letters (U+00C0 to U+00DE,
// two bytes C3 80..9E) fold as the old runtime folded its 8-bit texts;
// U+00D7 and U+00F7 are signs, not letters.
std::string LCase(std::string_view s) {
  std::string out(s);
  for (size_t i = 0; i < out.size(); ++i) {
    unsigned char c = out[i];
    if (c == 0xC3 && i + 1 < out.size()) {
      unsigned char n = out[i + 1];
      if (n >= 0x80 && n <= 0x9E && n != 0x97) out[i + 1] = char(n + 0x20);
      ++i;
    } else {
      out[i] = Lower(out[i]);
    }
  }
  return out;
}

std::string UCase(std::string_view s) {
  std::string out(s);
  for (size_t i = 0; i < out.size(); ++i) {
    unsigned char c = out[i];
    if (c == 0xC3 && i + 1 < out.size()) {
      unsigned char n = out[i + 1];
      if (n >= 0xA0 && n <= 0xBE && n != 0xB7) out[i + 1] = char(n - 0x20);
      ++i;
    } else {
      out[i] = Upper(out[i]);
    }
  }
  return out;
}

bool EqualsIgnoreCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  return LCase(a) == LCase(b);
}

bool StartsWith(std::string_view s, std::string_view prefix) {
  return s.substr(0, prefix.size()) == prefix;
}

bool ContainsIgnoreCase(std::string_view haystack, std::string_view needle) {
  return LCase(haystack).find(LCase(needle)) != std::string::npos;
}

std::size_t Len(std::string_view s) { return Utf8Characters(s); }

std::string Trim(std::string_view s) {
  size_t b = 0, e = s.size();
  while (b < e && s[b] == ' ') ++b;
  while (e > b && s[e - 1] == ' ') --e;
  return std::string(s.substr(b, e - b));
}

std::string RemoveSpaces(std::string_view s) {
  std::string out;
  out.reserve(s.size());
  for (char c : s)
    if (c != ' ') out.push_back(c);
  return out;
}

namespace {
// Length of the leading number of s starting at i (after blanks), or 0.
size_t ScanNumber(std::string_view s, size_t i, std::string* token) {
  size_t start = i;
  std::string t;
  if (i < s.size() && (s[i] == '+' || s[i] == '-')) t.push_back(s[i++]);
  size_t digits = 0;
  while (i < s.size() && IsDigit(s[i])) t.push_back(s[i++]), ++digits;
  if (i < s.size() && s[i] == '.') {
    t.push_back(s[i++]);
    while (i < s.size() && IsDigit(s[i])) t.push_back(s[i++]), ++digits;
  }
  if (digits == 0) return 0;
  if (i < s.size() &&
      (s[i] == 'e' || s[i] == 'E' || s[i] == 'd' || s[i] == 'D')) {
    size_t j = i + 1;
    std::string e = "e";
    if (j < s.size() && (s[j] == '+' || s[j] == '-')) e.push_back(s[j++]);
    size_t ed = 0;
    while (j < s.size() && IsDigit(s[j])) e.push_back(s[j++]), ++ed;
    if (ed > 0) {
      t += e;
      i = j;
    }
  }
  *token = t;
  return i - start;
}

size_t SkipBlanks(std::string_view s, size_t i) {
  while (i < s.size() &&
         (s[i] == ' ' || s[i] == '\t' || s[i] == '\n' || s[i] == '\r'))
    ++i;
  return i;
}
}  // namespace

double Val(std::string_view s) {
  std::string token;
  if (ScanNumber(s, SkipBlanks(s, 0), &token) == 0) return 0;
  double v = std::strtod(token.c_str(), nullptr);
  if (std::isinf(v))
    v = v > 0 ? std::numeric_limits<double>::max()
              : -std::numeric_limits<double>::max();
  return v;
}

bool IsNumeric(std::string_view s) {
  std::string token;
  size_t i = SkipBlanks(s, 0);
  size_t n = ScanNumber(s, i, &token);
  if (n == 0) return false;
  return SkipBlanks(s, i + n) == s.size();
}

namespace {
std::string FormatG(double v, int digits) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.*g", digits, v);
  std::string out = buf;
  size_t e = out.find('e');
  if (e != std::string::npos) out[e] = 'E';
  return out;
}
}  // namespace

std::string NumberText(double v) {
  if (v == 0) return "0";
  return FormatG(v, 15);
}

std::string SingleText(float v) {
  if (v == 0) return "0";
  return FormatG(static_cast<double>(v), 7);
}

double RoundHalfEven(double v) { return std::nearbyint(v); }

std::string ReplaceText(std::string_view text, std::string_view find,
                        std::string_view replacement) {
  if (find.empty()) return std::string(text);
  std::string lower_text = LCase(text);
  std::string lower_find = LCase(find);
  std::string out;
  size_t pos = 0;
  while (true) {
    size_t hit = lower_text.find(lower_find, pos);
    if (hit == std::string::npos) break;
    out.append(text.substr(pos, hit - pos));
    out.append(replacement);
    pos = hit + find.size();
  }
  out.append(text.substr(pos));
  return out;
}

std::string ReplaceAll(std::string_view text, std::string_view find,
                       std::string_view replacement) {
  if (find.empty()) return std::string(text);
  std::string out;
  size_t pos = 0;
  while (true) {
    size_t hit = text.find(find, pos);
    if (hit == std::string_view::npos) break;
    out.append(text.substr(pos, hit - pos));
    out.append(replacement);
    pos = hit + find.size();
  }
  out.append(text.substr(pos));
  return out;
}

namespace {
// Matches one pattern element at p against c; sets *len to the element's
// length in the pattern. A malformed "[" list matches a literal "[".
bool MatchOne(std::string_view pat, size_t p, char c, size_t* len) {
  char pc = pat[p];
  if (pc == '?') {
    *len = 1;
    return true;
  }
  if (pc == '#') {
    *len = 1;
    return IsDigit(c);
  }
  if (pc == '[') {
    size_t close = pat.find(']', p + 1);
    if (close == std::string_view::npos) {
      *len = 1;
      return c == '[';
    }
    *len = close - p + 1;
    std::string_view list = pat.substr(p + 1, close - p - 1);
    bool negate = !list.empty() && list[0] == '!';
    if (negate) list.remove_prefix(1);
    bool hit = false;
    for (size_t i = 0; i < list.size(); ++i) {
      if (i + 2 < list.size() && list[i + 1] == '-') {
        unsigned char lo = list[i], hi = list[i + 2], uc = c;
        if (uc >= lo && uc <= hi) hit = true;
        i += 2;
      } else if (list[i] == c) {
        hit = true;
      }
    }
    return hit != negate;
  }
  *len = 1;
  return pc == c;
}
}  // namespace

bool Like(std::string_view text, std::string_view pat) {
  size_t t = 0, p = 0;
  size_t star_p = std::string_view::npos, star_t = 0;
  while (t < text.size()) {
    size_t len = 1;
    if (p < pat.size() && pat[p] == '*') {
      star_p = ++p;
      star_t = t;
      continue;
    }
    if (p < pat.size() && MatchOne(pat, p, text[t], &len)) {
      p += len;
      ++t;
      continue;
    }
    if (star_p != std::string_view::npos) {
      p = star_p;
      t = ++star_t;
      continue;
    }
    return false;
  }
  while (p < pat.size() && pat[p] == '*') ++p;
  return p == pat.size();
}

std::string PlainCaption(std::string_view caption) {
  std::string plain;
  for (std::size_t i = 0; i < caption.size(); ++i) {
    if (caption[i] != '&') {
      plain += caption[i];
    } else if (i + 1 < caption.size() && caption[i + 1] == '&') {
      plain += '&';
      ++i;
    }
  }
  return plain;
}

char UnderlinedLetter(std::string_view caption) {
  for (std::size_t i = 0; i + 1 < caption.size(); ++i) {
    if (caption[i] != '&') continue;
    if (caption[i + 1] != '&') return LCase(caption.substr(i + 1, 1))[0];
    ++i;
  }
  return 0;
}

}  // namespace quorvex
