#include "requests/pending_queue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "settings/memory_registry.h"

namespace quorvex {
namespace {

using Lines = std::vector<std::string>;

class ScriptedPrompter : public Prompter {
 public:
  std::string answer;
  PromptRecord last;
  std::string InputBox(const std::string& prompt, const std::string& title,
                       const std::string& default_text) override {
    last = {"input", title, prompt, default_text, answer};
    return answer;
  }
  bool YesNo(const std::string&, const std::string&) override { return false; }
  void MessageBox(const std::string&, const std::string&) override {}
};

class PendingQueueTest : public ::testing::Test {
 protected:
  void Queue(const Lines& lines) {
    for (const auto& l : lines) q.Append(l);
  }
  std::string Mail() { return q.TakeNextMail(false, label, view).requesters; }
  std::string Total() const {
    return registry.GetSetting(kApp, "Settings", "TotalSent", "none");
  }

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
  EXPECT_EQ(Total(), "43");  // one per line, on top of the stored total
  EXPECT_EQ(lblSent.caption(), "total: 43");
  EXPECT_EQ(lblSession.caption(), "session: 2");
  EXPECT_EQ(Mail(), "(ann)");

  g = q.TakeNextMail(true, label, view, 3);
  EXPECT_EQ(g.requesters, "(cat)(amy)");  // last to first
  EXPECT_EQ(g.wanted, "list");
  EXPECT_EQ(counters.session, 9);  // two lines, three lists each
  g = q.TakeNextFind(label);
  EXPECT_EQ(g.requesters, "(bob)(joe)");
  EXPECT_EQ(g.wanted, "cats");
  EXPECT_EQ(counters.session, 9);
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
  EXPECT_EQ(q.PendingCount("bob"), 2);
  EXPECT_EQ(q.PendingCount("a"), 1);  // "-" before "~" counts
  EXPECT_TRUE(q.Has("BOB-1"));
  q.list().Remove(0);
  EXPECT_EQ(q.PendingCount("bob"), 1);
  EXPECT_FALSE(q.Has("bob-1"));
  q.list().Clear();
  EXPECT_EQ(q.PendingCount("bob"), 0);
  EXPECT_EQ(Mail(), "");

  Queue({"amy-1", "bob~x", "bob-2", "amy-3", "bill-4", "bob-list"});
  EXPECT_EQ(q.StatusOf("bob").count, 2);
  EXPECT_EQ(q.StatusOf("bob").first_position, 2);
  EXPECT_EQ(q.StatusOf("nobody").first_position, -1);
  EXPECT_EQ(q.StatusOf("b*").count, 3);  // a pattern
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
  Queue({"bob-1", "bob-2", "bob-3", "amy-4"});
  q.DropFullMailbox("bob", replies);
  EXPECT_EQ(q.list().Items(), (Lines{"bob-2", "amy-4"}));
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

TEST_F(PendingQueueTest, MenuClearsIgnoreSpaces) {
  Queue({"bobsmith-4", "amy-1", "bob smith-4", "", "bob smith~x", "bobs-1"});
  ScriptedPrompter prompter;
  prompter.answer = "ab";
  label.Set("stale");
  q.mnuClearSN(prompter, label);  // too short: nothing at all
  EXPECT_EQ(q.Count(), 6);
  EXPECT_EQ(label.caption(), "stale");
  EXPECT_EQ(prompter.last.prompt, "enter a screen name to remove");
  EXPECT_EQ(prompter.last.title, "screen name");

  prompter.answer = "Bob Smith";
  q.mnuClearSN(prompter, label);
  EXPECT_EQ(q.list().Items(), (Lines{"amy-1", "", "bobs-1"}));
  EXPECT_EQ(label.caption(), "pending: 3");
  q.mnuClearALL(label);
  EXPECT_EQ(label.caption(), "pending: 0");
}

TEST_F(PendingQueueTest, SaveAndLoadRoundTripOnce) {
  const Lines lines = {"bob-7",   " lead-1",     "trail~x ",    "a=b~c=d",
                       ";semi-2", "[sec]-list",  "\"q\"~\"x\"", "'s'-3",
                       "",        "z\xC3\xBC-4", "\tt~a\t"};
  Queue(lines);
  MemoryProfileFile profiles;
  const std::string path = "/c/Quorvex.INI";
  q.Save(profiles, path);
  q.Save(profiles, path);  // unload and terminate both save
  PendingFile file{profiles, path, [&] { return profiles.Exists(path); },
                   [&] { profiles.Remove(path); }};
  PendingQueue restored;
  restored.Load(file, label);
  EXPECT_EQ(restored.list().Items(), lines);
  EXPECT_EQ(label.caption(), "pending: 11");
  EXPECT_FALSE(profiles.Exists(path));
  restored.Load(file, label);  // restored once only
  EXPECT_EQ(restored.Count(), 11);

  PendingQueue().Save(profiles, path);  // an empty queue writes nothing
  EXPECT_FALSE(profiles.Exists(path));
}

TEST_F(PendingQueueTest, LoadOfAHandEditedFile) {
  MemoryProfileFile profiles;
  const std::string path = "/c/Quorvex.INI";
  PendingFile file{profiles, path, [&] { return profiles.Exists(path); },
                   [&] { profiles.Remove(path); }};
  profiles.WriteString(path, "Quorvex", "TotalPending", "lots");
  profiles.WriteString(path, "Quorvex", "Pending 0", "bob-1");
  q.Load(file, label);
  EXPECT_EQ(q.Count(), 0);
  EXPECT_FALSE(profiles.Exists(path));  // deleted all the same

  // A missing key loads a blank line, which holds up the takes.
  profiles.WriteString(path, "QUORVEX", "TotalPending", "3");
  profiles.WriteString(path, "Quorvex", "pending 0", "bob-1");
  profiles.WriteString(path, "Quorvex", "Pending 2", "amy-2");
  q.Load(file, label);
  EXPECT_EQ(q.list().Items(), (Lines{"bob-1", "", "amy-2"}));
  EXPECT_EQ(Mail(), "(bob)");
  EXPECT_EQ(Mail(), "");

  // A count far beyond any queue stays bounded.
  q.list().Clear();
  profiles.WriteString(path, "Quorvex", "TotalPending", "1e12");
  q.Load(file, label);
  EXPECT_EQ(q.Count(), 1000000);
  EXPECT_EQ(label.caption(), "pending: 1e12");
}

}  // namespace
}  // namespace quorvex
