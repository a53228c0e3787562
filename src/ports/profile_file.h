// The ProfileFile port: profile strings in INI files with the Windows
// semantics (GetPrivateProfileStringA / WritePrivateProfileStringA):
// sections and keys match ignoring case, surrounding blanks and one pair of
// surrounding quotes are stripped from a value read, other lines are kept.
// `file` is a path on the host (Machine::HostPath of a Windows path).
#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quorvex {

class ProfileFile {
 public:
  using Sections = std::map<std::string, std::map<std::string, std::string>>;

  virtual ~ProfileFile() = default;
  virtual std::string GetString(const std::string& file,
                                const std::string& section,
                                const std::string& key,
                                const std::string& default_value) const = 0;
  // Writes key = value; std::nullopt deletes the key. Creates the file and
  // the section when missing.
  virtual void WriteString(const std::string& file, const std::string& section,
                           const std::string& key,
                           const std::optional<std::string>& value) = 0;
  // Writes several keys of one section as WriteString would one after the
  // other, but in one rewrite of the file (a long queue is saved at once).
  virtual void WriteStrings(
      const std::string& file, const std::string& section,
      const std::vector<std::pair<std::string, std::string>>& values) {
    for (const auto& [key, value] : values)
      WriteString(file, section, key, value);
  }
  // Every section and key of a file as read back (empty when missing).
  virtual Sections Dump(const std::string& file) const = 0;
};

// Quotes a value so that a profile read gives it back exactly: values
// with blanks at either end, or that begin and end with a quote, are
// wrapped in one more pair of double quotes.
std::string ProfileQuote(const std::string& value);

}  // namespace quorvex
