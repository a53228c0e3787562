// Registry and profile files held in memory, for tests.
#pragma once

#include <map>
#include <string>

#include "ports/profile_file.h"
#include "ports/registry.h"

namespace quorvex {

class MemoryRegistry : public Registry {
 public:
  std::optional<std::string> Get(const std::string& app,
                                 const std::string& section,
                                 const std::string& key) const override;
  void Save(const std::string& app, const std::string& section,
            const std::string& key, const std::string& value) override;
  void DeleteKey(const std::string& app, const std::string& section,
                 const std::string& key) override;
  void DeleteApp(const std::string& app) override;
  Sections Dump(const std::string& app) const override;

  // Names in the order of their folded forms, so that one look-up finds a
  // name whatever its case.
  struct FoldedLess {
    bool operator()(const std::string& a, const std::string& b) const;
  };
  template <typename T>
  using Folded = std::map<std::string, T, FoldedLess>;
  // The whole store: app -> section -> key -> value, names as first written.
  using Store = Folded<Folded<Folded<std::string>>>;
  const Store& store() const { return store_; }
  void Replace(Store store) { store_ = std::move(store); }

 private:
  Store store_;
};

class MemoryProfileFile : public ProfileFile {
 public:
  std::string GetString(const std::string& file, const std::string& section,
                        const std::string& key,
                        const std::string& default_value) const override;
  void WriteString(const std::string& file, const std::string& section,
                   const std::string& key,
                   const std::optional<std::string>& value) override;
  Sections Dump(const std::string& file) const override;
  bool Exists(const std::string& file) const { return files_.count(file) > 0; }
  void Remove(const std::string& file) { files_.erase(file); }

 private:
  std::map<std::string, Sections> files_;
};

}  // namespace quorvex
