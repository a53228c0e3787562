#include "win32/win32_machine.h"

#include <windows.h>

#include <algorithm>
#include <vector>

#include "win32/code_page.h"

namespace quorvex::win32 {

namespace {

std::wstring W(std::string_view utf8) { return Utf8ToWide(utf8); }

// A handle closed when it goes.
struct File {
  HANDLE h = INVALID_HANDLE_VALUE;
  explicit File(HANDLE handle) : h(handle) {}
  ~File() {
    if (h != INVALID_HANDLE_VALUE) ::CloseHandle(h);
  }
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  bool ok() const { return h != INVALID_HANDLE_VALUE; }
};

}  // namespace

Win32Machine::Win32Machine() {
  std::vector<wchar_t> buf(MAX_PATH);
  for (;;) {
    const DWORD n = ::GetModuleFileNameW(nullptr, buf.data(),
                                         static_cast<DWORD>(buf.size()));
    if (n < buf.size()) {
      buf.resize(n);
      break;
    }
    buf.resize(buf.size() * 2);
  }
  const std::string path =
      WideToUtf8(std::wstring_view(buf.data(), buf.size()));
  const std::size_t slash = path.find_last_of("\\/");
  app_path_ = slash == std::string::npos ? "" : path.substr(0, slash);
  // The classic runtime drops a trailing "\" except at a drive's root.
  if (app_path_.size() == 2 && app_path_[1] == ':') app_path_ += "\\";
  std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
  if (name.size() > 4) {
    std::string ext = name.substr(name.size() - 4);
    std::transform(ext.begin(), ext.end(), ext.begin(), [](unsigned char c) {
      return static_cast<char>(std::tolower(c));
    });
    if (ext == ".exe") name.resize(name.size() - 4);
  }
  exe_name_ = name;
}

std::string Win32Machine::WindowsDirectory() const {
  char buf[MAX_PATH + 1] = {};
  const UINT n = ::GetWindowsDirectoryA(buf, sizeof buf);
  return Cp1252ToUtf8(std::string_view(buf, std::min<UINT>(n, MAX_PATH)));
}

bool Win32Machine::FileExists(std::string_view windows_path) const {
  if (windows_path.empty()) return false;
  // A directory search, as the classic runtime's Dir does: folders do
  // not count.
  WIN32_FIND_DATAW data;
  HANDLE h = ::FindFirstFileW(W(windows_path).c_str(), &data);
  if (h == INVALID_HANDLE_VALUE) return false;
  bool found = false;
  do {
    if (!(data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) found = true;
  } while (!found && ::FindNextFileW(h, &data));
  ::FindClose(h);
  return found;
}

void Win32Machine::RemoveFile(std::string_view windows_path) {
  if (!windows_path.empty()) ::DeleteFileW(W(windows_path).c_str());
}

std::int64_t Win32Machine::FileLength(std::string_view windows_path) const {
  WIN32_FILE_ATTRIBUTE_DATA data;
  if (windows_path.empty() ||
      !::GetFileAttributesExW(W(windows_path).c_str(), GetFileExInfoStandard,
                              &data) ||
      (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY))
    return -1;
  return (static_cast<std::int64_t>(data.nFileSizeHigh) << 32) |
         data.nFileSizeLow;
}

bool Win32Machine::CopyFileBytes(
    std::string_view from, std::string_view to,
    const std::function<void(std::int64_t, std::int64_t)>& progress) {
  File in(::CreateFileW(W(from).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                        OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!in.ok()) return false;
  LARGE_INTEGER size{};
  ::GetFileSizeEx(in.h, &size);
  // A running program's own file can be read but not written: the same
  // file named twice fails here, before anything is truncated.
  File out(::CreateFileW(W(to).c_str(), GENERIC_WRITE, 0, nullptr,
                         CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!out.ok()) return false;
  const std::int64_t total = size.QuadPart;
  if (total == 0 && progress) progress(0, 0);
  std::vector<char> buf(kCopyChunk);
  std::int64_t done = 0;
  while (done < total) {
    DWORD got = 0, put = 0;
    if (!::ReadFile(in.h, buf.data(), static_cast<DWORD>(buf.size()), &got,
                    nullptr) ||
        got == 0)
      return false;
    if (!::WriteFile(out.h, buf.data(), got, &put, nullptr) || put != got)
      return false;
    done += got;
    if (progress) progress(done, total);
  }
  return true;
}

bool Win32Machine::AppendToFile(std::string_view windows_path,
                                std::string_view text) {
  File out(::CreateFileW(W(windows_path).c_str(), FILE_APPEND_DATA,
                         FILE_SHARE_READ, nullptr, OPEN_ALWAYS,
                         FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!out.ok()) return false;
  while (!text.empty()) {
    const DWORD chunk = static_cast<DWORD>(
        std::min<std::size_t>(text.size(), std::size_t{1} << 30));
    DWORD put = 0;
    if (!::WriteFile(out.h, text.data(), chunk, &put, nullptr) || put == 0)
      return false;
    text.remove_prefix(put);
  }
  return ::FlushFileBuffers(out.h) != 0;
}

bool Win32Machine::MoveFileOver(std::string_view from, std::string_view to) {
  return ::MoveFileExW(W(from).c_str(), W(to).c_str(),
                       MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
}

void Win32Machine::RunProgram(std::string_view windows_path) {
  std::wstring command = L"\"" + W(windows_path) + L"\"";
  STARTUPINFOW si{};
  si.cb = sizeof si;
  si.dwFlags = STARTF_USESHOWWINDOW;
  si.wShowWindow = SW_SHOWNORMAL;
  PROCESS_INFORMATION pi{};
  if (::CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0,
                       nullptr, nullptr, &si, &pi)) {
    ::CloseHandle(pi.hThread);
    ::CloseHandle(pi.hProcess);
  }
}

void Win32Machine::Reboot() {
  if (exit_windows_) exit_windows_(EWX_REBOOT);
}

bool Win32Machine::RealExitWindows(unsigned flags) {
  HANDLE token = nullptr;
  if (::OpenProcessToken(::GetCurrentProcess(),
                         TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY, &token)) {
    TOKEN_PRIVILEGES tp{};
    tp.PrivilegeCount = 1;
    tp.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
    if (::LookupPrivilegeValueW(nullptr, L"SeShutdownPrivilege",
                                &tp.Privileges[0].Luid))
      ::AdjustTokenPrivileges(token, FALSE, &tp, 0, nullptr, nullptr);
    ::CloseHandle(token);
  }
  return ::ExitWindowsEx(flags, 0);
}

}  // namespace quorvex::win32
