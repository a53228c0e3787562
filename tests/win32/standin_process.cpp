#include "standin_process.h"

#include <cstdio>
#include <fstream>
#include <sstream>

namespace quorvex::test {

namespace {

// The build passes a host path; under Wine the root of the host's file
// system is drive Z:.
std::string WindowsPath(std::string path) {
  if (!path.empty() && path[0] == '/') path = "Z:" + path;
  for (char& ch : path)
    if (ch == '/') ch = '\\';
  return path;
}

}  // namespace

// The watchdog thread: a callback of the system's calling convention (a
// lambda has the C++ one, which differs in a 32-bit program).
DWORD WINAPI StandInProcess::Watchdog(void* self) {
  auto* p = static_cast<StandInProcess*>(self);
  if (::WaitForSingleObject(p->done_, p->limit_ms_) == WAIT_TIMEOUT) {
    std::fprintf(stderr,
                 "[watchdog] the test is still running after %lu s: "
                 "failed\n",
                 static_cast<unsigned long>(p->limit_ms_ / 1000));
    // Where it stands: the client as it sees itself, and the
    // platform's boxes and menus as this process sees them.
    std::fprintf(stderr, "[watchdog] the client: %s\n",
                 p->State().dump().c_str());
    for (HWND h = ::FindWindowA(nullptr, nullptr); h;
         h = ::GetWindow(h, GW_HWNDNEXT)) {
      char cls[64] = "";
      ::GetClassNameA(h, cls, sizeof cls);
      if (std::string(cls) == "#32770" || std::string(cls) == "#32768")
        std::fprintf(stderr, "[watchdog] %s %s visible=%d\n", cls,
                     ::GetWindow(h, GW_CHILD) ? "with controls" : "empty",
                     ::IsWindowVisible(h) ? 1 : 0);
    }
    std::fflush(stderr);
    ::TerminateProcess(p->process_, 1);
    ::TerminateProcess(::GetCurrentProcess(), 1);
  }
  return 0;
}

StandInProcess::StandInProcess(const std::string& args, double limit_seconds)
    : limit_ms_(static_cast<DWORD>(limit_seconds * 1000)) {
  std::string command = "\"" + WindowsPath(QV_STANDIN_EXE) + "\" " + args;
  STARTUPINFOA si{};
  si.cb = sizeof si;
  PROCESS_INFORMATION pi{};
  if (!::CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0,
                        nullptr, nullptr, &si, &pi))
    return;
  ::CloseHandle(pi.hThread);
  process_ = pi.hProcess;
  pid_ = pi.dwProcessId;
  // The client's waits have no limit of their own; a test that would hang
  // fails here instead.
  done_ = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
  watchdog_ = ::CreateThread(nullptr, 0, Watchdog, this, 0, nullptr);
  for (int i = 0; i < 400 && !control_; ++i) {
    if (::WaitForSingleObject(process_, 50) == WAIT_OBJECT_0) break;
    control_ = ::FindWindowA("QuorvexStandInControl", nullptr);
  }
  char dir[MAX_PATH];
  ::GetTempPathA(MAX_PATH, dir);
  dump_path_ =
      std::string(dir) + "qv_standin_" + std::to_string(pid_) + ".json";
}

StandInProcess::~StandInProcess() {
  if (done_) ::SetEvent(done_);
  if (watchdog_) {
    ::WaitForSingleObject(watchdog_, INFINITE);
    ::CloseHandle(watchdog_);
  }
  if (done_) ::CloseHandle(done_);
  if (control_) Command("quit");
  if (process_) {
    if (::WaitForSingleObject(process_, 5000) != WAIT_OBJECT_0)
      ::TerminateProcess(process_, 1);
    ::CloseHandle(process_);
  }
  ::DeleteFileA(dump_path_.c_str());
}

void StandInProcess::Command(const std::string& line) {
  if (!control_) return;
  COPYDATASTRUCT cd{1, static_cast<DWORD>(line.size()),
                    const_cast<char*>(line.data())};
  DWORD_PTR result = 0;
  ::SendMessageTimeoutA(control_, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&cd),
                        SMTO_NORMAL, 5000, &result);
}

nlohmann::json StandInProcess::State() {
  ::DeleteFileA(dump_path_.c_str());
  Command("dump " + dump_path_);
  for (int i = 0; i < 200; ++i) {
    std::ifstream in(dump_path_, std::ios::binary);
    if (in) {
      std::stringstream ss;
      ss << in.rdbuf();
      return nlohmann::json::parse(ss.str(), nullptr, false);
    }
    ::Sleep(10);
  }
  return {};
}

}  // namespace quorvex::test
