#include "sim/replace_file.h"

#include <chrono>
#include <fstream>
#include <system_error>
#include <thread>

namespace quorvex {

namespace {
constexpr int kRenameAttempts = 100;  // a second at most
}  // namespace

std::filesystem::path ReplacementPath(const std::filesystem::path& path) {
  std::filesystem::path tmp = path;
  tmp += ".tmp";
  return tmp;
}

bool ReplaceFileContents(const std::filesystem::path& path,
                         std::string_view contents, std::string* error) {
  namespace fs = std::filesystem;
  std::error_code ec;
  if (path.has_parent_path()) {
    fs::create_directories(path.parent_path(), ec);
    if (ec) {
      *error = "cannot create folder " + path.parent_path().string() + ": " +
               ec.message();
      return false;
    }
  }
  const fs::path tmp = ReplacementPath(path);
  {
    std::ofstream out(tmp, std::ios::binary | std::ios::trunc);
    if (!out) {
      *error = "cannot create " + tmp.string();
      return false;
    }
    out.write(contents.data(), static_cast<std::streamsize>(contents.size()));
    out.close();
    if (out.fail()) {
      fs::remove(tmp, ec);
      *error = "cannot write " + tmp.string();
      return false;
    }
  }
  // On Windows a reader holding the file open makes the rename fail for a
  // moment: try again briefly before giving up.
  for (int attempt = 0; attempt < kRenameAttempts; ++attempt) {
    fs::rename(tmp, path, ec);
    if (!ec) break;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  if (ec) {
    *error = "cannot replace " + path.string() + ": " + ec.message();
    std::error_code ignored;
    fs::remove(tmp, ignored);
    return false;
  }
  return true;
}

}  // namespace quorvex
