#include "sim/faulty_ports.h"

#include "model/text_util.h"

namespace quorvex {

bool FaultDice::Roll(double chance, const std::string& kind,
                     const std::string& what) {
  if (chance <= 0) return false;
  if (std::uniform_real_distribution<double>(0, 1)(rng_) >= chance)
    return false;
  ++injected_;
  if (report_) report_(kind, what);
  return true;
}

bool FaultDice::SaveFails(const std::string& what) {
  if (full_left_ > 0) {
    --full_left_;
    ++injected_;
    if (report_) report_("disk-full", what);
    return true;
  }
  if (Roll(chances_.disk_full, "disk-full", what)) {
    full_left_ = kFullWrites - 1;
    return true;
  }
  return Roll(chances_.profile_write, "profile-write", what);
}

void FaultyRegistry::Save(const std::string& app, const std::string& section,
                          const std::string& key, const std::string& value) {
  if (dice_.Roll(dice_.chances().registry_write, "registry-write",
                 section + "\\" + key))
    return;
  inner_.Save(app, section, key, value);
}

void FaultyRegistry::DeleteKey(const std::string& app,
                               const std::string& section,
                               const std::string& key) {
  if (dice_.Roll(dice_.chances().registry_write, "registry-write",
                 "delete " + section + "\\" + key))
    return;
  inner_.DeleteKey(app, section, key);
}

void FaultyRegistry::DeleteApp(const std::string& app) {
  if (dice_.Roll(dice_.chances().registry_write, "registry-write",
                 "delete " + app))
    return;
  inner_.DeleteApp(app);
}

void FaultyRegistry::Write(const std::string& app,
                           const std::vector<RegistryChange>& changes) {
  if (changes.empty()) return;
  if (dice_.Roll(dice_.chances().registry_write, "registry-write",
                 changes.front().section + "\\" + changes.front().key +
                     " and " + std::to_string(changes.size() - 1) + " more"))
    return;
  inner_.Write(app, changes);
}

void FaultyProfileFile::WriteString(const std::string& file,
                                    const std::string& section,
                                    const std::string& key,
                                    const std::optional<std::string>& value) {
  if (dice_.SaveFails(file)) return;
  inner_.WriteString(file, section, key, value);
}

void FaultyProfileFile::WriteStrings(
    const std::string& file, const std::string& section,
    const std::vector<std::pair<std::string, std::string>>& values) {
  if (values.empty()) return;
  if (dice_.SaveFails(file)) return;
  inner_.WriteStrings(file, section, values);
}

bool FaultyMachine::FileExists(std::string_view windows_path) const {
  const std::string lower = LCase(windows_path);
  if (lower.size() > 4 && lower.compare(lower.size() - 4, 4, ".ini") == 0 &&
      inner_.FileExists(windows_path) &&
      dice_.Roll(dice_.chances().vanish, "vanish", std::string(windows_path)))
    inner_.RemoveFile(windows_path);
  return inner_.FileExists(windows_path);
}

}  // namespace quorvex
