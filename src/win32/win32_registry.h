// The Registry port on the Windows registry, where the classic runtime's
// settings functions keep an application's settings:
// HKEY_CURRENT_USER\Software\VB and VBA Program Settings\<app>\<section>,
// each key a text value. A user's existing settings carry over.
#pragma once

#include <optional>
#include <string>

#include "ports/registry.h"

namespace quorvex::win32 {

class Win32Registry : public Registry {
 public:
  // `root` is the key under HKEY_CURRENT_USER that holds the
  // applications (tests pass a scratch key of their own).
  explicit Win32Registry(
      std::string root = "Software\\VB and VBA Program Settings");

  std::optional<std::string> Get(const std::string& app,
                                 const std::string& section,
                                 const std::string& key) const override;
  void Save(const std::string& app, const std::string& section,
            const std::string& key, const std::string& value) override;
  void DeleteKey(const std::string& app, const std::string& section,
                 const std::string& key) override;
  void DeleteApp(const std::string& app) override;
  Sections Dump(const std::string& app) const override;

  const std::string& root() const { return root_; }

 private:
  std::string root_;
};

}  // namespace quorvex::win32
