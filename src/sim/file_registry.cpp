#include "sim/file_registry.h"

#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <stdexcept>

#include "model/text_util.h"
#include "sim/replace_file.h"

namespace quorvex {

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

[[noreturn]] void Fail(const fs::path& path, const std::string& what) {
  throw std::runtime_error("registry file " + path.string() + ": " + what);
}

// Checks that `object` is a JSON object whose names are distinct ignoring
// case; `where` names it in messages.
void CheckObject(const fs::path& path, const Json& object,
                 const std::string& where) {
  if (!object.is_object()) Fail(path, where + " is not an object");
  std::set<std::string> folded;
  for (const auto& [name, _] : object.items()) {
    if (!folded.insert(LCase(name)).second)
      Fail(path, where + " has two names that differ only in case (\"" + name +
                     "\")");
  }
}

std::string Quoted(const std::string& name) { return "\"" + name + "\""; }

}  // namespace

fs::path FileRegistry::DefaultPath() {
  const char* xdg = std::getenv("XDG_CONFIG_HOME");
  if (xdg && *xdg && fs::path(xdg).is_absolute())
    return fs::path(xdg) / "quorvex" / "registry.json";
  const char* home = std::getenv("HOME");
  if (home && *home)
    return fs::path(home) / ".config" / "quorvex" / "registry.json";
  throw std::runtime_error(
      "no folder for the registry file: neither XDG_CONFIG_HOME nor HOME is "
      "set");
}

FileRegistry::FileRegistry(fs::path path) : path_(std::move(path)) { Load(); }

void FileRegistry::Load() {
  std::error_code ec;
  if (!fs::exists(path_, ec)) return;
  std::ifstream in(path_, std::ios::binary);
  if (!in) Fail(path_, "cannot be opened");
  std::ostringstream text;
  text << in.rdbuf();
  if (in.bad()) Fail(path_, "cannot be read");

  Json root;
  try {
    root = Json::parse(text.str());
  } catch (const Json::parse_error& e) {
    Fail(path_, e.what());
  }
  CheckObject(path_, root, "the top level");
  MemoryRegistry::Store store;
  for (const auto& [app, sections] : root.items()) {
    CheckObject(path_, sections, Quoted(app));
    auto& app_store = store[app];
    for (const auto& [section, keys] : sections.items()) {
      const std::string where = Quoted(app) + "/" + Quoted(section);
      CheckObject(path_, keys, where);
      auto& section_store = app_store[section];
      for (const auto& [key, value] : keys.items()) {
        if (!value.is_string())
          Fail(path_, where + "/" + Quoted(key) + " is not text");
        section_store[key] = value.get<std::string>();
      }
    }
  }
  memory_.Replace(std::move(store));
}

void FileRegistry::Persist() const {
  Json root = Json::object();
  for (const auto& [app, sections] : memory_.store()) {
    Json& a = root[app] = Json::object();
    for (const auto& [section, keys] : sections) {
      Json& s = a[section] = Json::object();
      for (const auto& [key, value] : keys) s[key] = value;
    }
  }
  std::string text =
      root.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
  std::string error;
  if (!ReplaceFileContents(path_, text, &error)) Fail(path_, error);
}

std::optional<std::string> FileRegistry::Get(const std::string& app,
                                             const std::string& section,
                                             const std::string& key) const {
  return memory_.Get(app, section, key);
}

void FileRegistry::Save(const std::string& app, const std::string& section,
                        const std::string& key, const std::string& value) {
  if (memory_.Get(app, section, key) == value) return;
  memory_.Save(app, section, key, value);
  Persist();
}

void FileRegistry::DeleteKey(const std::string& app, const std::string& section,
                             const std::string& key) {
  if (!memory_.Get(app, section, key)) return;
  memory_.DeleteKey(app, section, key);
  Persist();
}

void FileRegistry::DeleteApp(const std::string& app) {
  bool present = false;
  for (const auto& [name, _] : memory_.store())
    present = present || EqualsIgnoreCase(name, app);
  if (!present) return;
  memory_.DeleteApp(app);
  Persist();
}

void FileRegistry::Write(const std::string& app,
                         const std::vector<RegistryChange>& changes) {
  bool changed = false;
  for (const RegistryChange& c : changes) {
    const std::optional<std::string> now = memory_.Get(app, c.section, c.key);
    if (now == c.value) continue;
    changed = true;
    if (c.value) {
      memory_.Save(app, c.section, c.key, *c.value);
    } else {
      memory_.DeleteKey(app, c.section, c.key);
    }
  }
  if (changed) Persist();
}

Registry::Sections FileRegistry::Dump(const std::string& app) const {
  return memory_.Dump(app);
}

}  // namespace quorvex
