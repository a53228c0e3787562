#include "client/session.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "client/chat_room.h"
#include "client/client_tree.h"
#include "client/test_client.h"
#include "platform/folder_machine.h"
#include "settings/ini_profile_file.h"

namespace quorvex {
namespace {

namespace fs = std::filesystem;

constexpr const char* kAolFolder = "C:\\America Online 5.0";

fs::path MakeRoot() {
  fs::path root = fs::temp_directory_path() /
                  ("qv_session_" + std::to_string(std::random_device{}()));
  fs::create_directories(root);
  return root;
}

class SessionTest : public ClientTest {
 protected:
  SessionTest() {
    machine.SetRunProgramHook([this](std::string_view path) {
      started.emplace_back(path);
      sim.Start();
    });
    status.Subscribe(
        [this](const StatusStrip& s) { statuses.push_back(s.text()); });
    buster.lblBusts.Subscribe(
        [this](const Label& l) { busts_shown.push_back(l.caption()); });
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
  bool Said(const std::string& text) const {
    const std::string line = ChatLine(c, text);
    for (const std::string& l : chats)
      if (l == line) return true;
    return false;
  }
  // Every sign-on progress modal the client shows, polled as it runs.
  void WatchSignOnModals() {
    host.Schedule(0.1, [this] {
      if (Hwnd m = sim.FindWindow("_AOL_Modal", "Sign On")) {
        modals.insert(m);
        modal_icons.insert(sim.FindWindowEx(m, 0, "_AOL_Icon", nullptr));
      }
      if (watching) WatchSignOnModals();
    });
  }

  int ClicksOnModals() const {
    int n = 0;
    for (const RecordedMessage& m : api.messages)
      if (m.msg == win::kWmLButtonUp && modal_icons.count(m.hwnd)) ++n;
    return n;
  }

  void OnClient(const std::string& what) override {
    client_events.push_back(what);
  }
  void OnChat(const std::string&, const std::string& text) override {
    chats.push_back(text);
  }

  fs::path root = MakeRoot();
  FolderMachine machine{root};
  IniProfileFile profiles;
  StatusStrip status;
  std::string room = "Lobby";
  int buster_restarts = 0;
  FrmRoomBuster buster{c, [this] {
                         ++buster_restarts;
                         AOLRestart(Session());
                       }};

  std::vector<std::string> started, statuses, busts_shown, client_events, chats;
  std::set<Hwnd> modals, modal_icons;
  bool watching = true;
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
  sim.AddPerson("Ann");
  Launch();
  sim.RefuseRoom("Lobby", 2);
  sim.SignOff();

  AOLRestart(Session());

  EXPECT_EQ(statuses, kRestartStatuses);
  EXPECT_EQ(started,
            std::vector<std::string>{"C:\\America Online 5.0\\AOL.exe"});
  EXPECT_EQ(client_events,
            (std::vector<std::string>{"signs off", "closes", "starts",
                                      "signs on", "enters Lobby"}));
  EXPECT_TRUE(IsSignedOn(api));
  EXPECT_EQ(sim.current_room(), "Lobby");
  // Two refusals, then in on the third try.
  EXPECT_TRUE(
      Said("quorvex busted <B><U>Lobby</B></U> in <B><U>3</B></U> tries"));
  EXPECT_TRUE(Said(
      "quorvex stopped busting <B><U>Lobby</B></U> at <B><U>3</B></U> tries"));
  EXPECT_EQ(busts_shown,
            (std::vector<std::string>{"busts: 1", "busts: 2", "busts: 0"}));
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
  EXPECT_EQ(api.FindWindow("_AOL_Modal", nullptr), 0u);
  EXPECT_EQ(FindDocument(api, "Preferences"), 0u);
  EXPECT_EQ(FindDocument(api, "Buddy List Window"), 0u);
  EXPECT_EQ(api.FindWindow("#32770", nullptr), 0u);
}

TEST_F(SessionTest, InstallFolderComesFromWinIniAndBothProgramsAreTried) {
  // No [WAOL]: the folder is empty, so the programs looked for are those
  // at the root of the drive; both are started when both are there.
  EXPECT_EQ(GetAOLPath(machine, profiles), "");
  Touch("C:\\AOL.exe");
  Touch("C:\\WAOL.exe");
  Launch();
  AOLRestart(Session());
  EXPECT_EQ(started, (std::vector<std::string>{"\\AOL.exe", "\\WAOL.exe"}));
  // One copy of the client runs.
  EXPECT_EQ(std::count(client_events.begin(), client_events.end(), "starts"),
            1);
  EXPECT_EQ(sim.current_room(), "Lobby");

  SetAppPath(kAolFolder);
  EXPECT_EQ(GetAOLPath(machine, profiles), kAolFolder);
  // The profile read's buffer holds 719 characters.
  SetAppPath("C:\\" + std::string(800, 'x'));
  EXPECT_EQ(GetAOLPath(machine, profiles), "C:\\" + std::string(716, 'x'));
}

TEST_F(SessionTest, NothingToStartKeepsWaitingOnLoadingAol) {
  SetAppPath("C:\\Nowhere");
  Launch();
  host.SetEnd(host.Elapsed() + 120);
  EXPECT_THROW(AOLRestart(Session()), RunEnded);
  EXPECT_TRUE(started.empty());
  EXPECT_EQ(status.text(), "status: loading aol");
}

TEST_F(SessionTest, AFailedSignOnIsDismissedAndTriedAgain) {
  InstallClient();
  sim.SetSignedOffAtStart();
  sim.knobs().signon_failures = 1;
  Launch();
  WatchSignOnModals();
  AOLRestart(Session());
  watching = false;

  EXPECT_EQ(sim.knobs().signon_failures, 0);
  EXPECT_EQ(std::count(client_events.begin(), client_events.end(), "signs on"),
            1);
  // The error modal, then a new progress modal for the second try.
  EXPECT_EQ(modals.size(), 2u);
  EXPECT_EQ(ClicksOnModals(), 1);
  EXPECT_EQ(api.FindWindow("_AOL_Modal", nullptr), 0u);
  EXPECT_EQ(sim.current_room(), "Lobby");
  EXPECT_EQ(statuses, kRestartStatuses);
}

TEST_F(SessionTest, ASignOnStillInProgressIsWaitedOnNotDismissed) {
  InstallClient();
  // Five seconds after the click the modal reads "Step 2: ...".
  sim.knobs().signon_step = 4;
  Launch();
  WatchSignOnModals();
  AOLRestart(Session());
  watching = false;
  EXPECT_EQ(modals.size(), 1u);
  EXPECT_EQ(ClicksOnModals(), 0);
  EXPECT_EQ(std::count(client_events.begin(), client_events.end(), "signs on"),
            1);
  EXPECT_EQ(sim.current_room(), "Lobby");
}

TEST_F(SessionTest, AFrameThatIgnoresTheFirstCloseIsAskedAgain) {
  InstallClient();
  sim.knobs().close_needs_two = true;
  Launch();
  const Hwnd frame = FindFrame(api);
  AOLRestart(Session());
  int closes = 0;
  for (const RecordedMessage& m : api.To(frame))
    if (m.msg == win::kWmClose && m.posted) ++closes;
  EXPECT_GE(closes, 2);
  EXPECT_NE(FindFrame(api), frame);
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
  EXPECT_EQ(std::count(client_events.begin(), client_events.end(), "starts"),
            1);
  EXPECT_EQ(statuses, kRestartStatuses);
}

TEST_F(SessionTest, MailPreferencesAreSetAndSavedOthersLeftAlone) {
  Launch();
  const char* kHyperlinks = "Show addresses as hyperlinks";
  sim.SetPreference("Retain all mail I send in my Personal Filing Cabinet", 1);
  sim.SetPreference("Close mail after it has been sent", 0);
  sim.SetPreference(kHyperlinks, 0);
  SetMailPreferences(c);
  for (const MailPreference& p : kMailPreferences)
    EXPECT_EQ(sim.Preference(p.label), p.checked) << p.label;
  EXPECT_EQ(sim.Preference(kHyperlinks), 0);
  EXPECT_EQ(api.FindWindow("_AOL_Modal", nullptr), 0u);
  Run(1);
  EXPECT_EQ(FindDocument(api, "Preferences"), 0u);

  // Signed off, the keyword opens nothing: the step gives up.
  sim.SignOff();
  SetMailPreferences(c);
  EXPECT_EQ(FindDocument(api, "Preferences"), 0u);
}

}  // namespace
}  // namespace quorvex
