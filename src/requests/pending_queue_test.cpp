#include "requests/pending_queue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "ports/memory_registry.h"
#include "ports/scripted_prompter.h"

namespace quorvex {
namespace {

using Lines = std::vector<std::string>;

class PendingQueueTest : public ::testing::Test {
 protected:
  void Queue(const Lines& lines) {
    for (const auto& l : lines) q.Append(l);
  }
  std::string Mail() { return q.TakeNextMail(false, label, view).requesters; }
  std::string Total() const {
    return registry.GetSetting(kApp, "Settings", "TotalSent", "none");
  }

  MemoryProfileFile profiles;
  const std::string path = "/c/Quorvex.INI";
  PendingFile file{profiles, path, [this] { return profiles.Exists(path); },
                   [this] { profiles.Remove(path); }};
  PendingQueue q;
  Label label{"lblPending", "pending: 0"};
  MemoryRegistry registry;
  Settings settings;
  ServeCounters counters;
  Label lblSent{"lblSent", ""}, lblSession{"lblSession", ""};
  CounterView view{counters, registry, settings, lblSent, lblSession};
};

TEST_F(PendingQueueTest, TakesGroupEveryoneWantingTheSameThing) {
  registry.Save(kApp, "Settings", "TotalSent", "41");
  Queue({"bob-7", "amy-list", "joe-7", "ann-3", "bob~cats", "cat-list",
         "amy~dogs", "joe~cats"});
  TakenGroup g = q.TakeNextMail(false, label, view);
  EXPECT_EQ(g.requesters, "(bob)(joe)");
  EXPECT_EQ(g.wanted, "7");
  EXPECT_EQ(label.caption(), "pending: 6");
  EXPECT_EQ(lblSent.caption(), "total: 43");  // one per line, on top
  EXPECT_EQ(Mail(), "(ann)");

  g = q.TakeNextMail(true, label, view, 3);
  EXPECT_EQ(g.requesters, "(cat)(amy)");  // last to first
  EXPECT_EQ(g.wanted, "list");
  EXPECT_EQ(counters.session, 9);  // two lines, three lists each
  EXPECT_EQ(q.TakeNextFind(label).wanted, "cats");
  EXPECT_EQ(counters.session, 9);  // finds are not counted
  EXPECT_EQ(q.list().Items(), Lines{"amy~dogs"});

  // Nothing left to take: empty groups, no counting, the label refreshed.
  label.Set("stale");
  EXPECT_EQ(Mail(), "");
  EXPECT_EQ(q.TakeNextMail(true, label, view, 3).requesters, "");
  EXPECT_EQ(label.caption(), "pending: 1");
  EXPECT_EQ(Total(), "50");
}

TEST_F(PendingQueueTest, BlankLineHoldsUpMailsAndFindsButNotLists) {
  Queue({"bob-7", "", "amy-7", "joe~x", "ann-list", "odd line"});
  EXPECT_EQ(Mail(), "(bob)");
  EXPECT_EQ(Mail(), "");
  EXPECT_EQ(q.TakeNextFind(label).requesters, "");
  EXPECT_EQ(q.TakeNextMail(true, label, view, 1).requesters, "(ann)");

  // Removing the blank line by hand frees the rest; the line with neither
  // "-" nor "~" is passed over and stays.
  q.list().Select(0);
  q.mnuRemoveSelected(label);
  EXPECT_EQ(label.caption(), "pending: 3");
  EXPECT_EQ(Mail(), "(amy)");
  EXPECT_EQ(q.TakeNextFind(label).requesters, "(joe)");
  EXPECT_EQ(Mail(), "");
  EXPECT_EQ(q.list().Items(), Lines{"odd line"});
}

TEST_F(PendingQueueTest, CountsFollowChangesMadeThroughTheListBox) {
  for (const char* l : {"bob-1", "bob-list", "bob~x-y", "bobby-2", "a-b~cats"})
    q.list().Add(l);
  EXPECT_EQ(q.PendingCount("a"), 1);  // "-" before "~" counts
  EXPECT_TRUE(q.Has("BOB-1"));
  q.list().Remove(0);
  EXPECT_EQ(q.PendingCount("bob"), 1);
  EXPECT_FALSE(q.Has("bob-1"));
  q.list().Clear();
  EXPECT_EQ(Mail(), "");

  Queue({"amy-1", "bob~x", "bob-2", "amy-3", "bill-4", "bob-list"});
  EXPECT_EQ(q.StatusOf("bob").count, 2);
  EXPECT_EQ(q.StatusOf("bob").first_position, 2);
  EXPECT_EQ(q.StatusOf("nobody").first_position, -1);
  EXPECT_EQ(q.StatusOf("b*").count, 3);  // a pattern
  EXPECT_EQ(q.StatusOf("b*").first_position, 2);
  // The first line of any name the pattern matches, the very first one
  // included, whichever name the walk meets first: each of two names in
  // front, each known before the other.
  for (const Lines& lines :
       {Lines{"amy-1", "bob-2"}, Lines{"bob-1", "amy-2"},
        Lines{"bob-1", "amy-2", "bob-3"}, Lines{"amy-1", "bob-2", "amy-3"}}) {
    q.list().Clear();
    Queue(lines);
    if (lines.size() == 3) q.list().Remove(0);
    EXPECT_EQ(q.StatusOf("*").first_position, 0) << lines[0];
  }
}

// The walk of DropFullMailbox done the slow way on a plain list.
Lines DropSlowly(Lines lines, const std::string& sn) {
  size_t count = lines.size();
  for (size_t i = 0; i < count && i < lines.size() && !lines[i].empty(); ++i) {
    const std::string& l = lines[i];
    size_t dash = l.find('-');
    if (l.find('~') == std::string::npos && dash != std::string::npos &&
        l.substr(0, dash) == sn)
      lines.erase(lines.begin() + i);
  }
  return lines;
}

TEST_F(PendingQueueTest, DropFullMailboxSkipsTheLineAfterEachDrop) {
  ListBox replies{"ReplyQueue"};
  Queue({"bob-1", "bob-2", "bob-3", "bob-list", "amy-4"});
  // What each dropped line asked for, for the log.
  EXPECT_EQ(q.DropFullMailbox("bob", replies), (Lines{"1", "3"}));
  EXPECT_EQ(q.list().Items(),
            (Lines{"bob-2", "bob-list", "amy-4"}));  // adjacent: kept
  EXPECT_EQ(replies.Items(), Lines{"bob-mailbox"});

  std::mt19937 rng(7);
  const Lines pool = {"bob-1", "bob-list", "bob~c", "amy-2",
                      "",      "bob-3",    "odd",   "bob-x~y"};
  for (int round = 0; round < 500; ++round) {
    q.list().Clear();
    Lines lines(rng() % 12);
    for (auto& l : lines) l = pool[rng() % pool.size()];
    Queue(lines);
    q.DropFullMailbox("bob", replies);
    Lines left = q.list().Items();
    ASSERT_EQ(left, DropSlowly(lines, "bob")) << "round " << round;
    ASSERT_EQ(q.PendingCount("bob"),
              std::count_if(left.begin(), left.end(), [](const auto& l) {
                return l.rfind("bob-", 0) == 0;
              }));
  }
}

TEST_F(PendingQueueTest, ClearsBySnIgnoreSpaces) {
  Queue({"bobsmith-4", "amy-1", "bob smith-4", "", "bob smith~x", "bobs-1"});
  ScriptedPrompter prompter;
  prompter.QueueAnswer("ab");
  prompter.QueueAnswer("Bob Smith");
  label.Set("stale");
  q.mnuClearSN(prompter, label);  // too short: nothing at all
  EXPECT_EQ(q.Count(), 6);
  EXPECT_EQ(label.caption(), "stale");
  q.mnuClearSN(prompter, label);
  EXPECT_EQ(q.list().Items(), (Lines{"amy-1", "", "bobs-1"}));
  EXPECT_EQ(label.caption(), "pending: 3");
  prompter.QueueAnswer("AMY");  // three characters are enough
  q.mnuClearSN(prompter, label);
  EXPECT_EQ(q.list().Items(), (Lines{"", "bobs-1"}));

  q.mnuClearALL(label);
  EXPECT_EQ(label.caption(), "pending: 0");

  // A ban from the room's people stops at a blank line and folds no case.
  Queue({"joe smith-3", "JoeSmith-4", "joesmith~x", "", "joesmith-9"});
  EXPECT_EQ(q.RemoveRequester("joesmith", true),
            (Lines{"joe smith-3", "joesmith~x"}));
  EXPECT_EQ(q.list().Items(), (Lines{"JoeSmith-4", "", "joesmith-9"}));
}

TEST_F(PendingQueueTest, SaveAndLoadOfHandEditedFiles) {
  Queue({"bob-1", "amy-2"});
  q.Save(profiles, path);  // a key a line, none past the last
  EXPECT_EQ(profiles.GetString(path, "Quorvex", "Pending 1", ""), "amy-2");
  EXPECT_EQ(profiles.GetString(path, "Quorvex", "Pending 2", "none"), "none");
  profiles.Remove(path);
  q.list().Clear();

  PendingQueue().Save(profiles, path);  // an empty queue writes nothing
  EXPECT_FALSE(profiles.Exists(path));
  profiles.WriteString(path, "Quorvex", "TotalPending", "lots");
  profiles.WriteString(path, "Quorvex", "Pending 0", "bob-1");
  q.Load(file, label);
  EXPECT_EQ(q.Count(), 0);
  EXPECT_FALSE(profiles.Exists(path));  // deleted all the same

  // A missing key loads a blank line, which holds up the takes; sections
  // and keys ignore case; the queue is restored once only.
  profiles.WriteString(path, "QUORVEX", "TotalPending", "3");
  profiles.WriteString(path, "Quorvex", "pending 0", "bob-1");
  profiles.WriteString(path, "Quorvex", "Pending 2", "amy-2");
  q.Load(file, label);
  q.Load(file, label);
  EXPECT_EQ(q.list().Items(), (Lines{"bob-1", "", "amy-2"}));
  EXPECT_EQ(Mail(), "(bob)");
  EXPECT_EQ(Mail(), "");
}

// A profile file whose writes can be made to fail, leaving what it held.
class RefusingProfileFile : public MemoryProfileFile {
 public:
  void WriteString(const std::string& file, const std::string& section,
                   const std::string& key,
                   const std::optional<std::string>& value) override {
    if (!refusing) MemoryProfileFile::WriteString(file, section, key, value);
  }
  bool refusing = false;
};

TEST_F(PendingQueueTest, ASaveSaysWhetherTheFileHoldsTheQueue) {
  RefusingProfileFile disk;
  disk.refusing = true;
  EXPECT_TRUE(q.Save(disk, path));  // nothing to save, nothing lost
  Queue({"bob-1", "amy~cat\r\nfood", ""});
  EXPECT_FALSE(q.Save(disk, path));
  disk.refusing = false;
  EXPECT_TRUE(q.Save(disk, path));
  // A save that fails over a file holding the same queue loses nothing;
  // over one that differs in a count or a line, it does.
  disk.refusing = true;
  EXPECT_TRUE(q.Save(disk, path));
  q.Append("cy-2");
  EXPECT_FALSE(q.Save(disk, path));
  disk.refusing = false;
  q.Save(disk, path);
  disk.refusing = true;
  q.list().Remove(3);
  q.Append("cy-3");
  EXPECT_FALSE(q.Save(disk, path));
  EXPECT_FALSE(q.HeldIn(disk.Dump(path), "Other"));
}

TEST(RequestEventsTest, OneEventPerRequestNamingEveryoneWhoAskedIt) {
  const std::vector<JobEvent> events =
      RequestEvents(JobOutcome::kRemovedByUser,
                    {"bob-5", "amy~cats", "", "stray line", "cy-list", "amy-5",
                     "d-x~y", "e~f-list", "bob~cats"});
  std::vector<std::string> seen;
  for (const JobEvent& e : events) {
    EXPECT_EQ(e.outcome, JobOutcome::kRemovedByUser);
    seen.push_back(e.requesters + " " + e.what);
  }
  // Lines read as the takes read them; lines that ask nothing, nothing.
  EXPECT_EQ(seen, (Lines{"(bob)(amy) send 5", "(amy)(bob) find cats",
                         "(cy)(e~f) send list", "(d-x) find y"}));
  EXPECT_TRUE(RequestEvents(JobOutcome::kRemovedByUser, {"", "x"}).empty());
}

TEST_F(PendingQueueTest, LoadStopsAtTheCountOrTheLastKeyPresent) {
  // Keys 0 to 4 present; the count and the keys decide, whichever ends
  // first; a fraction rounds the loop's bound half to even.
  const std::vector<std::pair<std::string, size_t>> cases = {
      {"0", 0}, {"1", 1}, {"4", 4}, {"5", 5}, {"6", 5}, {"2.5", 3}, {"-3", 0}};
  for (const auto& [total, want] : cases) {
    q.list().Clear();
    profiles.WriteString(path, "Quorvex", "TotalPending", total);
    for (int i = 0; i < 5; ++i)
      profiles.WriteString(path, "Quorvex", "Pending " + std::to_string(i),
                           "p-" + std::to_string(i));
    q.Load(file, label);
    EXPECT_EQ(q.list().Count(), want) << total;
    EXPECT_EQ(label.caption(), "pending: " + std::to_string(want)) << total;
  }
  // Only keys written as the save writes them count; a gap within the
  // count is a blank line up to the last present key.
  q.list().Clear();
  profiles.WriteString(path, "Quorvex", "TotalPending", "10");
  profiles.WriteString(path, "Quorvex", "Pending 1", "a-1");
  profiles.WriteString(path, "Quorvex", "Pending 3", "b-1");
  profiles.WriteString(path, "Quorvex", "Pending 07", "c-1");
  profiles.WriteString(path, "Quorvex", "Pending 10", "d-1");
  q.Load(file, label);
  EXPECT_EQ(q.list().Items(), (Lines{"", "a-1", "", "b-1"}));

  // However far the keys go, a million lines at the most.
  q.list().Clear();
  profiles.WriteString(path, "Quorvex", "TotalPending", "1e12");
  profiles.WriteString(path, "Quorvex", "Pending 999999", "last-1");
  profiles.WriteString(path, "Quorvex", "Pending 1000000", "beyond-1");
  q.Load(file, label);
  EXPECT_EQ(q.Count(), 1000000);
  EXPECT_EQ(q.list().Item(999999), "last-1");
  EXPECT_EQ(label.caption(), "pending: 1000000");
}

TEST_F(PendingQueueTest, CountersReadTheStoredTotalAndSaturate) {
  registry.Save(kApp, "Settings", "TotalSent", "not a number");
  // A list pass that found nobody counts nothing and writes nothing.
  EXPECT_EQ(q.TakeNextMail(true, label, view, 3).requesters, "");
  EXPECT_EQ(Total(), "not a number");
  EXPECT_EQ(lblSent.caption(), "");
  AdvanceServeCounters(view, 2);
  EXPECT_EQ(Total(), "2");
  constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
  registry.Save(kApp, "Settings", "TotalSent", "2147483646");
  counters.session = kMax - 1;
  AdvanceServeCounters(view, std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(Total(), "2147483647");
  EXPECT_EQ(settings.TotalSent, kMax);
  EXPECT_EQ(counters.SentCount, kMax);
  EXPECT_EQ(lblSession.caption(), "session: 2147483647");
}

TEST_F(PendingQueueTest, DeadMailTakesEveryMailLineForItsNumberOnly) {
  // Past an empty line too; not finds, lists or other numbers that share
  // the digits.
  Queue({"bob-12", "amy~12", "", "cal-120", "dan-12", "eve-list", "fay-12"});
  Lines gone;
  while (auto sn = q.TakeFirstMailFor("12")) gone.push_back(*sn);
  EXPECT_EQ(gone, (Lines{"bob", "dan", "fay"}));
  EXPECT_EQ(q.list().Items(), (Lines{"amy~12", "", "cal-120", "eve-list"}));
  EXPECT_FALSE(q.TakeFirstMailFor("list"));

  // A walk takes only the lines queued when it began: not the next one.
  q.list().Clear();
  Queue({"bob-5"});
  const std::uint64_t below = q.IdsBelowFuture();
  Queue({"amy-5"});
  EXPECT_EQ(q.TakeFirstMailFor("5", below), "bob");
  EXPECT_FALSE(q.TakeFirstMailFor("5", below));
  EXPECT_EQ(q.TakeFirstMailFor("5"), "amy");
}

}  // namespace
}  // namespace quorvex
