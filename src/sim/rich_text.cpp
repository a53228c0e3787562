#include "sim/rich_text.h"

namespace quorvex {

std::vector<TextLine> SplitTextLines(std::string_view text) {
  std::vector<TextLine> lines;
  std::size_t start = 0;
  std::size_t i = 0;
  while (i < text.size()) {
    char c = text[i];
    if (c == '\r' || c == '\n') {
      lines.push_back({start, text.substr(start, i - start)});
      i += (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ? 2 : 1;
      start = i;
    } else {
      ++i;
    }
  }
  lines.push_back({start, text.substr(start)});
  return lines;
}

long RichLineIndex(std::string_view text, long line) {
  auto lines = SplitTextLines(text);
  if (line < 0) return static_cast<long>(lines.back().start);
  if (static_cast<std::size_t>(line) >= lines.size()) return -1;
  return static_cast<long>(lines[line].start);
}

long RichLineLength(std::string_view text, long index) {
  if (index < 0) return 0;
  auto lines = SplitTextLines(text);
  for (std::size_t i = lines.size(); i-- > 0;) {
    if (static_cast<std::size_t>(index) >= lines[i].start)
      return static_cast<long>(lines[i].text.size());
  }
  return 0;
}

std::string RichGetLine(std::string_view text, long line,
                        std::size_t max_chars) {
  auto lines = SplitTextLines(text);
  if (line < 0 || static_cast<std::size_t>(line) >= lines.size()) return "";
  return std::string(lines[line].text.substr(0, max_chars));
}

std::string RenderedChat(std::string_view typed) {
  auto letter = [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
  };
  std::string shown;
  std::size_t i = 0;
  while (i < typed.size()) {
    const std::size_t name =
        i + 1 < typed.size() && typed[i + 1] == '/' ? i + 2 : i + 1;
    const std::size_t end =
        typed[i] == '<' && name < typed.size() && letter(typed[name])
            ? typed.find('>', name)
            : std::string_view::npos;
    if (end == std::string_view::npos) {
      shown += typed[i++];
    } else {
      i = end + 1;
    }
  }
  return shown;
}

}  // namespace quorvex
