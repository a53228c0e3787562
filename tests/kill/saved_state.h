// The states the kill test saves, one per step number: the pending queue
// (Quorvex.INI), the restart state (RestartSettings.INI) and the settings
// file, each saved through the program's own save paths. A step's state
// can be told from any other's, so a reader can say which step it sees.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace quorvex::kill {

// The queue of step `k`: between 1 and 40 lines, each naming the step.
std::vector<std::string> QueueOfStep(std::int64_t k);

// Saves step `k` in `folder`: the queue, then the restart state, then the
// settings file.
void SaveStep(const std::filesystem::path& folder, std::int64_t k);

// What a start reads back from `folder`, per file: the step whose state
// the file holds, std::nullopt when the file is missing, or -1 when it
// holds no step's state whole (a torn or mixed file).
struct ReadBack {
  std::optional<std::int64_t> queue, restart, settings;
  std::string problem;  // why a file read as -1
};
ReadBack ReadSteps(const std::filesystem::path& folder);

}  // namespace quorvex::kill
