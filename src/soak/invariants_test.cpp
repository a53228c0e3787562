#include "soak/invariants.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "app/job_log.h"

namespace quorvex::soak {
namespace {

using Lines = std::vector<std::string>;
using scenario::Verb;

// Whom each violation names: its text up to the first ':'.
Lines Who(const Lines& bad) {
  Lines out;
  for (const std::string& b : bad) out.push_back(b.substr(0, b.find(':')));
  return out;
}

// A scenario of three mails, and transcript lines built by hand.
class InvariantsTest : public ::testing::Test {
 protected:
  InvariantsTest() { sc.mails = {"a", "b", "c"}; }
  void Line(double t, const std::string& body) {
    text += "{\"t\":" + std::to_string(t) + "," + body + "}\n";
  }
  // The last transcript line goes.
  void DropLast() { text.erase(text.rfind("{\"t\"")); }
  // The run's final state, in place of one written before.
  void Final(double t, const std::string& body) {
    if (const auto at = text.find(R"("ev":"final")"); at != std::string::npos) {
      const auto from = text.rfind("{\"t\"", at);
      text.erase(from, text.find('\n', at) + 1 - from);
    }
    Line(t, R"("ev":"final",)" + body);
  }
  void List(double t, const char* list, const char* op,
            const std::string& item) {
    Line(t, std::string(R"("ev":"list","name":")") + list + R"(","op":")" + op +
                R"(","item":")" + item + "\"");
  }
  void Add(double t, const std::string& item) {
    List(t, "lstPending", "add", item);
  }
  void Remove(double t, const std::string& item) {
    List(t, "lstPending", "remove", item);
  }
  // Asked at `asked`, taken off the list (by a job or the user) at `taken`.
  void Take(double asked, double taken, const std::string& item) {
    Add(asked, item);
    Remove(taken, item);
  }
  void Clear(double t) { List(t, "lstPending", "clear", ""); }
  void Ban(double t, const std::string& who) {
    List(t, "lstBanned", "add", who);
  }
  // The start's read of the mailbox: the list emptied, or `n` titles added.
  void Titles(double t, int n) {
    if (n == 0) List(t, "lstMails", "clear", "");
    for (int i = 0; i < n; ++i) List(t, "lstMails", "add", "x");
  }
  void Label(double t, const char* name, const std::string& caption) {
    Line(t, std::string(R"("ev":"label","name":")") + name + R"(","text":")" +
                caption + "\"");
  }
  void Status(double t, const std::string& status) {
    Line(t, R"("ev":"status","text":")" + status + "\"");
  }
  void Client(double t, const std::string& what) {
    Line(t, R"("ev":"client","what":")" + what + "\"");
  }
  // The server goes serving (its start button reads "stop").
  void Serving(double t) { Label(t, "cmdStart", "&stop"); }
  // The client takes mail `n` for `to` ("(amy)(bob)"), to send now or,
  // with `send` "later", to send later.
  void Handed(double t, const std::string& to, int n,
              const std::string& send = "") {
    Line(t, R"j("ev":"mail","to":")j" + to +
                R"j(","body":"[mail number <B><U>)j" + std::to_string(n) +
                "</B></U>]\"" +
                (send.empty() ? "" : R"(,"send":")" + send + "\""));
  }
  // A line of the scenario's timeline, kept in the order of time.
  void At(double at, Verb verb, const std::string& name = "",
          const std::string& said = "") {
    sc.timeline.push_back(
        {.line = 1, .at = at, .verb = verb, .name = name, .text = said});
    std::stable_sort(sc.timeline.begin(), sc.timeline.end(),
                     [](const auto& a, const auto& b) { return a.at < b.at; });
  }
  void Press(double at, const std::string& name) { At(at, Verb::kPress, name); }
  // `who` says `said` at `at`; the room shows it at `shown` (at its
  // moment when not given).
  void Say(double at, const std::string& who, const std::string& said,
           double shown = -1) {
    At(at, Verb::kSay, who, said);
    Line(shown < 0 ? at : shown,
         R"("ev":"chat","sn":")" + who + R"(","text":")" + said + "\"");
  }
  // The final state: mailboxes as (owner, mail number) pairs.
  Lines Check(const std::vector<std::pair<std::string, int>>& received,
              const std::string& pending = "[]",
              const std::string& sent = "sent: 0",
              const std::string& stored = "0",
              const std::string& waiting = "") {
    std::map<std::string, std::string> by_owner;
    for (const auto& [owner, n] : received)
      by_owner[owner] +=
          std::string(by_owner[owner].empty() ? "" : ",") +
          R"({"from":"Host","subject":"x","body":"[mail number <B><U>)" +
          std::to_string(n) + R"(</B></U>]"})";
    std::string boxes;
    for (const auto& [owner, mails] : by_owner)
      boxes += (boxes.empty() ? "\"" : ",\"") + owner + "\":[" + mails + "]";
    Final(999, R"("lists":{"lstPending":)" + pending +
                   R"(},"labels":{"lblSent":")" + sent +
                   R"("},"registry":{"Settings":{"TotalSent":")" + stored +
                   R"("}},"files":{},"mailboxes":{)" + boxes + "}" +
                   (waiting.empty() ? "" : R"(,"waiting":)" + waiting));
    figures = {};
    Lines bad =
        CheckRun(sc, text, &figures, log.empty() ? nullptr : &log, allow);
    // Transcripts written by hand for the other checks show no progress of
    // the program's; only the tests of the program standing still look.
    std::erase_if(bad, [](const std::string& b) {
      return b.rfind("the program stood still", 0) == 0;
    });
    return bad;
  }
  // A line of the program's log, as it writes them.
  void Log(JobOutcome outcome, const std::string& who,
           const std::string& what) {
    log += FormatLogLine(CivilTime{}, {outcome, who, what});
  }

  scenario::Scenario sc;
  std::string text;
  std::string log;  // none: the log is not checked
  Allowances allow;
  RunFigures figures;
};

TEST_F(InvariantsTest, EveryAcceptedRequestDeliveredOnceOrPending) {
  Take(1, 3, "bob-1");
  Take(1.5, 3, "amy-1");
  Add(2, "bob-2");
  // One forward to both (counted once each); bob-2 still pending.
  EXPECT_EQ(Check({{"bob", 1}, {"amy", 1}}, R"(["bob-2"])", "sent: 2", "2"),
            Lines{});
  EXPECT_EQ(figures.accepted, 3);
  EXPECT_EQ(figures.delivered, 2);
  EXPECT_EQ(figures.still_pending, 1);
  // bob-2 taken long before the end and never received; bob-1 received
  // twice; a mail to zed, who asked for nothing.
  Remove(4, "bob-2");
  EXPECT_EQ(
      Check({{"bob", 1}, {"bob", 1}, {"amy", 1}, {"zed", 3}}),
      (Lines{
          "mail to zed, who asked for nothing",
          "bob-1: delivered 2 times, asked 1",
          "bob-2: asked 1 times, delivered 0, pending 0, and no reason why"}));
}

// A client that signs off and one killed outright lose alike what they
// were sending.
TEST_F(InvariantsTest, RequestsEndedTheWaysTheProgramKnowsAreExcused) {
  sc.dead_mails = {3};
  sc.full_mailboxes = {"Amy"};
  for (const Verb off : {Verb::kSignoff, Verb::kKill}) {
    SCOPED_TRACE(off == Verb::kKill ? "killed" : "signed off");
    text.clear();
    sc.timeline.clear();
    Press(5, "mnuClearALL");
    Take(1, 2, "bob-3");  // a dead mail
    Take(1, 2, "amy-1");  // a full mailbox
    Add(1, "joe-1");      // cleared by the user, with everything in the list
    Clear(5);
    Take(6, 938, "ann-2");  // taken 61 s before the end: lost, not in flight
    Take(6, 939, "cat-2");  // taken 60 s before the end: in flight
    // Handed to the client, which went while sending it (1 s later: lost
    // by the client; 1.5 s: the mail should have gone).
    At(11, off);
    Take(9, 9.5, "eve-1");
    Take(9, 9.5, "fay-1");
    // Taken, and the client went before it took the mail: the forward
    // ends there and the group is lost.
    Take(9, 10.5, "gil-1");
    // Taken, and a start read the mailbox again a minute later: it cleared
    // the forward's windows away.
    Take(6, 20, "dan-1");
    Titles(80, 0);
    Handed(10, "(eve)", 1);
    Handed(9.5, "(fay)", 1);
    EXPECT_EQ(Who(Check({})), (Lines{"ann-2", "fay-1"}));
    EXPECT_EQ(figures.in_flight, 1);
    EXPECT_EQ(figures.excused, 7);
    const std::map<std::string, int> endings = {
        {"cleared or removed by the user", 1},
        {"cut short by a start", 1},
        {"dead mail", 1},
        {"full mailbox", 1},
        {"in flight at a stop", 1},
        {"lost with a sign-off", 2}};
    EXPECT_EQ(figures.endings, endings);
  }
}

TEST_F(InvariantsTest, WhatAUserDidMayComeAMomentAfterTheAction) {
  // A clear pressed at 5, written 4 ms of the clock later (through the
  // real windows the press itself takes that long at ten times the pace).
  // Before the moment, it is not the action's doing.
  Press(5, "mnuClearALL");
  for (const auto& [cleared, within, excused] : {std::tuple{5.004, 0.0, false},
                                                 {5.004, 0.002, false},
                                                 {5.004, 0.05, true},
                                                 {4.99, 0.05, false}}) {
    SCOPED_TRACE(testing::Message() << cleared << " within " << within);
    text.clear();
    allow.acted_within = within;
    Add(1, "bob-1");
    Clear(cleared);
    EXPECT_EQ(Check({}).empty(), excused);
  }
}

TEST_F(InvariantsTest, ATakeAtTheMomentOfAClearIsNoRemovalByTheUser) {
  // The clear's prompt lets the serving go on: at its moment a job takes
  // hal's request and counts it sent. A removal the count does not follow
  // is the user's, and wants its line.
  Press(5, "mnuClearSN");
  Take(1, 5, "hal-2");
  Label(5, "lblSent", "total: 1");
  Take(1, 5, "ann-3");
  Log(JobOutcome::kSent, "(hal)", "send 2");
  EXPECT_EQ(Check({{"hal", 2}}, "[]", "total: 1", "1"),
            Lines{"log: ann's request for mail 3 was removed by the user 1 "
                  "times, and 0 lines say so"});
  Log(JobOutcome::kRemovedByUser, "(ann)", "send 3");
  EXPECT_EQ(Check({{"hal", 2}}, "[]", "total: 1", "1"), Lines{});
}

TEST_F(InvariantsTest, WaitingDeletedByDesignAndBannedAreNamedEndings) {
  // Sent later, to bob and amy together, after the sent-mail check below;
  // only bob's copy is still in the client's outgoing queue at the end.
  Take(1, 2, "bob-1");
  Take(1, 2, "amy-1");
  Handed(21, "(bob)(amy)", 1, "later");
  // Sent later, up to the moment the sent-mail check ran: deleted unsent.
  // A mail sent later only after the check ran, or sent now, is not
  // excused by it.
  for (const char* who : {"cat", "dan", "eve"})
    Take(1, 4, std::string(who) + "-2");
  Handed(20, "(cat)", 2, "later");
  Handed(5, "(eve)", 2, "now");
  Status(20, "status: deleting sent");
  Handed(20.001, "(dan)", 2, "later");
  // Banned: gus's entry goes at the moment of the ban (his name listed
  // with a space), hal's a moment after hal's ban, and ivy's at the
  // moment someone else was banned.
  Ban(30, "G us");
  Take(1, 30.001, "gus-3");
  Ban(31, "hal");
  Take(1, 31.002, "hal-3");
  Take(1, 30, "ivy-3");
  EXPECT_EQ(Who(Check({}, "[]", "sent: 0", "0",
                      R"j([{"to":"(bob)","subject":"x",)j"
                      R"j("body":"[mail number <B><U>1</B></U>]"}])j")),
            (Lines{"amy-1", "dan-2", "eve-2", "hal-3", "ivy-3"}));
  EXPECT_EQ(figures.waiting, 1);
  EXPECT_EQ(figures.deleted_waiting, 1);
  EXPECT_EQ(figures.banned, 1);
  EXPECT_EQ(figures.excused, 0);

  // With the regular mail method the check leaves waiting mail alone.
  sc.registry.push_back({"Quorvex", "Settings", "MailMethod", "False"});
  EXPECT_EQ(Who(Check({})), (Lines{"amy-1", "bob-1", "cat-2", "dan-2", "eve-2",
                                   "hal-3", "ivy-3"}));
  EXPECT_EQ(figures.deleted_waiting, 0);
}

TEST_F(InvariantsTest, AGroupTakenWhileTheClientWasOffIsLostByDesign) {
  // Off at 20: jan's group, taken then, is lost with the step. On again
  // at 24.5 and off at 30: jay's, kim's and lee's had a client.
  Client(20, "signs off");
  Take(1, 20, "jan-1");
  Take(1, 25, "jay-1");
  Client(24.5, "signs on");
  Take(1, 24.5, "kim-1");
  Take(1, 29.9, "lee-1");
  Client(30, "signs off");
  EXPECT_EQ(Who(Check({})), (Lines{"jay-1", "kim-1", "lee-1"}));
  EXPECT_EQ(figures.excused, 1);
}

// Asked twice: the first take is lost to a sign-off, the second is
// handed over and received. The later hand-over must not excuse the
// first take from its sign-off, nor one sign-off too late.
TEST_F(InvariantsTest, AHandOverOfALaterTakeLeavesTheFirstLostToItsSignOff) {
  // Signed off between the takes, or well after the hand-over.
  for (const auto& [off, bad] :
       {std::pair{21.0, Lines{}}, std::pair{58.0, Lines{"amy-2"}}}) {
    SCOPED_TRACE(off);
    text.clear();
    sc.timeline.clear();
    Take(1, 20, "amy-2");
    Take(40, 50, "amy-2");
    Handed(52, "(amy)", 2);
    At(off, Verb::kSignoff);
    EXPECT_EQ(Who(Check({{"amy", 2}})), bad);
  }
}

// The moments that decide whether a sign-off lost a take: one at the very
// moment of the hand-over, and a hand-over at the very end of the
// forward's minute.
TEST_F(InvariantsTest, ASignOffOrAHandOverAtTheExactBoundsOfATake) {
  // Signed off as the client took amy's mail: it went with the client.
  Take(1, 20, "amy-1");
  Handed(30, "(amy)", 1);
  At(30, Verb::kSignoff);
  // The client was already off (killed at 90) when bob's was taken at
  // 100: that take ended at once. Bob asked again; the client came back
  // at 120 and a later take handed the mail over at 130, within the first
  // take's minute: that hand-over is the second take's, not the first's.
  Client(90, "signs off");
  Take(1, 100, "bob-1");
  Client(120, "signs on");
  Take(110, 125, "bob-1");
  Handed(130, "(bob)", 1);
  // Cy's was taken once the client was back, and handed over at the end
  // of the forward's minute: the client had it, and cy did not get it.
  Take(1, 140, "cy-1");
  Handed(200, "(cy)", 1);
  EXPECT_EQ(Check({{"bob", 1}}),
            Lines{"cy-1: asked 1 times, delivered 0, pending 0, and no "
                  "reason why"});
  EXPECT_EQ(figures.endings.at("lost with a sign-off"), 2);
}

TEST_F(InvariantsTest, TheTotalShownIsTheTotalStored) {
  EXPECT_EQ(Check({}, "[]", "sent: 7", "7"), Lines{});
  EXPECT_EQ(Check({}, "[]", "sent: 7", "6"),
            Lines{"counter sent: 7 but TotalSent = 6"});
  // Not when a write of the settings failed.
  Line(1, R"("ev":"fault","kind":"registry-write","what":"x")");
  EXPECT_EQ(Check({}, "[]", "sent: 7", "6"), Lines{});
  EXPECT_EQ(figures.faults.at("registry-write"), 1);
}

TEST_F(InvariantsTest, SomeoneBesideFloodersGetsTheMailWithinTheBound) {
  // Two flooders talk all along; the asker asks at 10, the moment the
  // serving begins.
  const double bound = FloodBound({.latency_seconds = 0.05, .flooders = 2});
  for (int t = 5; t < 200; ++t)
    for (const char* f : {"flooder1", "flooder2"})
      At(t + 0.1, Verb::kSay, f, "/srv send 1");
  auto asker = [this](double asked, double handed) {
    Add(asked, "asker-2");
    if (handed > 0) Handed(handed, "(asker)", 2);
  };
  Serving(10);
  asker(10, 10 + bound);           // at the bound
  asker(100, 100 + bound + 0.01);  // late
  asker(200, 0);                   // never
  auto bad = Check({{"asker", 2}, {"asker", 2}}, R"(["asker-2"])");
  EXPECT_EQ(Who(bad), (Lines{"asker-2", "asker-2"}));
  EXPECT_NE(bad[0].find("held back by flooders"), std::string::npos);
  EXPECT_EQ(figures.flood_asks, 3);

  // The user acting meanwhile, or a sign-off shortly before, excuses it.
  Press(110, "cmdPause");
  At(150, Verb::kSignoff);
  text.clear();
  Serving(1);
  asker(10, 10 + bound - 1);
  asker(100, 100 + bound + 1);
  asker(200, 0);
  EXPECT_EQ(Check({{"asker", 2}, {"asker", 2}}, R"(["asker-2"])"), Lines{});
  EXPECT_EQ(figures.flood_asks, 1);
}

TEST(FloodBoundTest, CountsEverySentCheckAndAdvertisementThatMayCome) {
  // The sent-mail count may stand at its limit as the asker asks: a check
  // before the first forward, and one more after every `sent_restart`
  // lines of the flooders' groups ahead (one line each).
  for (const auto& [flooders, restart, checks] : {std::tuple{0, 2, 1},
                                                  {1, 2, 1},
                                                  {2, 2, 2},
                                                  {3, 2, 2},
                                                  {4, 2, 3},
                                                  {5, 6, 1},
                                                  {6, 6, 2},
                                                  {4, 1, 0},
                                                  {4, 0, 0}})
    EXPECT_EQ(SentChecksAhead(flooders, restart), checks)
        << flooders << " flooders, the check every " << restart;
  const FloodRoom room{.latency_seconds = 0.05, .flooders = 2};
  auto with = [&room](int sent_restart, int bot_scroll) {
    FloodRoom r = room;
    r.sent_restart = sent_restart;
    r.bot_scroll = bot_scroll;
    return r;
  };
  EXPECT_DOUBLE_EQ(FloodBound(with(2, 10000)) - FloodBound(with(0, 10000)),
                   2 * SentCheckSeconds(0.05));
  // An advertisement at once, and another for each interval over within
  // the wait, which each lengthens; at most one a tick.
  const double one_ad = FloodBound(with(0, 10000));
  const int ends_within = static_cast<int>(one_ad);
  EXPECT_DOUBLE_EQ(FloodBound(with(0, ends_within + 1)), one_ad);
  EXPECT_DOUBLE_EQ(FloodBound(with(0, ends_within)),
                   one_ad + AdvertisementSeconds(0.05));
  EXPECT_DOUBLE_EQ(FloodBound(with(0, 0)),
                   one_ad + (room.flooders + 1) * AdvertisementSeconds(0.05));
  EXPECT_DOUBLE_EQ(FloodBound(with(0, 1)), FloodBound(with(0, 0)));
  // Served at half the pace, each costs twice as long and more intervals
  // end within the wait.
  EXPECT_GT(FloodBound(room, 2), 2 * FloodBound(room));
}

TEST_F(InvariantsTest, TheFloodBoundHasTheSentChecksOnceTheCountCanReachThem) {
  // SentRestart 2 stored; the total counter goes from 0 up by one, then by
  // two.
  sc.registry.push_back(
      {.file = "", .section = "Settings", .key = "SentRestart", .value = "2"});
  At(5.1, Verb::kSay, "flooder1", "/srv send 1");
  const FloodRoom never{.latency_seconds = 0.05, .flooders = 1};
  FloodRoom checked = never;
  checked.sent_restart = 2;
  auto run = [this](int counted, double waited) {
    const std::string total = std::to_string(counted);
    text.clear();
    Serving(1);
    Label(1, "lblSent", "total: 0");
    Label(2, "lblSent", "total: " + total);
    Add(5, "asker-2");
    Handed(5 + waited, "(asker)", 2);
    return Check({{"asker", 2}}, "[]", "total: " + total, total).size();
  };
  EXPECT_EQ(run(1, FloodBound(never)), 0u);
  EXPECT_EQ(run(1, FloodBound(never) + 0.01), 1u);
  EXPECT_EQ(figures.flood_asks, 1);
  EXPECT_EQ(run(2, FloodBound(checked)), 0u);
  EXPECT_EQ(run(2, FloodBound(checked) + 0.01), 1u);
}

TEST_F(InvariantsTest, TheFloodBoundCountsOnlyFloodersAhead) {
  // Someone's requests said before the stretch's clear, heard after it,
  // stand ahead of the asker's: the asker waits for them, not for the
  // flooders. With a flooder's ahead, the bound holds.
  const double bound = FloodBound({.latency_seconds = 0.05});
  Serving(1);
  auto late_mail = [this, bound](double asked) {
    Add(asked, "asker-2");
    Handed(asked + bound + 1, "(asker)", 2);
  };
  auto check = [this] {
    return Check({{"asker", 2}, {"asker", 2}}, R"(["flooder1-3"])");
  };
  Add(5, "jo jo~dog");
  late_mail(10);
  Remove(50, "jo jo~dog");
  Add(60, "flooder1-3");
  late_mail(100);
  auto bad = check();
  EXPECT_EQ(Who(bad), Lines{"asker-2"});
  EXPECT_NE(bad[0].find("asker-2: held back by flooders, waited " +
                        std::to_string(static_cast<int>(bound + 1))),
            std::string::npos);
  EXPECT_EQ(figures.flood_asks, 1);
  // A client served at half the simulator's pace has twice the bound.
  allow.serving_pace = 2;
  EXPECT_EQ(check(), Lines{});
  EXPECT_EQ(figures.flood_asks, 1);

  // Or as its forwards went, on average: one that took twice the
  // simulator's time widens the bound; with another that took none, they
  // went at the simulator's pace.
  allow.serving_pace = 1;
  allow.pace_from_run = true;
  auto forward = [&](double at, double seconds) {
    Status(at, "status: opening mail");
    Status(at + seconds, "status: sent mail");
    return check().size();
  };
  EXPECT_EQ(forward(200, 2 * ForwardSeconds(0.05)), 0u);
  EXPECT_EQ(forward(210, 0), 1u);
}

TEST_F(InvariantsTest, ARestoredListEndsWithWhatTheFileHolds) {
  Label(0, "lblPending", "pending: 3");
  Add(0, "bob-1");
  Add(0, "");
  Add(0, "");  // behind the last entry: the count's doing
  Label(0, "lblBanned", "banned: 9");
  Ban(0, "zed");
  EXPECT_EQ(Check({}, R"(["bob-1","",""])"),
            (Lines{"the restored Pending list ends in an empty line (line 3): "
                   "the file's count stops serving",
                   "restored 1 lines, but the label reads banned: 9"}));
  EXPECT_EQ(figures.restored_lines, 4);
  // An empty value the file does store is the file's.
  sc.ini.push_back({"Quorvex.INI", "Quorvex", "Pending 2", ""});
  text.clear();
  Add(0, "bob-1");
  Add(0, "");
  Add(0, "");
  EXPECT_EQ(Check({{"bob", 1}}), Lines{});
}

TEST_F(InvariantsTest, ARequestSaidWhileAStartReadsTheMailboxIsTaken) {
  // Three titles before the start's read and after it.
  Titles(0, 3);
  Titles(5, 0);
  Titles(6, 3);
  Say(5.2, "early1", "/srv send 3");
  Say(5.3, "early4", "/srv send 4");
  Say(5.4, "early2", "/srv send 3");
  Say(5.6, "early3", "/srv send 3");
  // Heard exactly two seconds after it was said, and a moment later.
  Say(5.5, "early5", "/srv send 2");
  Say(5.75, "early6", "/srv send 2");
  Add(5.25, "early1-3");   // taken
  Add(5.5, "early2-3");    // taken
  Add(7.5, "early5-2");    // taken, at the bound
  Add(7.875, "early6-2");  // too late
  // early3's is refused; early4 asks for a mail beyond the list.
  EXPECT_EQ(
      Check({}, R"(["early1-3","early2-3","early5-2","early6-2"])"),
      (Lines{"early3-3: asked for while a start read the mailbox, refused",
             "early6-2: asked for while a start read the mailbox, refused"}));
  EXPECT_EQ(figures.early_requests, 5);
}

TEST_F(InvariantsTest, ARequestIsJudgedFromWhenTheRoomShowedIt) {
  // A read from 5 to 6 of three titles, before and after. Through the
  // binding a line runs late when a call into a busy client holds the
  // loop, and the lines due meanwhile run right after it. A request must
  // be taken within 10 s of the room showing it.
  allow.heard_within = 10;
  Titles(0, 3);
  Titles(5, 0);
  Say(5.2, "early1", "/srv send 1", 8.0);  // shown 2.8 s late
  Say(5.3, "early2", "/srv send 2");
  Say(5.4, "early3", "/srv send 3", 9.0);
  Say(5.5, "early4", "/srv send 3");
  DropLast();  // the room never showed early4's
  Titles(6, 3);
  Add(17.9, "early1-1");  // 9.9 s after the room showed it: heard
  Add(15.5, "early2-2");  // 10.2 s after: another, later
  EXPECT_EQ(
      Check({}, R"(["early1-1","early2-2"])"),
      (Lines{"early2-2: asked for while a start read the mailbox, refused",
             "early3-3: asked for while a start read the mailbox, refused"}));
  EXPECT_EQ(figures.early_requests, 3);

  // A sign-off up to a second after the room showed a line: its request
  // was not heard (early1's, shown at 8, and early3's); early2's was.
  At(9, Verb::kSignoff);
  EXPECT_EQ(Who(Check({}, R"(["early1-1","early2-2"])")), Lines{"early2-2"});
  EXPECT_EQ(figures.early_requests, 1);
}

TEST_F(InvariantsTest, AProgramStartedAgainHasReadNoMailYet) {
  // The first program's read is cut short by an exit at 8; the program
  // started at 10 reads from 12 to 14 with an empty list before: what is
  // asked during its read is judged against none, what is asked after it
  // against the three it read. A request said after the exit, before the
  // start, is heard by no program.
  Titles(0, 3);
  Titles(5, 0);
  Titles(6, 1);
  Titles(7, 1);
  Titles(12, 0);
  for (double t : {12.5, 13.0, 14.0}) Titles(t, 1);
  Press(8, "lblExit");
  At(10, Verb::kStart);
  Say(9, "early1", "/srv send 2");     // no program
  Say(12.5, "early2", "/srv send 2");  // judged against none: refused
  Say(14.0, "early3", "/srv send 2");  // the read's last title came then
  Say(14.5, "early4", "/srv send 2");  // taken
  Say(15.0, "early5", "/srv send 2");  // refused
  Add(14.6, "early4-2");
  EXPECT_EQ(Check({}, R"(["early4-2"])"),
            Lines{"early5-2: asked for while a start read the mailbox, "
                  "refused"});
  EXPECT_EQ(figures.early_requests, 2);
}

// The program serving from 1 s with a request pending: it owes progress.
class StallTest : public InvariantsTest {
 protected:
  StallTest() { Begin(); }
  void Begin() {
    text.clear();
    Status(0, "status: idle");
    Serving(1);
    Status(1, "status: scanning chat");
    Add(2, "bob-1");
  }
  // The program's standing still, the run ended at `end` with bob-1 still
  // pending.
  Lines EndAt(double end) {
    Final(
        end,
        R"("lists":{"lstPending":["bob-1"]},"labels":{},"registry":{},"files":{},"mailboxes":{})");
    Lines bad = CheckRun(sc, text, &figures, nullptr, allow);
    std::erase_if(bad, [](const std::string& b) {
      return b.rfind("the program stood still", 0) != 0;
    });
    return bad;
  }
  const double bound = 120;
};

TEST_F(StallTest, ServingWithARequestPendingTheProgramMustDoSomething) {
  // Quiet from 2 s: to the bound is legitimate, a moment more is not.
  EXPECT_EQ(EndAt(2 + bound), Lines{});
  EXPECT_EQ(EndAt(2 + bound + 0.1),
            Lines{"the program stood still from 2.0 s to 122.1 s at \"status: "
                  "scanning chat\" (1 requests pending, serving): no progress "
                  "within 120 s"});
  // Served at half the pace, twice as long.
  allow.serving_pace = 2;
  EXPECT_EQ(EndAt(2 + 2 * bound), Lines{});
  EXPECT_EQ(EndAt(2 + 2 * bound + 0.1).size(), 1u);
}

TEST_F(StallTest, OnlyTheProgramsOwnDoingsAreProgress) {
  // Others talking, requests heard, the user's clicks and answers, and a
  // client signed off or killed are not the program's doings.
  Line(50, R"("ev":"chat","sn":"bob","text":"/srv send 2")");
  Add(50, "bob-2");
  Label(50, "lblPending", "pending: 2");
  Label(50, "lblBanned", "banned: 1");
  Line(60, R"("ev":"prompt","kind":"input","answer":"x")");
  Label(70, "cmdPause", "&unpause");
  Label(71, "cmdPause", "&pause");
  Client(80, "signs off");
  Client(80, "closes");
  EXPECT_EQ(EndAt(2 + bound + 0.1).size(), 1u);
  // Each of these is.
  for (const std::string& doing :
       {std::string(R"("ev":"status","text":"status: opening mail")"),
        std::string(R"j("ev":"mail","to":"(bob)","body":"x")j"),
        std::string(R"("ev":"chat","sn":"Host","text":"mail sent")"),
        std::string(R"("ev":"label","name":"lblSent","text":"total: 1")"),
        std::string(R"("ev":"client","what":"signs on")"),
        std::string(R"("ev":"list","name":"lstMails","op":"clear")")}) {
    SCOPED_TRACE(doing);
    Begin();
    sc.user = "Host";
    Line(50, doing);
    EXPECT_EQ(EndAt(50 + bound), Lines{});
    EXPECT_EQ(EndAt(50 + bound + 0.1).size(), 1u);
  }
}

TEST_F(StallTest, Resting_OrEndedTheProgramOwesNothing) {
  const std::string pause =
      R"("ev":"label","name":"cmdPause","text":"&unpause")";
  const std::string stop = R"("ev":"label","name":"cmdStart","text":"&start")";
  const struct {
    const char* what;
    Lines lines;  // at 10 s, quiet from then to the end
    bool owed;
  } cases[] = {
      {"paused, and the tick has said so",
       {pause, R"("ev":"status","text":"status: paused")"},
       false},
      {"stopped, and the stop has ended",
       {stop, R"("ev":"status","text":"status: idle")"},
       false},
      // A client restart inside a tick ends at "status: idle", serving on.
      {"a client restarted", {R"("ev":"status","text":"status: idle")"}, true},
      // Asked to pause or stop, it still owes the end of the tick under way.
      {"asked to stop", {stop}, true},
      {"asked to pause while forwarding",
       {R"("ev":"status","text":"status: opening mail")", pause},
       true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    Begin();
    for (const std::string& l : c.lines) Line(10, l);
    EXPECT_EQ(EndAt(500).size(), c.owed ? 1u : 0u);
  }
  // Serving, with nothing it can take: the request stands behind an empty
  // line.
  Begin();
  DropLast();
  Add(2, "");
  Add(2, "bob-1");
  EXPECT_EQ(EndAt(500), Lines{});
  // A program that exited owes nothing more; up to its exit, it did.
  Press(10, "lblExit");
  Begin();
  EXPECT_EQ(EndAt(500), Lines{});
  sc.timeline.back().at = 2 + bound + 0.1;
  EXPECT_EQ(EndAt(500).size(), 1u);
}

// bob received mail 1; amy's request for it left with her ban.
class LogAgreementTest : public InvariantsTest {
 protected:
  LogAgreementTest() {
    Take(1, 2, "bob-1");
    Take(1, 3, "amy-1");
    Ban(3, "amy");
  }
  Lines CheckWith() { return Check({{"bob", 1}}, "[]", "sent: 1", "1"); }
};

TEST_F(LogAgreementTest, DeliveriesAndBansAreLoggedWithTheSameOutcome) {
  Log(JobOutcome::kStarted, "", "program");
  Log(JobOutcome::kSent, "(bob)", "send 1");
  Log(JobOutcome::kBanned, "amy", "by the user");
  EXPECT_EQ(CheckWith(), Lines{});
  EXPECT_EQ(figures.log_lines, 3);
  EXPECT_EQ(figures.log_matched, 2);
  // bob's mail logged lost, and amy's ban not at all.
  log.clear();
  Log(JobOutcome::kLostWithSignOff, "(bob)", "send 1");
  Log(JobOutcome::kBanned, "bo", "by the user");
  EXPECT_EQ(CheckWith(),
            (Lines{"log: amy's request for mail 1 was removed by a ban, and no "
                   "line says amy was banned",
                   "log: bob received mail 1, and no line says it was sent"}));
}

TEST_F(LogAgreementTest, WhatTheLogClaimsMustHaveHappened) {
  Log(JobOutcome::kSent, "(bob)", "send 1");
  Log(JobOutcome::kBanned, "amy", "too many mistakes");
  Log(JobOutcome::kSent, "(zed)", "send 2");       // zed asked for nothing
  Log(JobOutcome::kDeadMail, "(bob)", "send 1");   // mail 1 is not dead
  Log(JobOutcome::kFullMailbox, "bob", "send 1");  // bob's mailbox is not
  log += "half a line\r\n";
  const Lines bad = CheckWith();
  ASSERT_EQ(bad.size(), 4u) << testing::PrintToString(bad);
  EXPECT_NE(bad[0].find("sent zed send 2, which zed never asked for"),
            std::string::npos);
  EXPECT_NE(bad[1].find("mail 1 is not dead, was never said to be"),
            std::string::npos);
  EXPECT_NE(bad[2].find("that mailbox is not full"), std::string::npos);
  EXPECT_NE(bad[3].find("unreadable line: half a line"), std::string::npos);
}

// Requests jobs took and did not deliver, and the lines of their endings.
class LoggedEndingsTest : public InvariantsTest {
 protected:
  LoggedEndingsTest() {
    sc.dead_mails = {3};
    sc.full_mailboxes = {"Amy"};
    At(50, Verb::kSignoff);
    Press(200, "lblExit");
    Take(1, 2, "bob-3");      // a dead mail
    Take(1, 3, "amy-1");      // a full mailbox
    Take(1, 45, "cy-2");      // lost with the sign-off at 50
    Take(100, 140, "dan-2");  // lost with the exit a minute later, at 200
    // Taken a minute before the run ended: the power went off.
    Take(300, 939, "fay-1");
  }
  Lines CheckAllBut(JobOutcome left_out) {
    log.clear();
    for (const auto& [outcome, who, what] :
         {std::tuple{JobOutcome::kDeadMail, "(bob)", "send 3"},
          std::tuple{JobOutcome::kFullMailbox, "amy", "send 1"},
          std::tuple{JobOutcome::kLostWithSignOff, "(cy)", "send 2"},
          std::tuple{JobOutcome::kLostWithExit, "(dan)", "send 2"}})
      if (outcome != left_out) Log(outcome, who, what);
    if (left_out == JobOutcome::kLostWithExit)
      Log(JobOutcome::kNotSent, "(dan)", "send 2");
    return Check({});
  }
};

TEST_F(LoggedEndingsTest, EachEndingHasItsLine) {
  EXPECT_EQ(CheckAllBut(JobOutcome::kSent), Lines{});
  EXPECT_EQ(figures.log_matched, 4);
  EXPECT_EQ(CheckAllBut(JobOutcome::kDeadMail),
            (Lines{"log: bob's request for mail 3 was taken 1 times, and 0 "
                   "lines say what became of it",
                   "log: bob's request for mail 3 ended as dead mail, and no "
                   "line says so"}));
  // A line of another ending says what became of it, but not the same.
  EXPECT_EQ(CheckAllBut(JobOutcome::kLostWithExit),
            Lines{"log: dan's request for mail 2 ended as in flight at a stop, "
                  "and no line says so"});
}

// Requests no job took: removed by the user, or in the queue when the
// exit at 10 saved it (each test says how that save went). The program
// started again at 11 restores nothing; at 21 it restores eve's, which a
// clean save kept.
class UntakenRequestsTest : public InvariantsTest {
 protected:
  UntakenRequestsTest() {
    for (const auto& [at, name] :
         std::vector<std::pair<double, const char*>>{{5, "mnuRemoveSelected"},
                                                     {6, "mnuClearALL"},
                                                     {8, "mnuRemoveSelected"},
                                                     {10, "lblExit"},
                                                     {15, "mnuClearALL"},
                                                     {20, "lblExit"}})
      Press(at, name);
    for (double at : {11, 21}) At(at, Verb::kStart);
    Take(1, 5, "bob-1");
    Add(1, "amy-2");
    Add(1, "cy-2");
    Add(1, "gus~cats");
    Clear(6);
    // Removed before the exit: not in the queue its save lost.
    Take(7, 8, "fay-2");
    Add(7, "dan-3");
    // The list is empty by then: dan's request went with the exit.
    Clear(15);
    Add(16, "eve-1");
    Add(21, "eve-1");
  }
  void Fault(double t, const std::string& kind) {
    Line(t, R"("ev":"fault","kind":")" + kind +
                R"(","what":"/r/C/Program Files/Quorvex/Quorvex.INI")");
  }
  Lines CheckAllBut(const std::string& left_out) {
    log.clear();
    for (const auto& [outcome, who, what] :
         {std::tuple{JobOutcome::kRemovedByUser, "(bob)", "send 1"},
          std::tuple{JobOutcome::kRemovedByUser, "(amy)(cy)", "send 2"},
          std::tuple{JobOutcome::kRemovedByUser, "(gus)", "find cats"},
          std::tuple{JobOutcome::kRemovedByUser, "(fay)", "send 2"},
          std::tuple{JobOutcome::kLostWithFailedSave, "(dan)", "send 3"}})
      if (std::string(who) != left_out) Log(outcome, who, what);
    // Of two requesters removed together, one logged alone.
    if (left_out == "(amy)(cy)")
      Log(JobOutcome::kRemovedByUser, "(amy)", "send 2");
    return Check({}, R"(["eve-1"])");
  }
};

TEST_F(UntakenRequestsTest, EachRemovalAndEachLossOfTheSaveHasItsLine) {
  Fault(10, "profile-write");
  EXPECT_EQ(CheckAllBut(""), Lines{});
  EXPECT_EQ(figures.log_matched, 5);
  EXPECT_EQ(figures.endings.at("cleared or removed by the user"), 4);
  EXPECT_EQ(figures.endings.at("lost with a fault of the queue's file"), 1);
  EXPECT_EQ(CheckAllBut("(amy)(cy)"),
            Lines{"log: cy's request for mail 2 was removed by the user 1 "
                  "times, and 0 lines say so"});
  EXPECT_EQ(CheckAllBut("(dan)"),
            Lines{"log: dan's request for mail 3 was in the queue 1 times "
                  "when its save failed, and 0 lines say it was lost"});
}

TEST_F(UntakenRequestsTest, AFileThatVanishedNeedsNoLineButALineNeedsAFault) {
  // The file vanished before the start read it: the program never knew.
  Fault(10.5, "vanish");
  EXPECT_EQ(CheckAllBut("(dan)"), Lines{});
  EXPECT_EQ(figures.endings.at("lost with a fault of the queue's file"), 1);

  // Without any fault of the queue's file, a loss of it is a false line;
  // so is a removal of a request never listed.
  text.clear();
  log.clear();
  Add(16, "eve-1");
  Add(21, "eve-1");
  Log(JobOutcome::kLostWithFailedSave, "(eve)", "send 1");
  Log(JobOutcome::kRemovedByUser, "(zed)", "send 2");
  EXPECT_EQ(Check({}, R"(["eve-1"])"),
            (Lines{"log: lost with a failed save eve send 1, but no save of "
                   "the queue failed",
                   "log: removed by the user zed send 2, which was never in "
                   "the list"}));
}

}  // namespace
}  // namespace quorvex::soak
