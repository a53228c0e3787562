// The desktop program seen from outside, as a person sees it: started in
// its own process with a simulated room, its windows and controls found
// with plain Win32 calls, clicked and read while it serves.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>

#include "desktop/control_ids.h"
#include "desktop/dialog_prompter.h"
#include "desktop/remote.h"
#include "desktop/wide_text.h"
#include "server/serve_engine.h"
#include "standin_process.h"

namespace quorvex::desktop {
namespace {

namespace fs = std::filesystem;
using namespace remote;

// The number at the end of a counter's caption ("pending: 12" -> 12).
int Count(const std::string& caption) {
  const std::size_t colon = caption.rfind(": ");
  return colon == std::string::npos ? -1
                                    : std::atoi(caption.c_str() + colon + 2);
}

// quorvex.exe in a process of its own, started from a scratch folder
// with `args`; the folder and the process go at the end.
class ProgramTest : public ::testing::Test {
 protected:
  void Launch(const std::wstring& exe, const std::wstring& args) {
    std::wstring command = L"\"" + exe + L"\" " + args;
    STARTUPINFOW si{};
    si.cb = sizeof(si);
    ASSERT_TRUE(CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE,
                               0, nullptr, root_.c_str(), &si, &process_));
    WatchSplash();
    main_ = WaitWindow(kMainClass, nullptr, 60, process_.dwProcessId);
    ASSERT_NE(main_, nullptr) << "the main window never showed";
  }
  // The program in its simulated room, 20 times as fast as real time.
  void LaunchSimulated() {
    Launch(Program().wstring(),
           L"--simulate --speed 20 --root \"" + root_.wstring() + L"\"");
  }
  // The program without --simulate, as a copy in the scratch folder (it
  // keeps its queue beside itself).
  void LaunchPlain() {
    const fs::path copy = root_ / "quorvex.exe";
    fs::copy_file(Program(), copy);
    Launch(copy.wstring(), L"");
  }
  // The program built beside this test.
  static fs::path Program() {
    wchar_t self[MAX_PATH];
    GetModuleFileNameW(nullptr, self, MAX_PATH);
    return fs::path(self).parent_path() / "quorvex.exe";
  }

  // How long the splash window stood on the screen, measured from the
  // first moment it showed to the moment it went (-1: it never showed).
  void WatchSplash() {
    LARGE_INTEGER hz, shown{}, now;
    QueryPerformanceFrequency(&hz);
    HWND splash = nullptr;
    auto seconds = [&](const LARGE_INTEGER& from) {
      QueryPerformanceCounter(&now);
      return static_cast<double>(now.QuadPart - from.QuadPart) /
             static_cast<double>(hz.QuadPart);
    };
    LARGE_INTEGER started;
    QueryPerformanceCounter(&started);
    while (seconds(started) < 60) {
      HWND w = FindWindowW(kSplashClass, nullptr);
      DWORD pid = 0;
      if (w) GetWindowThreadProcessId(w, &pid);
      const bool up = w && pid == process_.dwProcessId && IsWindowVisible(w);
      if (up && !splash) {
        splash = w;
        QueryPerformanceCounter(&shown);
      } else if (splash && !up) {
        splash_seconds_ = seconds(shown);
        return;
      } else if (!splash && FindWindowW(kMainClass, nullptr)) {
        return;  // a start without the splash
      }
      Sleep(1);
    }
  }

  HWND Control(int id) const { return GetDlgItem(main_, id); }
  std::string Caption(int id) const { return Text(Control(id)); }
  // Whether the caption of the main window's control `id` comes to read
  // `text` within `seconds`.
  bool Becomes(int id, const std::string& text, double seconds = 20) const {
    return WaitFor([&] { return Caption(id) == text; }, seconds);
  }
  // Picks the menu entry and waits for the window of `window_class` it
  // opens.
  testing::AssertionResult Open(const char* entry, const wchar_t* window_class,
                                HWND* window) const {
    PickMenu(main_, entry);
    *window = WaitWindow(window_class, nullptr, 20);
    if (*window) return testing::AssertionSuccess();
    return testing::AssertionFailure() << entry << " opened no window";
  }
  // Whether the window of `window_class` has gone within 20 s.
  static bool Gone(const wchar_t* window_class) {
    return WaitFor([window_class] { return !Showing(window_class); }, 20);
  }
  // Clicks the window's control `exit`; true once the window has gone.
  static bool Closes(HWND window, int exit, const wchar_t* window_class) {
    Click(GetDlgItem(window, exit));
    return Gone(window_class);
  }
  // Whether a pop-up menu comes to show (or to go) within 10 s.
  static bool MenuShowing(bool shown = true) {
    return WaitFor([shown] { return Showing(L"#32768") == shown; }, 10);
  }
  static bool Focused(HWND window, HWND control) {
    return WaitFor([&] { return Focus(window) == control; }, 10);
  }
  // A counter agrees with the list it counts, read at one moment.
  bool Agrees(int label, int list) const {
    return Count(Caption(label)) == ListCount(Control(list));
  }
  // Presses start and answers yes to the offer to build the list mails.
  void Start() {
    Click(Control(kIdCmdStart));
    HWND box = WaitDialog("make lists", 30);
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(DialogPrompt(box), "do you want to make new lists?");
    PressDialogButton(box, IDYES);
  }
  void SetUp() override {
    root_ = fs::temp_directory_path() /
            ("quorvex-desktop-" + std::to_string(GetCurrentProcessId()));
    fs::remove_all(root_);
    fs::create_directories(root_);
  }

  void TearDown() override {
    if (process_.hProcess) {
      if (WaitForSingleObject(process_.hProcess, 0) == WAIT_TIMEOUT)
        TerminateProcess(process_.hProcess, 1);
      WaitForSingleObject(process_.hProcess, 10000);
      CloseHandle(process_.hThread);
      CloseHandle(process_.hProcess);
    }
    std::error_code ec;
    fs::remove_all(root_, ec);
  }

  bool Ends(double seconds) const {
    return WaitForSingleObject(process_.hProcess,
                               static_cast<DWORD>(seconds * 1000)) ==
           WAIT_OBJECT_0;
  }

  fs::path root_;
  PROCESS_INFORMATION process_{};
  HWND main_ = nullptr;
  double splash_seconds_ = -1;
};

class DesktopTest : public ProgramTest {
 protected:
  void SetUp() override {
    ProgramTest::SetUp();
    LaunchSimulated();
    if (HasFatalFailure()) return;
    // The main window's load has run once it marks the program running.
    ASSERT_TRUE(Stored("Load", "True", 30));
  }
  // Whether the program comes to store `value` for `name` within
  // `seconds`.
  bool Stored(const std::string& name, const std::string& value,
              double seconds = 20) const {
    const std::string pair = "\"" + name + "\": \"" + value + "\"";
    return WaitFor(
        [&] { return RegistryFile().find(pair) != std::string::npos; },
        seconds);
  }

  // The simulated registry as the program last wrote it. Opened so that
  // the program can still replace the file while it is read (it renames a
  // new file over it on every change).
  std::string RegistryFile() const { return FileText("registry.json"); }
  // What the simulated client showed and sent so far, a line each.
  std::string RoomLog() const { return FileText("room.txt"); }
  std::string FileText(const char* name) const {
    HANDLE f =
        CreateFileW((root_ / name).c_str(), GENERIC_READ,
                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, 0, nullptr);
    if (f == INVALID_HANDLE_VALUE) return "";
    std::string text;
    char buffer[4096];
    DWORD got = 0;
    while (ReadFile(f, buffer, sizeof buffer, &got, nullptr) && got > 0)
      text.append(buffer, got);
    CloseHandle(f);
    return text;
  }
};

TEST_F(DesktopTest, ServesTheRoomWhileItsCountersAndListsFollow) {
  // At load: the title, the idle status and the counters' captions.
  EXPECT_EQ(Caption(kIdPicTitle), "quorvex mail server by kestrin");
  EXPECT_TRUE(Becomes(kIdPicStatus, "status: idle", 10));
  EXPECT_EQ(Caption(kIdLblSession), "session: 0");
  EXPECT_EQ(Caption(kIdLblSent), "sent: 0");

  Start();
  // Starting reads the mailbox into lstMails and counts it.
  ASSERT_TRUE(WaitFor([&] { return ListCount(Control(kIdLstMails)) > 0; }, 30));
  EXPECT_TRUE(WaitFor([&] { return Agrees(kIdLblMails, kIdLstMails); }, 10));
  EXPECT_EQ(ListItem(Control(kIdLstMails), 0), "cats in the snow");

  // Requests from the room are queued and then served: the pending list
  // grows and shrinks with its counter, and the session counter climbs.
  int most_pending = 0;
  bool always_agreed = true;
  ASSERT_TRUE(WaitFor(
      [&] {
        const int pending = ListCount(Control(kIdLstPending));
        most_pending = std::max(most_pending, pending);
        if (!WaitFor([&] { return Agrees(kIdLblPending, kIdLstPending); }, 1))
          always_agreed = false;
        return Count(Caption(kIdLblSession)) >= 3;
      },
      90));
  EXPECT_GT(most_pending, 0);
  EXPECT_TRUE(always_agreed);
  EXPECT_EQ(Caption(kIdCmdStart), "&stop");
  // Someone with a full mailbox is warned, then banned (two mistakes).
  ASSERT_TRUE(
      WaitFor([&] { return ListCount(Control(kIdLstBanned)) > 0; }, 120));
  EXPECT_EQ(ListItem(Control(kIdLstBanned), 0), "gina");
  EXPECT_TRUE(Agrees(kIdLblBanned, kIdLstBanned));

  // A left click on lstBanned removes the name.
  Click(Control(kIdLstBanned));
  EXPECT_TRUE(Becomes(kIdLblBanned, "banned: 0", 10));
  EXPECT_EQ(ListCount(Control(kIdLstBanned)), 0);

  // lblExit says goodbye and ends the program.
  Click(Control(kIdLblExit));
  EXPECT_TRUE(Ends(30));
  EXPECT_TRUE(Stored("Load", "False", 0));
}

TEST_F(DesktopTest, SettingsChangeThroughTheirMenuAndInputBox) {
  PickMenu(main_, "mnuBMax");
  HWND box = WaitDialog("max block", 20);
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(Text(GetDlgItem(box, kIdInputPrompt)),
            "enter a number(0 for no limit)");
  EXPECT_EQ(Text(GetDlgItem(box, kIdInputText)), "100");
  SetText(GetDlgItem(box, kIdInputText), "40");
  PressDialogButton(box, IDOK);
  EXPECT_TRUE(Stored("BlockMax", "40"));
  // Cancel keeps nothing for a text setting: the handle stays "srv".
  PickMenu(main_, "mnuHandle");
  box = WaitDialog("handle", 20);
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(Text(GetDlgItem(box, kIdInputPrompt)), "enter your handle");
  EXPECT_EQ(Text(GetDlgItem(box, kIdInputText)), "srv");
  PressDialogButton(box, IDCANCEL);
  // A preset item stores at once, with no box.
  PickMenu(main_, "mnuMSpeed(3)");
  EXPECT_TRUE(Stored("MailSpeed", "0.6899"));
  EXPECT_TRUE(Stored("Handle", "srv", 0));
  // The contact info is a message titled as such.
  PickMenu(main_, "mnuContactInfo");
  box = WaitDialog("contact info", 20);
  ASSERT_NE(box, nullptr);
  EXPECT_NE(DialogPrompt(box).find("aol:"), std::string::npos);
  PressDialogButton(box, IDOK);
}

RECT Frame(HWND w) {
  RECT rc;
  GetWindowRect(w, &rc);
  return rc;
}
bool Overlap(HWND a, HWND b) {
  RECT x = Frame(a), y = Frame(b), both;
  return IntersectRect(&both, &x, &y) != FALSE;
}

TEST_F(DesktopTest, SmallWindowsOpenShowTheirModelsAndClose) {
  HWND chat, banning, about;
  ASSERT_TRUE(Open("mnuServeNChat", kChatroomClass, &chat));
  ASSERT_TRUE(Open("mnuBanOpts", kBanningClass, &banning));
  ASSERT_TRUE(Open("mnuAbout", kAboutClass, &about));
  // The task bar and Alt+Tab show one ampersand; the drawn title bar
  // stays the program's.
  EXPECT_EQ(Text(chat), "serve & chat");
  EXPECT_EQ(Text(banning), "banning options");
  EXPECT_EQ(Text(about), "about");
  EXPECT_EQ(Text(GetDlgItem(chat, kIdPicTitle)),
            "quorvex mail server by kestrin");
  // Side by side: none covers another, nor the main window.
  for (HWND w : {chat, banning, about}) EXPECT_FALSE(Overlap(w, main_));
  EXPECT_FALSE(Overlap(chat, banning));
  EXPECT_FALSE(Overlap(chat, about));
  EXPECT_FALSE(Overlap(banning, about));
  // The first beside the main window, top edges level.
  EXPECT_EQ(Frame(chat).top, Frame(main_).top);
  EXPECT_GT(Frame(chat).left, Frame(main_).right);
  EXPECT_TRUE(Closes(chat, kIdLblExit, kChatroomClass));
  EXPECT_NE(
      Text(GetDlgItem(about, kIdLblText)).find("coded for america online 5.0"),
      std::string::npos);
  EXPECT_TRUE(Closes(about, kIdLblExit, kAboutClass));

  // Banning options: the room's stored options, saved again on close.
  EXPECT_EQ(Text(GetDlgItem(banning, kIdCmbMistakes)), "2");
  EXPECT_EQ(Text(GetDlgItem(banning, kIdCmbMails)), "12");
  EXPECT_EQ(SendMessageW(GetDlgItem(banning, kIdChkFullBox), BM_GETCHECK, 0, 0),
            BST_CHECKED);
  Click(GetDlgItem(banning, kIdChkDupReqs));  // unchecks it
  EXPECT_TRUE(Closes(banning, kIdLblExit, kBanningClass));
  EXPECT_TRUE(Stored("DupeRequests", "0"));

  // Message editor: Return in the chat entry adds a line; exit closes.
  HWND messages;
  ASSERT_TRUE(Open("mnuMessages", kMessagesClass, &messages));
  HWND lines_of_chat = GetDlgItem(messages, kIdLstChat);
  const int lines = ListCount(lines_of_chat);
  SetText(GetDlgItem(messages, kIdTxtAdd0), "a new line");
  PressReturn(GetDlgItem(messages, kIdTxtAdd0));
  EXPECT_TRUE(
      WaitFor([&] { return ListCount(lines_of_chat) == lines + 1; }, 20));
  EXPECT_EQ(ListItem(lines_of_chat, lines), "a new line");
  EXPECT_TRUE(WaitFor(
      [&] { return Text(GetDlgItem(messages, kIdTxtAdd0)).empty(); }, 10));
  EXPECT_TRUE(Closes(messages, kIdCmdExit, kMessagesClass));

  // Room buster: idle captions.
  HWND buster;
  ASSERT_TRUE(Open("mnuRoomBuster", kBusterClass, &buster));
  EXPECT_EQ(Text(GetDlgItem(buster, kIdBusterStart)), "&start");
  EXPECT_EQ(Text(GetDlgItem(buster, kIdLblBusts)), "busts: 0");
  EXPECT_TRUE(Closes(buster, kIdLblExit, kBusterClass));

  // Room people: a right click on lstBanned lists the room; a double
  // click bans silently.
  RightClick(Control(kIdLstBanned));
  HWND room = WaitWindow(kRoomClass, nullptr, 20);
  ASSERT_NE(room, nullptr);
  HWND people = GetDlgItem(room, kIdLstRoom);
  ASSERT_TRUE(WaitFor([&] { return ListCount(people) > 0; }, 20));
  const int in_room = ListCount(people);
  const std::string first = ListItem(people, 0);
  DoubleClickItem(people, 0);
  EXPECT_TRUE(WaitFor([&] { return ListCount(people) == in_room - 1; }, 20));
  EXPECT_TRUE(Becomes(kIdLblBanned, "banned: 1"));
  EXPECT_EQ(ListItem(Control(kIdLstBanned), 0), first);
  EXPECT_TRUE(Closes(room, kIdLblExit, kRoomClass));
}

TEST_F(DesktopTest, TheKeyboardDrivesTheWindows) {
  ASSERT_TRUE(ToFront(main_));
  // Tab and Shift+Tab go through the main window's controls.
  ASSERT_TRUE(Focused(main_, Control(kIdLstMails)));
  PressKey(VK_TAB);
  EXPECT_TRUE(Focused(main_, Control(kIdLstPending)));
  // The menu key on the pending list opens its menu, as a right click
  // does; Escape closes it.
  PressKey(VK_APPS);
  EXPECT_TRUE(MenuShowing());
  PressKey(VK_ESCAPE);
  EXPECT_TRUE(MenuShowing(false));
  PressKey(VK_TAB, true);
  EXPECT_TRUE(Focused(main_, Control(kIdLstMails)));

  // Alt+F opens the file menu; Down and Return take its first entry,
  // about, and Escape closes that window.
  PressKey('F', false, true);
  ASSERT_TRUE(MenuShowing());
  PressKey(VK_DOWN);
  PressKey(VK_RETURN);
  HWND about = WaitWindow(kAboutClass, nullptr, 20);
  ASSERT_NE(about, nullptr);
  PressKey(VK_ESCAPE);
  EXPECT_TRUE(Gone(kAboutClass));

  // Alt+S underlines start and settings: it moves between them; Return
  // presses start, and the yes/no box takes its Return too.
  ASSERT_TRUE(ToFront(main_));
  PressKey('S', false, true);
  EXPECT_TRUE(Focused(main_, Control(kIdCmdStart)));
  PressKey('S', false, true);
  EXPECT_TRUE(Focused(main_, Control(kIdCmdSettings)));
  PressKey('S', false, true);
  EXPECT_TRUE(Focused(main_, Control(kIdCmdStart)));
  PressKey(VK_RETURN);
  HWND box = WaitDialog("make lists", 30);
  ASSERT_NE(box, nullptr);
  ASSERT_TRUE(ToFront(box));
  PressKey(VK_RETURN);
  EXPECT_TRUE(Becomes(kIdCmdStart, "&stop", 60));
  // Alt+P pauses.
  ASSERT_TRUE(ToFront(main_));
  PressKey('P', false, true);
  EXPECT_TRUE(Becomes(kIdCmdPause, "&unpause", 30));

  // The banning options: the mistakes box has the focus; Tab, Tab reaches
  // the pending-mails box. Its list opened and escaped leaves the stored
  // "12"; a choice by the Down key is stored; Escape saves and closes.
  HWND banning;
  ASSERT_TRUE(Open("mnuBanOpts", kBanningClass, &banning));
  ASSERT_TRUE(ToFront(banning));
  HWND mails = GetDlgItem(banning, kIdCmbMails);
  PressKey(VK_TAB);
  PressKey(VK_TAB);
  ASSERT_TRUE(WaitFor([&] { return IsChild(mails, Focus(banning)); }, 10));
  PressKey(VK_DOWN, false, true);
  EXPECT_TRUE(WaitFor(
      [&] { return SendMessageW(mails, CB_GETDROPPEDSTATE, 0, 0) != 0; }, 10));
  PressKey(VK_ESCAPE);
  EXPECT_TRUE(WaitFor(
      [&] { return SendMessageW(mails, CB_GETDROPPEDSTATE, 0, 0) == 0; }, 10));
  EXPECT_TRUE(WaitFor([&] { return Text(mails) == "12"; }, 10));
  EXPECT_TRUE(Showing(kBanningClass));
  PressKey(VK_DOWN);
  std::string chosen;
  EXPECT_TRUE(WaitFor(
      [&] {
        chosen = Text(mails);
        return chosen != "12";
      },
      10));
  PressKey(VK_ESCAPE);
  EXPECT_TRUE(Gone(kBanningClass));
  EXPECT_TRUE(Stored("Mails", chosen));

  // The room buster: Return in the room's name starts the busting (the
  // room is not full: it is entered at the first try).
  HWND buster;
  ASSERT_TRUE(Open("mnuRoomBuster", kBusterClass, &buster));
  ASSERT_TRUE(ToFront(buster));
  ASSERT_TRUE(Focused(buster, GetDlgItem(buster, kIdTxtRoom)));
  TypeKeys("quiet room");
  EXPECT_TRUE(WaitFor(
      [&] { return Text(GetDlgItem(buster, kIdTxtRoom)) == "quiet room"; },
      10));
  PressKey(VK_RETURN);
  EXPECT_TRUE(WaitFor(
      [&] {
        return RoomLog().find("busted <B><U>quiet room") != std::string::npos;
      },
      30));
  PressKey(VK_ESCAPE);
  EXPECT_TRUE(Gone(kBusterClass));

  // The message editor: Tab goes through each page's list, line and
  // insert button, then save, exit and the tab strip, whose arrow keys
  // turn the page; Shift+Tab goes back. Return on an insert button opens
  // its menu.
  HWND editor;
  ASSERT_TRUE(Open("mnuMessages", kMessagesClass, &editor));
  ASSERT_TRUE(ToFront(editor));
  auto focused = [&](int id) {
    return Focused(editor, GetDlgItem(editor, id));
  };
  auto tab_through = [&](std::initializer_list<int> ids, bool back) {
    for (int id : ids) {
      PressKey(VK_TAB, back);
      if (!focused(id)) return testing::AssertionFailure() << "control " << id;
    }
    return testing::AssertionSuccess();
  };
  ASSERT_TRUE(focused(kIdLstChat));
  EXPECT_TRUE(tab_through(
      {kIdTxtAdd0, kIdCmdInsert0, kIdCmdSave, kIdCmdExit, kIdTab, kIdLstChat},
      false));
  EXPECT_TRUE(tab_through(
      {kIdTab, kIdCmdExit, kIdCmdSave, kIdCmdInsert0, kIdTxtAdd0, kIdLstChat},
      true));
  PressKey(VK_TAB, true);  // back from the list to the tab strip
  ASSERT_TRUE(focused(kIdTab));
  PressKey(VK_RIGHT);  // mail: the text and its insert button
  EXPECT_TRUE(tab_through({kIdTxtAdd1, kIdCmdInsert1}, false));
  // The mail's text, of several lines, was left without a tab typed in.
  EXPECT_EQ(Text(GetDlgItem(editor, kIdTxtAdd1)).find('\t'), std::string::npos);
  PressKey(VK_RETURN);
  EXPECT_TRUE(MenuShowing());
  PressKey(VK_ESCAPE);
  EXPECT_TRUE(MenuShowing(false));
  EXPECT_TRUE(Showing(kMessagesClass));
  EXPECT_TRUE(tab_through({kIdTxtAdd1, kIdTab}, true));
  PressKey(VK_RIGHT);  // thank you: its list, line and insert button
  EXPECT_TRUE(tab_through(
      {kIdLstThankyou, kIdTxtAdd2, kIdCmdInsert2, kIdCmdSave}, false));
  PressKey(VK_ESCAPE);
  EXPECT_TRUE(Gone(kMessagesClass));

  // Alt+E is its exit, and Escape does the same.
  for (const auto& [key, alt] : {std::pair<WORD, bool>{'E', true},
                                 std::pair<WORD, bool>{VK_ESCAPE, false}}) {
    HWND messages;
    ASSERT_TRUE(Open("mnuMessages", kMessagesClass, &messages));
    ASSERT_TRUE(ToFront(messages));
    PressKey(key, false, alt);
    EXPECT_TRUE(Gone(kMessagesClass));
  }

  // Serve and chat: the line takes the keys and Return; Escape closes.
  HWND chat;
  ASSERT_TRUE(Open("mnuServeNChat", kChatroomClass, &chat));
  ASSERT_TRUE(ToFront(chat));
  HWND line = GetDlgItem(chat, kIdTxtSend);
  ASSERT_TRUE(Focused(chat, line));
  TypeKeys("hi all");
  EXPECT_TRUE(WaitFor([&] { return Text(line) == "hi all"; }, 10));
  PressKey(VK_RETURN);
  EXPECT_TRUE(WaitFor([&] { return Text(line).empty(); }, 20));
  EXPECT_TRUE(Showing(kChatroomClass));
  PressKey(VK_ESCAPE);
  EXPECT_TRUE(Gone(kChatroomClass));
  EXPECT_EQ(Caption(kIdCmdStart), "&stop");
}

// A folder stands where the log should be: no line of it can be written.
class LostLogLinesTest : public ProgramTest {
 protected:
  void SetUp() override {
    ProgramTest::SetUp();
    fs::create_directories(root_ / "C" / "Program Files" / "Quorvex" /
                           "Quorvex.log");
    LaunchSimulated();
  }
};

TEST_F(LostLogLinesTest, TheMainWindowsTextSaysHowManyLinesWereLost) {
  // The load's line is lost: the task bar tells, the drawn title does not
  // change, and the program serves on.
  auto says = [&](const char* lost) {
    return WaitFor(
        [&] {
          return Text(main_) == std::string(kWindowTitle) + " - " + lost +
                                    " of Quorvex.log could not be written";
        },
        30);
  };
  EXPECT_TRUE(says("1 line")) << Text(main_);
  Start();
  EXPECT_TRUE(Becomes(kIdCmdStart, "&stop", 60));
  EXPECT_TRUE(says("2 lines")) << Text(main_);
}

// quorvex.exe without --simulate drives the real client through the
// Win32 binding. With no client running it comes up idle, and a start
// reads the mailbox first: a mailbox that never comes is asked for again
// and again, without end, while the windows keep answering.
class ClientlessTest : public ProgramTest {
 protected:
  void SetUp() override {
    ProgramTest::SetUp();
    LaunchPlain();
  }
  // A value the program keeps in the user's registry.
  static std::string Setting(const wchar_t* key) {
    wchar_t value[256] = L"";
    DWORD size = sizeof value;
    RegGetValueW(HKEY_CURRENT_USER,
                 L"Software\\VB and VBA Program Settings\\Quorvex\\Settings",
                 key, RRF_RT_REG_SZ, nullptr, value, &size);
    return Utf8(value);
  }
};

TEST_F(ClientlessTest, ASecondsSplashThenAStartSaysTheClientIsNotRunning) {
  // A normal start shows the splash for its pause of a second, and no
  // longer: nothing loads behind it. Like every pause of the program it
  // starts from the clock rounded to a whole second, so it lasts from half
  // a second to a second and a half; the upper bound leaves room for a
  // busy machine. The figure is printed.
  std::printf("splash shown for %.3f s\n", splash_seconds_);
  EXPECT_GE(splash_seconds_, 0.45);
  EXPECT_LE(splash_seconds_, 2.2);
  ASSERT_TRUE(Becomes(kIdPicStatus, "status: idle", 30));
  EXPECT_TRUE(WaitFor([] { return Setting(L"Load") == "True"; }, 10));
  // Twice: each start says so, and the server stays idle.
  for (int i = 0; i < 2; ++i) {
    Click(Control(kIdCmdStart));
    HWND box = WaitDialog(kNoClientTitle, 30);
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(DialogPrompt(box), kNoClientText);
    PressDialogButton(box, IDOK);
    EXPECT_TRUE(
        WaitFor([] { return WaitDialog(kNoClientTitle, 0) == nullptr; }, 20));
    EXPECT_EQ(Caption(kIdPicStatus), "status: idle");
    EXPECT_EQ(Caption(kIdCmdStart), "&start");
  }
  // The windows answer, and lblExit ends the program, its settings saved.
  HWND about;
  ASSERT_TRUE(Open("mnuAbout", kAboutClass, &about));
  EXPECT_TRUE(Closes(about, kIdLblExit, kAboutClass));
  Click(Control(kIdLblExit));
  EXPECT_TRUE(Ends(30));
  EXPECT_EQ(Setting(L"Load"), "False");
}

// The plain program against the stand-in client: the client's windows in
// a process of their own, operated through the Win32 ports.
class OnStandInTest : public ProgramTest {
 protected:
  void SetUp() override {
    ProgramTest::SetUp();
    standin_ = std::make_unique<test::StandInProcess>(
        "--user Host --room Lobby --mails 6 --people Ann,Bob");
    ASSERT_TRUE(standin_->running());
    LaunchPlain();
  }
  void TearDown() override {
    ProgramTest::TearDown();
    standin_.reset();
  }
  std::unique_ptr<test::StandInProcess> standin_;
};

TEST_F(OnStandInTest, AStartReadsTheClientsMailboxAndALineIsSaidInItsRoom) {
  ASSERT_TRUE(Becomes(kIdPicStatus, "status: idle", 30));
  // The start reads the client's mailbox; with no list mails in it, it
  // offers to make them, and a no leaves the server idle.
  Click(Control(kIdCmdStart));
  HWND box = WaitDialog("make lists", 60);
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(ListCount(Control(kIdLstMails)), 6);
  EXPECT_EQ(ListItem(Control(kIdLstMails), 5), "mail 6");
  PressDialogButton(box, IDNO);
  EXPECT_TRUE(Becomes(kIdPicStatus, "status: idle", 30));
  EXPECT_EQ(Caption(kIdCmdStart), "&start");

  // Serve and chat over the client's room: the people read from the
  // client's memory (the user too), and a line typed while the server is
  // idle said at once, then mirrored back from the room's display.
  HWND chat;
  ASSERT_TRUE(Open("mnuServeNChat", kChatroomClass, &chat));
  EXPECT_TRUE(WaitFor(
      [&] { return Text(GetDlgItem(chat, kIdLblPeople)) == "people: 3"; }, 20));
  EXPECT_EQ(ListCount(GetDlgItem(chat, kIdLstPeople)), 3);
  HWND line = GetDlgItem(chat, kIdTxtSend);
  SetText(line, "hello room");
  PressReturn(line);
  EXPECT_TRUE(WaitFor(
      [&] {
        return Text(GetDlgItem(chat, kIdTxtChat)).find("Host:") !=
                   std::string::npos &&
               Text(GetDlgItem(chat, kIdTxtChat)).find("[hello room]") !=
                   std::string::npos;
      },
      30));
  EXPECT_TRUE(WaitFor([&] { return Text(line).empty(); }, 10));

  // lblExit ends the program.
  Click(Control(kIdLblExit));
  EXPECT_TRUE(Ends(30));
}

}  // namespace
}  // namespace quorvex::desktop
