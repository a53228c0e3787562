#include "server/serve_engine.h"

#include <algorithm>
#include <string>
#include <vector>

#include "client/wait.h"
#include "server/server_test_fixture.h"

namespace quorvex {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ServeEngineTest : public ServerTest {
 protected:
  ServeEngineTest() {
    AddMails(3);
    frm.status.Subscribe(
        [this](const StatusStrip& s) { statuses.push_back(s.text()); });
  }

  // Jobs that only say they ran; two lists are found at start.
  ServeJobs LoggingJobs() {
    ServeJobs jobs;
    jobs.mail = [this](FrmMain&, const ClientContext&) {
      log.push_back("mail");
    };
    jobs.list = [this](FrmMain&, const ClientContext&) {
      log.push_back("list");
    };
    jobs.find = [this](FrmMain&, const ClientContext&) {
      log.push_back("find");
    };
    jobs.sweep = [this](FrmMain&, const ClientContext&) { ++sweeps; };
    jobs.collect_lists = [this](FrmMain& f) {
      f.lstLists.Add("4");
      f.lstLists.Add("5");
      return lists_found;
    };
    jobs.build_lists = [this](FrmMain& f, const ClientContext&) {
      log.push_back("build");
      f.lstLists.Add("9");
    };
    return jobs;
  }

  // Launches the client and starts the server; the start's lines are
  // forgotten.
  void StartServing() {
    sim.Launch();
    engine.cmdStart_Click();
    ASSERT_TRUE(frm.ServerOn);
    said_at_start = Said().size();
    statuses.clear();
  }

  // One tick run by hand; Timer1 is kept from ticking on its own meanwhile.
  void Tick() {
    frm.Timer1->SetEnabled(false);
    engine.Timer1_Timer();
  }

  bool Timer1On() const { return frm.Timer1->enabled(); }
  bool Timer2On() const { return frm.Timer2->enabled(); }

  std::vector<std::string> log;
  std::vector<std::string> statuses;
  int sweeps = 0;
  int lists_found = 2;
  size_t said_at_start = 0;
  ServeEngine engine{frm, c, LoggingJobs()};
};

TEST_F(ServeEngineTest, StartReadsTheMailboxAndAnnouncesInOrder) {
  frm.lstMails.Add("left over from an earlier start");
  frm.counters.AOLCount = 5;
  frm.counters.CPUCount = 6;
  frm.counters.SentCount = 7;
  frm.counters.session = 8;
  sim.Launch();
  engine.cmdStart_Click();

  EXPECT_THAT(Said(), ElementsAre("quorvex mail server <B><U>on</B></U>",
                                  "type /<B>srv send <U>x,x-y</U></B>",
                                  "type <B>/srv find <U>x,x&y</U></B>"));
  EXPECT_THAT(frm.lstMails.Items(), ElementsAre("mail 1", "mail 2", "mail 3"));
  EXPECT_EQ(frm.lblMails.caption(), "mails: 3");
  EXPECT_EQ(frm.lblLists.caption(), "lists: 2");
  EXPECT_EQ(frm.cmdStart.caption(), "&stop");
  EXPECT_TRUE(frm.ServerOn);
  EXPECT_TRUE(Timer1On());
  EXPECT_TRUE(Timer2On());
  EXPECT_EQ(frm.counters.AOLCount, 0);
  EXPECT_EQ(frm.counters.CPUCount, 0);
  EXPECT_EQ(frm.counters.SentCount, 0);
  EXPECT_EQ(frm.counters.session, 8);  // the session goes on
  EXPECT_FALSE(sim.ims_on());
  EXPECT_EQ(engine.user_sn(), kUser);
  EXPECT_EQ(prompter.QueuedAnswers(), 0u);
  ASSERT_GE(statuses.size(), 3u);
  EXPECT_EQ(statuses.back(), "status: scanning chat");
  EXPECT_NE(
      std::find(statuses.begin(), statuses.end(), "status: found #2 lists"),
      statuses.end());
  EXPECT_NE(
      std::find(statuses.begin(), statuses.end(), "status: starting server"),
      statuses.end());
}

TEST_F(ServeEngineTest, UsageLinesFollowTheRangeSettingOnly) {
  frm.settings.BlocksXYEnable = false;
  frm.settings.FindsXYEnable = true;  // not what decides the find line
  sim.Launch();
  engine.cmdStart_Click();
  EXPECT_THAT(Said(), ElementsAre("quorvex mail server <B><U>on</B></U>",
                                  "type /<B>srv send <U>x</U></B>",
                                  "type <B>/srv find <U>x</U></B>"));

  // Without finds there is no find line.
  frm.settings.FindsEnable = false;
  frm.ServerOn = false;
  frm.Timer1->SetEnabled(false);  // no tick may say goodbye meanwhile
  size_t before = Said().size();
  engine.cmdStart_Click();
  EXPECT_THAT(SaidSince(before),
              ElementsAre("quorvex mail server <B><U>on</B></U>",
                          "type /<B>srv send <U>x</U></B>"));
}

TEST_F(ServeEngineTest, NoListsAsksToMakeThem) {
  lists_found = 0;
  std::vector<PromptRecord> prompts;
  prompter.SetObserver([&](const PromptRecord& r) { prompts.push_back(r); });
  sim.Launch();

  // No: the start ends idle, nothing said.
  engine.cmdStart_Click();
  ASSERT_EQ(prompts.size(), 1u);
  EXPECT_EQ(prompts[0].kind, "yesno");
  EXPECT_EQ(prompts[0].title, "make lists");
  EXPECT_EQ(prompts[0].prompt, "do you want to make new lists?");
  EXPECT_FALSE(frm.ServerOn);
  EXPECT_EQ(frm.status.text(), "status: idle");
  EXPECT_THAT(Said(), IsEmpty());
  EXPECT_FALSE(Timer1On());

  // Yes: the lists are built and the server starts.
  prompter.QueueAnswer("yes");
  engine.cmdStart_Click();
  EXPECT_THAT(log, ElementsAre("build"));
  EXPECT_TRUE(frm.ServerOn);
  EXPECT_EQ(frm.lblLists.caption(), "lists: 3");
}

TEST_F(ServeEngineTest, PauseWhileOffChangesNothingThenPausesAndResumes) {
  sim.Launch();
  engine.cmdPause_Click();
  EXPECT_FALSE(frm.ServerPaused);
  EXPECT_EQ(frm.cmdPause.caption(), "&pause");
  EXPECT_THAT(Said(), IsEmpty());

  StartServing();
  engine.cmdPause_Click();
  EXPECT_TRUE(frm.ServerPaused);
  EXPECT_EQ(frm.cmdPause.caption(), "&unpause");
  Run(5);
  EXPECT_THAT(SaidSince(said_at_start),
              ElementsAre("quorvex mail server <B><U>paused</B></U>"));
  EXPECT_FALSE(Timer1On());
  EXPECT_FALSE(Timer2On());
  EXPECT_EQ(frm.status.text(), "status: paused");
  EXPECT_THAT(log, IsEmpty());  // the pausing tick serves nothing

  engine.cmdPause_Click();
  EXPECT_FALSE(frm.ServerPaused);
  EXPECT_EQ(frm.cmdPause.caption(), "&pause");
  EXPECT_TRUE(Timer1On());
  EXPECT_TRUE(Timer2On());
  EXPECT_EQ(frm.status.text(), "status: scanning chat");
  EXPECT_THAT(SaidSince(said_at_start),
              ElementsAre("quorvex mail server <B><U>paused</B></U>",
                          "quorvex mail server <B><U>unpaused</B></U>"));
}

TEST_F(ServeEngineTest, StopDuringATickFinishesItsJobsFarewellOnTheNextTick) {
  frm.settings.ListIfNoPending = true;  // the list step runs every tick
  frm.settings.BotScroll = 30000;
  bool clicked = false;
  size_t said_at_find = 0;
  engine.jobs().mail = [&](FrmMain&, const ClientContext& ctx) {
    log.push_back("mail");
    if (clicked) return;
    clicked = true;
    ctx.host.Schedule(0.2, [&] { engine.cmdStart_Click(); });
    PauseSeconds(ctx.host, 1);
  };
  engine.jobs().find = [&](FrmMain&, const ClientContext&) {
    log.push_back("find");
    said_at_find = Said().size();
  };
  StartServing();
  Run(10);

  // The tick in which stop was pressed ran every job, and only then did
  // the next tick say goodbye.
  EXPECT_THAT(log, ElementsAre("mail", "list", "find"));
  EXPECT_EQ(said_at_find, said_at_start);
  EXPECT_THAT(SaidSince(said_at_start),
              ElementsAre("quorvex mail server <B><U>off</B></U>",
                          "please stop requesting"));
  EXPECT_EQ(frm.cmdStart.caption(), "&start");
  EXPECT_FALSE(Timer1On());
  EXPECT_FALSE(Timer2On());
  EXPECT_TRUE(sim.ims_on());
  EXPECT_EQ(statuses.back(), "status: idle");
}

TEST_F(ServeEngineTest, TickOrderAndIntervals) {
  frm.settings.BotScroll = 2;
  frm.settings.ListAdvertise = 3;
  StartServing();
  frm.ScrollSeconds = 0;
  frm.ListSeconds = 0;
  frm.ReplyQueue.Add("send-hello room");
  Tick();
  // Neither counter has reached its interval yet.
  EXPECT_THAT(log, ElementsAre("mail", "find"));
  EXPECT_THAT(SaidSince(said_at_start), ElementsAre("hello room"));
  EXPECT_EQ(frm.room_name, "Lobby");

  log.clear();
  frm.Timer2->SetEnabled(false);  // the counter stays where the ad left it
  frm.ScrollSeconds = 2;
  frm.ListSeconds = 3;
  size_t before = Said().size();
  Tick();
  EXPECT_THAT(log, ElementsAre("mail", "list", "find"));
  EXPECT_EQ(SaidSince(before).size(), 3u);  // the advertisement
  EXPECT_EQ(frm.ScrollSeconds, 0);
}

TEST_F(ServeEngineTest, SecondClockSweepsAndCounts) {
  frm.settings.ListAdvertise = 60;
  engine.Timer2_Timer();
  EXPECT_EQ(sweeps, 1);
  EXPECT_EQ(frm.ListSeconds, 1);
  EXPECT_EQ(frm.ScrollSeconds, 1);

  // "if no requests pending" with an empty queue: the next tick's list
  // step is due at once.
  frm.settings.ListIfNoPending = true;
  engine.Timer2_Timer();
  EXPECT_EQ(frm.ListSeconds, 71);
  frm.pending.Append("bob-list");
  frm.ListSeconds = 0;
  engine.Timer2_Timer();
  EXPECT_EQ(frm.ListSeconds, 1);

  // The counters stop at the 16-bit limit instead of overflowing.
  frm.ListSeconds = 32767;
  frm.ScrollSeconds = 32766;
  engine.Timer2_Timer();
  engine.Timer2_Timer();
  EXPECT_EQ(frm.ListSeconds, 32767);
  EXPECT_EQ(frm.ScrollSeconds, 32767);
}

TEST_F(ServeEngineTest, ListGoesOutOnTheTickAfterASecondWhenNothingIsPending) {
  frm.settings.ListAdvertise = 60;
  frm.settings.BotScroll = 30000;
  StartServing();
  frm.settings.ListIfNoPending = true;
  frm.ListSeconds = 0;
  // Timer2 finds the queue empty, then a list request comes in.
  Run(1.05);
  EXPECT_GE(frm.ListSeconds, 61);
  frm.settings.ListIfNoPending = false;  // the counter alone decides now
  log.clear();
  Tick();
  EXPECT_THAT(log, ElementsAre("mail", "list", "find"));
}

TEST_F(ServeEngineTest, ReplyPhaseAnswersWhatWasQueuedWhenItBegan) {
  StartServing();
  frm.frmBanning.cmbMistakes.text = "3";
  for (const char* entry : {"nodash", "bob-pending", "amy-duplication",
                            "send-hi - all", "joe-mailbox", "ann-whatever"})
    frm.ReplyQueue.Add(entry);
  // A reply queued while the phase runs waits for the next tick.
  host.Schedule(0.1, [&] { frm.ReplyQueue.Add("late-pending"); });
  Tick();
  EXPECT_THAT(SaidSince(said_at_start),
              ElementsAre("(bob) you have to many pending",
                          "(amy) you made a duplication error", "hi - all",
                          "(joe) you have a full mailbox",
                          "(joe) you now have <U>2</U> mistakes left"));
  EXPECT_THAT(frm.ReplyQueue.Items(), ElementsAre("late-pending"));
  EXPECT_THAT(frm.MistakeList.Items(), ElementsAre("joe-1"));

  // With "ban for full mail box" off, a full mailbox costs nothing.
  frm.frmBanning.chkFullBox.value = 0;
  frm.ReplyQueue.Clear();
  frm.ReplyQueue.Add("joe-mailbox");
  size_t before = Said().size();
  Tick();
  EXPECT_THAT(SaidSince(before), ElementsAre("(joe) you have a full mailbox"));
  EXPECT_THAT(frm.MistakeList.Items(), ElementsAre("joe-1"));

  // An empty entry ends the phase and stays.
  frm.ReplyQueue.Add("");
  frm.ReplyQueue.Add("bob-pending");
  before = Said().size();
  Tick();
  EXPECT_THAT(SaidSince(before), IsEmpty());
  EXPECT_EQ(frm.ReplyQueue.Count(), 2);
}

TEST_F(ServeEngineTest, ClientRestartOnlyWhenSignedOffBelowTwo) {
  int restarts = 0;
  bool timer2_during_restart = true;
  engine.aol_restart = [&] {
    ++restarts;
    timer2_during_restart = Timer2On();
  };
  StartServing();
  for (int setting : {0, 1}) {
    frm.settings.AOLRestart = static_cast<std::int16_t>(setting);
    frm.counters.AOLCount = 500;
    Tick();
    EXPECT_EQ(restarts, 0) << setting;
  }

  // Signed off: restarted whatever the setting.
  sim.SignOff();
  Tick();
  EXPECT_EQ(restarts, 1);
  EXPECT_FALSE(timer2_during_restart);
  EXPECT_TRUE(Timer2On());
  EXPECT_EQ(frm.counters.AOLCount, 0);
  EXPECT_NE(
      std::find(statuses.begin(), statuses.end(), "status: restarting aol"),
      statuses.end());
  EXPECT_NE(
      std::find(statuses.begin(), statuses.end(), "status: restarted aol"),
      statuses.end());
}

TEST_F(ServeEngineTest, ClientRestartAfterItsQuotaOfMails) {
  int restarts = 0;
  engine.aol_restart = [&] { ++restarts; };
  frm.settings.AOLRestart = 3;
  StartServing();
  frm.counters.AOLCount = 2;
  Tick();
  EXPECT_EQ(restarts, 0);
  frm.counters.AOLCount = 3;
  Tick();
  EXPECT_EQ(restarts, 1);
  EXPECT_EQ(frm.counters.AOLCount, 0);
  EXPECT_THAT(SaidSince(said_at_start),
              ElementsAre("quorvex is restarting <B><U>aol</B></U>",
                          "please hold requests and be patient",
                          "quorvex restarted <B><U>aol</B></U>"));
  EXPECT_EQ(frm.room_name, "Lobby");
}

TEST_F(ServeEngineTest, MachineRestartEndsTheTick) {
  int restarts = 0;
  engine.cpu_restart = [&] {
    ++restarts;
    EXPECT_FALSE(Timer2On());
  };
  frm.settings.CPURestart = 2;
  StartServing();
  frm.counters.CPUCount = 2;
  Tick();
  EXPECT_EQ(restarts, 1);
  EXPECT_THAT(log, IsEmpty());
  EXPECT_THAT(SaidSince(said_at_start),
              ElementsAre("quorvex is restarting <B><U>cpu</B></U>",
                          "please hold requests and be patient"));
  EXPECT_EQ(frm.status.text(), "status: restarting cpu");
}

TEST_F(ServeEngineTest, SentMailIsClearedAfterItsQuota) {
  frm.settings.SentRestart = 2;
  frm.settings.MailMethod = true;  // send later: the waiting mail goes too
  StartServing();
  frm.counters.SentCount = 2;
  Tick();
  EXPECT_THAT(
      SaidSince(said_at_start),
      ElementsAre("quorvex is deleting <B><U>sent</B></U>", "please be patient",
                  "quorvex deleted <B><U>sent</B></U>"));
  EXPECT_EQ(frm.counters.SentCount, 0);
  EXPECT_EQ(sim.SentCount(), 0);
  EXPECT_EQ(sim.WaitingCount(), 0);
  EXPECT_TRUE(Timer2On());
  EXPECT_THAT(log, ElementsAre("mail", "find"));
  EXPECT_NE(std::find(statuses.begin(), statuses.end(), "status: deleted sent"),
            statuses.end());
}

TEST_F(ServeEngineTest, NothingRunsAfterTheProgramEnded) {
  StartServing();
  frm.ended = true;
  Tick();
  engine.Timer2_Timer();
  engine.cmdStart_Click();
  EXPECT_THAT(log, IsEmpty());
  EXPECT_EQ(sweeps, 0);
  EXPECT_TRUE(frm.ServerOn);
}

}  // namespace
}  // namespace quorvex
