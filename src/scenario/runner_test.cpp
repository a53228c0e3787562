// Rooms played end to end through the simulated client: what the
// transcript, the final state and Quorvex.log (beside the queue file) say.
#include "scenario/runner.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "app/job_log.h"
#include "scenario/demo.h"
#include "scenario/interrupt.h"
#include "scenario/scenario.h"
#include "sim/folder_machine.h"
#include "testing/temp_folder.h"

namespace quorvex::scenario {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;
using Lines = std::vector<std::string>;

struct RunResult {
  std::vector<Json> events;
  Json final_state;
  Lines log;  // "outcome|requesters|what", a line each
  int lost_log_lines = 0;

  Lines Of(const std::string& ev, const char* field) const {
    Lines out;
    for (const Json& e : events)
      if (e["ev"] == ev) out.push_back(e.value(field, ""));
    return out;
  }
  // How many mails `sn` received whose body names mail `number`.
  int MailsFor(const std::string& sn, int number) const {
    int n = 0;
    if (!final_state["mailboxes"].contains(sn)) return 0;
    const std::string mark =
        "mail number <B><U>" + std::to_string(number) + "<";
    for (const Json& m : final_state["mailboxes"][sn])
      if (m["body"].get<std::string>().find(mark) != std::string::npos) ++n;
    return n;
  }
};

// Runs `text` in a folder of its own, which `prepare` may furnish first,
// on a clock that starts at 20:00 on 2004-05-01: each log line's time as
// written is checked on the way.
RunResult PlayRoom(
    const std::string& text,
    const std::function<void(const FolderMachine&)>& prepare = {}) {
  const TempFolder root("qv_run_");
  const FolderMachine machine(root.path());
  if (prepare) prepare(machine);
  RunResult run;
  RunOptions options;
  options.root = root.path().string();
  options.on_final = [&run](const Json& f) { run.final_state = f; };
  options.on_lost_log_lines = [&run](int n) { run.lost_log_lines = n; };
  std::ostringstream out;
  RunScenario(ParseScenario("test.scn", "clock 20:00:00 2004-05-01\n" + text,
                            Controls()),
              options, out);
  std::istringstream events(out.str());
  for (std::string line; std::getline(events, line);)
    run.events.push_back(Json::parse(line));

  const fs::path log_file =
      machine.HostPath("C:\\Program Files\\Quorvex\\Quorvex.log");
  std::istringstream log(
      fs::is_regular_file(log_file) ? TempFolder::Read(log_file) : "");
  for (std::string line; std::getline(log, line);) {
    EXPECT_EQ(line.back(), '\r');
    const auto l = ParseLogLine(line);
    if (!l) {
      ADD_FAILURE() << "unreadable: " << line;
      continue;
    }
    EXPECT_EQ(l->time.substr(0, 11), "2004-05-01 ") << line;
    std::string names;
    for (const std::string& n : l->requesters)
      names += (names.empty() ? "" : ",") + n;
    run.log.push_back(l->outcome + "|" + names + "|" + l->what);
  }
  return run;
}

// A room, and every line of the log it leaves, in order.
struct LogCase {
  const char* name;
  std::string room;
  Lines log;
};

class QuorvexLogTest : public ::testing::TestWithParam<LogCase> {};

TEST_P(QuorvexLogTest, NamesWhoAskedWhatAndHowEachJobEnded) {
  EXPECT_EQ(PlayRoom(GetParam().room).log, GetParam().log);
}

// Three requests waiting at an exit, and the program started again.
const std::string kExitAndStartAgain = R"(person bob
person amy
person eve
mails 10 song
at 1 say bob: /host send 2
at 1.1 say amy: /host send 2
at 1.2 say eve: /host find song
at 5 press lblExit
at 6 start
run 20
)";

const LogCase kLogCases[] = {
    // eve's request leaves with her ban, so nothing else names her.
    {"EveryKindOfEnd",
     R"(person bob
person amy
person dan
person eve
mails 10 song
dead-mail 7
at 0.5 answer yes
at 1 press cmdStart
at 30 say bob: /host send 2
at 30.1 say amy: /host send 2
at 31 say dan: /host send 7
at 32 say amy: /host send list
at 33 say eve: /host send 9
at 33.5 press lstBanned 2
at 34 select frmRoom.lstRoom "eve"
at 34 press frmRoom.lstRoom
at 34.5 press frmRoom.lblExit
at 120 signoff
at 200 say bob: /host send 4
at 240 say amy: /host thanks
at 300 press cmdStart
run 330
)",
     {"started||program", "started||serving 11 mails", "sent|bob|send 2",
      "sent|amy|send 2", "banned|eve|by the user", "dead mail|dan|send 7",
      "list mailed|amy|send list", "client restarted||signed off",
      "sent|bob|send 4", "reply in the room|amy|thanks", "stopped||serving"}},
    // Not serving: the member busts a room while the client is signed off.
    {"AClientTheRoomBusterRestarts",
     R"(person Ann
room-full Private Room 2
at 1 press mnuRoomBuster
at 1 set frmRoomBuster.txtRoom = Private Room
at 2 signoff
at 3 press frmRoomBuster.cmdStart
run 60
)",
     {"started||program", "client restarted||room buster"}},
    // bob and cal ask for mail 3 before the start: one forward to both,
    // which cal's full mailbox refuses; cal's other request leaves the
    // queue with it.
    {"AFullMailboxApartFromTheOthersOfItsForward",
     R"(person bob
person cal
mails 10 song
full-mailbox cal
at 0.2 say bob: /host send 3
at 0.3 say cal: /host send 3
at 0.35 say cal: /host send 5
at 0.4 say bob: /host find song 1
at 0.5 answer yes
at 1 press cmdStart
run 60
)",
     {"started||program", "started||serving 11 mails",
      "full mailbox|cal|send 5", "full mailbox|cal|send 3", "sent|bob|send 3",
      "find mailed|bob|find song 1"}},
    // The exit comes while amy's lists are being forwarded, before the
    // client took the first: the queue saved at the exit no longer holds
    // the request.
    {"AJobAnExitCutsShortLosesItsRequest",
     R"(person amy
person bob
mails 10 song
at 0.5 answer yes
at 1 press cmdStart
at 30 say amy: /host send list
at 30.2 say bob: /host send 4
at 41.6 press lblExit
run 100
)",
     {"started||program", "started||serving 11 mails", "sent|bob|send 4",
      "stopped||program", "lost with an exit|amy|send list"}},
    // Not serving: the user takes the requests off the list, one selected,
    // one person's, then the rest. A removal of nothing (no line selected,
    // an empty list) is no line; one request asked by two is one line.
    {"RequestsTheUserRemoves",
     R"(person bob
person amy
person dan
person eve
mails 10 song
at 1 say bob: /host send 2
at 1.1 say amy: /host send 2
at 1.2 say dan: /host send 7
at 1.3 say eve: /host find song
at 1.4 say dan: /host send list
at 5 select lstPending 2
at 5 press mnuRemoveSelected
at 6 press mnuRemoveSelected
at 7 answer eve
at 7 press mnuClearSN
at 8 press mnuClearALL
at 9 press mnuClearALL
run 20
)",
     {"started||program", "removed by the user|dan|send 7",
      "removed by the user|eve|find song", "removed by the user|bob,amy|send 2",
      "removed by the user|dan|send list"}},
    // Every write of a profile file fails: the queue saved at the exit does
    // not read back, so its requests are gone with the program.
    {"AQueueTheExitCannotSaveIsLost",
     "fault profile-write 100\n" + kExitAndStartAgain,
     {"started||program", "lost with a failed save|bob,amy|send 2",
      "lost with a failed save|eve|find song", "stopped||program",
      "started||program"}},
    // Saved whole, the queue comes back with the next start.
    {"AQueueSavedWholeIsNotLost",
     kExitAndStartAgain,
     {"started||program", "stopped||program", "started||program"}},
};

INSTANTIATE_TEST_SUITE_P(Rooms, QuorvexLogTest, ::testing::ValuesIn(kLogCases),
                         [](const auto& info) { return info.param.name; });

TEST(RunnerTest, MachineRestartResumesFromItsStateWithoutQuorvexIni) {
  // Quorvex.INI cannot be written (a folder of that name holds a file):
  // the queue saved as the machine goes down is in RestartSettings.INI
  // alone, which the program resumes from, so nothing is lost.
  const RunResult run = PlayRoom(
      R"(registry Settings Handle = srv
registry Settings CPURestart = 2
registry Settings MailResize = False
person bob
person amy
mails 20 title
at 0.5 answer yes
at 1 press cmdStart
at 5 say bob: /srv send 3
at 5.1 say amy: /srv send 4
at 5.2 say amy: /srv send 5
run 120
)",
      [](const FolderMachine& machine) {
        TempFolder::Write(fs::path(machine.HostPath(
                              "C:\\Program Files\\Quorvex\\Quorvex.INI")) /
                              "in the way",
                          "x");
      });
  // The copy starts the program, which starts the client again.
  EXPECT_EQ(run.Of("machine", "what"),
            (Lines{"reboots", "starts C:\\Windows\\z.exe",
                   "starts C:\\Program Files\\Quorvex\\Quorvex.exe",
                   "ends C:\\Windows\\z.exe",
                   "starts C:\\Program Files\\AOL\\AOL.exe"}));
  EXPECT_EQ(run.log,
            (Lines{"started||program", "started||serving 21 mails",
                   "sent|bob|send 3", "sent|amy|send 4",
                   "machine restarted||after 2 mails", "started||program",
                   "started||serving 21 mails", "sent|amy|send 5"}));
  // Everyone got their mail, once.
  EXPECT_EQ(run.MailsFor("bob", 3), 1);
  EXPECT_EQ(run.MailsFor("amy", 4), 1);
  EXPECT_EQ(run.MailsFor("amy", 5), 1);

  const Json& files = run.final_state["files"];
  EXPECT_FALSE(files.contains("RestartSettings.INI"));
  EXPECT_EQ(files["Win.INI"]["Windows"]["load"], "");
  int resumed = 0;
  for (const std::string& line : run.Of("chat", "text"))
    resumed +=
        line.find("quorvex restarted <B><U>cpu</B></U>") != std::string::npos;
  EXPECT_GE(resumed, 1);
}

TEST(RunnerTest, LinesOfTheLogThatCannotBeWrittenAreCountedForTheRun) {
  // A folder where the log should be: no line can be written. Started and
  // stopped (no lists made, so no serving), and started again.
  const RunResult run = PlayRoom(
      R"(mails 3 song
at 1 press cmdStart
at 30 press lblExit
at 40 start
run 50
)",
      [](const FolderMachine& machine) {
        fs::create_directories(
            machine.HostPath("C:\\Program Files\\Quorvex\\Quorvex.log"));
      });
  EXPECT_EQ(run.lost_log_lines, 3);
}

TEST(RunnerTest, AClientKilledInTheFirstTickComesBackToItsRoom) {
  // The request waits from before the start; the client dies while the
  // first tick forwards it, before that tick has noted the room.
  const RunResult run = PlayRoom(R"(registry Settings Handle = host
registry Settings MailResize = False
person ann
person bob
mails 3 song
mail  ·•[ quorvex list number 1 ]•·
at 0.5 say ann: /host send 1
at 0.6 say bob: /host send 2
at 1 press cmdStart
at 5.6 kill
run 100
)");
  const Lines client = run.Of("client", "what");
  ASSERT_GE(client.size(), 5u);
  EXPECT_EQ(
      Lines(client.begin(), client.begin() + 5),
      (Lines{"signs off", "closes", "starts", "signs on", "enters Lobby"}));
  EXPECT_EQ(run.MailsFor("ann", 1), 0);
  EXPECT_EQ(run.MailsFor("bob", 2), 1);
}

TEST(RunnerTest, SelectByTextPicksTheItemThatReadsItOrNone) {
  const RunResult run = PlayRoom(R"(person Amy
person zed
mails 5
at 1 say zed: /host send 2
at 1.5 say Amy: /host send 1
at 4 press lstBanned 2
at 5 select frmRoom.lstRoom "nobody"
at 5 press frmRoom.lstRoom
at 6 select frmRoom.lstRoom "ZED"
at 6 press frmRoom.lstRoom
run 7
)");
  EXPECT_EQ(run.final_state["lists"]["lstBanned"], Json::array({"zed"}));
  EXPECT_EQ(run.final_state["lists"]["lstPending"], Json::array({"amy-1"}));
  for (const char* line :
       {"at 1 select lstPending \"\"\n", "at 1 select lstPending 1 2\n"})
    EXPECT_THROW(
        ParseScenario("t.scn", std::string(line) + "run 2\n", Controls()),
        ScenarioError)
        << line;
}

TEST(RunnerTest, DemoServesEveryKindOfRequest) {
  Scenario sc = ParseScenario(kDemoName, kDemoScenario, Controls());
  std::ostringstream out;
  Json final_state;
  RunOptions options;
  options.on_final = [&final_state](const Json& f) { final_state = f; };
  RunScenario(sc, options, out);

  EXPECT_EQ(final_state["lists"]["lstBanned"], Json::array({"gina"}));
  const std::string summary = DemoSummary(final_state, sc.user);
  // cats, dog and bird (one request, two mails back to back) and guitar.
  for (const char* row : {"| lists sent      | 6 ", "| finds sent      | 4 ",
                          "| people banned   | 1 "})
    EXPECT_NE(summary.find(row), std::string::npos) << row << "\n" << summary;
  EXPECT_EQ(
      final_state["mailboxes"]["alice"].back()["subject"],
      "\xC2\xB7\xE2\x80\xA2[ quorvex session served ]\xE2\x80\xA2\xC2\xB7");
  // The full mailbox took nothing.
  const Json& boxes = final_state["mailboxes"];
  EXPECT_TRUE(!boxes.contains("gina") || boxes["gina"].empty());
}

}  // namespace
}  // namespace quorvex::scenario

// POSIX signals and environment.
#if !defined(_WIN32)
namespace quorvex::scenario {
namespace {

// A signal noted during the set-up ends the run there: nothing runs,
// nothing is written, and the temporary folder goes.
TEST(RunnerInterruptTest, ASignalDuringTheSetUpEndsTheRunThere) {
  const fs::path tmp = fs::temp_directory_path() /
                       ("qv_interrupt_" + std::to_string(::getpid()));
  fs::create_directories(tmp);
  const char* old_tmpdir = std::getenv("TMPDIR");
  const std::string saved = old_tmpdir ? old_tmpdir : "";
  ::setenv("TMPDIR", tmp.c_str(), 1);
  Scenario sc = ParseScenario(
      "test.scn", "registry Settings Handle = srv\nmails 3\nrun 60\n",
      Controls());
  InstallInterruptHandlers();
  std::raise(SIGTERM);
  std::ostringstream out;
  int signal = 0;
  try {
    RunScenario(sc, {}, out);
  } catch (const RunInterrupted& e) {
    signal = e.signal;
  }
  ClearInterrupt();
  std::signal(SIGTERM, SIG_DFL);
  std::signal(SIGINT, SIG_DFL);
  if (old_tmpdir) {
    ::setenv("TMPDIR", saved.c_str(), 1);
  } else {
    ::unsetenv("TMPDIR");
  }
  EXPECT_EQ(signal, SIGTERM);
  EXPECT_EQ(out.str(), "");
  EXPECT_TRUE(fs::is_empty(tmp));
  fs::remove_all(tmp);
}

}  // namespace
}  // namespace quorvex::scenario
#endif
