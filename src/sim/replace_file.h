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

// The temporary file ReplaceFileContents uses for `path`.
std::filesystem::path ReplacementPath(const std::filesystem::path& path);

}  // namespace quorvex
