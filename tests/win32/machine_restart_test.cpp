// The machine restart across a reboot, with real processes and the real
// files of the prefix's drive C:. quorvex.exe, installed in a folder of
// its own, serves two mails with "CPURestart" 2; it then saves its queue,
// bans and session count in C:\Windows\RestartSettings.INI, closes the
// client, names C:\Windows\z.exe in Win.INI's "load", copies itself there
// and asks for the reboot. This test stands in for Windows (the program
// asks it through QUORVEX_REBOOT_FILE): it ends every process of the
// session and starts what "load" names. z.exe must start the installed
// program and end; the installed program must resume: pause 10 seconds,
// remove the copy, the state and the "load" entry, start the client again
// and sign on, say so in the room, and serve what was still queued.
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "desktop/control_ids.h"
#include "desktop/remote.h"
#include "settings/settings.h"
#include "standin_checks.h"
#include "standin_process.h"
#include "win32/win32_registry.h"
#include "windows_folder.h"

namespace quorvex {
namespace {

namespace fs = std::filesystem;
using namespace desktop;
using namespace desktop::remote;
using nlohmann::json;

constexpr char kInstalledFolder[] = "C:\\Program Files\\Quorvex Test";
constexpr char kInstalled[] = "C:\\Program Files\\Quorvex Test\\quorvex.exe";
constexpr char kState[] = "C:\\Windows\\RestartSettings.INI";
constexpr char kCopy[] = "C:\\Windows\\z.exe";
constexpr char kWinIni[] = "C:\\Windows\\Win.INI";

bool Exists(const char* path) {
  return GetFileAttributesA(path) != INVALID_FILE_ATTRIBUTES;
}

std::string Ini(const char* file, const char* section, const char* key) {
  char buf[512] = "";
  GetPrivateProfileStringA(section, key, "<none>", buf, sizeof buf, file);
  return buf;
}

// A program started as Windows starts one at log-on.
PROCESS_INFORMATION Start(const std::string& path) {
  std::string command = "\"" + path + "\"";
  STARTUPINFOA si{};
  si.cb = sizeof si;
  PROCESS_INFORMATION pi{};
  CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr,
                 nullptr, &si, &pi);
  if (pi.hThread) CloseHandle(pi.hThread);
  return pi;
}

class MachineRestartTest : public ::testing::Test {
 protected:
  void SetUp() override {
    registry_.DeleteApp(kApp);
    registry_.Save(kApp, "Settings", "Handle", "srv");
    registry_.Save(kApp, "Settings", "CPURestart", "2");
    registry_.Save(kApp, "Settings", "MailResize", "False");
    fs::create_directories(kInstalledFolder);
    // The build passes a host path; under Wine the host's root is Z:.
    fs::copy_file(std::string("Z:") + QV_QUORVEX_EXE, kInstalled,
                  fs::copy_options::overwrite_existing);
    reboot_file_ = fs::temp_directory_path() /
                   ("qv_reboot_" + std::to_string(GetCurrentProcessId()));
    fs::remove(reboot_file_);
    SetEnvironmentVariableW(L"QUORVEX_REBOOT_FILE", reboot_file_.c_str());
    test::NameStandInInWinIni();
  }
  void TearDown() override {
    EndSession();
    SetEnvironmentVariableW(L"QUORVEX_REBOOT_FILE", nullptr);
    registry_.DeleteApp(kApp);
    std::error_code ec;
    fs::remove_all(kInstalledFolder, ec);
    fs::remove(reboot_file_, ec);
  }

  // Every process of the session ends, as at a reboot: the program, any
  // copy of it, the client.
  void EndSession() {
    for (HWND w; (w = FindWindowW(kMainClass, nullptr)) != nullptr;) {
      DWORD pid = 0;
      GetWindowThreadProcessId(w, &pid);
      HANDLE p = OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE, FALSE, pid);
      if (!p) break;
      TerminateProcess(p, 1);
      WaitForSingleObject(p, 10000);
      CloseHandle(p);
    }
    client_.Kill();
  }

  HWND Control(HWND main, int id) { return GetDlgItem(main, id); }
  std::string Caption(HWND main, int id) { return Text(Control(main, id)); }
  std::vector<std::string> Items(HWND main, int id) {
    std::vector<std::string> out;
    for (int i = 0; i < ListCount(Control(main, id)); ++i)
      out.push_back(ListItem(Control(main, id), i));
    return out;
  }

  test::WindowsFolder folder_;
  win32::Win32Registry registry_;
  fs::path reboot_file_;
  // The client at the real pace, as the program runs (a program started
  // by Windows takes no options).
  test::StandInProcess client_{
      "--user Host --room Lobby --mails 5 --people Ann,Bob,Cal,Dan,Eve "
      "--speed 1",
      280};
};

TEST_F(MachineRestartTest,
       TheRestartCopyStartsTheInstalledProgramWhichResumes) {
  ASSERT_TRUE(client_.running());
  // A list made earlier stands in the mailbox: the starts ask nothing.
  client_.Command(test::kEarlierListMail);
  PROCESS_INFORMATION installed = Start(kInstalled);
  ASSERT_NE(installed.hProcess, nullptr);
  CloseHandle(installed.hProcess);
  HWND main = WaitWindow(kMainClass, nullptr, 60, installed.dwProcessId);
  ASSERT_NE(main, nullptr);
  ASSERT_TRUE(WaitFor(
      [&] { return Caption(main, kIdPicStatus) == "status: idle"; }, 60));

  // Eve is banned from the room's people window before serving.
  RightClick(Control(main, kIdLstBanned));
  HWND room = WaitWindow(kRoomClass, nullptr, 20);
  ASSERT_NE(room, nullptr);
  HWND people = GetDlgItem(room, kIdLstRoom);
  int eve = -1;
  ASSERT_TRUE(WaitFor(
      [&] {
        for (int i = 0; i < ListCount(people); ++i)
          if (ListItem(people, i) == "Eve") eve = i;
        return eve >= 0;
      },
      20));
  DoubleClickItem(people, eve);
  ASSERT_TRUE(
      WaitFor([&] { return Caption(main, kIdLblBanned) == "banned: 1"; }, 20));
  Click(GetDlgItem(room, kIdLblExit));

  // Serving: four requests; after two mails the machine is restarted.
  Click(Control(main, kIdCmdStart));
  ASSERT_TRUE(
      WaitFor([&] { return Caption(main, kIdCmdStart) == "&stop"; }, 90));
  for (const char* line : {"say Ann|/srv send 1", "say Bob|/srv send 2",
                           "say Cal|/srv send 3", "say Dan|/srv send 4"})
    client_.Command(line);
  ASSERT_TRUE(WaitFor([&] { return fs::exists(reboot_file_); }, 120))
      << "no reboot asked for; status: " << Caption(main, kIdPicStatus);
  {
    std::ifstream in(reboot_file_);
    unsigned flags = 0;
    in >> flags;
    EXPECT_EQ(flags, static_cast<unsigned>(EWX_REBOOT));
  }
  EXPECT_EQ(Caption(main, kIdPicStatus), "status: restarting windows");
  // What the program left for its resume on the real drive C: (its state
  // file, which the resume below reads back, and the copy "load" names).
  EXPECT_TRUE(Exists(kState));
  EXPECT_EQ(Ini(kWinIni, "Windows", "load"), kCopy);
  // The client was closed before: its program ended.
  EXPECT_FALSE(client_.running());
  json before = client_.State();
  EXPECT_EQ(test::ForwardsReceived(before, "Ann"),
            std::vector<std::string>{"mail 1"});
  EXPECT_EQ(test::ForwardsReceived(before, "Bob"),
            std::vector<std::string>{"mail 2"});

  // The reboot: every process ends; at log-on, what "load" names starts.
  EndSession();
  fs::remove(reboot_file_);
  PROCESS_INFORMATION copy = Start(Ini(kWinIni, "Windows", "load"));
  ASSERT_NE(copy.hProcess, nullptr);
  // The copy starts the installed program and ends.
  EXPECT_EQ(WaitForSingleObject(copy.hProcess, 60000), WAIT_OBJECT_0);
  DWORD code = 1;
  GetExitCodeProcess(copy.hProcess, &code);
  CloseHandle(copy.hProcess);
  EXPECT_EQ(code, 0u);
  main = WaitWindow(kMainClass, nullptr, 60);
  ASSERT_NE(main, nullptr);
  DWORD pid = 0;
  GetWindowThreadProcessId(main, &pid);
  {
    HANDLE p = OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, pid);
    char image[MAX_PATH] = "";
    DWORD size = MAX_PATH;
    QueryFullProcessImageNameA(p, 0, image, &size);
    CloseHandle(p);
    EXPECT_EQ(std::string(image), kInstalled);
  }

  // The resume: the state restored at once, a pause for Windows to settle.
  EXPECT_TRUE(WaitFor(
      [&] { return Caption(main, kIdPicStatus) == "status: pausing 10 secs"; },
      30));
  EXPECT_EQ(Items(main, kIdLstPending),
            (std::vector<std::string>{"cal-3", "dan-4"}));
  EXPECT_EQ(Items(main, kIdLstBanned), std::vector<std::string>{"Eve"});
  EXPECT_EQ(Caption(main, kIdLblSession), "session: 2");
  // Then the copy, the state and "load" go, and the client starts again.
  EXPECT_TRUE(WaitFor([&] { return !Exists(kCopy) && !Exists(kState); }, 30));
  EXPECT_EQ(Ini(kWinIni, "Windows", "load"), "");  // the key stays, empty
  EXPECT_TRUE(WaitFor([&] { return client_.running(); }, 60))
      << Caption(main, kIdPicStatus);

  // Back in the room: it says so, serves the queue and counts on.
  json state;
  ASSERT_TRUE(WaitFor(
      [&] {
        state = client_.State();
        return !test::ForwardsReceived(state, "Cal").empty() &&
               !test::ForwardsReceived(state, "Dan").empty();
      },
      150))
      << Caption(main, kIdPicStatus) << "\n"
      << state.dump(1);
  EXPECT_TRUE(state["signed_on"]);
  EXPECT_EQ(state["room"], "Lobby");
  EXPECT_EQ(test::Heard(state, "quorvex restarted <B><U>cpu</B></U>"), 1);
  EXPECT_EQ(test::ForwardsReceived(state, "Cal"),
            std::vector<std::string>{"mail 3"});
  EXPECT_EQ(test::ForwardsReceived(state, "Dan"),
            std::vector<std::string>{"mail 4"});
  EXPECT_EQ(test::ForwardsReceived(state, "Ann"),
            std::vector<std::string>{"mail 1"});
  EXPECT_TRUE(WaitFor(
      [&] { return Caption(main, kIdLblSession) == "session: 4"; }, 30));
  EXPECT_TRUE(WaitFor(
      [&] { return ListCount(Control(main, kIdLstPending)) == 0; }, 30));
}

}  // namespace
}  // namespace quorvex
