// The simulated client's face: the WindowApi calls, the frame's menu bar,
// and the dispatch of messages and clicks to the part whose window they
// reach.
#include "sim/sim_client.h"

#include <algorithm>
#include <cstdio>

#include "model/text_util.h"
#include "ports/client_windows.h"
#include "sim/rich_text.h"

namespace quorvex {

namespace {

constexpr std::uint32_t kNoMenuItem = 0xFFFFFFFF;
constexpr int kTwipsPerPixel = 15;

// The tool bar's Go icon, after its thirteen icons and the keyword box.
constexpr int kToolbarGo = 14;

// The frame's menu bar: submenu, then items, by position.
const std::vector<std::vector<const char*>> kFrameMenu = {
    {"&New", "&Open...", "&Save", "Save &As...", "&Print...", "E&xit"},
    {"&Undo", "Cu&t", "&Copy", "&Paste", "Select &All"},
    {"&Cascade", "&Tile", "&Arrange Icons", "Close &All Except Front",
     "Add Top Window to &Favorites", "Add Top Window to T&oolbar",
     "F&orget Window Size and Position", "&Remember Window Size and Position",
     "Remember Window &Size Only"},
    {"&Sign Off", "S&witch Screen Name"},
    {"&Help Topics", "&About America Online"},
};
constexpr int kMenuFile = 0, kFileExit = 5;
constexpr int kMenuWindow = 2, kWindowForget = 6, kWindowRemember = 7,
              kWindowRememberSize = 8;
constexpr int kMenuSignOff = 3, kSignOffItem = 0;
constexpr std::uint32_t kMenuIdBase = 0x1000;
constexpr std::uint32_t kMenuIdStride = 0x40;

// A character typed into an edit: backspace takes one back, Return is a
// line break in a body only.
void TypeChar(SimWindow& w, char c) {
  if (c == '\b') {
    if (!w.text.empty()) w.text.pop_back();
  } else if (c == '\r') {
    if (w.role == kRoleBody) w.text += "\r\n";
  } else if (static_cast<unsigned char>(c) >= 32 || c == '\t') {
    w.text += c;
  }
}

}  // namespace

SimClient::SimClient(Host& host, SimWorld& world, std::uint64_t seed)
    : shell_(host, world, seed),
      session_(shell_),
      preferences_(shell_, session_),
      room_(shell_, session_, preferences_),
      mail_(shell_, session_, preferences_) {}

SimClient::~SimClient() = default;

void SimClient::Launch() {
  if (!session_.BeginLaunch()) return;
  room_.SeatSetupPeople();
  shell_.BuildFrame();
  if (session_.SignOnAtLaunch()) room_.ShowAtLaunch();
}

Point SimClient::WindowSize(Hwnd hwnd) const {
  const SimWindow* w = shell_.tree.Get(hwnd);
  return w ? Point{w->cx, w->cy} : Point{};
}

void SimClient::CloseDoc(Hwnd hwnd) {
  auto it = shell_.windows.find(hwnd);
  if (it == shell_.windows.end()) return;
  switch (it->second.kind) {
    case SimWindowKind::kFrame:
      session_.RequestFrameClose();
      return;
    case SimWindowKind::kWelcome:
      // The welcome window cannot be closed while signed on; it only
      // goes down to an icon.
      shell_.tree.Get(hwnd)->minimized = true;
      return;
    case SimWindowKind::kMenu:
      mail_.CloseMenu();
      return;
    case SimWindowKind::kSignOnModal:
      session_.CancelSignOn(hwnd);
      return;
    case SimWindowKind::kForward:
      mail_.CloseForward(hwnd);
      return;
    default:
      shell_.tree.Destroy(hwnd);
      return;
  }
}

// --- WindowApi: windows ---

Hwnd SimClient::FindWindowA(const char* class_name, const char* caption) {
  return shell_.tree.Find(0, 0, class_name, caption);
}

Hwnd SimClient::FindWindowExA(Hwnd parent, Hwnd child_after,
                              const char* class_name, const char* caption) {
  return shell_.tree.Find(parent, child_after, class_name, caption);
}

Hwnd SimClient::GetWindow(Hwnd hwnd, unsigned cmd) {
  return shell_.tree.Walk(hwnd, cmd);
}

std::string SimClient::GetClassNameA(Hwnd hwnd, int max_chars) {
  const SimWindow* w = shell_.tree.Get(hwnd);
  if (!w || max_chars <= 0) return "";
  return w->class_name.substr(0, static_cast<std::size_t>(max_chars - 1));
}

int SimClient::GetWindowTextLengthA(Hwnd hwnd) {
  const SimWindow* w = shell_.tree.Get(hwnd);
  return w ? static_cast<int>(w->text.size()) : 0;
}

std::string SimClient::GetWindowTextA(Hwnd hwnd, int max_chars) {
  const SimWindow* w = shell_.tree.Get(hwnd);
  if (!w || max_chars <= 0) return "";
  return w->text.substr(0, static_cast<std::size_t>(max_chars - 1));
}

bool SimClient::IsWindow(Hwnd hwnd) { return shell_.tree.Exists(hwnd); }

bool SimClient::IsWindowVisible(Hwnd hwnd) {
  return shell_.tree.IsVisible(hwnd);
}

void SimClient::SetCursorPos(int x, int y) {
  // The pointer stays on the screen.
  shell_.cursor.x = std::clamp(x, 0, shell_.knobs.screen_width - 1);
  shell_.cursor.y = std::clamp(y, 0, shell_.knobs.screen_height - 1);
}

Point SimClient::ScreenSize() {
  return {shell_.knobs.screen_width * kTwipsPerPixel,
          shell_.knobs.screen_height * kTwipsPerPixel};
}

void SimClient::ShowWindow(Hwnd hwnd, int cmd) {
  SimWindow* w = shell_.tree.Get(hwnd);
  if (!w) return;
  switch (cmd) {
    case win::kSwHide:
      w->visible = false;
      break;
    case 2:  // SW_SHOWMINIMIZED
    case win::kSwMinimize:
    case 7:  // SW_SHOWMINNOACTIVE
      w->visible = true;
      w->minimized = true;
      break;
    default:  // the show and restore commands
      w->visible = true;
      w->minimized = false;
      break;
  }
}

void SimClient::SetWindowPos(Hwnd hwnd, std::intptr_t insert_after, int x,
                             int y, int cx, int cy, unsigned flags) {
  SimWindow* w = shell_.tree.Get(hwnd);
  if (!w) return;
  constexpr unsigned kSwpNoZOrder = 4;
  if (!(flags & win::kSwpNoSize)) {
    w->cx = cx;
    w->cy = cy;
  }
  if (!(flags & win::kSwpNoMove)) {
    w->x = x;
    w->y = y;
  }
  // HWND_TOP, HWND_TOPMOST and HWND_NOTOPMOST all raise the window.
  if (!(flags & kSwpNoZOrder) &&
      (insert_after == 0 || insert_after == win::kHwndTopmost ||
       insert_after == win::kHwndNoTopmost))
    shell_.tree.BringToTop(hwnd);
}

// --- WindowApi: the client's memory ---

std::uint32_t SimClient::GetWindowThreadProcessId(Hwnd hwnd,
                                                  std::uint32_t* process_id) {
  bool ok = shell_.tree.Exists(hwnd);
  if (process_id) *process_id = ok ? shell_.pid : 0;
  return ok ? shell_.pid + 4 : 0;
}

ProcessHandle SimClient::OpenProcess(std::uint32_t access, bool /*inherit*/,
                                     std::uint32_t process_id) {
  constexpr std::uint32_t kProcessVmRead = 0x10;
  if (!shell_.frame || process_id != shell_.pid || !(access & kProcessVmRead))
    return 0;
  ProcessHandle h = shell_.next_process_handle;
  shell_.next_process_handle += 4;
  shell_.processes[h] = process_id;
  return h;
}

bool SimClient::ReadProcessMemory(ProcessHandle process, std::uint32_t address,
                                  void* buffer, std::size_t size,
                                  std::size_t* bytes_read) {
  if (bytes_read) *bytes_read = 0;
  auto it = shell_.processes.find(process);
  if (it == shell_.processes.end() || it->second != shell_.pid || !shell_.frame)
    return false;
  if (!shell_.memory.Read(address, buffer, size)) return false;
  if (bytes_read) *bytes_read = size;
  return true;
}

void SimClient::CloseHandle(ProcessHandle handle) {
  shell_.processes.erase(handle);
}

// --- WindowApi: menus ---

Hmenu SimClient::GetMenu(Hwnd hwnd) {
  return hwnd != 0 && hwnd == shell_.frame ? shell_.menu_base : 0;
}

Hmenu SimClient::GetSubMenu(Hmenu menu, int position) {
  if (!shell_.frame || menu != shell_.menu_base || position < 0 ||
      position >= static_cast<int>(kFrameMenu.size()))
    return 0;
  return shell_.menu_base + 1 + static_cast<Hmenu>(position);
}

std::uint32_t SimClient::GetMenuItemID(Hmenu menu, int position) {
  if (!shell_.frame || menu <= shell_.menu_base) return kNoMenuItem;
  std::size_t sub = menu - shell_.menu_base - 1;
  if (sub >= kFrameMenu.size() || position < 0 ||
      position >= static_cast<int>(kFrameMenu[sub].size()))
    return kNoMenuItem;
  return kMenuIdBase + static_cast<std::uint32_t>(sub) * kMenuIdStride +
         static_cast<std::uint32_t>(position);
}

void SimClient::RunFrameCommand(std::uint32_t id) {
  if (id < kMenuIdBase) return;
  int sub = static_cast<int>((id - kMenuIdBase) / kMenuIdStride);
  int pos = static_cast<int>((id - kMenuIdBase) % kMenuIdStride);
  const auto& active_list = shell_.tree.Children(shell_.mdi);
  Hwnd active = active_list.empty() ? 0 : active_list.front();
  if (sub == kMenuFile && pos == kFileExit) {
    session_.RequestFrameClose();
  } else if (sub == kMenuWindow &&
             (pos == kWindowRemember || pos == kWindowRememberSize)) {
    // Later windows of the active window's kind open at its size.
    if (shell_.windows.count(active))
      shell_.remembered_sizes[shell_.windows[active].kind] = WindowSize(active);
  } else if (sub == kMenuWindow && pos == kWindowForget) {
    if (shell_.windows.count(active))
      shell_.remembered_sizes.erase(shell_.windows[active].kind);
  } else if (sub == kMenuSignOff && pos == kSignOffItem) {
    session_.SignOff();
  }
}

// --- WindowApi: messages ---

std::intptr_t SimClient::SendMessageA(Hwnd hwnd, unsigned msg,
                                      std::uintptr_t wparam,
                                      std::intptr_t lparam) {
  return Dispatch(hwnd, msg, wparam, lparam);
}

std::intptr_t SimClient::SendMessageGetText(Hwnd hwnd, unsigned msg,
                                            std::uintptr_t wparam,
                                            std::string* out,
                                            std::size_t buffer_chars) {
  std::string text;
  std::intptr_t result = 0;
  SimWindow* w = shell_.tree.Get(hwnd);
  if (!w) {
    if (out) out->clear();
    return 0;
  }
  switch (msg) {
    case win::kWmGetText: {
      // wParam is the buffer's size, the terminating zero included.
      std::size_t n = std::min<std::size_t>(wparam, buffer_chars);
      if (n > 0) text = w->text.substr(0, n - 1);
      result = static_cast<std::intptr_t>(text.size());
      break;
    }
    case win::kLbGetText:
      result = ListMessage(*w, msg, wparam, &text, buffer_chars);
      break;
    case win::kEmGetLine:
      text = RichGetLine(w->text, static_cast<long>(wparam), buffer_chars);
      result = static_cast<std::intptr_t>(text.size());
      break;
    default:
      result = Dispatch(hwnd, msg, wparam, 0);
      break;
  }
  if (out) *out = std::move(text);
  return result;
}

std::intptr_t SimClient::SendMessageSetText(Hwnd hwnd, unsigned msg,
                                            std::uintptr_t wparam,
                                            std::string_view text) {
  SimWindow* w = shell_.tree.Get(hwnd);
  if (!w) return 0;
  if (msg != win::kWmSetText) return Dispatch(hwnd, msg, wparam, 0);
  // The display is a rich edit: it takes a text set into it, and keeps
  // adding the room's lines after it.
  if (w->role == kRoleDisplay) {
    room_.SetDisplayText(*w, std::string(text));
    return 1;
  }
  w->text = std::string(text);
  return 1;
}

std::intptr_t SimClient::ListMessage(SimWindow& list, unsigned msg,
                                     std::uintptr_t wparam, std::string* out,
                                     std::size_t buffer_chars) {
  if (list.role == kRolePeople)
    return room_.PeopleListMessage(list, msg, wparam);
  if (list.role == kRoleTree)
    return mail_.ListMessage(list, msg, wparam, out, buffer_chars);
  return 0;
}

bool SimClient::PostMessageA(Hwnd hwnd, unsigned msg, std::uintptr_t wparam,
                             std::intptr_t lparam) {
  if (!shell_.tree.Exists(hwnd)) return false;
  shell_.Later(
      0,
      [this, hwnd, msg, wparam, lparam] {
        if (shell_.tree.Exists(hwnd)) Dispatch(hwnd, msg, wparam, lparam);
      },
      false);
  return true;
}

std::intptr_t SimClient::Dispatch(Hwnd hwnd, unsigned msg,
                                  std::uintptr_t wparam, std::intptr_t lparam) {
  SimWindow* w = shell_.tree.Get(hwnd);
  if (!w) return 0;
  const int role = w->role;
  const ClientWindow* window = shell_.WindowOf(hwnd);
  const bool is_menu = window && window->kind == SimWindowKind::kMenu;
  switch (msg) {
    case win::kWmGetTextLength:
      return static_cast<std::intptr_t>(w->text.size());
    case win::kWmClose:
      // Controls ignore it; document and top-level windows close.
      if (shell_.windows.count(hwnd)) CloseDoc(hwnd);
      return 0;
    case win::kWmLButtonDown:
      w->pressed = true;
      return 0;
    case win::kWmLButtonUp:
      // A click is a press and a release on the same window.
      if (w->pressed) {
        w->pressed = false;
        Click(hwnd);
      }
      return 0;
    case win::kWmKeyDown:
      if (is_menu) {
        mail_.MenuKeyDown(static_cast<int>(wparam));
      } else if (wparam == win::kVkReturn && role == kRoleInput) {
        room_.SendChatInput();
      } else if (wparam == win::kVkReturn && role == kRoleTree) {
        mail_.OpenSelectedMail(*w);
      } else if (wparam == win::kVkSpace && role == kRoleButton) {
        w->pressed = true;
      }
      return 0;
    case win::kWmKeyUp:
      if (wparam == win::kVkSpace && role == kRoleButton && w->pressed) {
        w->pressed = false;
        shell_.PressBoxButton(w->owner);
      }
      return 0;
    case win::kWmChar: {
      char c = static_cast<char>(wparam);
      if (is_menu) {
        mail_.MenuChar(c);
      } else if (role == kRoleInput && c == '\r') {
        room_.SendChatInput();
      } else if (role == kRoleKeyword && c == '\r') {
        // The keyword box is the frame's: a box held over the frame (a
        // full room's) lets nothing through until it is dismissed.
        if (!shell_.Blocked(shell_.frame)) room_.RunKeyword(w->text);
      } else if (role == kRoleInput || role == kRoleKeyword ||
                 role == kRoleEdit || role == kRoleBody) {
        TypeChar(*w, c);
      }
      return 0;
    }
    case win::kWmCommand:
      if (hwnd == shell_.frame)
        RunFrameCommand(static_cast<std::uint32_t>(wparam));
      return 0;
    case win::kLbGetCount:
    case win::kLbGetTextLen:
    case win::kLbSetCurSel:
    case win::kLbGetItemData:
    case win::kLbGetCurSel:
      return ListMessage(*w, msg, wparam, nullptr, 0);
    case win::kBmGetCheck:
      return role == kRoleCheck ? w->check : 0;
    case win::kBmSetCheck:
      if (role == kRoleCheck) w->check = wparam ? 1 : 0;
      return 0;
    case win::kEmSetSel:
      // The display's selection, in characters.
      if (role == kRoleDisplay)
        room_.SelectDisplay(static_cast<std::intptr_t>(wparam), lparam);
      return 0;
    case win::kWmClear:
      // Deletes the display's selection.
      if (role == kRoleDisplay) room_.ClearDisplaySelection(*w);
      return 0;
    case win::kEmLineIndex:
      return RichLineIndex(
          w->text, static_cast<long>(static_cast<std::intptr_t>(wparam)));
    case win::kEmLineLength:
      return RichLineLength(
          w->text, static_cast<long>(static_cast<std::intptr_t>(wparam)));
    default:
      return 0;
  }
}

void SimClient::Click(Hwnd hwnd) {
  SimWindow* w = shell_.tree.Get(hwnd);
  ClientWindow* window = shell_.WindowOf(hwnd);
  if (!w || !window) return;
  if (w->role == kRoleButton) {
    shell_.PressBoxButton(window->hwnd);
    return;
  }
  if (w->role == kRoleCheck) {
    w->check = !w->check;
    return;
  }
  if (w->role != kRoleIcon) return;
  // A window held by a modal box takes no clicks.
  if (shell_.Blocked(window->hwnd)) return;
  if (shell_.ClickLost()) return;
  const int n = w->tag;
  switch (window->kind) {
    case SimWindowKind::kFrame:
      if (n == kToolbarGo && shell_.keyword_edit)
        room_.RunKeyword(shell_.tree.Get(shell_.keyword_edit)->text);
      else
        mail_.ClickToolbarIcon(n);
      break;
    case SimWindowKind::kChatRoom:
    case SimWindowKind::kIm:
      room_.ClickIcon(*window, n);
      break;
    case SimWindowKind::kIncoming:
    case SimWindowKind::kOpenMail:
    case SimWindowKind::kForward:
    case SimWindowKind::kWriteMail:
    case SimWindowKind::kOnlineMailbox:
    case SimWindowKind::kWaiting:
    case SimWindowKind::kError:
    case SimWindowKind::kAutoAol:
      mail_.ClickIcon(*window, n);
      break;
    case SimWindowKind::kSignOn:
      session_.ClickIcon(*window, n);
      break;
    case SimWindowKind::kSignOnModal:
      session_.CancelSignOn(window->hwnd);
      break;
    case SimWindowKind::kPreferences:
    case SimWindowKind::kPreferencePage:
      preferences_.ClickIcon(*window, *w);
      break;
    default:
      break;
  }
}

}  // namespace quorvex
