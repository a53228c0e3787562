#include "scenario/runner.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "scenario/demo.h"
#include "scenario/interrupt.h"
#include "scenario/scenario.h"

namespace quorvex::scenario {
namespace {

using Json = nlohmann::ordered_json;

struct RunResult {
  std::vector<Json> events;
  Json final_state;

  std::vector<std::string> Of(const std::string& ev, const char* field) const {
    std::vector<std::string> out;
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

RunResult RunText(const std::string& text) {
  Scenario sc = ParseScenario("test.scn", text, Controls());
  std::ostringstream out;
  RunResult run;
  RunOptions options;
  options.on_final = [&run](const Json& f) { run.final_state = f; };
  RunScenario(sc, options, out);
  std::istringstream in(out.str());
  for (std::string line; std::getline(in, line);)
    run.events.push_back(Json::parse(line));
  return run;
}

TEST(RunnerTest, MachineRestartStartsTheCopyThenTheProgramWhichResumes) {
  RunResult run = RunText(R"(registry Settings Handle = srv
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
at 5.3 say bob: /srv send 6
run 120
)");
  std::vector<std::string> machine = run.Of("machine", "what");
  ASSERT_GE(machine.size(), 5u);
  EXPECT_EQ(machine[0], "reboots");
  EXPECT_EQ(machine[1], "starts C:\\Windows\\z.exe");
  EXPECT_EQ(machine[2], "starts C:\\Program Files\\Quorvex\\Quorvex.exe");
  EXPECT_EQ(machine[3], "ends C:\\Windows\\z.exe");
  EXPECT_EQ(machine[4], "starts C:\\Program Files\\AOL\\AOL.exe");

  // The queue crossed the restart: everyone got their mail, once.
  EXPECT_EQ(run.MailsFor("bob", 3), 1);
  EXPECT_EQ(run.MailsFor("amy", 4), 1);
  EXPECT_EQ(run.MailsFor("amy", 5), 1);
  EXPECT_EQ(run.MailsFor("bob", 6), 1);

  const Json& files = run.final_state["files"];
  EXPECT_FALSE(files.contains("RestartSettings.INI"));
  EXPECT_EQ(files["Win.INI"]["Windows"]["load"], "");
  std::vector<std::string> said = run.Of("chat", "text");
  int resumed = 0;
  for (const std::string& line : said)
    if (line.find("quorvex restarted <B><U>cpu</B></U>") != std::string::npos)
      ++resumed;
  EXPECT_GE(resumed, 1);
}

TEST(RunnerTest, AClientKilledInTheFirstTickComesBackToItsRoom) {
  // The request waits from before the start; the client dies while the
  // first tick forwards it, before that tick has noted the room.
  RunResult run = RunText(R"(registry Settings Handle = host
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
  std::vector<std::string> client = run.Of("client", "what");
  ASSERT_GE(client.size(), 5u);
  EXPECT_EQ(client[0], "signs off");
  EXPECT_EQ(client[1], "closes");
  EXPECT_EQ(client[2], "starts");
  EXPECT_EQ(client[3], "signs on");
  EXPECT_EQ(client[4], "enters Lobby");
  EXPECT_EQ(run.MailsFor("ann", 1), 0);
  EXPECT_EQ(run.MailsFor("bob", 2), 1);
}

TEST(RunnerTest, SelectByTextPicksTheItemThatReadsItOrNone) {
  RunResult run = RunText(R"(person Amy
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
  EXPECT_THROW(ParseScenario("t.scn", "at 1 select lstPending \"\"\nrun 2\n",
                             Controls()),
               ScenarioError);
  EXPECT_THROW(
      ParseScenario("t.scn", "at 1 select lstPending 1 2\nrun 2\n", Controls()),
      ScenarioError);
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
  EXPECT_NE(summary.find("| lists sent      | 6 "), std::string::npos)
      << summary;
  // cats, dog and bird (one request, two mails back to back) and guitar.
  EXPECT_NE(summary.find("| finds sent      | 4 "), std::string::npos)
      << summary;
  EXPECT_NE(summary.find("| people banned   | 1 "), std::string::npos)
      << summary;
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
  const std::filesystem::path tmp =
      std::filesystem::temp_directory_path() /
      ("qv_interrupt_" + std::to_string(::getpid()));
  std::filesystem::create_directories(tmp);
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
  EXPECT_TRUE(std::filesystem::is_empty(tmp));
  std::filesystem::remove_all(tmp);
}

}  // namespace
}  // namespace quorvex::scenario
#endif
