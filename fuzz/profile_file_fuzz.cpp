// Any file through the profile-file reader and writer. A key written into
// it (a plain section and key name, any one-line value, quoted as the
// program quotes the values it saves) reads back exactly, and every other
// key of the file reads as it did before.
#include <fuzzer/FuzzedDataProvider.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "model/text_util.h"
#include "sim/ini_profile_file.h"

namespace {

void Fail(const std::string& what) {
  std::fprintf(stderr, "profile file: %s\n", what.c_str());
  std::abort();
}

// Letters, digits and inner blanks: a name any profile file can hold.
std::string Name(FuzzedDataProvider& in) {
  std::string raw = in.ConsumeRandomLengthString(10), name;
  for (char c : raw)
    if (std::isalnum(static_cast<unsigned char>(c)) ||
        (c == ' ' && !name.empty()))
      name += c;
  while (!name.empty() && name.back() == ' ') name.pop_back();
  return name.empty() ? "k" : name;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) {
  using namespace quorvex;
  // Every save is flushed to disk: a memory file system keeps that cheap.
  static const std::string file =
      ((std::filesystem::is_directory("/dev/shm")
            ? std::filesystem::path("/dev/shm")
            : std::filesystem::temp_directory_path()) /
       ("qv-profile-fuzz-" + std::to_string(::getpid()) + ".ini"))
          .string();
  static const bool cleanup = [] {
    std::atexit([] { std::remove(file.c_str()); });
    return true;
  }();
  (void)cleanup;
  FuzzedDataProvider in(data, size);
  const std::string section = Name(in), key = Name(in);
  std::string value;
  for (char c : in.ConsumeRandomLengthString(40))
    if (c != '\r' && c != '\n' && c != '\0') value += c;
  {
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    const std::string contents = in.ConsumeRemainingBytesAsString();
    out.write(contents.data(), static_cast<std::streamsize>(contents.size()));
  }
  IniProfileFile profiles;
  ProfileFile::Sections before = profiles.Dump(file);
  profiles.WriteString(file, section, key, ProfileQuote(value));
  if (!profiles.last_error().empty())
    Fail("write failed: " + profiles.last_error());
  const std::string got = profiles.GetString(file, section, key, "\x01");
  if (got != value) Fail("wrote [" + value + "], read [" + got + "]");
  // Everything else as it was.
  ProfileFile::Sections after = profiles.Dump(file);
  for (const auto& [s, keys] : before) {
    for (const auto& [k, v] : keys) {
      if (EqualsIgnoreCase(s, section) && EqualsIgnoreCase(k, key)) continue;
      const std::string again = profiles.GetString(file, s, k, "\x01");
      if (again != v)
        Fail("[" + s + "] " + k + " was [" + v + "], now [" + again + "]");
    }
  }
  return 0;
}
