#include "standin_process.h"

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <sstream>

namespace quorvex::test {

namespace {

using nlohmann::json;

// The build passes a host path; under Wine the root of the host's file
// system is drive Z:.
std::string WindowsPath(std::string path) {
  if (!path.empty() && path[0] == '/') path = "Z:" + path;
  for (char& ch : path)
    if (ch == '/') ch = '\\';
  return path;
}

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream ss;
  ss << in.rdbuf();
  return ss.str();
}

}  // namespace

std::string StandInProcess::InstallFolder() {
  const std::string exe = WindowsPath(QV_STANDIN_EXE);
  return exe.substr(0, exe.find_last_of('\\'));
}

double StandInProcess::WallSeconds() {
  LARGE_INTEGER f, c;
  ::QueryPerformanceFrequency(&f);
  ::QueryPerformanceCounter(&c);
  return static_cast<double>(c.QuadPart) / static_cast<double>(f.QuadPart);
}

// The watchdog thread: a callback of the system's calling convention (a
// lambda has the C++ one, which differs in a 32-bit program).
DWORD WINAPI StandInProcess::Watchdog(void* self) {
  auto* p = static_cast<StandInProcess*>(self);
  if (::WaitForSingleObject(p->done_, p->limit_ms_) != WAIT_TIMEOUT) return 0;
  std::fprintf(stderr,
               "[watchdog] the test is still running after %lu s: "
               "failed\n",
               static_cast<unsigned long>(p->limit_ms_ / 1000));
  // Where it stands: the client as it sees itself, the last things
  // it did, and the platform's boxes and menus as this process sees
  // them.
  ::EnterCriticalSection(&p->note_lock_);
  const std::string note = p->note_;
  ::LeaveCriticalSection(&p->note_lock_);
  if (!note.empty()) std::fprintf(stderr, "[watchdog] %s\n", note.c_str());
  json state = p->State();
  json heard = state["heard"];
  state.erase("heard");
  state.erase("mailboxes");
  std::fprintf(
      stderr, "[watchdog] the client: %s\n",
      state.dump(-1, ' ', false, json::error_handler_t::replace).c_str());
  const std::size_t n = heard.size();
  for (std::size_t i = n > 10 ? n - 10 : 0; i < n; ++i)
    std::fprintf(stderr, "[watchdog] heard: %s\n",
                 heard[i].get<std::string>().c_str());
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
  p->Kill();
  ::TerminateProcess(::GetCurrentProcess(), 1);
  return 0;
}

StandInProcess::StandInProcess(const std::string& args, double limit_seconds)
    : limit_ms_(static_cast<DWORD>(limit_seconds * 1000)) {
  Launch("--launch " + args);
}

StandInProcess::StandInProcess(const json& client, double speed,
                               double limit_seconds)
    : limit_ms_(static_cast<DWORD>(limit_seconds * 1000)) {
  char dir[MAX_PATH];
  ::GetTempPathA(MAX_PATH, dir);
  // Written before the launch, where the launch reads it (as the client
  // saves itself: CBOR, whose texts are bytes).
  const std::vector<std::uint8_t> state =
      json::to_cbor(json{{"speed", speed}, {"client", client}});
  std::ofstream(std::string(dir) + "qv_standin_" +
                    std::to_string(::GetCurrentProcessId()) + ".state",
                std::ios::binary)
      .write(reinterpret_cast<const char*>(state.data()),
             static_cast<std::streamsize>(state.size()));
  Launch("--staged --speed " + std::to_string(speed));
}

void StandInProcess::Launch(const std::string& args) {
  char dir[MAX_PATH];
  ::GetTempPathA(MAX_PATH, dir);
  const std::string base = std::string(dir) + "qv_standin_" +
                           std::to_string(::GetCurrentProcessId());
  state_path_ = base + ".state";
  dump_path_ = base + ".dump.json";
  ::DeleteFileA((state_path_ + ".events").c_str());
  // Every program of the client, this one and those the program under
  // test starts again (it inherits this environment), keeps its state
  // here.
  ::SetEnvironmentVariableA("QV_STANDIN_STATE", state_path_.c_str());
  StartWatchdog();
  std::string command = "\"" + WindowsPath(QV_STANDIN_EXE) + "\" " + args;
  STARTUPINFOA si{};
  si.cb = sizeof si;
  PROCESS_INFORMATION pi{};
  if (!::CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0,
                        nullptr, nullptr, &si, &pi))
    return;
  ::CloseHandle(pi.hThread);
  for (int i = 0; i < 400 && !control_; ++i) {
    if (::WaitForSingleObject(pi.hProcess, 50) == WAIT_OBJECT_0) break;
    control_ = ::FindWindowA("QuorvexStandInControl", nullptr);
  }
  ::CloseHandle(pi.hProcess);
}

void StandInProcess::Note(const std::string& text) {
  ::EnterCriticalSection(&note_lock_);
  note_ = text;
  ::LeaveCriticalSection(&note_lock_);
}

void StandInProcess::CopyFilesTo(const std::string& folder) const {
  for (const std::string& f : {state_path_, state_path_ + ".events"}) {
    const std::string name = f.substr(f.find_last_of('\\') + 1);
    ::CopyFileA(f.c_str(), (folder + "\\" + name).c_str(), FALSE);
  }
}

void StandInProcess::StartWatchdog() {
  ::InitializeCriticalSection(&note_lock_);
  // The client's waits have no limit of their own; a test that would hang
  // fails here instead.
  done_ = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
  watchdog_ = ::CreateThread(nullptr, 0, Watchdog, this, 0, nullptr);
}

StandInProcess::~StandInProcess() {
  if (done_) ::SetEvent(done_);
  if (watchdog_) {
    ::WaitForSingleObject(watchdog_, INFINITE);
    ::CloseHandle(watchdog_);
  }
  if (done_) ::CloseHandle(done_);
  ::DeleteCriticalSection(&note_lock_);
  // The client's program is asked to end; one that does not is ended.
  if (HWND control = Control()) {
    DWORD id = 0;
    ::GetWindowThreadProcessId(control, &id);
    HANDLE process = ::OpenProcess(SYNCHRONIZE | PROCESS_TERMINATE, FALSE, id);
    COPYDATASTRUCT cd{1, 4, const_cast<char*>("quit")};
    DWORD_PTR result = 0;
    ::SendMessageTimeoutA(control, WM_COPYDATA, 0,
                          reinterpret_cast<LPARAM>(&cd), SMTO_NORMAL, 5000,
                          &result);
    if (process) {
      if (::WaitForSingleObject(process, 5000) != WAIT_OBJECT_0)
        ::TerminateProcess(process, 1);
      ::CloseHandle(process);
    }
  }
  for (const std::string& f :
       {state_path_, state_path_ + ".tmp", state_path_ + ".events", dump_path_})
    ::DeleteFileA(f.c_str());
}

HWND StandInProcess::Control() {
  if (control_ && ::IsWindow(control_)) return control_;
  control_ = ::FindWindowA("QuorvexStandInControl", nullptr);
  return control_;
}

bool StandInProcess::running() { return Control() != nullptr; }

DWORD StandInProcess::pid() {
  DWORD id = 0;
  if (HWND control = Control()) ::GetWindowThreadProcessId(control, &id);
  return id;
}

void StandInProcess::Pump() {
  while (!waiting_.empty()) {
    HWND control = Control();
    if (!control) return;
    const std::string& line = waiting_.front();
    COPYDATASTRUCT cd{1, static_cast<DWORD>(line.size()),
                      const_cast<char*>(line.data())};
    DWORD_PTR result = 0;
    // A program that ended meanwhile took nothing: the line waits on.
    if (!::SendMessageTimeoutA(control, WM_COPYDATA, 0,
                               reinterpret_cast<LPARAM>(&cd), SMTO_NORMAL, 5000,
                               &result) ||
        result != 1) {
      control_ = nullptr;
      return;
    }
    waiting_.erase(waiting_.begin());
  }
}

void StandInProcess::Command(const std::string& line) {
  waiting_.push_back(line);
  Pump();
}

bool StandInProcess::Kill() {
  DWORD id = 0;
  if (HWND control = ::FindWindowA("QuorvexStandInControl", nullptr))
    ::GetWindowThreadProcessId(control, &id);
  if (!id) return false;
  HANDLE process = ::OpenProcess(SYNCHRONIZE | PROCESS_TERMINATE, FALSE, id);
  if (!process) return false;
  ::TerminateProcess(process, 9);
  ::WaitForSingleObject(process, 5000);
  ::CloseHandle(process);
  control_ = nullptr;
  return true;
}

json StandInProcess::State() {
  // Asked directly, not in turn with the waiting commands: the watchdog's
  // thread asks too.
  json state;
  HWND control = ::FindWindowA("QuorvexStandInControl", nullptr);
  if (control) {
    ::DeleteFileA(dump_path_.c_str());
    const std::string line = "dump " + dump_path_;
    COPYDATASTRUCT cd{1, static_cast<DWORD>(line.size()),
                      const_cast<char*>(line.data())};
    DWORD_PTR result = 0;
    if (::SendMessageTimeoutA(control, WM_COPYDATA, 0,
                              reinterpret_cast<LPARAM>(&cd), SMTO_NORMAL, 5000,
                              &result))
      for (int i = 0; i < 200 && !state.is_object(); ++i) {
        state = json::parse(ReadFile(dump_path_), nullptr, false);
        if (!state.is_object()) ::Sleep(10);
      }
  }
  if (!state.is_object()) {
    // No program runs: the client as it saved itself.
    const json saved = json::from_cbor(ReadFile(state_path_), true, false);
    state = json{{"running", false}, {"signed_on", false}, {"room", ""}};
    if (saved.is_object()) state["client"] = saved["client"];
  }
  json mailboxes = json::object();
  json waiting = json::array();
  if (state.contains("client")) {
    const json& client = state["client"];
    for (const json& p : client["world"]["people"])
      mailboxes[p["name"].get<std::string>()] = p["mailbox"];
    waiting = client["waiting"];
    state.erase("client");
  }
  state["mailboxes"] = mailboxes;
  state["waiting"] = waiting;
  json heard = json::array();
  for (const json& e : Events(0, 1))
    if (e["ev"] == "chat")
      heard.push_back(e["sn"].get<std::string>() + ":\t" +
                      e["text"].get<std::string>());
  state["heard"] = heard;
  return state;
}

std::vector<json> StandInProcess::Events(double since_wall,
                                         double speed) const {
  std::vector<json> events;
  std::istringstream in(ReadFile(state_path_ + ".events"));
  for (std::string line; std::getline(in, line);) {
    json e = json::parse(line, nullptr, false);
    // A line cut short by a kill is no event.
    if (!e.is_object()) continue;
    e["t"] = (e.value("w", 0.0) - since_wall) * speed;
    e.erase("w");
    events.push_back(std::move(e));
  }
  return events;
}

std::vector<std::string> ForwardsReceived(const json& state,
                                          const std::string& sn) {
  std::vector<std::string> out;
  if (state["mailboxes"].contains(sn))
    for (const json& m : state["mailboxes"][sn])
      if (!m["forward_of"].get<std::string>().empty())
        out.push_back(m["forward_of"]);
  return out;
}

}  // namespace quorvex::test
