#include "win32/win32_window_api.h"

#include <windows.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "win32/code_page.h"

namespace quorvex::win32 {

namespace {

// Window and menu handles are 32-bit values on every Windows, sign-extended
// in a 64-bit program.
HWND H(Hwnd h) {
  return reinterpret_cast<HWND>(
      static_cast<std::intptr_t>(static_cast<std::int32_t>(h)));
}
Hwnd ToHwnd(HWND h) {
  return static_cast<Hwnd>(reinterpret_cast<std::uintptr_t>(h));
}
HMENU M(Hmenu m) {
  return reinterpret_cast<HMENU>(
      static_cast<std::intptr_t>(static_cast<std::int32_t>(m)));
}
Hmenu ToHmenu(HMENU m) {
  return static_cast<Hmenu>(reinterpret_cast<std::uintptr_t>(m));
}

// A text argument in the client's code page; none for a null pointer.
std::optional<std::string> Arg(const char* utf8) {
  if (!utf8) return std::nullopt;
  return Utf8ToCp1252(utf8);
}
const char* Ptr(const std::optional<std::string>& s) {
  return s ? s->c_str() : nullptr;
}

}  // namespace

Hwnd Win32WindowApi::FindWindowA(const char* class_name, const char* caption) {
  const auto c = Arg(class_name), t = Arg(caption);
  return ToHwnd(::FindWindowA(Ptr(c), Ptr(t)));
}

namespace {

// A text in capitals, letter by letter and whatever the user's language
// (no Turkish dotted I), as the system compares names ignoring case.
std::wstring Upper(const std::wstring& s) {
  std::wstring upper(s.size(), L'\0');
  if (!s.empty())
    ::LCMapStringW(LOCALE_INVARIANT, LCMAP_UPPERCASE, s.data(),
                   static_cast<int>(s.size()), upper.data(),
                   static_cast<int>(upper.size()));
  return upper;
}

// Whether `hwnd` has this class and caption (either may be absent), both
// compared ignoring case, as FindWindowEx compares them.
bool Matches(HWND hwnd, const char* class_name, const char* caption) {
  auto same = [](const std::wstring& a, const char* utf8) {
    const std::wstring b = Utf8ToWide(utf8);
    return a.size() == b.size() && Upper(a) == Upper(b);
  };
  if (class_name) {
    wchar_t cls[257];
    const int n = ::GetClassNameW(hwnd, cls, 257);
    if (!same(std::wstring(cls, std::max(n, 0)), class_name)) return false;
  }
  if (caption) {
    std::wstring text(
        static_cast<std::size_t>(::GetWindowTextLengthW(hwnd)) + 1, L'\0');
    text.resize(static_cast<std::size_t>(std::max(
        ::GetWindowTextW(hwnd, text.data(), static_cast<int>(text.size())),
        0)));
    if (!same(text, caption)) return false;
  }
  return true;
}

}  // namespace

Hwnd Win32WindowApi::FindWindowExA(Hwnd parent, Hwnd child_after,
                                   const char* class_name,
                                   const char* caption) {
  // Windows searches on from `child_after` whatever its class; Wine finds
  // nothing when it is not of the class looked for (the first icon after
  // a text field, say). Then the search on from it is made here.
  if (child_after != 0 && class_name &&
      !Matches(H(child_after), class_name, nullptr)) {
    for (HWND h = ::GetWindow(H(child_after), GW_HWNDNEXT); h;
         h = ::GetWindow(h, GW_HWNDNEXT))
      if (Matches(h, class_name, caption)) return ToHwnd(h);
    return 0;
  }
  const auto c = Arg(class_name), t = Arg(caption);
  return ToHwnd(::FindWindowExA(H(parent), H(child_after), Ptr(c), Ptr(t)));
}

Hwnd Win32WindowApi::GetWindow(Hwnd hwnd, unsigned cmd) {
  return ToHwnd(::GetWindow(H(hwnd), cmd));
}

std::string Win32WindowApi::GetClassNameA(Hwnd hwnd, int max_chars) {
  if (max_chars <= 0) return {};
  std::vector<char> buf(static_cast<std::size_t>(max_chars), '\0');
  const int n = ::GetClassNameA(H(hwnd), buf.data(), max_chars);
  return Cp1252ToUtf8(std::string_view(buf.data(), std::max(n, 0)));
}

int Win32WindowApi::GetWindowTextLengthA(Hwnd hwnd) {
  return ::GetWindowTextLengthA(H(hwnd));
}

std::string Win32WindowApi::GetWindowTextA(Hwnd hwnd, int max_chars) {
  if (max_chars <= 0) return {};
  std::vector<char> buf(static_cast<std::size_t>(max_chars), '\0');
  const int n = ::GetWindowTextA(H(hwnd), buf.data(), max_chars);
  return Cp1252ToUtf8(std::string_view(buf.data(), std::max(n, 0)));
}

bool Win32WindowApi::IsWindow(Hwnd hwnd) {
  return hwnd != 0 && ::IsWindow(H(hwnd));
}

bool Win32WindowApi::IsWindowVisible(Hwnd hwnd) {
  return ::IsWindowVisible(H(hwnd));
}

std::intptr_t Win32WindowApi::SendMessageA(Hwnd hwnd, unsigned msg,
                                           std::uintptr_t wparam,
                                           std::intptr_t lparam) {
  return ::SendMessageA(H(hwnd), msg, wparam, lparam);
}

std::intptr_t Win32WindowApi::SendMessageGetText(Hwnd hwnd, unsigned msg,
                                                 std::uintptr_t wparam,
                                                 std::string* out,
                                                 std::size_t buffer_chars) {
  if (out) out->clear();
  if (msg == win::kLbGetText) {
    // The list box writes as many characters as LB_GETTEXTLEN said; the
    // buffer is sized by the caller from that, plus room for the zero.
    std::vector<wchar_t> buf(std::max<std::size_t>(buffer_chars, 1) + 1, 0);
    const LRESULT r = ::SendMessageW(H(hwnd), msg, wparam,
                                     reinterpret_cast<LPARAM>(buf.data()));
    if (out && r > 0) {
      const auto n =
          std::min<std::size_t>(static_cast<std::size_t>(r), buf.size() - 1);
      *out = WideThroughCp1252(std::wstring_view(buf.data(), n));
    }
    return r;
  }
  std::vector<char> buf(std::max<std::size_t>(buffer_chars, 2) + 1, '\0');
  if (msg == win::kEmGetLine) {
    // The first 16-bit word of the buffer holds its size.
    const auto size = static_cast<WORD>(
        std::min<std::size_t>(std::max<std::size_t>(buffer_chars, 2), 0xFFFF));
    std::copy_n(reinterpret_cast<const char*>(&size), 2, buf.begin());
  }
  const LRESULT r = ::SendMessageA(H(hwnd), msg, wparam,
                                   reinterpret_cast<LPARAM>(buf.data()));
  if (out) {
    std::size_t n = 0;
    if (msg == win::kEmGetLine) {
      n = static_cast<std::size_t>(std::max<LRESULT>(r, 0));
    } else {
      while (n < buf.size() && buf[n]) ++n;
    }
    n = std::min(n, buffer_chars);
    *out = Cp1252ToUtf8(std::string_view(buf.data(), n));
  }
  return r;
}

std::intptr_t Win32WindowApi::SendMessageSetText(Hwnd hwnd, unsigned msg,
                                                 std::uintptr_t wparam,
                                                 std::string_view text) {
  const std::string bytes = Utf8ToCp1252(text);
  return ::SendMessageA(H(hwnd), msg, wparam,
                        reinterpret_cast<LPARAM>(bytes.c_str()));
}

bool Win32WindowApi::PostMessageA(Hwnd hwnd, unsigned msg,
                                  std::uintptr_t wparam, std::intptr_t lparam) {
  // Posted to no window the platform would queue it for this thread: a
  // key meant for a control not found yet must go nowhere instead.
  if (hwnd == 0) return false;
  return ::PostMessageA(H(hwnd), msg, wparam, lparam);
}

Hmenu Win32WindowApi::GetMenu(Hwnd hwnd) { return ToHmenu(::GetMenu(H(hwnd))); }

Hmenu Win32WindowApi::GetSubMenu(Hmenu menu, int position) {
  return ToHmenu(::GetSubMenu(M(menu), position));
}

std::uint32_t Win32WindowApi::GetMenuItemID(Hmenu menu, int position) {
  return ::GetMenuItemID(M(menu), position);
}

Point Win32WindowApi::GetCursorPos() {
  POINT p{};
  ::GetCursorPos(&p);
  return {p.x, p.y};
}

void Win32WindowApi::SetCursorPos(int x, int y) { ::SetCursorPos(x, y); }

Point Win32WindowApi::ScreenSize() {
  HDC dc = ::GetDC(nullptr);
  const int dpi_x = dc ? ::GetDeviceCaps(dc, LOGPIXELSX) : 96;
  const int dpi_y = dc ? ::GetDeviceCaps(dc, LOGPIXELSY) : 96;
  if (dc) ::ReleaseDC(nullptr, dc);
  const int tx = 1440 / (dpi_x > 0 ? dpi_x : 96);
  const int ty = 1440 / (dpi_y > 0 ? dpi_y : 96);
  return {::GetSystemMetrics(SM_CXSCREEN) * tx,
          ::GetSystemMetrics(SM_CYSCREEN) * ty};
}

void Win32WindowApi::ShowWindow(Hwnd hwnd, int cmd) {
  ::ShowWindow(H(hwnd), cmd);
}

void Win32WindowApi::SetWindowPos(Hwnd hwnd, std::intptr_t insert_after, int x,
                                  int y, int cx, int cy, unsigned flags) {
  ::SetWindowPos(H(hwnd), reinterpret_cast<HWND>(insert_after), x, y, cx, cy,
                 flags);
}

void Win32WindowApi::ReleaseCapture() { ::ReleaseCapture(); }

std::uint32_t Win32WindowApi::GetWindowThreadProcessId(
    Hwnd hwnd, std::uint32_t* process_id) {
  DWORD pid = 0;
  const DWORD tid = ::GetWindowThreadProcessId(H(hwnd), &pid);
  if (process_id) *process_id = pid;
  return tid;
}

ProcessHandle Win32WindowApi::OpenProcess(std::uint32_t access, bool inherit,
                                          std::uint32_t process_id) {
  return reinterpret_cast<ProcessHandle>(
      ::OpenProcess(access, inherit, process_id));
}

bool Win32WindowApi::ReadProcessMemory(ProcessHandle process,
                                       std::uint32_t address, void* buffer,
                                       std::size_t size,
                                       std::size_t* bytes_read) {
  SIZE_T n = 0;
  // The client is a 32-bit program: its addresses are 32-bit, whatever
  // this program's own width.
  const BOOL ok = ::ReadProcessMemory(
      reinterpret_cast<HANDLE>(process),
      reinterpret_cast<LPCVOID>(static_cast<std::uintptr_t>(address)), buffer,
      size, &n);
  if (bytes_read) *bytes_read = n;
  return ok;
}

void Win32WindowApi::CloseHandle(ProcessHandle handle) {
  if (handle) ::CloseHandle(reinterpret_cast<HANDLE>(handle));
}

OsVersion Win32WindowApi::GetVersionExA() {
  OSVERSIONINFOA info{};
  info.dwOSVersionInfoSize = 148;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
  if (!::GetVersionExA(&info)) return {0, 0, 0};
#pragma GCC diagnostic pop
  return {info.dwPlatformId, info.dwMajorVersion, info.dwMinorVersion};
}

}  // namespace quorvex::win32
