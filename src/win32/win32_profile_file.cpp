#include "win32/win32_profile_file.h"

#include <windows.h>

#include <vector>

#include "win32/code_page.h"

namespace quorvex::win32 {

namespace {

// GetPrivateProfileStringA into a buffer that grows until the text fits
// (the function cuts silently, leaving size - 1 or size - 2 characters).
std::string ReadProfile(const char* section, const char* key,
                        const std::string& default_bytes,
                        const std::string& file_bytes) {
  for (DWORD size = 1024;; size *= 4) {
    std::vector<char> buf(size, '\0');
    const DWORD n =
        ::GetPrivateProfileStringA(section, key, default_bytes.c_str(),
                                   buf.data(), size, file_bytes.c_str());
    if (n + 2 < size || size >= (1u << 24)) return std::string(buf.data(), n);
  }
}

// A double-zero-ended list of names, as the functions return them with a
// null section or key.
std::vector<std::string> Names(const std::string& list) {
  std::vector<std::string> out;
  std::size_t pos = 0;
  while (pos < list.size()) {
    std::size_t end = list.find('\0', pos);
    if (end == std::string::npos) end = list.size();
    if (end > pos) out.push_back(list.substr(pos, end - pos));
    pos = end + 1;
  }
  return out;
}

}  // namespace

std::string Win32ProfileFile::GetString(
    const std::string& file, const std::string& section, const std::string& key,
    const std::string& default_value) const {
  return Cp1252ToUtf8(
      ReadProfile(Utf8ToCp1252(section).c_str(), Utf8ToCp1252(key).c_str(),
                  Utf8ToCp1252(default_value), Utf8ToCp1252(file)));
}

void Win32ProfileFile::WriteString(const std::string& file,
                                   const std::string& section,
                                   const std::string& key,
                                   const std::optional<std::string>& value) {
  const std::string v = value ? Utf8ToCp1252(*value) : std::string();
  ::WritePrivateProfileStringA(
      Utf8ToCp1252(section).c_str(), Utf8ToCp1252(key).c_str(),
      value ? v.c_str() : nullptr, Utf8ToCp1252(file).c_str());
}

ProfileFile::Sections Win32ProfileFile::Dump(const std::string& file) const {
  Sections out;
  const std::string path = Utf8ToCp1252(file);
  for (const std::string& section :
       Names(ReadProfile(nullptr, nullptr, "", path))) {
    auto& keys = out[Cp1252ToUtf8(section)];
    for (const std::string& key :
         Names(ReadProfile(section.c_str(), nullptr, "", path)))
      keys[Cp1252ToUtf8(key)] =
          Cp1252ToUtf8(ReadProfile(section.c_str(), key.c_str(), "", path));
  }
  return out;
}

}  // namespace quorvex::win32
