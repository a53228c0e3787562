// A folder of its own under the system's temporary folder, made at once
// and removed with everything in it at the end of the test, with the
// writes and reads that the tests of real files share.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

namespace quorvex {

class TempFolder {
 public:
  explicit TempFolder(const std::string& prefix)
      : path_(std::filesystem::temp_directory_path() /
              (prefix + std::to_string(std::random_device{}()) + "_" +
               std::to_string(std::random_device{}()))) {
    std::filesystem::create_directories(path_);
  }
  ~TempFolder() {
    std::error_code ec;
    std::filesystem::remove_all(path_, ec);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  operator const std::filesystem::path&() const { return path_; }
  std::filesystem::path operator/(const std::filesystem::path& p) const {
    return path_ / p;
  }

  // Writes `text` as it stands into `file`, making the folders it needs.
  static void Write(const std::filesystem::path& file,
                    const std::string& text) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << text;
  }
  static std::string Read(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
  }

 private:
  std::filesystem::path path_;
};

}  // namespace quorvex
