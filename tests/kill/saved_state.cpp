#include "saved_state.h"

#include <exception>

#include "model/label.h"
#include "model/text_util.h"
#include "requests/pending_queue.h"
#include "sim/file_registry.h"
#include "sim/ini_profile_file.h"

namespace quorvex::kill {
namespace {

namespace fs = std::filesystem;

fs::path QueueFile(const fs::path& folder) { return folder / "Quorvex.INI"; }
fs::path RestartFile(const fs::path& folder) {
  return folder / "RestartSettings.INI";
}
fs::path SettingsFile(const fs::path& folder) {
  return folder / "registry.json";
}

// The step a profile file's "Quorvex" section holds, as the loaders read
// it: "TotalPending" lines "Pending 0"... must be those of one step.
std::int64_t StepOfProfile(const ProfileFile::Sections& sections,
                           std::string* problem) {
  const std::map<std::string, std::string>* keys = nullptr;
  for (const auto& [name, values] : sections)
    if (EqualsIgnoreCase(name, "Quorvex")) keys = &values;
  if (!keys) {
    *problem = "no Quorvex section";
    return -1;
  }
  auto value = [&](const std::string& key) -> std::optional<std::string> {
    for (const auto& [k, v] : *keys)
      if (EqualsIgnoreCase(k, key)) return v;
    return std::nullopt;
  };
  auto total = value("TotalPending");
  auto first = value("Pending 0");
  if (!total || !first) {
    *problem = "TotalPending or Pending 0 missing";
    return -1;
  }
  // "r<step>x<i>-<mail>": the step is in the first line.
  std::int64_t k = 0;
  try {
    k = std::stoll(first->substr(1));
  } catch (const std::exception&) {
    *problem = "bad first line " + *first;
    return -1;
  }
  const std::vector<std::string> want = QueueOfStep(k);
  if (*total != std::to_string(want.size())) {
    *problem =
        "TotalPending " + *total + " does not match step " + std::to_string(k);
    return -1;
  }
  for (std::size_t i = 0; i < want.size(); ++i) {
    auto line = value("Pending " + std::to_string(i));
    if (!line || *line != want[i]) {
      *problem = "line " + std::to_string(i) + " is not step " +
                 std::to_string(k) + "'s";
      return -1;
    }
  }
  return k;
}

std::optional<std::int64_t> ReadProfile(const fs::path& file,
                                        std::string* problem) {
  if (!fs::exists(file)) return std::nullopt;
  IniProfileFile profiles;
  std::string why;
  std::int64_t k = StepOfProfile(profiles.Dump(file.string()), &why);
  if (k < 0) *problem += file.filename().string() + ": " + why + "; ";
  return k;
}

}  // namespace

std::vector<std::string> QueueOfStep(std::int64_t k) {
  std::vector<std::string> lines;
  const std::int64_t n = k % 40 + 1;
  for (std::int64_t i = 0; i < n; ++i)
    lines.push_back("r" + std::to_string(k) + "x" + std::to_string(i) + "-" +
                    std::to_string(i % 9 + 1));
  return lines;
}

void SaveStep(const fs::path& folder, std::int64_t k) {
  IniProfileFile profiles;
  // The queue as the program saves it on exit.
  PendingQueue queue;
  for (std::string& line : QueueOfStep(k)) queue.Append(std::move(line));
  queue.Save(profiles, QueueFile(folder).string());
  // The restart state: the same keys in one rewrite, as a machine restart
  // writes them.
  std::vector<std::pair<std::string, std::string>> values;
  const auto lines = QueueOfStep(k);
  values.emplace_back("ChatName", "lobby " + std::to_string(k));
  values.emplace_back("TotalPending", std::to_string(lines.size()));
  for (std::size_t i = 0; i < lines.size(); ++i)
    values.emplace_back("Pending " + std::to_string(i), lines[i]);
  profiles.WriteStrings(RestartFile(folder).string(), "Quorvex", values);
  // The settings file: every save rewrites it whole.
  FileRegistry registry(SettingsFile(folder));
  registry.Save("Quorvex", "Settings", "TotalSent", std::to_string(k));
}

ReadBack ReadSteps(const fs::path& folder) {
  ReadBack back;
  back.queue = ReadProfile(QueueFile(folder), &back.problem);
  back.restart = ReadProfile(RestartFile(folder), &back.problem);
  if (fs::exists(SettingsFile(folder))) {
    try {
      FileRegistry registry(SettingsFile(folder));
      auto v = registry.Get("Quorvex", "Settings", "TotalSent");
      back.settings = v ? std::stoll(*v) : -1;
      if (!v) back.problem += "registry.json: TotalSent missing; ";
    } catch (const std::exception& e) {
      back.settings = -1;
      back.problem += std::string("registry.json: ") + e.what() + "; ";
    }
  }
  return back;
}

}  // namespace quorvex::kill
