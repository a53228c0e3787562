// Text helpers with the semantics of the program's original runtime: case
// folding, blank-only trimming, leading-number reading, number texts
// as the runtime writes them, and the "Like" pattern match.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quorvex {

std::string LCase(std::string_view s);  // ASCII and Latin-1 letters
std::string UCase(std::string_view s);
bool EqualsIgnoreCase(std::string_view a, std::string_view b);
bool StartsWith(std::string_view s, std::string_view prefix);
// Case-insensitive containment (an empty needle is contained).
bool ContainsIgnoreCase(std::string_view haystack, std::string_view needle);

// Trim: removes leading and trailing blanks (spaces only, not tabs).
// Len: the characters of a UTF-8 text (its code points), as a text box
// counts them.
std::size_t Len(std::string_view s);
std::string Trim(std::string_view s);
std::string RemoveSpaces(std::string_view s);

// Val: the leading number of a text (blanks before it skipped, an optional
// sign, digits, a fraction, an exponent); 0 when there is none.
double Val(std::string_view s);
// True when the whole text, blanks around it allowed, is a number
// (the runtime's IsNumeric for plain decimal texts).
bool IsNumeric(std::string_view s);

// The runtime's text of a number: "7", "2.5", "-3", "1E+15".
std::string NumberText(double v);
// The same for a single-precision value: "0.1345", not "0.134500004".
std::string SingleText(float v);

// Rounds halves to even, as the runtime's conversions to whole numbers do.
double RoundHalfEven(double v);

// ReplaceText: case-insensitive replace of every occurrence, scanning left
// to right; the search continues after the inserted replacement.
std::string ReplaceText(std::string_view text, std::string_view find,
                        std::string_view replacement);
// Exact (case-sensitive) replace of every occurrence, left to right.
std::string ReplaceAll(std::string_view text, std::string_view find,
                       std::string_view replacement);

// A caption as a person reads it: "&&" is one ampersand, and a single "&"
// (the mark of the underlined letter) is dropped ("serve && chat" ->
// "serve & chat", "&start" -> "start").
std::string PlainCaption(std::string_view caption);
// The letter a caption underlines (after a single "&"), lower-cased; 0
// when it has none.
char UnderlinedLetter(std::string_view caption);

// The "Like" operator (binary compare): ? one character, * any run,
// # one digit, [list] / [!list] with ranges. Runs in O(text x pattern).
bool Like(std::string_view text, std::string_view pattern);

}  // namespace quorvex
