// The registry kept in one JSON file: {"app": {"section": {"key": "value"}}}.
//
// Names match ignoring case and keep the case they were first written with
// (the in-memory registry's rules; this class only persists its store).
// Every change rewrites the file through a temporary file renamed over the
// old one, so a crash never leaves half a file. Values are stored as UTF-8;
// bytes that are not valid UTF-8 are written as U+FFFD.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "ports/memory_registry.h"
#include "ports/registry.h"

namespace quorvex {

class FileRegistry : public Registry {
 public:
  // Loads `path`; a missing file is an empty registry. Throws
  // std::runtime_error naming the file and what is wrong when the file
  // cannot be read or is not a registry (bad JSON, a value that is not
  // text, two names differing only in case): better to stop than to start
  // with the settings silently gone.
  explicit FileRegistry(std::filesystem::path path = DefaultPath());

  // $XDG_CONFIG_HOME/quorvex/registry.json, or ~/.config/quorvex/... when
  // XDG_CONFIG_HOME is unset or not absolute. Throws std::runtime_error
  // when neither it nor HOME is usable.
  static std::filesystem::path DefaultPath();

  std::optional<std::string> Get(const std::string& app,
                                 const std::string& section,
                                 const std::string& key) const override;
  // The writes throw std::runtime_error (with the path and the reason)
  // when the file cannot be written; the old file then stays as it was.
  void Save(const std::string& app, const std::string& section,
            const std::string& key, const std::string& value) override;
  void DeleteKey(const std::string& app, const std::string& section,
                 const std::string& key) override;
  void DeleteApp(const std::string& app) override;
  Sections Dump(const std::string& app) const override;
  // One rewrite of the file for every change.
  void Write(const std::string& app,
             const std::vector<RegistryChange>& changes) override;

  const std::filesystem::path& path() const { return path_; }

 private:
  void Load();
  void Persist() const;

  std::filesystem::path path_;
  MemoryRegistry memory_;
};

}  // namespace quorvex
