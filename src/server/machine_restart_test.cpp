#include "server/machine_restart.h"

#include <string>
#include <vector>

#include "ports/profile_section.h"
#include "server/serve_engine.h"
#include "testing/server_test_fixture.h"

namespace quorvex {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

class MachineRestartTest : public ServerTest {
 protected:
  MachineRestartTest() {
    machine.SetRunProgramHook(
        [this](std::string_view path) { started.emplace_back(path); });
    machine.SetRebootHook([this] { ++reboots; });
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
  void SetWinIniLoad(const std::string& value) {
    profiles.WriteString(machine.HostPath(kWinIni), "Windows", "load", value);
  }

  // The copy shows one text, without a share of its work, and the reboot
  // another.
  void ExpectCopyThenRestart() {
    ASSERT_GE(statuses.size(), 2u);
    EXPECT_EQ(statuses[statuses.size() - 2],
              "status: copying quorvex(be patient)");
    EXPECT_EQ(statuses.back(), "status: restarting windows");
    EXPECT_THAT(statuses, Not(Contains(::testing::HasSubstr("%"))));
  }

  std::vector<std::string> started;
  int reboots = 0;
};

TEST_F(MachineRestartTest, StateRoundTrip) {
  frm.serving.room_name = "Lobby 7";
  frm.counts.counters.session = 17;
  for (const char* line : {"bob-7", "amy-list", "joe~cats & dogs"})
    frm.lists.pending.Append(line);
  frm.lists.lstBanned.Add("spammer");
  frm.lists.lstBanned.Add("pest two");
  SaveRestartState(Restart());
  EXPECT_EQ(State("QuorvexDirectory"),
            "C:\\Program Files\\Quorvex\\Quorvex.exe");

  const auto next = NextProgram();
  auto& again = *next;
  LoadRestartState(MakeRestartContext(again));
  EXPECT_EQ(again.serving.room_name, "Lobby 7");
  EXPECT_EQ(again.counts.lblSession.caption(), "session: 17");
  EXPECT_THAT(again.lstPending().Items(),
              ElementsAre("bob-7", "amy-list", "joe~cats & dogs"));
  EXPECT_EQ(again.counts.lblPending.caption(), "pending: 3");
  EXPECT_THAT(again.lists.lstBanned.Items(),
              ElementsAre("spammer", "pest two"));
  // The restored queue is a working queue.
  EXPECT_EQ(again.lists.pending.PendingCount("bob"), 1);

  // A shorter save leaves the old keys behind.
  frm.lstPending().Clear();
  frm.lists.pending.Append("ann-1");
  SaveRestartState(Restart());
  EXPECT_EQ(State("TotalPending"), "1");
  EXPECT_EQ(State("Pending 1"), "amy-list");
  EXPECT_EQ(State("Pending 2"), "joe~cats & dogs");
  EXPECT_EQ(State("Banned 2"), "<missing>");
}

// A saved count of 0 sets the pending label but leaves the banned one, as
// it always did; a count below 0 loads nothing, and one name is a list.
TEST_F(MachineRestartTest, CountsOfZeroAndOneLoad) {
  frm.counts.lblPending.Set("stale");
  frm.counts.lblBanned.Set("stale");
  PutState("TotalPending", "-1");
  PutState("TotalBanned", "0");
  PutState("Pending 0", "bob-3");
  PutState("Banned 0", "pest");
  LoadRestartState(Restart());
  EXPECT_EQ(frm.counts.lblPending.caption(), "stale");
  EXPECT_EQ(frm.counts.lblBanned.caption(), "stale");
  PutState("TotalPending", "0");
  LoadRestartState(Restart());
  EXPECT_EQ(frm.counts.lblPending.caption(), "pending: 0");
  EXPECT_TRUE(frm.lstPending().Empty());
  EXPECT_TRUE(frm.lists.lstBanned.Empty());

  PutState("TotalBanned", "1");
  LoadRestartState(Restart());
  EXPECT_THAT(frm.lists.lstBanned.Items(), ElementsAre("pest"));
  EXPECT_EQ(frm.counts.lblBanned.caption(), "banned: 1");
}

TEST_F(MachineRestartTest, DamagedStateLoadsWhatIsThere) {
  PutState("ChatName", "Lobby" + std::string(100000, 'x'));
  PutState("TotalPending", "2000000000");
  PutState("TotalBanned", "2000000000");
  PutState("Pending 0", "bob-3");
  PutState("Banned 1", "pest");
  LoadRestartState(Restart());
  EXPECT_EQ(frm.serving.room_name.size(), kProfileValueChars);
  EXPECT_THAT(frm.lstPending().Items(), ElementsAre("bob-3"));
  EXPECT_EQ(frm.counts.lblPending.caption(), "pending: 1");
  // A gap is a blank name, as it always was; nothing behind the last.
  EXPECT_THAT(frm.lists.lstBanned.Items(), ElementsAre("", "pest"));
  EXPECT_EQ(frm.counts.lblBanned.caption(), "banned: 2");
}

TEST_F(MachineRestartTest, CPURestartSavesClosesCopiesAndReboots) {
  sim.knobs().close_needs_two = true;  // a client that ignores one close
  AddMails(2);
  sim.Launch();
  std::string program(200000, 'q');
  program[12345] = 'x';
  TempFolder::Write(machine.HostPath(ProgramPath(machine)), program);
  frm.serving.Timer1 = host.CreateTimer([] {});
  frm.serving.Timer1->SetEnabled(true);
  frm.settings.MailNotify = false;
  frm.serving.room_name = "Lobby";
  frm.lists.pending.Append("bob-1");
  SetWinIniLoad("C:\\other.exe");

  CPURestart(Restart(), c);

  EXPECT_FALSE(frm.serving.Timer1->enabled());
  EXPECT_EQ(registry.GetSetting(kApp, "Settings", "MailNotify", ""), "False");
  EXPECT_EQ(State("ChatName"), "Lobby");
  EXPECT_EQ(State("Pending 0"), "bob-1");
  EXPECT_FALSE(sim.running());
  EXPECT_EQ(WinIniLoad(), "C:\\Windows\\z.exe");
  EXPECT_EQ(TempFolder::Read(machine.HostPath(kRestartCopy)), program);
  EXPECT_EQ(reboots, 1);
  EXPECT_THAT(statuses, Contains("status: closing aol"));
  ExpectCopyThenRestart();

  // An empty program file and one of a single byte are copied whole.
  for (const char* small : {"", "q"}) {
    TempFolder::Write(machine.HostPath(ProgramPath(machine)), small);
    CPURestart(Restart(), c);
    EXPECT_EQ(TempFolder::Read(machine.HostPath(kRestartCopy)), small);
    ExpectCopyThenRestart();
  }
  EXPECT_EQ(reboots, 3);
}

TEST_F(MachineRestartTest, SplashDecision) {
  // Started as z.exe without the state: a normal start.
  machine.SetAppPath("C:\\Windows");
  machine.SetExeName("Z");
  EXPECT_EQ(frmSplash_Load(machine, profiles, host), StartupKind::kNormal);
  EXPECT_THAT(started, IsEmpty());

  // With the state, the copy starts the stored program and ends.
  PutState("QuorvexDirectory", "C:\\Program Files\\Quorvex\\Quorvex.exe");
  EXPECT_EQ(frmSplash_Load(machine, profiles, host),
            StartupKind::kStartedInstalled);
  EXPECT_THAT(started, ElementsAre("C:\\Program Files\\Quorvex\\Quorvex.exe"));

  // The installed program (case ignored) resumes at once; a moved one
  // starts normally.
  machine.SetAppPath("c:\\program files\\QUORVEX");
  machine.SetExeName("quorvex");
  EXPECT_EQ(frmSplash_Load(machine, profiles, host), StartupKind::kResume);
  machine.SetAppPath("D:\\Elsewhere");
  EXPECT_EQ(frmSplash_Load(machine, profiles, host), StartupKind::kNormal);

  // The splash shows on a normal start only, for its second.
  int shown = 0;
  double shown_at = -1;
  auto show = [&] {
    ++shown;
    shown_at = host.Clock();
  };
  machine.SetAppPath("c:\\program files\\QUORVEX");
  EXPECT_EQ(frmSplash_Load(machine, profiles, host, show),
            StartupKind::kResume);
  machine.SetExeName("z");
  EXPECT_EQ(frmSplash_Load(machine, profiles, host, show),
            StartupKind::kStartedInstalled);
  EXPECT_EQ(shown, 0);
  machine.SetExeName("quorvex");
  machine.SetAppPath("D:\\Elsewhere");
  EXPECT_EQ(frmSplash_Load(machine, profiles, host, show),
            StartupKind::kNormal);
  EXPECT_EQ(shown, 1);
  EXPECT_NEAR(host.Clock() - shown_at, 1.0, 0.05);
}

TEST_F(MachineRestartTest, ResumeRestoresCleansUpAndServes) {
  AddMails(3);
  sim.Launch();
  PutState("ChatName", "Lobby");
  PutState("TotalPending", "1");
  PutState("Pending 0", "bob-1");
  PutState("TotalSent", "40");
  TempFolder::Write(machine.HostPath(kRestartCopy), "copy");
  SetWinIniLoad(kRestartCopy);
  ASSERT_TRUE(RestartPending(machine));

  ServeJobs jobs;
  jobs.collect_lists = [] { return 1; };
  ServeEngine engine(MakeServeContext(frm), c, jobs);
  int client_restarts = 0;
  engine.aol_restart = [&] { ++client_restarts; };
  ResumeServing(engine, Restart(), c);

  EXPECT_GE(host.Elapsed(), 9.5);  // Windows is given time to settle
  EXPECT_FALSE(RestartPending(machine));
  EXPECT_FALSE(machine.FileExists(kRestartCopy));
  EXPECT_EQ(WinIniLoad(), "");  // the key stays, empty
  EXPECT_EQ(client_restarts, 1);
  EXPECT_EQ(frm.counts.lblSession.caption(), "session: 40");
  EXPECT_THAT(frm.lstPending().Items(), ElementsAre("bob-1"));
  ASSERT_GE(Said().size(), 2u);
  EXPECT_EQ(Said()[0], "quorvex restarted <B><U>cpu</B></U>");
  EXPECT_EQ(Said()[1], "quorvex mail server <B><U>on</B></U>");
  EXPECT_TRUE(frm.serving.ServerOn);
}

}  // namespace
}  // namespace quorvex
