// The Registry port: application / section / key text values, as the
// runtime's GetSetting / SaveSetting / DeleteSetting see them. Names match
// ignoring case and keep the case they were first written with.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace quorvex {

// One change of a batch (Registry::Write): a value saved, or, without a
// value, a key deleted.
struct RegistryChange {
  std::string section;
  std::string key;
  std::optional<std::string> value;
};

class Registry {
 public:
  // section -> key -> value
  using Sections = std::map<std::string, std::map<std::string, std::string>>;

  virtual ~Registry() = default;
  virtual std::optional<std::string> Get(const std::string& app,
                                         const std::string& section,
                                         const std::string& key) const = 0;
  virtual void Save(const std::string& app, const std::string& section,
                    const std::string& key, const std::string& value) = 0;
  virtual void DeleteKey(const std::string& app, const std::string& section,
                         const std::string& key) = 0;
  // Removes the application's whole key, every section in it.
  virtual void DeleteApp(const std::string& app) = 0;
  virtual Sections Dump(const std::string& app) const = 0;

  // Makes the changes in order, as Save and DeleteKey would one by one;
  // a store kept in one file writes it once for them all.
  virtual void Write(const std::string& app,
                     const std::vector<RegistryChange>& changes) {
    for (const RegistryChange& c : changes) {
      if (c.value) {
        Save(app, c.section, c.key, *c.value);
      } else {
        DeleteKey(app, c.section, c.key);
      }
    }
  }

  // GetSetting(app, section, key, default).
  std::string GetSetting(const std::string& app, const std::string& section,
                         const std::string& key,
                         const std::string& default_value) const {
    auto v = Get(app, section, key);
    return v ? *v : default_value;
  }
};

}  // namespace quorvex
