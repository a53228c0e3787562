#include "standin_process.h"

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

StandInProcess::StandInProcess(const std::string& args) {
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
