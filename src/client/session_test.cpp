#include "client/session.h"

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "sim/folder_machine.h"
#include "sim/ini_profile_file.h"
#include "testing/controls_later.h"
#include "testing/temp_folder.h"
#include "testing/test_client.h"

namespace quorvex {
namespace {

constexpr const char* kAolFolder = "C:\\America Online 5.0";

class SessionTest : public ClientTest {
 protected:
  SessionTest() {
    machine.SetRunProgramHook([this](std::string_view path) {
      started.emplace_back(path);
      sim.Start();
    });
  }

  SessionContext Session() {
    return {c, machine, profiles, status, buster, room};
  }
  void Touch(const std::string& windows_path) {
    TempFolder::Write(machine.HostPath(windows_path), "MZ");
  }
  void SetAppPath(const std::string& folder) {
    profiles.WriteString(machine.HostPath("C:\\Windows\\Win.ini"), "WAOL",
                         "AppPath", folder);
  }
  void InstallClient() {
    SetAppPath(kAolFolder);
    Touch(std::string(kAolFolder) + "\\AOL.exe");
  }
  int Events(const std::string& what) const {
    return std::count(client_events.begin(), client_events.end(), what);
  }
  // Restarts, returning the clicks on the icon of any sign-on modal the
  // client shows meanwhile.
  int RestartCountingModalClicks() {
    std::set<Hwnd> icons;
    bool watching = true;
    std::function<void()> watch = [&] {
      if (Hwnd m = sim.FindWindowA("_AOL_Modal", "Sign On"))
        icons.insert(sim.FindWindowExA(m, 0, "_AOL_Icon", nullptr));
      if (watching) host.Schedule(0.1, watch);
    };
    host.Schedule(0.1, watch);
    AOLRestart(Session());
    watching = false;
    int clicks = 0;
    for (const RecordedMessage& m : api.messages)
      clicks += m.msg == win::kWmLButtonUp && icons.count(m.hwnd);
    return clicks;
  }
  void OnClient(const std::string& what) override {
    client_events.push_back(what);
  }

  const TempFolder root{"qv_session_"};
  FolderMachine machine{root};
  IniProfileFile profiles;
  StatusStrip status;
  std::string room = "Lobby";
  int buster_restarts = 0;
  Form buster_window{"frmRoomBuster"};
  RoomBuster buster{buster_window, c, [this] {
                      ++buster_restarts;
                      AOLRestart(Session());
                    }};
  std::vector<std::string> started, client_events;
};

TEST_F(SessionTest, ASignOnThatEndsAsItsProgressIsReadIsTheEnd) {
  InstallClient();
  // The modal comes after 2 s and its three steps take 1 s each: the
  // client signs on at the very moment the 5-second pause ends and the
  // progress still reads "step 3". The "Sign On" window is gone after it.
  sim.SetLatency(2);
  Launch();
  sim.SignOff();
  AOLRestart(Session());
  EXPECT_EQ(Events("signs on"), 1);
  EXPECT_EQ(sim.current_room(), "Lobby");
}

// The steps, statuses and events of a restart are checked by the
// client_restart scenario; these tests check what a transcript does not show.
TEST_F(SessionTest, RestartsASignedOffClientBackIntoItsFullRoom) {
  InstallClient();
  sim.knobs().close_needs_two = true;
  Launch();
  const Hwnd frame = FindFrame(api);
  sim.RefuseRoom("Lobby", 2);
  sim.SetPreference("Show addresses as hyperlinks", 0);
  sim.SignOff();
  AOLRestart(Session());
  // A frame that ignores the first close is asked again.
  int closes = 0;
  for (const RecordedMessage& m : api.To(frame))
    closes += m.msg == win::kWmClose && m.posted;
  EXPECT_GE(closes, 2);
  // The room is busted, and the buster window closed again.
  EXPECT_EQ(sim.current_room(), "Lobby");
  EXPECT_FALSE(buster.loaded());
  EXPECT_EQ(buster.restart, BusterRestart::kNone);
  EXPECT_EQ(buster_restarts, 0);

  // The client as the server wants it: messages off, the served mailbox
  // open but small, the mail preferences set, no page left open, and the
  // windows of the sign-on closed (the welcome window only goes down).
  EXPECT_FALSE(sim.ims_on());
  const Hwnd incoming = FindDocument(api, kIncomingMail);
  ASSERT_NE(incoming, 0u);
  EXPECT_TRUE(sim.tree().Get(incoming)->minimized);
  for (const MailPreference& p : kMailPreferences)
    EXPECT_EQ(sim.Preference(p.label), p.checked) << p.label;
  EXPECT_EQ(sim.Preference("Show addresses as hyperlinks"), 0);
  EXPECT_EQ(api.FindWindowA("_AOL_Modal", nullptr), 0u);
  EXPECT_EQ(FindDocument(api, "Preferences"), 0u);
  EXPECT_EQ(FindDocument(api, "Buddy List Window"), 0u);
  EXPECT_EQ(api.FindWindowA("#32770", nullptr), 0u);

  // Signed off, the keyword opens nothing: the preferences step gives up.
  sim.SignOff();
  SetMailPreferences(c);
  EXPECT_EQ(FindDocument(api, "Preferences"), 0u);
}

TEST_F(SessionTest, MailPreferencesWaitForTheControlsOfTheirWindows) {
  Launch();
  sim.SetPreference(kPrefSpellCheck, 1);
  ControlsLater late(sim, host);
  const ClientContext lc{late, host, settings, nullptr};
  const double began = host.Elapsed();
  SetMailPreferences(lc);
  // Every box set, nothing asked for again (at the pace of asking again,
  // a lost click would have cost seconds), and the windows closed.
  for (const MailPreference& p : kMailPreferences)
    EXPECT_EQ(sim.Preference(p.label), p.checked) << p.label;
  EXPECT_LT(host.Elapsed() - began, kAskAgainSeconds);
  EXPECT_EQ(sim.FindWindowA(aol::kModalClass, nullptr), 0u);
}

TEST_F(SessionTest, WithNoRoomKnownTheRestartEndsOutsideAnyRoom) {
  // The client signed off before the server ever saw its room: nothing to
  // bust, and the restart ends instead of waiting for a room for ever.
  InstallClient();
  Launch();
  sim.SignOff();
  room.clear();
  host.SetEnd(600);
  AOLRestart(Session());
  EXPECT_EQ(Events("signs on"), 1);
  EXPECT_FALSE(buster.loaded());
  EXPECT_EQ(sim.current_room(), "");
}

TEST_F(SessionTest, InstallFolderComesFromWinIniAndBothProgramsAreTried) {
  // No [WAOL]: the programs looked for are those at the root of the drive;
  // both are started when both are there, yet one client runs.
  EXPECT_EQ(GetAOLPath(machine, profiles), "");
  Touch("C:\\AOL.exe");
  Touch("C:\\WAOL.exe");
  Launch();
  AOLRestart(Session());
  EXPECT_EQ(started, (std::vector<std::string>{"\\AOL.exe", "\\WAOL.exe"}));
  EXPECT_EQ(Events("starts"), 1);
  EXPECT_EQ(sim.current_room(), "Lobby");
  // The profile read's buffer holds 719 characters.
  SetAppPath("C:\\" + std::string(800, 'x'));
  EXPECT_EQ(GetAOLPath(machine, profiles), "C:\\" + std::string(716, 'x'));
}

TEST_F(SessionTest, ASignOnInProgressIsWaitedOnNotDismissed) {
  InstallClient();
  sim.SetSignedOffAtStart();
  // Each sign-on step takes 4 s: when the restart looks, the modal reads
  // "Step 2: ...".
  sim.knobs().signon_step = 4;
  Launch();
  EXPECT_EQ(RestartCountingModalClicks(), 0);
  EXPECT_EQ(Events("signs on"), 1);
  EXPECT_EQ(sim.current_room(), "Lobby");
}

TEST_F(SessionTest, AClientLostDuringTheSignOnIsSignedOnAgain) {
  // Once the restart is signing on, the client signs off the moment it
  // has signed on (its goodbye window carries the sign-on button), or its
  // process dies with the sign-on's progress up (started again). Either
  // way the restart ends signed on, in the room.
  for (const bool crash : {false, true}) {
    SCOPED_TRACE(crash ? "killed" : "signed off");
    client_events.clear();
    InstallClient();
    Launch();
    sim.SignOff();
    bool struck = false;
    When(
        [&] {
          return status.text() == "status: signing online" &&
                 (crash ? sim.FindWindowA("_AOL_Modal", "Sign On") != 0
                        : sim.signed_on());
        },
        [&] {
          struck = true;
          crash ? sim.Crash() : sim.SignOff();
        });
    AOLRestart(Session());
    EXPECT_TRUE(struck);
    EXPECT_TRUE(sim.signed_on());
    EXPECT_EQ(sim.current_room(), "Lobby");
    EXPECT_EQ(Events("starts"), crash ? 2 : 1);
  }
}

TEST_F(SessionTest, AClientThatDiesWhileItStartsIsStartedAgain) {
  // It dies before it shows a window: the restart runs its program again
  // after a minute with no frame, and not before (a client still starting
  // takes its time).
  InstallClient();
  Launch();
  sim.SignOff();
  double struck_at = -1, started_again_at = -1;
  When([&] { return status.text() == "status: loading aol"; },
       [&] {
         struck_at = host.Clock();
         sim.Crash();
         When([&] { return Events("starts") == 2; },
              [&] { started_again_at = host.Clock(); }, 0.01);
       },
       0.01);
  AOLRestart(Session());
  EXPECT_TRUE(sim.signed_on());
  EXPECT_EQ(sim.current_room(), "Lobby");
  EXPECT_EQ(Events("starts"), 2);
  EXPECT_GE(started_again_at - struck_at, 60);
  EXPECT_LT(started_again_at - struck_at, 61);
}

TEST_F(SessionTest, AClientSignedOffAsTheBustEndsEndsTheRestart) {
  // The client signs off the moment the bust has brought it back into the
  // room: the restart ends there, signed off, and the next one brings it
  // back.
  InstallClient();
  Launch();
  sim.SignOff();
  bool struck = false;
  When(
      [&] {
        return status.text() == "status: busting chatroom" &&
               buster.cmdStart.caption() == "&start" &&
               sim.current_room() == "Lobby";
      },
      [&] {
        struck = true;
        sim.SignOff();
      });
  AOLRestart(Session());
  ASSERT_TRUE(struck);
  EXPECT_FALSE(sim.signed_on());
  EXPECT_FALSE(buster.loaded());
  AOLRestart(Session());
  EXPECT_EQ(sim.current_room(), "Lobby");
}

TEST_F(SessionTest, ARestartUnderWayIsNotStartedAgainFromTheBuster) {
  InstallClient();
  Launch();
  sim.RefuseRoom("Private", 20);
  buster.Form_Load();
  buster.txtRoom.text = "Private";
  buster.cmdStart_Click();
  sim.SignOff();
  // As the serving loop does: the buster's ticks meanwhile find the
  // client signed off and ask for a restart of their own.
  AOLRestart(Session());
  EXPECT_GE(buster_restarts, 1);
  EXPECT_EQ(Events("starts"), 1);
}

}  // namespace
}  // namespace quorvex
