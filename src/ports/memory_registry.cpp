#include "ports/memory_registry.h"

#include "model/text_util.h"
#include "ports/profile_text.h"

namespace quorvex {

namespace {
// Finds a map entry whose name equals `name` ignoring case.
template <typename Map>
auto FindFolded(Map& m, const std::string& name) {
  auto it = m.find(name);
  if (it != m.end()) return it;
  for (it = m.begin(); it != m.end(); ++it)
    if (EqualsIgnoreCase(it->first, name)) return it;
  return m.end();
}
}  // namespace

std::string ProfileQuote(const std::string& value) {
  if (value.empty()) return value;
  auto blank = [](char c) { return c == ' ' || c == '\t'; };
  bool edges = blank(value.front()) || blank(value.back());
  bool quoted = value.size() >= 2 &&
                (value.front() == '"' || value.front() == '\'') &&
                value.back() == value.front();
  if (edges || quoted) return "\"" + value + "\"";
  return value;
}

bool MemoryRegistry::FoldedLess::operator()(const std::string& a,
                                            const std::string& b) const {
  return LCase(a) < LCase(b);
}

std::optional<std::string> MemoryRegistry::Get(const std::string& app,
                                               const std::string& section,
                                               const std::string& key) const {
  auto a = store_.find(app);
  if (a == store_.end()) return std::nullopt;
  auto s = a->second.find(section);
  if (s == a->second.end()) return std::nullopt;
  auto k = s->second.find(key);
  if (k == s->second.end()) return std::nullopt;
  return k->second;
}

void MemoryRegistry::Save(const std::string& app, const std::string& section,
                          const std::string& key, const std::string& value) {
  auto a = store_.find(app);
  if (a == store_.end())
    a = store_.emplace(app, Folded<Folded<std::string>>{}).first;
  auto s = a->second.find(section);
  if (s == a->second.end())
    s = a->second.emplace(section, Folded<std::string>{}).first;
  auto k = s->second.find(key);
  if (k == s->second.end()) {
    s->second.emplace(key, value);
  } else {
    k->second = value;
  }
}

void MemoryRegistry::DeleteKey(const std::string& app,
                               const std::string& section,
                               const std::string& key) {
  auto a = store_.find(app);
  if (a == store_.end()) return;
  auto s = a->second.find(section);
  if (s == a->second.end()) return;
  auto k = s->second.find(key);
  if (k != s->second.end()) s->second.erase(k);
}

void MemoryRegistry::DeleteApp(const std::string& app) {
  auto a = store_.find(app);
  if (a != store_.end()) store_.erase(a);
}

Registry::Sections MemoryRegistry::Dump(const std::string& app) const {
  Sections out;
  auto a = store_.find(app);
  if (a == store_.end()) return out;
  for (const auto& [section, keys] : a->second)
    out[section].insert(keys.begin(), keys.end());
  return out;
}

std::string MemoryProfileFile::GetString(
    const std::string& file, const std::string& section, const std::string& key,
    const std::string& default_value) const {
  auto f = files_.find(file);
  if (f == files_.end()) return default_value;
  auto s = FindFolded(f->second, section);
  if (s == f->second.end()) return default_value;
  auto k = FindFolded(s->second, key);
  if (k == s->second.end()) return default_value;
  return ProfileUnquote(k->second);
}

void MemoryProfileFile::WriteString(const std::string& file,
                                    const std::string& section,
                                    const std::string& key,
                                    const std::optional<std::string>& value) {
  auto& sections = files_[file];
  auto s = FindFolded(sections, section);
  if (s == sections.end()) {
    if (!value) return;
    s = sections.emplace(section, std::map<std::string, std::string>{}).first;
  }
  auto k = FindFolded(s->second, key);
  if (!value) {
    if (k != s->second.end()) s->second.erase(k);
    return;
  }
  if (k == s->second.end()) {
    s->second.emplace(key, *value);
  } else {
    k->second = *value;
  }
}

ProfileFile::Sections MemoryProfileFile::Dump(const std::string& file) const {
  auto f = files_.find(file);
  if (f == files_.end()) return {};
  Sections out;
  for (const auto& [s, keys] : f->second)
    for (const auto& [k, v] : keys) out[s][k] = ProfileUnquote(v);
  return out;
}

}  // namespace quorvex
