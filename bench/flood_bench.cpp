// An hour of quorvex-sim with ten people flooding the server beside one
// who asks for a mail every minute. Each flooder repeats a request once a
// second: every repeat while the mail is still pending is a duplicate,
// and once it is served the next repeat asks for it again. They repeat a
// request for mail 1 all of them, or each for a mail of their own (then
// the asker's request stands behind ten others, first come first
// served); with thanks_and_status they also repeat both every second.
//
// Reported: the longest and the mean wait, in virtual seconds, between
// the minute asker's request and the mail reaching the client; the most
// orders one person ever held of one kind in the reply queue, and the
// longest an order waited to be answered; the mails forwarded in the
// hour. A request of the asker that is never served, or
// two waiting orders of one person and kind, fail the benchmark.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "scenario/runner.h"
#include "scenario/scenario.h"

namespace quorvex::scenario {
namespace {

constexpr int kFlooders = 10;
constexpr int kMails = 100;
constexpr int kHour = 3600;
constexpr int kAskEvery = 60;
// The minute asker's mails: none of them is a flooder's.
int AskedMail(int minute) { return kFlooders + 1 + minute % (kMails - 20); }

// Arg "mails": 1, every flooder repeats a request for mail 1 (one forward
// serves them all); 10, each repeats a request for a mail of their own.
std::string FloodHour(bool thanks_and_status, bool own_mails) {
  std::vector<std::pair<double, std::string>> lines;
  for (int t = 5; t < kHour; ++t) {
    for (int p = 1; p <= kFlooders; ++p) {
      // Spread over the second, so that every tick meets some of them.
      const double at = t + (p - 1) * 0.09;
      const std::string who = "flooder" + std::to_string(p) + ": ";
      lines.emplace_back(
          at, who + "/srv send " + std::to_string(own_mails ? p : 1));
      if (thanks_and_status) {
        lines.emplace_back(at + 0.03, who + "/srv thanks");
        lines.emplace_back(at + 0.06, who + "/srv send status");
      }
    }
    if (t % kAskEvery == 30)
      lines.emplace_back(
          t + 0.95,
          "asker: /srv send " + std::to_string(AskedMail(t / kAskEvery)));
  }
  std::stable_sort(
      lines.begin(), lines.end(),
      [](const auto& a, const auto& b) { return a.first < b.first; });
  std::ostringstream s;
  // The client and machine restarts (after 1000 and 2000 mails) are off:
  // the figures are the flood's alone.
  s << "registry Settings Handle = srv\n"
    << "registry Settings AOLRestart = 1\n"
    << "registry Settings CPURestart = 1\n"
    << "mails " << kMails << "\n"
    << "mail ·•[ quorvex list number 1 ]•·\n"
    << "person asker\n";
  for (int p = 1; p <= kFlooders; ++p) s << "person flooder" << p << "\n";
  s << "at 1 press cmdStart\n";
  for (const auto& [at, line] : lines)
    s << "at " << at << " say " << line << "\n";
  s << "run " << kHour + 120 << "\n";
  return s.str();
}

struct Figures {
  double max_wait = 0, mean_wait = 0;
  int unserved = 0, asked = 0;
  int most_orders = 0;        // of one person and kind at once
  double max_order_wait = 0;  // from queued to answered
  int mails = 0;
  std::string worst_order;
};

Figures Read(const std::string& transcript) {
  Figures f;
  std::map<int, std::vector<double>> asked;  // mail -> request times
  std::vector<double> waits;
  std::map<std::string, int> orders;
  std::map<std::string, double> queued_at;
  std::istringstream in(transcript);
  for (std::string line; std::getline(in, line);) {
    const auto e = nlohmann::json::parse(line);
    const std::string ev = e.value("ev", "");
    const double t = e.value("t", 0.0);
    if (ev == "chat" && e.value("sn", "") == "asker") {
      const std::string text = e.value("text", "");
      asked[std::stoi(text.substr(text.rfind(' ') + 1))].push_back(t);
      ++f.asked;
    } else if (ev == "mail") {
      ++f.mails;
      const std::string subject = e.value("subject", "");
      if (e.value("to", "").find("(asker)") == std::string::npos) continue;
      const int n = std::stoi(subject.substr(subject.rfind(' ') + 1));
      for (double at : asked[n]) waits.push_back(t - at);
      asked[n].clear();
    } else if (ev == "list" && e.value("name", "") == "ReplyQueue") {
      const std::string item = e.value("item", "");
      const bool add = e.value("op", "") == "add";
      int& held = orders[item];
      held += add ? 1 : -1;
      if (add) queued_at[item] = t;
      if (!add)
        f.max_order_wait = std::max(f.max_order_wait, t - queued_at[item]);
      if (held > f.most_orders) {
        f.most_orders = held;
        f.worst_order = e.value("item", "");
      }
    }
  }
  for (const auto& [n, left] : asked)
    f.unserved += static_cast<int>(left.size());
  for (double w : waits) {
    f.max_wait = std::max(f.max_wait, w);
    f.mean_wait += w / static_cast<double>(waits.size());
  }
  return f;
}

void BM_FloodHour(benchmark::State& state) {
  const Scenario sc = ParseScenario(
      "flood-hour", FloodHour(state.range(1) == 1, state.range(0) > 1),
      Controls());
  Figures f;
  for (auto _ : state) {
    std::ostringstream out;
    RunScenario(sc, {}, out);
    state.PauseTiming();
    f = Read(out.str());
    state.ResumeTiming();
  }
  if (f.unserved > 0)
    state.SkipWithError("a request of the minute asker was never served");
  if (f.most_orders > 1)
    state.SkipWithError(
        ("one person held two orders of one kind: " + f.worst_order).c_str());
  state.counters["asked"] = f.asked;
  state.counters["max_wait_s"] = f.max_wait;
  state.counters["mean_wait_s"] = f.mean_wait;
  state.counters["most_orders_per_person_kind"] = f.most_orders;
  state.counters["max_order_wait_s"] = f.max_order_wait;
  state.counters["mails"] = f.mails;
}
BENCHMARK(BM_FloodHour)
    ->ArgNames({"mails", "thanks_and_status"})
    ->Args({1, 0})
    ->Args({kFlooders, 0})
    ->Args({kFlooders, 1})
    ->Iterations(1)
    ->Unit(benchmark::kSecond);

}  // namespace
}  // namespace quorvex::scenario
