// One section of a profile file as the program reads it back at start
// (the queue from Quorvex.INI, the state from RestartSettings.INI): every
// key read in one pass over the file, each value cut to what the
// program's profile-string buffer holds, and numbered lists restored from
// a stored count that a damaged file may get wrong.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "ports/profile_file.h"

namespace quorvex {

// A value is read into a buffer of this many characters and its ending
// zero, and cut there, as a profile read into a buffer too short cuts it.
// Nothing the program writes comes near it (screen names, mail numbers,
// finds, a room's name, a path); a damaged file's 100 KB value does.
inline constexpr std::size_t kProfileValueChars = 1023;

// `value` cut after kProfileValueChars characters, counted as a window
// counts them (model/utf8.h: a sequence is kept whole, a stray byte is one).
std::string CutProfileValue(std::string value);

class ProfileSection {
 public:
  // The section named `name` (case ignored) of `sections`; empty when
  // there is none.
  ProfileSection(const ProfileFile::Sections& sections, std::string_view name);

  // The key's value, cut; empty when the key is missing.
  std::string Get(std::string_view key) const;

  // The most lines a numbered list restores: far beyond any real queue,
  // and a damaged file cannot make a start run out of memory.
  static constexpr std::int64_t kMaxLines = 1000000;

  // The lines prefix + "0", prefix + "1"... of a list whose stored count
  // is `total` ("For i = 0 To total - 1", the bound rounded as the old
  // runtime rounds it; a count that is no number gives nothing). A key
  // missing between two present ones is an empty line, as it always was;
  // but the list ends after the last key present, so that a count larger
  // than the keys stored adds no empty lines behind the real ones, and at
  // kMaxLines lines.
  std::vector<std::string> Numbered(std::string_view prefix,
                                    std::string_view total) const;

 private:
  std::unordered_map<std::string, std::string> values_;  // by folded key
};

}  // namespace quorvex
