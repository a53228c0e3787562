#include "client/session.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "client/chat_room.h"
#include "client/test_client.h"
#include "platform/folder_machine.h"
#include "settings/ini_profile_file.h"

namespace quorvex {
namespace {

namespace fs = std::filesystem;

constexpr const char* kAolFolder = "C:\\America Online 5.0";

class SessionTest : public ClientTest {
 protected:
  SessionTest() {
    fs::create_directories(root);
    machine.SetRunProgramHook([this](std::string_view path) {
      started.emplace_back(path);
      sim.Start();
    });
    status.Subscribe(
        [this](const StatusStrip& s) { statuses.push_back(s.text()); });
  }
  ~SessionTest() override { fs::remove_all(root); }

  SessionContext Session() {
    return {c, machine, profiles, status, buster, room};
  }
  void Touch(const std::string& windows_path) {
    fs::path p = machine.HostPath(windows_path);
    fs::create_directories(p.parent_path());
    std::ofstream(p) << "MZ";
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
  // Restarts, noting every sign-on modal the client shows meanwhile;
  // returns the clicks on their icons.
  int RestartWatchingModals() {
    bool watching = true;
    std::function<void()> watch = [&] {
      if (Hwnd m = sim.FindWindow("_AOL_Modal", "Sign On")) {
        modals.insert(m);
        modal_icons.insert(sim.FindWindowEx(m, 0, "_AOL_Icon", nullptr));
      }
      if (watching) host.Schedule(0.1, watch);
    };
    host.Schedule(0.1, watch);
    AOLRestart(Session());
    watching = false;
    int clicks = 0;
    for (const RecordedMessage& m : api.messages)
      clicks += m.msg == win::kWmLButtonUp && modal_icons.count(m.hwnd);
    return clicks;
  }
  void OnClient(const std::string& what) override {
    client_events.push_back(what);
  }

  fs::path root = fs::temp_directory_path() /
                  ("qv_session_" + std::to_string(std::random_device{}()));
  FolderMachine machine{root};
  IniProfileFile profiles;
  StatusStrip status;
  std::string room = "Lobby";
  int buster_restarts = 0;
  FrmRoomBuster buster{c, [this] {
                         ++buster_restarts;
                         AOLRestart(Session());
                       }};
  std::vector<std::string> started, statuses, client_events;
  std::set<Hwnd> modals, modal_icons;
};

const std::vector<std::string> kRestartStatuses = {
    "status: closing aol",       "status: pausing 3 secs",
    "status: loading aol",       "status: pausing 2 secs",
    "status: signing online",    "status: pausing 10 secs",
    "status: closing windows",   "status: turning ims off",
    "status: opening flashmail", "status: setting preferences",
    "status: busting chatroom",  "status: idle"};

TEST_F(SessionTest, RestartsASignedOffClientBackIntoItsFullRoom) {
  InstallClient();
  sim.knobs().close_needs_two = true;
  Launch();
  const Hwnd frame = FindFrame(api);
  sim.RefuseRoom("Lobby", 2);
  sim.SetPreference("Show addresses as hyperlinks", 0);
  sim.SignOff();
  AOLRestart(Session());

  EXPECT_EQ(statuses, kRestartStatuses);
  EXPECT_EQ(started,
            std::vector<std::string>{"C:\\America Online 5.0\\AOL.exe"});
  EXPECT_EQ(client_events,
            (std::vector<std::string>{"signs off", "closes", "starts",
                                      "signs on", "enters Lobby"}));
  // A frame that ignores the first close is asked again.
  int closes = 0;
  for (const RecordedMessage& m : api.To(frame))
    closes += m.msg == win::kWmClose && m.posted;
  EXPECT_GE(closes, 2);
  // The room is busted: two refusals, in on the third try.
  EXPECT_EQ(sim.current_room(), "Lobby");
  EXPECT_EQ(chats.back(), ChatLine(c,
                                   "quorvex stopped busting <B><U>Lobby</B>"
                                   "</U> at <B><U>3</B></U> tries"));
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
  EXPECT_EQ(api.FindWindow("_AOL_Modal", nullptr), 0u);
  EXPECT_EQ(FindDocument(api, "Preferences"), 0u);
  EXPECT_EQ(FindDocument(api, "Buddy List Window"), 0u);
  EXPECT_EQ(api.FindWindow("#32770", nullptr), 0u);

  // Signed off, the keyword opens nothing: the preferences step gives up.
  sim.SignOff();
  SetMailPreferences(c);
  EXPECT_EQ(FindDocument(api, "Preferences"), 0u);
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

  // Nothing to start: it keeps waiting on the client.
  SetAppPath("C:\\Nowhere");
  started.clear();
  sim.SignOff();
  host.SetEnd(host.Elapsed() + 120);
  EXPECT_THROW(AOLRestart(Session()), RunEnded);
  EXPECT_TRUE(started.empty());
  EXPECT_EQ(status.text(), "status: loading aol");
}

TEST_F(SessionTest, AFailedSignOnIsDismissedOneInProgressWaitedOn) {
  InstallClient();
  sim.SetSignedOffAtStart();
  sim.knobs().signon_failures = 1;
  Launch();
  // The error modal is clicked once, then a new progress modal comes.
  EXPECT_EQ(RestartWatchingModals(), 1);
  EXPECT_EQ(modals.size(), 2u);
  EXPECT_EQ(Events("signs on"), 1);
  EXPECT_EQ(api.FindWindow("_AOL_Modal", nullptr), 0u);
  EXPECT_EQ(statuses, kRestartStatuses);

  // Five seconds after the click the modal reads "Step 2: ...": no click.
  sim.knobs().signon_step = 4;
  sim.SignOff();
  modals.clear();
  EXPECT_EQ(RestartWatchingModals(), 1);
  EXPECT_EQ(modals.size(), 1u);
  EXPECT_EQ(Events("signs on"), 2);
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
  EXPECT_EQ(statuses, kRestartStatuses);
}

}  // namespace
}  // namespace quorvex
