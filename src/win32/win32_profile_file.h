// The ProfileFile port on the platform's own profile functions,
// GetPrivateProfileStringA and WritePrivateProfileStringA: on later
// Windows versions Win.INI is mapped by the system, so these functions are
// the only correct reading of it. Texts go through Windows-1252.
#pragma once

#include <optional>
#include <string>

#include "ports/profile_file.h"

namespace quorvex::win32 {

class Win32ProfileFile : public ProfileFile {
 public:
  std::string GetString(const std::string& file, const std::string& section,
                        const std::string& key,
                        const std::string& default_value) const override;
  void WriteString(const std::string& file, const std::string& section,
                   const std::string& key,
                   const std::optional<std::string>& value) override;
  Sections Dump(const std::string& file) const override;
};

}  // namespace quorvex::win32
