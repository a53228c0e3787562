// Quorvex.log end to end: a room served through the simulated client, and
// the lines the program wrote beside its queue file.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "app/job_log.h"
#include "scenario/runner.h"
#include "scenario/scenario.h"
#include "sim/folder_machine.h"

namespace quorvex::scenario {
namespace {

namespace fs = std::filesystem;

// The log's lines (outcome, requesters, what) after running `text` in a
// folder of its own, which `prepare` may furnish first; each line's time
// as written is checked on the way.
std::vector<std::string> RunAndReadLog(
    const std::string& text,
    const std::function<void(const FolderMachine&)>& prepare = nullptr) {
  const fs::path root =
      fs::temp_directory_path() /
      ("qv_log_e2e_" + std::to_string(std::random_device{}()));
  const FolderMachine machine(root);
  if (prepare) prepare(machine);
  RunOptions options;
  options.root = root.string();
  std::ostringstream transcript;
  RunScenario(ParseScenario("log.scn", text, Controls()), options, transcript);
  // Read whole and closed before the folder goes (Windows removes no file
  // that is open).
  std::istringstream in([&] {
    std::ifstream file(
        machine.HostPath("C:\\Program Files\\Quorvex\\Quorvex.log"),
        std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file),
                       std::istreambuf_iterator<char>());
  }());
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) {
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
    lines.push_back(l->outcome + "|" + names + "|" + l->what);
  }
  std::error_code ec;
  fs::remove_all(root, ec);
  return lines;
}

TEST(QuorvexLogTest, NamesWhoAskedWhatAndHowEachJobEnded) {
  const std::vector<std::string> log =
      RunAndReadLog(R"(clock 20:00:00 2004-05-01
user Host
room Lobby
person bob
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
)");
  // Every line, in order: eve's request left with her ban, so nothing
  // else names her.
  EXPECT_EQ(log, (std::vector<std::string>{
                     "started||program",
                     "started||serving 11 mails",
                     "sent|bob|send 2",
                     "sent|amy|send 2",
                     "banned|eve|by the user",
                     "dead mail|dan|send 7",
                     "list mailed|amy|send list",
                     "client restarted||signed off",
                     "sent|bob|send 4",
                     "reply in the room|amy|thanks",
                     "stopped||serving",
                 }));
}

TEST(QuorvexLogTest, AClientTheRoomBusterRestartsIsLogged) {
  // Not serving: the member busts a room while the client is signed off.
  const std::vector<std::string> log =
      RunAndReadLog(R"(clock 20:00:00 2004-05-01
user Host
room Lobby
person Ann
room-full Private Room 2
at 1 press mnuRoomBuster
at 1 set frmRoomBuster.txtRoom = Private Room
at 2 signoff
at 3 press frmRoomBuster.cmdStart
run 60
)");
  EXPECT_EQ(log, (std::vector<std::string>{"started||program",
                                           "client restarted||room buster"}));
}

TEST(QuorvexLogTest, AFullMailboxIsLoggedApartFromTheOthersOfItsForward) {
  // bob and cal ask for mail 3 before the start: one forward to both,
  // which cal's full mailbox refuses.
  const std::vector<std::string> log =
      RunAndReadLog(R"(clock 20:00:00 2004-05-01
user Host
room Lobby
person bob
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
)");
  EXPECT_EQ(log, (std::vector<std::string>{
                     "started||program",
                     "started||serving 11 mails",
                     // cal's other request leaves the queue with it.
                     "full mailbox|cal|send 5",
                     "full mailbox|cal|send 3",
                     "sent|bob|send 3",
                     "find mailed|bob|find song 1",
                 }));
}

TEST(QuorvexLogTest, AJobAnExitCutsShortSaysItsRequestWasLost) {
  // The exit comes while amy's lists are being forwarded, before the
  // client took the first: the queue saved at the exit no longer holds
  // the request, and the log says what became of it.
  const std::vector<std::string> log =
      RunAndReadLog(R"(clock 20:00:00 2004-05-01
user Host
room Lobby
person amy
person bob
mails 10 song
at 0.5 answer yes
at 1 press cmdStart
at 30 say amy: /host send list
at 30.2 say bob: /host send 4
at 41.6 press lblExit
run 100
)");
  EXPECT_EQ(log, (std::vector<std::string>{
                     "started||program",
                     "started||serving 11 mails",
                     "sent|bob|send 4",
                     "stopped||program",
                     "lost with an exit|amy|send list",
                 }));
}

TEST(QuorvexLogTest, RequestsTheUserRemovesAreLoggedAsTheyGo) {
  // Not serving: the requests wait until the user takes them off the
  // list, one selected, one person's, then the rest.
  const std::vector<std::string> log =
      RunAndReadLog(R"(clock 20:00:00 2004-05-01
user Host
room Lobby
person bob
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
)");
  // A removal of nothing (no line selected, an empty list) is no line;
  // one request asked by two is one line naming both.
  EXPECT_EQ(log, (std::vector<std::string>{
                     "started||program",
                     "removed by the user|dan|send 7",
                     "removed by the user|eve|find song",
                     "removed by the user|bob,amy|send 2",
                     "removed by the user|dan|send list",
                 }));
}

TEST(QuorvexLogTest, AQueueTheExitCannotSaveIsLoggedAsLost) {
  // Every write of a profile file fails: the queue saved at the exit does
  // not read back, so its requests are gone with the program.
  const std::string room = R"(clock 20:00:00 2004-05-01
user Host
room Lobby
person bob
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
  EXPECT_EQ(RunAndReadLog("fault profile-write 100\n" + room),
            (std::vector<std::string>{
                "started||program",
                "lost with a failed save|bob,amy|send 2",
                "lost with a failed save|eve|find song",
                "stopped||program",
                "started||program",
            }));
  // Saved whole, the queue comes back with the next start: no loss.
  EXPECT_EQ(RunAndReadLog(room),
            (std::vector<std::string>{"started||program", "stopped||program",
                                      "started||program"}));
}

TEST(QuorvexLogTest, AQueueTheRestartStateHoldsIsNotLostWithQuorvexIni) {
  // Quorvex.INI cannot be written (a folder of that name holds a file):
  // the queue saved as the machine goes down is in RestartSettings.INI
  // alone, which the program resumes from, so nothing was lost.
  const std::vector<std::string> log = RunAndReadLog(
      R"(clock 20:00:00 2004-05-01
registry Settings Handle = srv
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
        const fs::path blocked =
            machine.HostPath("C:\\Program Files\\Quorvex\\Quorvex.INI");
        fs::create_directories(blocked);
        std::ofstream(blocked / "in the way") << "x";
      });
  EXPECT_EQ(log, (std::vector<std::string>{
                     "started||program",
                     "started||serving 21 mails",
                     "sent|bob|send 3",
                     "sent|amy|send 4",
                     "machine restarted||after 2 mails",
                     "started||program",
                     "started||serving 21 mails",
                     "sent|amy|send 5",
                 }));
}

TEST(QuorvexLogTest, LinesThatCannotBeWrittenAreCountedForTheRun) {
  // A folder where the log should be: no line can be written.
  const fs::path root =
      fs::temp_directory_path() /
      ("qv_log_lost_" + std::to_string(std::random_device{}()));
  const FolderMachine machine(root);
  fs::create_directories(
      machine.HostPath("C:\\Program Files\\Quorvex\\Quorvex.log"));
  RunOptions options;
  options.root = root.string();
  int lost = 0;
  options.on_lost_log_lines = [&lost](int n) { lost = n; };
  std::ostringstream transcript;
  RunScenario(ParseScenario("lost.scn", R"(user Host
room Lobby
mails 3 song
at 1 press cmdStart
at 30 press lblExit
at 40 start
run 50
)",
                            Controls()),
              options, transcript);
  // Started and stopped (no lists made, so no serving); and started by
  // the program started again.
  EXPECT_EQ(lost, 3);
  std::error_code ec;
  fs::remove_all(root, ec);
}

}  // namespace
}  // namespace quorvex::scenario
