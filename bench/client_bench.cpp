// The client automation's costs: the chat scanner during a room flood
// (CPU per line read) and reading a mailbox of 5000 mails (virtual seconds
// and CPU seconds).
#include <benchmark/benchmark.h>

#include <chrono>
#include <memory>
#include <string>

#include "client/chat_scanner.h"
#include "client/client_context.h"
#include "client/mailbox.h"
#include "ports/virtual_host.h"
#include "settings/settings.h"
#include "sim/sim_client.h"
#include "sim/sim_world.h"
#include "testing/recording_api.h"

namespace quorvex {
namespace {

struct Client {
  Client() {
    sim.SetUserName("Joe Smith");
    sim.SetRoomName("Lobby");
  }
  VirtualHost host;
  SimWorld world;
  SimClient sim{host, world};
  RecordingApi api{sim};
  Settings settings;
};

// Lines said between two reads, as in a flood of 100 lines a second read
// every 250 ms; only the reads are timed. With a display that can be
// emptied, and with the simulated one that keeps its lines.
void BM_ScannerFlood(benchmark::State& state) {
  const bool cleared = state.range(0) != 0;
  Client client;
  client.api.SetClearableDisplay(cleared);
  client.api.messages.reserve(1 << 20);
  client.sim.Launch();
  ChatScanner scanner(client.api, client.host);
  std::int64_t lines = 0;
  const int reader = scanner.Subscribe(
      [&](const std::string&, const std::string&) { ++lines; });
  scanner.SetEnabled(reader, true);
  const char* const people[] = {"Ann", "Bob", "Cat"};
  double scan_seconds = 0;
  int said = 0;
  for (auto _ : state) {
    for (int i = 0; i < 25; ++i, ++said)
      client.sim.Say(people[said % 3], "/srv send " + std::to_string(said));
    const auto start = std::chrono::steady_clock::now();
    scanner.Scan();
    const std::chrono::duration<double> took =
        std::chrono::steady_clock::now() - start;
    state.SetIterationTime(took.count());
    scan_seconds += took.count();
    if (client.api.messages.size() > (1 << 20)) client.api.messages.clear();
  }
  state.SetItemsProcessed(lines);
  state.counters["ns_per_line"] = lines ? scan_seconds * 1e9 / lines : 0;
}
BENCHMARK(BM_ScannerFlood)->Arg(1)->Arg(0)->UseManualTime();

void BM_LoadMailbox5000(benchmark::State& state) {
  double virtual_seconds = 0;
  for (auto _ : state) {
    state.PauseTiming();
    auto client = std::make_unique<Client>();
    for (int i = 0; i < 5000; ++i)
      client->sim.AddMail("mail number " + std::to_string(i));
    client->sim.Launch();
    ClientContext c{client->sim, client->host, client->settings, nullptr};
    ListBox lstMails("lstMails");
    StatusStrip status;
    const double start = client->host.Elapsed();
    state.ResumeTiming();

    LoadMailbox(c, lstMails, true, status);

    state.PauseTiming();
    virtual_seconds = client->host.Elapsed() - start;
    if (lstMails.Count() != 5000) state.SkipWithError("mails missing");
    client.reset();
    state.ResumeTiming();
  }
  state.counters["virtual_s"] = virtual_seconds;
}
BENCHMARK(BM_LoadMailbox5000)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
}  // namespace quorvex
