// UTF-8 as the program's windows see a text: each well-formed sequence is
// one character, and so is each byte that starts none (a window shows it
// as one replacement character). Counting, cutting and decoding a text
// all go by this one rule, so that a count taken of a text read from a
// window selects the same characters in it.
#pragma once

#include <cstddef>
#include <string_view>

namespace quorvex {

// What NextUtf8 returns for a byte that starts no well-formed sequence.
inline constexpr char32_t kMalformedUtf8 = 0xFFFFFFFF;

// Decodes the character at `*i` and moves past it; a malformed byte is
// kMalformedUtf8, and only that byte is passed.
char32_t NextUtf8(std::string_view s, std::size_t* i);

// The characters of a text.
std::size_t Utf8Characters(std::string_view s);

// The byte where character `chars` starts; the text's size when past it.
std::size_t Utf8Offset(std::string_view s, std::size_t chars);

}  // namespace quorvex
