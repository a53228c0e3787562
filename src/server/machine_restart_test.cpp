#include "server/machine_restart.h"

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "server/serve_engine.h"
#include "server/server_test_fixture.h"

namespace quorvex {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class MachineRestartTest : public ServerTest {
 protected:
  MachineRestartTest() {
    machine.SetRunProgramHook(
        [this](std::string_view path) { started.emplace_back(path); });
    machine.SetRebootHook([this] { ++reboots; });
    frm.status.Subscribe(
        [this](const StatusStrip& s) { statuses.push_back(s.text()); });
  }

  std::string State(const std::string& key) {
    return profiles.GetString(machine.HostPath(kRestartStateFile), "Quorvex",
                              key, "<missing>");
  }
  void PutState(const std::string& key, const std::string& value) {
    profiles.WriteString(machine.HostPath(kRestartStateFile), "Quorvex", key,
                         value);
  }
  std::string WinIniLoad() {
    return profiles.GetString(machine.HostPath(kWinIni), "Windows", "load",
                              "<missing>");
  }
  // The installed program's file, `bytes` long.
  std::string WriteProgram(size_t bytes) {
    std::string content;
    for (size_t i = 0; i < bytes; ++i)
      content += static_cast<char>('a' + i % 26);
    std::string path = machine.HostPath(ProgramPath(machine));
    std::filesystem::create_directories(
        std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << content;
    return content;
  }
  std::string ReadFile(const std::string& windows_path) {
    std::ifstream in(machine.HostPath(windows_path), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }

  std::vector<std::string> started;
  std::vector<std::string> statuses;
  int reboots = 0;
};

TEST_F(MachineRestartTest, StateRoundTrip) {
  frm.room_name = "Lobby 7";
  frm.counters.session = 17;
  for (const char* line : {"bob-7", "amy-list", "joe~cats & dogs"})
    frm.pending.Append(line);
  frm.lstBanned.Add("spammer");
  frm.lstBanned.Add("pest two");
  SaveRestartState(frm);
  EXPECT_EQ(State("QuorvexDirectory"),
            "C:\\Program Files\\Quorvex\\Quorvex.exe");
  EXPECT_EQ(State("Pending 0"), "bob-7");

  FrmMain again{frm.ports};
  LoadRestartState(again);
  EXPECT_EQ(again.room_name, "Lobby 7");
  EXPECT_EQ(again.counters.session, 17);
  EXPECT_EQ(again.lblSession.caption(), "session: 17");
  EXPECT_THAT(again.lstPending().Items(),
              ElementsAre("bob-7", "amy-list", "joe~cats & dogs"));
  EXPECT_EQ(again.lblPending.caption(), "pending: 3");
  EXPECT_THAT(again.lstBanned.Items(), ElementsAre("spammer", "pest two"));
  EXPECT_EQ(again.lblBanned.caption(), "banned: 2");
  // The restored queue is a working queue.
  EXPECT_EQ(again.pending.PendingCount("bob"), 1);

  // A shorter save leaves the old keys behind.
  frm.lstPending().Clear();
  frm.pending.Append("ann-1");
  SaveRestartState(frm);
  EXPECT_EQ(State("TotalPending"), "1");
  EXPECT_EQ(State("Pending 2"), "joe~cats & dogs");
}

TEST_F(MachineRestartTest, StoredTotalsDecideWhatIsRestored) {
  PutState("TotalPending", "0");
  PutState("Pending 0", "bob-1");
  PutState("TotalBanned", "0");
  PutState("Banned 0", "pest");
  frm.lblBanned.Set("banned: 9");
  LoadRestartState(frm);
  EXPECT_EQ(frm.lblPending.caption(), "pending: 0");
  EXPECT_THAT(frm.lstPending().Items(), IsEmpty());
  EXPECT_EQ(frm.lblBanned.caption(), "banned: 9");  // 0 leaves it alone
  EXPECT_THAT(frm.lstBanned.Items(), IsEmpty());

  // No number: nothing restored; a missing line loads as an empty one.
  FrmMain other{frm.ports};
  PutState("TotalPending", "two");
  PutState("TotalBanned", "2");
  LoadRestartState(other);
  EXPECT_EQ(other.lblPending.caption(), "pending: 0");
  EXPECT_THAT(other.lstPending().Items(), IsEmpty());
  EXPECT_EQ(other.lblBanned.caption(), "banned: 2");
  EXPECT_THAT(other.lstBanned.Items(), ElementsAre("pest", ""));
}

TEST_F(MachineRestartTest, CPURestartSequence) {
  AddMails(2);
  sim.Launch();
  const std::string program = WriteProgram(200000);
  frm.Timer1 = host.CreateTimer([] {});
  frm.Timer2 = host.CreateTimer([] {});
  frm.Timer1->SetInterval(1);
  frm.Timer2->SetInterval(1000);
  frm.Timer1->SetEnabled(true);
  frm.Timer2->SetEnabled(true);
  frm.settings.MailNotify = false;
  frm.frmMessages.lstChat.Add("sent!");
  frm.room_name = "Lobby";
  frm.pending.Append("bob-1");
  profiles.WriteString(machine.HostPath(kWinIni), "Windows", "load",
                       "C:\\other.exe");

  CPURestart(frm, c);

  EXPECT_FALSE(frm.Timer1->enabled());
  EXPECT_FALSE(frm.Timer2->enabled());
  EXPECT_EQ(registry.GetSetting(kApp, "Settings", "MailNotify", ""), "False");
  EXPECT_EQ(registry.GetSetting(kApp, "ChatMsgs", "ChatMsgTotal", ""), "1");
  EXPECT_EQ(State("ChatName"), "Lobby");
  EXPECT_EQ(State("Pending 0"), "bob-1");
  EXPECT_FALSE(sim.running());
  EXPECT_EQ(WinIniLoad(), "C:\\Windows\\z.exe");
  EXPECT_EQ(ReadFile(kRestartCopy), program);
  EXPECT_EQ(reboots, 1);
  ASSERT_GE(statuses.size(), 4u);
  EXPECT_EQ(statuses.front(), "status: closing aol");
  EXPECT_EQ(statuses[1], "status: copying quorvex(be patient)");
  EXPECT_EQ(statuses[statuses.size() - 2],
            "status: copying quorvex(be patient) 100%");
  EXPECT_EQ(statuses.back(), "status: restarting windows");
}

TEST_F(MachineRestartTest, ClientThatIgnoresACloseIsAskedAgain) {
  sim.knobs().close_needs_two = true;
  sim.Launch();
  WriteProgram(10);
  CPURestart(frm, c);
  EXPECT_FALSE(sim.running());
  EXPECT_EQ(reboots, 1);
}

TEST_F(MachineRestartTest, SplashDecision) {
  // A normal start shows the splash for a second.
  double t0 = host.Elapsed();
  EXPECT_EQ(frmSplash_Load(machine, profiles, host), StartupKind::kNormal);
  EXPECT_GE(host.Elapsed() - t0, 0.5);

  // Started as z.exe without the state: a normal start too.
  machine.SetAppPath("C:\\Windows");
  machine.SetExeName("Z");
  EXPECT_EQ(frmSplash_Load(machine, profiles, host), StartupKind::kNormal);
  EXPECT_THAT(started, IsEmpty());

  // With the state, the copy starts the stored program and ends.
  PutState("QuorvexDirectory", "C:\\Program Files\\Quorvex\\Quorvex.exe");
  EXPECT_EQ(frmSplash_Load(machine, profiles, host),
            StartupKind::kStartedInstalled);
  EXPECT_THAT(started, ElementsAre("C:\\Program Files\\Quorvex\\Quorvex.exe"));

  // The installed program resumes at once; a moved one starts normally.
  machine.SetAppPath("c:\\program files\\QUORVEX");
  machine.SetExeName("quorvex");
  t0 = host.Elapsed();
  EXPECT_EQ(frmSplash_Load(machine, profiles, host), StartupKind::kResume);
  EXPECT_EQ(host.Elapsed(), t0);
  machine.SetAppPath("D:\\Elsewhere");
  EXPECT_EQ(frmSplash_Load(machine, profiles, host), StartupKind::kNormal);
  EXPECT_TRUE(RestartPending(machine));
}

TEST_F(MachineRestartTest, ResumeBranch) {
  AddMails(3);
  sim.Launch();
  PutState("ChatName", "Lobby");
  PutState("TotalPending", "2");
  PutState("Pending 0", "bob-1");
  PutState("Pending 1", "amy-list");
  PutState("TotalBanned", "1");
  PutState("Banned 0", "pest");
  PutState("TotalSent", "40");
  std::filesystem::create_directories(machine.HostPath("C:\\Windows"));
  std::ofstream(machine.HostPath(kRestartCopy)) << "copy";
  profiles.WriteString(machine.HostPath(kWinIni), "Windows", "load",
                       kRestartCopy);

  ServeJobs jobs;
  jobs.collect_lists = [](FrmMain&) { return 1; };
  ServeEngine engine(frm, c, jobs);
  int client_restarts = 0;
  engine.aol_restart = [&] { ++client_restarts; };
  ResumeServing(engine, frm, c);

  EXPECT_EQ(statuses.front(), "status: pausing 10 secs");
  EXPECT_GE(host.Elapsed(), 9.5);
  EXPECT_FALSE(RestartPending(machine));
  EXPECT_FALSE(machine.FileExists(kRestartCopy));
  EXPECT_EQ(WinIniLoad(), "");  // the key stays, empty
  EXPECT_EQ(client_restarts, 1);
  EXPECT_EQ(frm.room_name, "Lobby");
  EXPECT_EQ(frm.lblSession.caption(), "session: 40");
  EXPECT_THAT(frm.lstPending().Items(), ElementsAre("bob-1", "amy-list"));
  EXPECT_THAT(frm.lstBanned.Items(), ElementsAre("pest"));
  ASSERT_GE(Said().size(), 2u);
  EXPECT_EQ(Said()[0], "quorvex restarted <B><U>cpu</B></U>");
  EXPECT_EQ(Said()[1], "quorvex mail server <B><U>on</B></U>");
  EXPECT_TRUE(frm.ServerOn);
}

}  // namespace
}  // namespace quorvex
