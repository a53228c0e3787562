#include "client/session.h"

#include <array>
#include <cstddef>

#include "client/client_menus.h"
#include "client/client_tree.h"
#include "client/instant_messages.h"
#include "client/wait.h"
#include "client/window_ops.h"
#include "model/draw_status.h"
#include "model/text_util.h"
#include "ports/client_windows.h"

namespace quorvex {

namespace {

// GetPrivateProfileStringA's buffer: the path is cut to one less.
constexpr std::size_t kPathBuffer = 720;
// The frame gets another WM_CLOSE after this many pauses of 0.4 s.
constexpr int kCloseRounds = 100;
constexpr float kCloseWait = 0.4f;
// Seconds without a client frame after which the client's programs are
// run again while a restart waits for its sign-on window.
constexpr double kStartAgainSeconds = 60;
constexpr std::array<const char*, 3> kSignOnSteps = {
    "step 1: ", "step 2: ", "step 3: "};

void SetStatus(const SessionContext& s, const char* text) {
  s.status.Draw(text, kBandColour);
}

// Starts a program with normal focus and yields once.
void RunProgram(const SessionContext& s, const std::string& path) {
  s.machine.RunProgram(path);
  s.client.host.DoEvents();
}

// The sign-on button: from the first icon of the "Sign On" window, or of
// the goodbye window a sign-off leaves (the same window under another
// caption), the fourth window in the sibling order.
Hwnd FindSignOnButton(WindowApi& api) {
  Hwnd window = FindDocument(api, kSignOnCaption);
  if (!window) window = FindDocument(api, kGoodbyeCaption);
  const Hwnd first = FindChild(api, window, aol::kIconClass);
  return first ? NextSibling(api, first, 3) : 0;
}

void CloseOpenMails(const SessionContext& s) {
  WindowApi& api = s.client.api;
  WaitUntil(
      s.client.host, [&] { return FindOpenMail(api) == 0; },
      {.every = 1, .repeat = [&] { CloseWindow(api, FindOpenMail(api)); }});
}

void CloseComposeWindows(const SessionContext& s) {
  WindowApi& api = s.client.api;
  WaitUntil(s.client.host, [&] { return FindComposeWindow(api) == 0; },
            {.every = 1, .repeat = [&] {
               const Hwnd compose = FindComposeWindow(api);
               api.SendMessageA(compose, win::kWmDestroy, 0, 0);
               CloseWindow(api, compose);
             }});
}

void CloseClient(const SessionContext& s) {
  WindowApi& api = s.client.api;
  if (FindFrame(api) == 0) return;
  SetStatus(s, "status: closing aol");
  api.PostMessageA(FindFrame(api), win::kWmClose, 0, 0);
  // A frame still there after 100 pauses is asked again.
  WaitUntil(s.client.host, [&] { return FindFrame(api) == 0; },
            {.speed = kCloseWait, .every = kCloseRounds, .repeat = [&] {
               api.PostMessageA(FindFrame(api), win::kWmClose, 0, 0);
             }});
}

void StartClient(const SessionContext& s) {
  SetStatus(s, "status: loading aol");
  WindowApi& api = s.client.api;
  const std::string folder = GetAOLPath(s.machine, s.profiles);
  // Both programs are tried: whichever the member has installed.
  auto run = [&] {
    if (s.machine.FileExists(folder + "\\AOL.exe"))
      RunProgram(s, folder + "\\AOL.exe");
    if (s.machine.FileExists(folder + "\\WAOL.exe"))
      RunProgram(s, folder + "\\WAOL.exe");
  };
  run();
  // Without either program nothing comes, and the status says so. A
  // client that died while it started shows nothing either: while no
  // frame is up, the programs are run again now and then (a client that
  // is still starting takes no second copy).
  WaitUntil(s.client.host,
            [&] {
              return FindDocument(api, kSignOnCaption) != 0 ||
                     FindDocument(api, kGoodbyeCaption) != 0;
            },
            {.repeat =
                 [&] {
                   if (FindFrame(api) == 0) run();
                 },
             .pace = kStartAgainSeconds,
             .pace_max = kStartAgainSeconds});
}

void SignOn(const SessionContext& s) {
  WindowApi& api = s.client.api;
  Host& host = s.client.host;
  SetStatus(s, "status: signing online");
  while (true) {
    host.DoEvents();
    // The sign-on may end while the round looks at its progress: the
    // "Sign On" window is then gone for good, and signed on is the end.
    // Signed off meanwhile, the goodbye window has the button; a client
    // that died meanwhile is started again.
    Hwnd button = 0;
    const Hwnd frame = FindFrame(api);
    if (WaitUntil(host,
                  [&] {
                    return (button = FindSignOnButton(api)) != 0 ||
                           IsSignedOn(api);
                  },
                  {.give_up = Gone(api, frame)}) == WaitEnd::kGaveUp) {
      StartClient(s);
      SetStatus(s, "status: signing online");
      continue;
    }
    if (IsSignedOn(api)) return;
    ClickIcon(api, button);
    Pause(host, 5);

    // The progress modal names its step while signing on; any other text
    // is an error to dismiss before trying again.
    const Hwnd modal = api.FindWindowA(aol::kModalClass, nullptr);
    const std::string text =
        LCase(GetText(api, FindChild(api, modal, aol::kStaticClass)));
    bool in_progress = false;
    for (const char* step : kSignOnSteps)
      in_progress = in_progress || text.find(step) != std::string::npos;
    if (!in_progress && !IsSignedOn(api)) {
      ClickIcon(api, FindChild(api, modal, aol::kIconClass));
      continue;
    }
    if (FindChildByTitle(api, FindMdiClient(api), "Welcome, ") != 0) return;
  }
}

// Closes what the client opens after sign-on (welcome, buddy list, ...).
void CloseSignOnWindows(const SessionContext& s) {
  WindowApi& api = s.client.api;
  SetStatus(s, "status: closing windows");
  for (int i = 0; i < 10; ++i)
    CloseWindow(api,
                api.FindWindowExA(FindMdiClient(api), 0, "aol child", nullptr));
}

void OpenFlashmail(const SessionContext& s) {
  WindowApi& api = s.client.api;
  SetStatus(s, "status: opening flashmail");
  OpenOfflineMailbox(s.client);
  PauseSeconds(s.client.host, 1);
  MinimizeWindow(api, FindChildByTitle(api, FindMdiClient(api), kIncomingMail));
}

// Back into the server's room through the room buster.
void BustRoom(const SessionContext& s) {
  RoomBuster& buster = s.buster;
  SetStatus(s, "status: busting chatroom");
  // No room to return to: the client signed off before the server ever
  // saw its room. A bust of no name ends at once, and the wait for a room
  // to come would never end.
  if (s.room_name.empty() && !buster.busting()) return;
  buster.restart = BusterRestart::kBust;
  buster.Form_Load();
  // A bust under way (its tick found the client signed off and ran this
  // restart) goes on with its own room; pressing start would stop it.
  if (!buster.busting()) {
    buster.txtRoom.Set(s.room_name);
    buster.cmdStart_Click();
  }
  // From inside the buster's tick its next tick cannot come before this
  // returns: the bust goes on after it, and whoever waits for it unloads.
  if (buster.in_tick()) return;
  // A client that signs off once the bust has ended never shows the room:
  // the restart ends there, and the next tick finds the client signed off.
  WindowApi& api = s.client.api;
  WaitUntil(s.client.host,
            [&] {
              return buster.cmdStart.caption() == "&start" &&
                     FindChatRoom(api) != 0;
            },
            {.speed = 1, .give_up = [&] {
               return buster.cmdStart.caption() == "&start" && !IsSignedOn(api);
             }});
  buster.Form_Unload();
}

}  // namespace

const MailPreference kMailPreferences[5] = {
    // A confirmation box after each send would stand in front of the next
    // forward until someone closed it.
    {"Confirm mail after it has been sent", 0},
    // The forwarding job waits for the mail's windows to close after
    // Send Now.
    {"Close mail after it has been sent", 1},
    // A copy of every forward in the filing cabinet would grow it without
    // end.
    {"Retain all mail I send in my Personal Filing Cabinet", 0},
    // Mail read online must not be added to the filing cabinet's
    // "Incoming/Saved Mail": its numbers are the mails the server offers.
    {"Retain all mail I read in my Personal Filing Cabinet", 0},
    // A spelling check would hold each mail in a dialog of its own.
    {"Perform a spell check before sending mail", 0},
};

std::string GetAOLPath(const Machine& machine, const ProfileFile& profiles) {
  const std::string ini = machine.WindowsDirectory() + "\\Win.ini";
  std::string path =
      profiles.GetString(machine.HostPath(ini), "WAOL", "AppPath", "");
  if (path.size() > kPathBuffer - 1) path.resize(kPathBuffer - 1);
  return path;
}

void AOLRestart(const SessionContext& s) {
  RoomBuster& buster = s.buster;
  // The buster's tick can find the client signed off while a restart is
  // bringing it back; a second restart inside the first would close the
  // client it is signing on.
  if (buster.restart == BusterRestart::kClient) return;
  buster.restart = BusterRestart::kClient;
  Host& host = s.client.host;

  CloseOpenMails(s);
  CloseComposeWindows(s);
  CloseClient(s);
  SetStatus(s, "status: pausing 3 secs");
  Pause(host, 3);
  StartClient(s);
  SetStatus(s, "status: pausing 2 secs");
  Pause(host, 2);
  SignOn(s);
  SetStatus(s, "status: pausing 10 secs");
  Pause(host, 10);
  CloseSignOnWindows(s);
  SetStatus(s, "status: turning ims off");
  IMsOff(s.client);
  OpenFlashmail(s);
  SetStatus(s, "status: setting preferences");
  SetMailPreferences(s.client);
  host.DoEvents();
  PauseSeconds(host, 1);
  BustRoom(s);
  SetStatus(s, "status: idle");
}

void SetMailPreferences(const ClientContext& c) {
  WindowApi& api = c.api;
  const auto signed_off = SignedOff(api);

  // The "Preferences" window, by its keyword. A window is there before
  // its controls (the client makes them one by one): each step waits for
  // the controls it works with.
  auto mail_tab = [&] {
    return api.FindWindowExA(FindDocument(api, "Preferences"), 0,
                             aol::kIconClass, "Mail");
  };
  Keyword(api, "Preferences");
  if (WaitUntil(
          c.host, [&] { return mail_tab() != 0; }, AskingAgain(signed_off, [&] {
            Keyword(api, "Preferences");
          })) != WaitEnd::kMet)
    return;

  // Its "Mail" tab opens the page, a modal of check boxes.
  auto click_mail_tab = [&] { ClickIcon(api, mail_tab()); };
  click_mail_tab();
  Hwnd page = 0;
  auto ok_icon = [&] { return api.FindWindowExA(page, 0, "_AOL_icon", "OK"); };
  if (WaitUntil(
          c.host,
          [&] {
            page = api.FindWindowA(aol::kModalClass, "Mail Preferences");
            if (!page || !ok_icon()) return false;
            for (const MailPreference& p : kMailPreferences)
              if (!api.FindWindowExA(page, 0, aol::kCheckboxClass, p.label))
                return false;
            return true;
          },
          AskingAgain(signed_off, click_mail_tab)) != WaitEnd::kMet)
    return;

  // A click toggles a box: only those not yet as wanted are clicked.
  for (const MailPreference& p : kMailPreferences) {
    const Hwnd box = api.FindWindowExA(page, 0, aol::kCheckboxClass, p.label);
    if (box != 0 && api.SendMessageA(box, win::kBmGetCheck, 0, 0) != p.checked)
      ClickIcon(api, box);
  }
  auto click_ok = [&] { ClickIcon(api, ok_icon()); };
  click_ok();
  WaitUntil(
      c.host, [&] { return !api.IsWindow(page); },
      AskingAgain(signed_off, click_ok));
  CloseWindow(api, FindDocument(api, "Preferences"));
}

}  // namespace quorvex
