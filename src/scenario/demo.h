// quorvex-sim --demo: a built-in lively room served for a few virtual
// minutes, and a summary of what the server did, read from the run's
// final state.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace quorvex::scenario {

// The demo as a scenario text, for the scenario parser.
extern const char* const kDemoScenario;
// The name the demo's messages give as its file.
inline constexpr const char* kDemoName = "demo.scn";

// Mails forwarded, lists and finds sent, replies mailed, people warned and
// banned, and what is left pending; one line each, for a person to read.
std::string DemoSummary(const nlohmann::ordered_json& final_state,
                        const std::string& user);

}  // namespace quorvex::scenario
