#include "server/serve_engine.h"

#include <algorithm>
#include <string>
#include <vector>

#include "client/wait.h"
#include "server/replies.h"
#include "testing/server_test_fixture.h"

namespace quorvex {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class ServeEngineTest : public ServerTest {
 protected:
  ServeEngineTest() { AddMails(3); }
  // The program's jobs, but for a tick's and the start's, which only log
  // that they ran; one list is found at start.
  ServeJobs LoggingJobs() {
    auto logs = [this](const char* name) {
      return [this, name] { log.push_back(name); };
    };
    ServeJobs jobs = MakeServeJobs(frm, c);
    jobs.mail = logs("mail");
    jobs.list = logs("list");
    jobs.find = logs("find");
    jobs.sweep = [this] { ++sweeps; };
    jobs.collect_lists = [this] {
      frm.lists.lstLists.Add("4");
      return 1;
    };
    jobs.build_lists = logs("build");
    return jobs;
  }
  // Launches the client and starts serving; the start's output is forgotten.
  void StartServing() {
    sim.Launch();
    engine.cmdStart_Click();
    ASSERT_TRUE(frm.serving.ServerOn);
    said_at_start = Said().size();
    statuses.clear();
  }
  // One tick run by hand; Timer1 is kept from ticking on its own meanwhile.
  void Tick() {
    frm.serving.Timer1->SetEnabled(false);
    engine.Timer1_Timer();
  }
  void Queue(const std::vector<std::string>& lines) {
    frm.lstPending().Clear();
    for (const std::string& line : lines) frm.lists.pending.Append(line);
  }
  bool TimersOn() const {
    return frm.serving.Timer1->enabled() && frm.serving.Timer2->enabled();
  }

  std::vector<std::string> log;
  int sweeps = 0;
  size_t said_at_start = 0;
  ServeEngine engine{MakeServeContext(frm), c, LoggingJobs()};
};

TEST_F(ServeEngineTest, StartReadsTheMailboxResetsCountersAndAnnounces) {
  frm.lists.lstMails.Add("left over from an earlier start");
  frm.counts.counters.AOLCount = 5;
  frm.counts.counters.SentCount = 7;
  frm.counts.counters.session = 8;
  sim.Launch();
  engine.cmdStart_Click();
  EXPECT_THAT(Said(), ElementsAre("quorvex mail server <B><U>on</B></U>",
                                  "type /<B>srv send <U>x,x-y</U></B>",
                                  "type <B>/srv find <U>x,x&y</U></B>"));
  EXPECT_THAT(frm.lists.lstMails.Items(),
              ElementsAre("mail 1", "mail 2", "mail 3"));
  EXPECT_EQ(frm.counts.lblLists.caption(), "lists: 1");
  EXPECT_TRUE(TimersOn());
  EXPECT_EQ(frm.counts.counters.AOLCount + frm.counts.counters.SentCount, 0);
  EXPECT_EQ(frm.counts.counters.session, 8);  // the session goes on
  EXPECT_FALSE(sim.ims_on());
  EXPECT_EQ(statuses.back(), "status: scanning chat");
}

// With no client running there is no mailbox to wait for: the person is
// told, and nothing changes; once the client runs, a start serves.
TEST_F(ServeEngineTest, AStartWithoutTheClientSaysSoAndStaysIdle) {
  std::vector<PromptRecord> shown;
  prompter.SetObserver([&](const PromptRecord& r) { shown.push_back(r); });
  frm.lists.pending.Append("bob-2");
  frm.lists.lstMails.Add("as it was");
  engine.cmdStart_Click();
  ASSERT_EQ(shown.size(), 1u);
  EXPECT_EQ(shown[0].kind, "message");
  EXPECT_EQ(shown[0].title, kNoClientTitle);
  EXPECT_THAT(shown[0].prompt, HasSubstr("not running"));
  EXPECT_FALSE(frm.serving.ServerOn);
  EXPECT_FALSE(TimersOn());
  EXPECT_EQ(frm.controls.cmdStart.caption(), "&start");
  EXPECT_THAT(statuses, IsEmpty());
  EXPECT_THAT(frm.lstPending().Items(), ElementsAre("bob-2"));
  EXPECT_THAT(frm.lists.lstMails.Items(), ElementsAre("as it was"));

  sim.Launch();
  engine.cmdStart_Click();
  EXPECT_EQ(shown.size(), 1u);
  EXPECT_TRUE(frm.serving.ServerOn);
  EXPECT_THAT(frm.lists.lstMails.Items(),
              ElementsAre("mail 1", "mail 2", "mail 3"));
}

TEST_F(ServeEngineTest, StopDuringATickFinishesItsJobsFarewellOnTheNextTick) {
  frm.settings.ListIfNoPending = true;  // the list step runs every tick
  frm.settings.BotScroll = 30000;
  engine.jobs().mail = [&] {
    log.push_back("mail");
    if (log.size() > 1) return;
    host.Schedule(0.2, [&] { engine.cmdStart_Click(); });
    PauseSeconds(host, 1);
  };
  StartServing();
  Run(10);
  EXPECT_THAT(log, ElementsAre("mail", "list", "find"));
  EXPECT_THAT(SaidSince(said_at_start),
              ElementsAre("quorvex mail server <B><U>off</B></U>",
                          "please stop requesting"));
  EXPECT_FALSE(frm.serving.Timer1->enabled() || frm.serving.Timer2->enabled());
  EXPECT_TRUE(sim.ims_on());
}

TEST_F(ServeEngineTest, AStartDuringTheFarewellKeepsServing) {
  StartServing();
  engine.cmdStart_Click();  // stop: the next tick says goodbye
  // Started again while the goodbye is said: the server is on and ticks.
  host.Schedule(0.3, [&] { engine.cmdStart_Click(); });
  Run(20);
  EXPECT_TRUE(frm.serving.ServerOn);
  EXPECT_EQ(frm.controls.cmdStart.caption(), "&stop");
  EXPECT_TRUE(TimersOn());
  EXPECT_FALSE(sim.ims_on());
  const size_t before = log.size();
  Run(5);
  EXPECT_GT(log.size(), before);  // the jobs of later ticks
}

TEST_F(ServeEngineTest, AStartPressedWhileTheClientRestartsIsIgnored) {
  // Stopped and started again while the restart drives the client: the
  // stop holds, the start does nothing until the restart is over.
  int starts_inside = 0;
  engine.aol_restart = [&] {
    engine.cmdStart_Click();
    const size_t said = Said().size();
    engine.cmdStart_Click();
    starts_inside += Said().size() > said || frm.serving.ServerOn;
  };
  StartServing();
  sim.SignOff();
  Tick();
  EXPECT_EQ(starts_inside, 0);
  EXPECT_FALSE(frm.serving.ServerOn);
  EXPECT_EQ(frm.controls.cmdStart.caption(), "&start");
  // Once it is over, a start starts.
  Run(5);
  sim.Launch();
  engine.cmdStart_Click();
  EXPECT_TRUE(frm.serving.ServerOn);
}

TEST_F(ServeEngineTest, AResumeDuringThePauseKeepsServing) {
  StartServing();
  engine.cmdPause_Click();  // the next tick pauses
  host.Schedule(0.3, [&] { engine.cmdPause_Click(); });
  Run(20);
  EXPECT_FALSE(frm.serving.ServerPaused);
  EXPECT_EQ(frm.controls.cmdPause.caption(), "&pause");
  EXPECT_TRUE(TimersOn());
}

TEST_F(ServeEngineTest, TickOrderAndIntervals) {
  frm.settings.BotScroll = 2;
  frm.settings.ListAdvertise = 3;
  StartServing();
  frm.serving.ScrollSeconds = frm.serving.ListSeconds = 0;
  frm.lists.ReplyQueue.Add("send-hello room");
  Tick();
  EXPECT_THAT(log, ElementsAre("mail", "find"));
  EXPECT_THAT(SaidSince(said_at_start), ElementsAre("hello room"));

  log.clear();
  frm.serving.Timer2->SetEnabled(false);
  frm.serving.ScrollSeconds = 2;
  frm.serving.ListSeconds = 3;
  Tick();
  EXPECT_THAT(log, ElementsAre("mail", "list", "find"));
  EXPECT_EQ(SaidSince(said_at_start).size(), 4u);  // and the advertisement
  EXPECT_EQ(frm.serving.ScrollSeconds, 0);
}

TEST_F(ServeEngineTest, SecondClockSweepsAndCounts) {
  frm.settings.ListAdvertise = 60;
  frm.settings.ListIfNoPending = true;
  engine.Timer2_Timer();
  EXPECT_EQ(sweeps, 1);
  EXPECT_EQ(frm.serving.ScrollSeconds, 1);
  EXPECT_EQ(frm.serving.ListSeconds,
            71);  // nothing pending: the list step is due
  frm.lists.pending.Append("bob-list");
  frm.serving.ListSeconds = 32767;
  frm.serving.ScrollSeconds = 32766;
  engine.Timer2_Timer();
  engine.Timer2_Timer();
  // The counters stop at the 16-bit limit instead of overflowing.
  EXPECT_EQ(frm.serving.ListSeconds, 32767);
  EXPECT_EQ(frm.serving.ScrollSeconds, 32767);
}

TEST_F(ServeEngineTest, ReplyPhaseAnswersTheFirstOrderEachTick) {
  StartServing();
  frm.forms.frmBanning.cmbMistakes.text = "3";
  for (const char* entry : {"nodash", "bob-pending", "amy-duplication",
                            "send-hi - all", "joe-mailbox", "ann-whatever"})
    frm.lists.ReplyQueue.Add(entry);
  // One order a tick, in order, each tick's jobs after it; an order
  // without a dash goes without a line, and orders queued meanwhile wait
  // behind the others.
  host.Schedule(0.1, [&] { frm.lists.ReplyQueue.Add("late-pending"); });
  for (int tick = 0; tick < 6; ++tick) Tick();
  EXPECT_THAT(SaidSince(said_at_start),
              ElementsAre("(bob) you have to many pending",
                          "(amy) you made a duplication error", "hi - all",
                          "(joe) you have a full mailbox",
                          "(joe) you now have <U>2</U> mistakes left"));
  EXPECT_THAT(frm.lists.ReplyQueue.Items(), ElementsAre("late-pending"));
  EXPECT_THAT(frm.lists.MistakeList.Items(), ElementsAre("joe-1"));
  EXPECT_EQ(std::count(log.begin(), log.end(), std::string("mail")), 6);
  Tick();
  EXPECT_EQ(SaidSince(said_at_start).back(), "(late) you have to many pending");
  EXPECT_TRUE(frm.lists.ReplyQueue.Empty());

  // An empty entry ends the phase and stays, holding up what follows.
  frm.lists.ReplyQueue.Add("");
  frm.lists.ReplyQueue.Add("zed-pending");
  const size_t before = Said().size();
  Tick();
  Tick();
  EXPECT_EQ(Said().size(), before);
  EXPECT_EQ(frm.lists.ReplyQueue.Count(), 2);
}

// Each quota counts from 2: 1 is off however many mails went, and 2 acts
// at the second mail, not the first.
TEST_F(ServeEngineTest, RestartsAndClearingFollowTheirQuotas) {
  int aol = 0, cpu = 0;
  engine.aol_restart = [&] { ++aol; };
  engine.jobs().cpu_restart = [&] { ++cpu; };
  auto quotas = [&](int q) {
    frm.settings.AOLRestart = frm.settings.CPURestart =
        frm.settings.SentRestart = static_cast<std::int16_t>(q);
  };
  auto counts = [&](int n) {
    frm.counts.counters.AOLCount = frm.counts.counters.CPUCount =
        frm.counts.counters.SentCount = n;
  };
  quotas(1);
  StartServing();
  counts(30000);
  Tick();
  quotas(2);
  counts(1);
  Tick();
  EXPECT_EQ(aol, 0);
  EXPECT_EQ(cpu, 0);
  EXPECT_THAT(SaidSince(said_at_start), IsEmpty());

  frm.counts.counters.AOLCount = 2;
  Tick();
  EXPECT_EQ(aol, 1);
  EXPECT_THAT(SaidSince(said_at_start),
              ElementsAre("quorvex is restarting <B><U>aol</B></U>",
                          "please hold requests and be patient",
                          "quorvex restarted <B><U>aol</B></U>"));
  frm.counts.counters.SentCount = 2;
  const size_t before = Said().size();
  Tick();
  EXPECT_THAT(
      SaidSince(before),
      ElementsAre("quorvex is deleting <B><U>sent</B></U>", "please be patient",
                  "quorvex deleted <B><U>sent</B></U>"));
  EXPECT_EQ(sim.SentCount(), 0);

  // The machine restart ends the tick before any job.
  frm.counts.counters.CPUCount = 2;
  log.clear();
  Tick();
  EXPECT_EQ(cpu, 1);
  EXPECT_THAT(log, IsEmpty());

  // A signed-off client is restarted whatever its count.
  frm.counts.counters.CPUCount = 0;
  sim.SignOff();
  Tick();
  EXPECT_EQ(aol, 2);
}

TEST_F(ServeEngineTest, StatusByChatSaysHowFarAwayTheFirstEntryIs) {
  sim.Launch();
  // One entry: only the "you have" and "there is" lines.
  Queue({"amy-1", "bob-2", "joe~cats"});
  StatusReply(Replies(), c, "bob");
  EXPECT_THAT(Said(), ElementsAre("(bob) you have <U>1</U> pending",
                                  "there is <U>3</U> total pending"));

  // Finds are not counted as the person's but stand in the queue.
  Queue({"a-1", "b-2", "c~x", "d-4", "bob-5", "e-1", "bob-list", "bob-7",
         "bob~cats"});
  const size_t before = Said().size();
  StatusReply(Replies(), c, "bob");
  EXPECT_THAT(SaidSince(before),
              ElementsAre("(bob) you have <U>3</U> pending",
                          "<U>4</U> mails till your next request",
                          "there is <U>9</U> total pending"));
  // Two entries are several: the distance is said.
  Queue({"bob-1", "amy-2", "bob-list"});
  const size_t before_two = Said().size();
  StatusReply(Replies(), c, "bob");
  EXPECT_THAT(SaidSince(before_two),
              ElementsAre("(bob) you have <U>2</U> pending",
                          "<U>0</U> mails till your next request",
                          "there is <U>3</U> total pending"));
  EXPECT_THAT(seen.mails, IsEmpty());
}

TEST_F(ServeEngineTest, AdvertisementFollowsTheFindAndRangeSettings) {
  sim.Launch();
  for (int i = 0; i < 3; ++i) frm.lists.lstMails.Add("t");
  Queue({"a-1", "b-2"});
  frm.counts.counters.session = 12;
  frm.serving.ScrollSeconds = 45;
  frm.settings.FindsEnable = false;
  Advertise(Replies(), c);
  EXPECT_THAT(Said(), ElementsAre("quorvex serving <B><U>3</B></U> mails",
                                  "type /<B>srv</B> send <U>x,x-y</U>",
                                  "there are <B><U>2</B></U> pending; "
                                  "<B><U>12</B></U> sent"));
  EXPECT_EQ(frm.serving.ScrollSeconds, 0);

  frm.settings.FindsEnable = true;
  frm.settings.BlocksXYEnable = false;
  Advertise(Replies(), c);
  EXPECT_EQ(Said().at(4), "type /<B>srv</B> send <U>x</U>; find <U>x,x&y</U>");
}

TEST_F(ServeEngineTest, SessionMailNeedsAtLeastThreeCharacters) {
  sim.Launch();
  frm.settings.TotalSent = 345;
  frm.counts.counters.session = 21;
  prompter.QueueAnswer("ab");
  mnuMailSession_Click(Replies(), c);
  EXPECT_THAT(seen.mails, IsEmpty());

  prompter.QueueAnswer("Bob Smith");
  mnuMailSession_Click(Replies(), c);
  ASSERT_EQ(seen.mails.size(), 1u);
  const SimMail& m = seen.mails[0];
  EXPECT_EQ(m.to, "Bob Smith");
  EXPECT_EQ(m.subject, " quorvex session served ");
  EXPECT_THAT(m.body,
              HasSubstr("(srv) has served <B><U>21</B></U> this session!"));
  EXPECT_THAT(m.body, HasSubstr("(srv) has served <B><U>345</B></U> since "
                                "installation!"));
  prompter.QueueAnswer("Cal");  // three characters are enough
  mnuMailSession_Click(Replies(), c);
  ASSERT_EQ(seen.mails.size(), 2u);
  EXPECT_EQ(seen.mails[1].to, "Cal");
}

}  // namespace
}  // namespace quorvex
