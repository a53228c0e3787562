// Profile files on disk with the Windows profile-string semantics:
//  - sections and keys match ignoring case and keep the case they were
//    first written with; the first of two sections (or keys) with the same
//    name is the one read and written;
//  - a value read loses its surrounding blanks and one pair of matching
//    surrounding quotes;
//  - comments (";") and any other lines are kept as they stand on rewrite;
//  - a key written again stays in its place, a new key goes after the last
//    line of its section, a new section at the end of the file;
//  - a missing file reads as the defaults; deleting from it creates nothing.
// Lines may end in CRLF or LF; rewritten files use CRLF throughout.
//
// A value (or name) holding CR or LF could not be read back from one line:
// those characters are written as blanks. Every change is written to a
// temporary file beside the target and renamed over it, so a crash never
// leaves half a file; missing folders on the way are created.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ports/profile_file.h"

namespace quorvex {

// One key of a write of many: section, key and value.
struct ProfileEntry {
  std::string section;
  std::string key;
  std::string value;
};

class IniProfileFile : public ProfileFile {
 public:
  std::string GetString(const std::string& file, const std::string& section,
                        const std::string& key,
                        const std::string& default_value) const override;
  // Like WritePrivateProfileStringA, a failed write leaves the old file
  // as it was and reports nothing to the caller; last_error() says why.
  void WriteStrings(
      const std::string& file, const std::string& section,
      const std::vector<std::pair<std::string, std::string>>& values) override;
  void WriteString(const std::string& file, const std::string& section,
                   const std::string& key,
                   const std::optional<std::string>& value) override;
  Sections Dump(const std::string& file) const override;

  // Writes every entry as WriteString would one after the other, in one
  // rewrite of the file, in time linear in the file and the entries.
  void WriteEntries(const std::string& file,
                    const std::vector<ProfileEntry>& entries);

  // Why the last WriteString failed ("" after one that succeeded).
  const std::string& last_error() const { return last_error_; }

 private:
  std::string last_error_;
};

}  // namespace quorvex
