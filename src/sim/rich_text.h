// Line arithmetic of the client's rich-text controls, for EM_LINEINDEX,
// EM_LINELENGTH and EM_GETLINE. A line ends at CR LF, CR or LF; a text
// always has at least one line (an empty one when the text is empty).
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quorvex {

struct TextLine {
  std::size_t start = 0;  // character index of its first character
  std::string_view text;  // without the line break
};

std::vector<TextLine> SplitTextLines(std::string_view text);

// A chat line as the client's display shows it: its mark-up tags ("<B>",
// "</U>", "<font color=#003377 face=\"tahoma\">") rendered away, every
// other character kept as typed (entities, decorations, a "<" that opens
// no tag, a tag left open at the end).
std::string RenderedChat(std::string_view typed);

// EM_LINEINDEX: the first character of line `line` (-1: the caret's line,
// which is the last), or -1 when there is no such line.
long RichLineIndex(std::string_view text, long line);
// EM_LINELENGTH: the length of the line holding character `index`; -1
// asks about the selection, which is empty.
long RichLineLength(std::string_view text, long index);
// EM_GETLINE: line `line` cut to `max_chars`; empty when there is none.
std::string RichGetLine(std::string_view text, long line,
                        std::size_t max_chars);

}  // namespace quorvex
