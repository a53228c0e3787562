// Request handling: parser throughput on a mix of requests and chatter,
// and the pending queue's operations on a queue of 100 000 lines.
#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <utility>
#include <vector>

#include "model/label.h"
#include "model/list_box.h"
#include "ports/memory_registry.h"
#include "requests/ban_policy.h"
#include "requests/pending_queue.h"
#include "requests/request_parser.h"
#include "settings/settings.h"

namespace quorvex {
namespace {

constexpr int kMails = 1000;
constexpr int kQueueSize = 100000;

std::vector<std::pair<std::string, std::string>> ChatMix(int n) {
  std::mt19937 rng(3);
  const std::vector<std::string> chatter = {"hey everyone",
                                            "lol",
                                            "anyone got the new one?",
                                            "brb",
                                            "thanks srv!!",
                                            "/me waves",
                                            "whats the list?",
                                            "ok cool",
                                            "this room rocks",
                                            "/srv",
                                            "hi Srv how are you doing today"};
  std::vector<std::pair<std::string, std::string>> lines;
  for (int i = 0; i < n; ++i) {
    std::string who = "Person " + std::to_string(rng() % 200);
    std::string text;
    switch (rng() % 20) {
      case 0:
      case 1:
      case 2:
        text = "/srv send " + std::to_string(1 + rng() % kMails);
        break;
      case 3: {
        int x = 1 + rng() % kMails;
        text = "/Srv Send " + std::to_string(x) + "-" +
               std::to_string(x + rng() % 6);
        break;
      }
      case 4:
        text = "/srv send list";
        break;
      case 5:
        text = (rng() % 2) ? "/srv find madonna" : "/srv find cats&dogs";
        break;
      case 6:
        text = (rng() % 2) ? "/srv thanks" : "/srv send status";
        break;
      default:
        text = chatter[rng() % chatter.size()];
    }
    lines.emplace_back(std::move(who), std::move(text));
  }
  return lines;
}

void BM_ParseChatLines(benchmark::State& state) {
  Settings settings;
  settings.Handle = "srv";
  BanningOptions banning;
  PendingQueue pending;
  ListBox lstBanned{"lstBanned"}, lstMails{"lstMails"},
      ReplyQueue{"ReplyQueue"};
  Label lblPending{"lblPending", "pending: 0"};
  for (int i = 0; i < kMails; ++i) lstMails.Add("mail " + std::to_string(i));
  for (int i = 0; i < 20; ++i) lstBanned.Add("banned " + std::to_string(i));
  RequestContext ctx{settings, banning,    pending,   lstBanned,
                     lstMails, ReplyQueue, lblPending};
  auto lines = ChatMix(1 << 16);
  size_t next = 0;
  for (auto _ : state) {
    const auto& [who, text] = lines[next];
    HandleChatLine(ctx, who, text);
    if (++next == lines.size()) {
      // Start the queue again so that it does not grow without end.
      state.PauseTiming();
      next = 0;
      pending.list().Clear();
      ReplyQueue.Clear();
      state.ResumeTiming();
    }
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ParseChatLines);

// A queue of 100 000 lines for 2 000 people, mostly mails, a find every
// 50th line.
struct BigQueue {
  BigQueue() { Fill(1); }

  // Rebuilds the queue so that the first mail ("1"), the first find text
  // ("first") and the list word are each wanted by `group` lines spread
  // evenly over the queue; every other line wants something of its own.
  void Fill(int group) {
    queue.list().Clear();
    int spread = kQueueSize / group;
    for (int i = 0; i < kQueueSize; ++i) {
      std::string sn = "person" + std::to_string(i % 2000);
      int slot = i / spread < group ? i % spread : -1;
      if (slot == 0) {
        queue.Append(sn + "-1");
      } else if (slot == 1) {
        queue.Append(sn + "~first");
      } else if (slot == 2) {
        queue.Append(sn + "-list");
      } else if (i % 50 == 49) {
        queue.Append(sn + "~song " + std::to_string(i));
      } else {
        queue.Append(sn + "-" + std::to_string(i + 2));
      }
    }
  }

  PendingQueue queue;
  Label lblPending{"lblPending", ""};
  MemoryRegistry registry;
  Settings settings;
  ServeCounters counters;
  Label lblSent{"lblSent", ""}, lblSession{"lblSession", ""};
  CounterView view{counters, registry, settings, lblSent, lblSession};
};

void BM_QueueAppend(benchmark::State& state) {
  BigQueue big;
  for (auto _ : state) {
    big.queue.Append("newcomer-17");
    state.PauseTiming();
    big.queue.list().Remove(big.queue.Count() - 1);
    state.ResumeTiming();
  }
}
BENCHMARK(BM_QueueAppend)->Unit(benchmark::kMicrosecond);

void BM_QueueDuplicateCheck(benchmark::State& state) {
  BigQueue big;
  int i = 0;
  for (auto _ : state) {
    ++i;
    bool hit = big.queue.Has("person" + std::to_string(i % 2000) + "-" +
                             std::to_string(i % 1000));
    benchmark::DoNotOptimize(hit);
  }
}
BENCHMARK(BM_QueueDuplicateCheck)->Unit(benchmark::kMicrosecond);

void BM_QueuePendingCount(benchmark::State& state) {
  BigQueue big;
  int i = 0;
  for (auto _ : state) {
    int n = big.queue.PendingCount("person" + std::to_string(i++ % 2000));
    benchmark::DoNotOptimize(n);
  }
}
BENCHMARK(BM_QueuePendingCount)->Unit(benchmark::kMicrosecond);

// The takes change the queue, so each one gets a fresh queue (built with
// the clock stopped). The argument is the number of lines taken at once.
enum class Take { kMail, kList, kFind };

template <Take kind>
void BM_QueueTake(benchmark::State& state) {
  BigQueue big;
  int group = static_cast<int>(state.range(0));
  for (auto _ : state) {
    state.PauseTiming();
    big.Fill(group);
    state.ResumeTiming();
    TakenGroup g = kind == Take::kFind
                       ? big.queue.TakeNextFind(big.lblPending)
                       : big.queue.TakeNextMail(kind == Take::kList,
                                                big.lblPending, big.view, 3);
    benchmark::DoNotOptimize(g);
  }
}
BENCHMARK(BM_QueueTake<Take::kMail>)
    ->Name("BM_QueueMailTake")
    ->Arg(1)
    ->Arg(5)
    ->Arg(20)
    ->Iterations(20)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_QueueTake<Take::kList>)
    ->Name("BM_QueueListTake")
    ->Arg(1)
    ->Arg(5)
    ->Arg(20)
    ->Iterations(20)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_QueueTake<Take::kFind>)
    ->Name("BM_QueueFindTake")
    ->Arg(1)
    ->Arg(5)
    ->Arg(20)
    ->Iterations(20)
    ->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace quorvex
