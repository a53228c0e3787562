// Writing a whole file so that a crash or a power cut never leaves half of
// it: the contents go to a temporary file in the same folder, which is
// flushed to disk, renamed over the old one, and the folder flushed in turn.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace quorvex {

// Creates missing folders on the way. False, with the reason in `error`,
// when the file could not be written; the old file is then untouched and
// no temporary file is left behind.
bool ReplaceFileContents(const std::filesystem::path& path,
                         std::string_view contents, std::string* error);

// Appends `text` to the file (created, with missing folders, when
// absent) and flushes it to disk, and the folder too when the file is new.
// False, with the reason in `error`, when it could not be written whole.
bool AppendFileContents(const std::filesystem::path& path,
                        std::string_view text, std::string* error);

// Renames `from` over `to` (replacing it whole) and flushes the folder, as
// ReplaceFileContents does its temporary file. False, with the reason in
// `error`, when the rename failed: both files are then as they were.
bool MoveFileOver(const std::filesystem::path& from,
                  const std::filesystem::path& to, std::string* error);

// The temporary file ReplaceFileContents uses for `path`.
std::filesystem::path ReplacementPath(const std::filesystem::path& path);

}  // namespace quorvex
