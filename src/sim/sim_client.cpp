// The simulated client's plumbing: the WindowApi calls, message dispatch,
// the frame with its tool bar and menus, and the tool bar's mail menu.
#include "sim/sim_client.h"

#include <algorithm>
#include <cstdio>

#include "model/text_util.h"
#include "model/utf8.h"
#include "ports/client_windows.h"
#include "sim/rich_text.h"

namespace quorvex {

namespace {

constexpr std::uint32_t kNoMenuItem = 0xFFFFFFFF;
constexpr int kTwipsPerPixel = 15;
constexpr int kDefaultWidth = 480;
constexpr int kDefaultHeight = 360;

// The tool bar's icons, left to right: Write is the 2nd, the mail menu
// the 3rd.
const std::vector<const char*> kToolbarIcons = {
    "Read",   "Write",     "Mail Center", "Print",    "My Files",
    "My AOL", "Favorites", "Internet",    "Channels", "People",
    "Quotes", "Perks",     "Weather"};
constexpr int kToolbarRead = 1;
constexpr int kToolbarGo = 14;  // the icon after the keyword box

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

enum MailCommand : int {
  kCmdNone = 0,
  kCmdReadMail,
  kCmdWriteMail,
  kCmdOldMail,
  kCmdSentMail,
  kCmdWaiting,
  kCmdAutoAol,
  kCmdIncoming,
};

// The tool bar's mail menu. From no highlight, Up, Up, Right, Return
// reaches "Incoming/Saved Mail" through "Read Offline Mail".
std::vector<MenuItem> MailMenuItems() {
  return {
      {"&Read Mail", kCmdReadMail, {}},
      {"&Write Mail", kCmdWriteMail, {}},
      {"Ol&d Mail", kCmdOldMail, {}},
      {"&Sent Mail", kCmdSentMail, {}},
      {"Mail Waiting to &be Sent", kCmdWaiting, {}},
      {"&Automatic AOL", kCmdAutoAol, {}},
      {"Address Boo&k", kCmdNone, {}},
      {"Read &Offline Mail",
       0,
       {{"&Incoming/Saved Mail", kCmdIncoming, {}},
        {"Mail I've Sen&t", kCmdNone, {}}}},
      {"Mail &Preferences", kCmdNone, {}},
  };
}

}  // namespace

SimClient::SimClient(Host& host, SimWorld& world, std::uint64_t seed)
    : host_(host), world_(world), rng_(seed) {
  tree_.SetDestroyHook([this](const SimWindow& w) { OnDestroyed(w); });
}

SimClient::~SimClient() { alive_.reset(); }

// --- set-up ---

void SimClient::SetUserName(std::string name) {
  user_name_ = std::move(name);
  world_.AddPerson(user_name_);
}

void SimClient::SetRoomName(std::string name) { room_name_ = std::move(name); }

void SimClient::AddPerson(std::string_view name) {
  // Before the launch the room may not be named yet.
  if (!launched_)
    setup_people_.emplace_back(name);
  else
    Join(name);
}

void SimClient::AddMail(std::string title, std::string sender,
                        std::string body) {
  MailItem m;
  m.id = next_mail_id_++;
  m.date = Today();
  m.sender = std::move(sender);  // empty: the user, whatever the name
  m.title = std::move(title);
  m.body = std::move(body);
  int number = static_cast<int>(incoming_.size()) + 1;
  m.dead = dead_numbers_.count(number) > 0;
  incoming_.push_back(std::move(m));
}

void SimClient::SetFullMailbox(std::string_view name, bool full) {
  world_.SetFullMailbox(name, full);
}

void SimClient::SetDeadMail(int number, bool dead) {
  if (dead)
    dead_numbers_.insert(number);
  else
    dead_numbers_.erase(number);
  if (number >= 1 && number <= static_cast<int>(incoming_.size()))
    incoming_[number - 1].dead = dead;
}

void SimClient::SetRoomCapacity(std::string_view room, int capacity) {
  world_.SetRoomCapacity(room, capacity);
}

void SimClient::RefuseRoom(std::string_view room, int times) {
  world_.RefuseRoom(room, times);
}

std::vector<std::string> SimClient::IncomingTitles() const {
  std::vector<std::string> out;
  for (const MailItem& m : incoming_) out.push_back(m.title);
  return out;
}

Point SimClient::WindowSize(Hwnd hwnd) const {
  const SimWindow* w = tree_.Get(hwnd);
  return w ? Point{w->cx, w->cy} : Point{};
}

// --- plumbing ---

void SimClient::Later(double delay, std::function<void()> fn,
                      bool session_bound) {
  std::weak_ptr<int> alive = alive_;
  std::uint64_t epoch = epoch_;
  host_.Schedule(delay,
                 [this, alive, epoch, session_bound, fn = std::move(fn)] {
                   if (alive.expired()) return;
                   if (session_bound && epoch != epoch_) return;
                   fn();
                 });
}

void SimClient::MarkBusy() {
  busy_until_ = std::max(busy_until_, host_.Clock() + knobs_.busy);
}

bool SimClient::ClickLost() {
  if (knobs_.lost_click_chance <= 0 || host_.Clock() >= busy_until_)
    return false;
  double r = static_cast<double>(rng_() >> 11) * (1.0 / 9007199254740992.0);
  return r < knobs_.lost_click_chance;
}

std::string SimClient::Today() const {
  CivilTime t = host_.Now();
  char buf[16];
  std::snprintf(buf, sizeof buf, "%02d/%02d/%04d", t.month, t.day, t.year);
  return buf;
}

SimClient::Doc* SimClient::DocOf(Hwnd hwnd) {
  const SimWindow* w = tree_.Get(hwnd);
  if (!w) return nullptr;
  auto it = docs_.find(w->owner);
  return it == docs_.end() ? nullptr : &it->second;
}

SimClient::Doc* SimClient::FindDoc(Kind kind) {
  // The topmost document of that kind.
  for (Hwnd h : tree_.Children(mdi_)) {
    auto it = docs_.find(h);
    if (it != docs_.end() && it->second.kind == kind) return &it->second;
  }
  for (Hwnd h : tree_.Children(0)) {
    auto it = docs_.find(h);
    if (it != docs_.end() && it->second.kind == kind) return &it->second;
  }
  return nullptr;
}

Hwnd SimClient::NewDoc(Kind kind, std::string caption) {
  Hwnd h = tree_.Create(mdi_, aol::kChildClass, std::move(caption), true);
  if (!h) return 0;
  SimWindow* w = tree_.Get(h);
  w->owner = h;
  auto size = remembered_sizes_.find(kind);
  w->cx = size == remembered_sizes_.end() ? kDefaultWidth : size->second.x;
  w->cy = size == remembered_sizes_.end() ? kDefaultHeight : size->second.y;
  Doc d;
  d.kind = kind;
  d.hwnd = h;
  docs_[h] = d;
  MarkBusy();
  return h;
}

Hwnd SimClient::NewTopLevel(Kind kind, const char* class_name,
                            std::string caption) {
  Hwnd h = tree_.Create(0, class_name, std::move(caption), true);
  Doc d;
  d.kind = kind;
  d.hwnd = h;
  docs_[h] = d;
  MarkBusy();
  return h;
}

Hwnd SimClient::Add(Hwnd parent, const char* class_name, std::string text,
                    int role, int tag) {
  Hwnd h = tree_.Create(parent, class_name, std::move(text));
  if (SimWindow* w = tree_.Get(h)) {
    w->role = role;
    w->tag = tag;
  }
  return h;
}

void SimClient::AddIcons(Hwnd parent, const std::vector<const char*>& texts,
                         bool with_text) {
  int n = 0;
  for (Hwnd h : tree_.Children(parent))
    if (tree_.Get(h)->role == kRoleIcon) ++n;
  for (const char* t : texts)
    Add(parent, aol::kIconClass, with_text ? t : "", kRoleIcon, ++n);
}

bool SimClient::Blocked(Hwnd doc) {
  auto it = docs_.find(doc);
  return it != docs_.end() && it->second.blocker != 0 &&
         tree_.Exists(it->second.blocker);
}

Hwnd SimClient::Icon(Hwnd doc, int n) const {
  return tree_.NthChild(doc, aol::kIconClass, n);
}

void SimClient::CloseDoc(Hwnd hwnd) {
  auto it = docs_.find(hwnd);
  if (it == docs_.end()) return;
  Doc d = it->second;
  switch (d.kind) {
    case Kind::kFrame:
      RequestFrameClose();
      return;
    case Kind::kWelcome:
      // The welcome window cannot be closed while signed on; it only
      // goes down to an icon.
      tree_.Get(hwnd)->minimized = true;
      return;
    case Kind::kMenu:
      popup_.reset();
      SyncMenuWindows();
      return;
    case Kind::kSignOnModal:
      signing_on_ = false;
      break;
    case Kind::kForward:
      tree_.Destroy(hwnd);
      // The mail it came from goes with it.
      if (docs_.count(d.open_mail)) tree_.Destroy(d.open_mail);
      return;
    default:
      break;
  }
  tree_.Destroy(hwnd);
}

void SimClient::OnDestroyed(const SimWindow& w) {
  auto it = docs_.find(w.hwnd);
  if (it != docs_.end()) {
    docs_.erase(it);
    // Whatever it held takes input again.
    for (auto& [hwnd, doc] : docs_)
      if (doc.blocker == w.hwnd) doc.blocker = 0;
  }
  if (w.hwnd == room_) {
    for (const PeopleEntry& e : people_entries_) FreePeopleEntry(e);
    people_entries_.clear();
    room_ = display_ = input_ = people_list_ = count_static_ = 0;
    current_room_.clear();
  }
  auto pw = std::find(popup_windows_.begin(), popup_windows_.end(), w.hwnd);
  if (pw != popup_windows_.end()) popup_windows_.erase(pw);
  if (w.hwnd == frame_) frame_ = mdi_ = toolbar_row_ = keyword_edit_ = 0;
}

// --- WindowApi: windows ---

Hwnd SimClient::FindWindowA(const char* class_name, const char* caption) {
  return tree_.Find(0, 0, class_name, caption);
}

Hwnd SimClient::FindWindowExA(Hwnd parent, Hwnd child_after,
                              const char* class_name, const char* caption) {
  return tree_.Find(parent, child_after, class_name, caption);
}

Hwnd SimClient::GetWindow(Hwnd hwnd, unsigned cmd) {
  return tree_.Walk(hwnd, cmd);
}

std::string SimClient::GetClassNameA(Hwnd hwnd, int max_chars) {
  const SimWindow* w = tree_.Get(hwnd);
  if (!w || max_chars <= 0) return "";
  return w->class_name.substr(0, static_cast<std::size_t>(max_chars - 1));
}

int SimClient::GetWindowTextLengthA(Hwnd hwnd) {
  const SimWindow* w = tree_.Get(hwnd);
  return w ? static_cast<int>(w->text.size()) : 0;
}

std::string SimClient::GetWindowTextA(Hwnd hwnd, int max_chars) {
  const SimWindow* w = tree_.Get(hwnd);
  if (!w || max_chars <= 0) return "";
  return w->text.substr(0, static_cast<std::size_t>(max_chars - 1));
}

bool SimClient::IsWindow(Hwnd hwnd) { return tree_.Exists(hwnd); }

bool SimClient::IsWindowVisible(Hwnd hwnd) { return tree_.IsVisible(hwnd); }

void SimClient::SetCursorPos(int x, int y) {
  // The pointer stays on the screen.
  cursor_.x = std::clamp(x, 0, knobs_.screen_width - 1);
  cursor_.y = std::clamp(y, 0, knobs_.screen_height - 1);
}

Point SimClient::ScreenSize() {
  return {knobs_.screen_width * kTwipsPerPixel,
          knobs_.screen_height * kTwipsPerPixel};
}

void SimClient::ShowWindow(Hwnd hwnd, int cmd) {
  SimWindow* w = tree_.Get(hwnd);
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
  SimWindow* w = tree_.Get(hwnd);
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
    tree_.BringToTop(hwnd);
}

// --- WindowApi: the client's memory ---

std::uint32_t SimClient::GetWindowThreadProcessId(Hwnd hwnd,
                                                  std::uint32_t* process_id) {
  bool ok = tree_.Exists(hwnd);
  if (process_id) *process_id = ok ? pid_ : 0;
  return ok ? pid_ + 4 : 0;
}

ProcessHandle SimClient::OpenProcess(std::uint32_t access, bool /*inherit*/,
                                     std::uint32_t process_id) {
  constexpr std::uint32_t kProcessVmRead = 0x10;
  if (!frame_ || process_id != pid_ || !(access & kProcessVmRead)) return 0;
  ProcessHandle h = next_process_handle_;
  next_process_handle_ += 4;
  processes_[h] = process_id;
  return h;
}

bool SimClient::ReadProcessMemory(ProcessHandle process, std::uint32_t address,
                                  void* buffer, std::size_t size,
                                  std::size_t* bytes_read) {
  if (bytes_read) *bytes_read = 0;
  auto it = processes_.find(process);
  if (it == processes_.end() || it->second != pid_ || !frame_) return false;
  if (!memory_.Read(address, buffer, size)) return false;
  if (bytes_read) *bytes_read = size;
  return true;
}

void SimClient::CloseHandle(ProcessHandle handle) { processes_.erase(handle); }

// --- WindowApi: menus ---

Hmenu SimClient::GetMenu(Hwnd hwnd) {
  return hwnd != 0 && hwnd == frame_ ? menu_base_ : 0;
}

Hmenu SimClient::GetSubMenu(Hmenu menu, int position) {
  if (!frame_ || menu != menu_base_ || position < 0 ||
      position >= static_cast<int>(kFrameMenu.size()))
    return 0;
  return menu_base_ + 1 + static_cast<Hmenu>(position);
}

std::uint32_t SimClient::GetMenuItemID(Hmenu menu, int position) {
  if (!frame_ || menu <= menu_base_) return kNoMenuItem;
  std::size_t sub = menu - menu_base_ - 1;
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
  const auto& active_list = tree_.Children(mdi_);
  Hwnd active = active_list.empty() ? 0 : active_list.front();
  if (sub == kMenuFile && pos == kFileExit) {
    RequestFrameClose();
  } else if (sub == kMenuWindow &&
             (pos == kWindowRemember || pos == kWindowRememberSize)) {
    // Later windows of the active window's kind open at its size.
    if (docs_.count(active))
      remembered_sizes_[docs_[active].kind] = WindowSize(active);
  } else if (sub == kMenuWindow && pos == kWindowForget) {
    if (docs_.count(active)) remembered_sizes_.erase(docs_[active].kind);
  } else if (sub == kMenuSignOff && pos == kSignOffItem) {
    SignOff();
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
  SimWindow* w = tree_.Get(hwnd);
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
      result = TreeMessage(*w, msg, wparam, &text, buffer_chars);
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
  SimWindow* w = tree_.Get(hwnd);
  if (!w) return 0;
  if (msg != win::kWmSetText) return Dispatch(hwnd, msg, wparam, 0);
  // The display is a rich edit: it takes a text set into it, and keeps
  // adding the room's lines after it.
  if (w->role == kRoleDisplay) {
    SetDisplayText(*w, std::string(text));
    return 1;
  }
  w->text = std::string(text);
  return 1;
}

void SimClient::SetDisplayText(SimWindow& w, std::string text) {
  display_lines_.clear();
  std::string_view rest = text;
  while (!rest.empty()) {
    size_t end = rest.find("\r\n");
    display_lines_.emplace_back(rest.substr(0, end));
    rest = end == std::string_view::npos ? std::string_view{}
                                         : rest.substr(end + 2);
  }
  w.text = std::move(text);
  display_sel_start_ = display_sel_end_ = 0;
}

bool SimClient::PostMessageA(Hwnd hwnd, unsigned msg, std::uintptr_t wparam,
                             std::intptr_t lparam) {
  if (!tree_.Exists(hwnd)) return false;
  Later(
      0,
      [this, hwnd, msg, wparam, lparam] {
        if (tree_.Exists(hwnd)) Dispatch(hwnd, msg, wparam, lparam);
      },
      false);
  return true;
}

std::intptr_t SimClient::Dispatch(Hwnd hwnd, unsigned msg,
                                  std::uintptr_t wparam, std::intptr_t lparam) {
  SimWindow* w = tree_.Get(hwnd);
  if (!w) return 0;
  const int role = w->role;
  Doc* doc = DocOf(hwnd);
  const bool is_menu = doc && doc->kind == Kind::kMenu;
  switch (msg) {
    case win::kWmGetTextLength:
      return static_cast<std::intptr_t>(w->text.size());
    case win::kWmClose:
      // Controls ignore it; document and top-level windows close.
      if (docs_.count(hwnd)) CloseDoc(hwnd);
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
        if (popup_) MenuResult(popup_->KeyDown(static_cast<int>(wparam)));
      } else if (wparam == win::kVkReturn && role == kRoleInput) {
        SendChatInput();
      } else if (wparam == win::kVkReturn && role == kRoleTree) {
        OpenSelectedMail(*w);
      } else if (wparam == win::kVkSpace && role == kRoleButton) {
        w->pressed = true;
      }
      return 0;
    case win::kWmKeyUp:
      if (wparam == win::kVkSpace && role == kRoleButton && w->pressed) {
        w->pressed = false;
        PressBoxButton(w->owner);
      }
      return 0;
    case win::kWmChar: {
      char c = static_cast<char>(wparam);
      if (is_menu) {
        if (popup_) MenuResult(popup_->Char(c));
      } else if (role == kRoleInput && c == '\r') {
        SendChatInput();
      } else if (role == kRoleKeyword && c == '\r') {
        // The keyword box is the frame's: a box held over the frame (a
        // full room's) lets nothing through until it is dismissed.
        if (!Blocked(frame_)) RunKeyword(w->text);
      } else if (role == kRoleInput || role == kRoleKeyword ||
                 role == kRoleEdit || role == kRoleBody) {
        TypeChar(*w, c);
      }
      return 0;
    }
    case win::kWmCommand:
      if (hwnd == frame_) RunFrameCommand(static_cast<std::uint32_t>(wparam));
      return 0;
    case win::kLbGetCount:
    case win::kLbGetTextLen:
    case win::kLbSetCurSel:
    case win::kLbGetItemData:
    case win::kLbGetCurSel:
      return TreeMessage(*w, msg, wparam, nullptr, 0);
    case win::kBmGetCheck:
      return role == kRoleCheck ? w->check : 0;
    case win::kBmSetCheck:
      if (role == kRoleCheck) w->check = wparam ? 1 : 0;
      return 0;
    case win::kEmSetSel:
      // The display's selection, in characters; -1 to the end selects all
      // from the start.
      if (role == kRoleDisplay) {
        const auto at = static_cast<std::intptr_t>(wparam);
        display_sel_start_ = at < 0 ? 0 : static_cast<std::size_t>(at);
        display_sel_end_ =
            lparam < 0 ? std::string::npos : static_cast<std::size_t>(lparam);
      }
      return 0;
    case win::kWmClear:
      // Deletes the display's selection.
      if (role == kRoleDisplay) {
        // Characters as the real display shows them: a malformed byte
        // is one.
        const std::size_t from = Utf8Offset(w->text, display_sel_start_);
        const std::size_t to =
            std::max(from, Utf8Offset(w->text, display_sel_end_));
        std::string text = w->text;
        text.erase(from, to - from);
        SetDisplayText(*w, std::move(text));
      }
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
  SimWindow* w = tree_.Get(hwnd);
  Doc* d = DocOf(hwnd);
  if (!w || !d) return;
  if (w->role == kRoleButton) {
    PressBoxButton(d->hwnd);
    return;
  }
  if (w->role == kRoleCheck) {
    w->check = !w->check;
    return;
  }
  if (w->role != kRoleIcon) return;
  // A window held by a modal box takes no clicks.
  if (Blocked(d->hwnd)) return;
  if (ClickLost()) return;
  const int n = w->tag;
  const Hwnd doc = d->hwnd;
  switch (d->kind) {
    case Kind::kFrame:
      if (n == kToolbarRead && signed_on_) {
        MarkBusy();
        Later(knobs_.latency, [this] { OpenOnlineMailbox(0); });
      } else if (n == aol::kToolbarWriteIcon) {
        MarkBusy();
        Later(knobs_.latency, [this] { OpenWriteMail(); });
      } else if (n == aol::kToolbarMailIcon) {
        OpenMailMenu();
      } else if (n == kToolbarGo && keyword_edit_) {
        RunKeyword(tree_.Get(keyword_edit_)->text);
      }
      break;
    case Kind::kChatRoom:
      if (n == 1) SendChatInput();
      break;
    case Kind::kIncoming:
      if (n == 1) {
        Hwnd t = tree_.NthChild(doc, aol::kTreeClass, 1);
        if (t) OpenSelectedMail(*tree_.Get(t));
      }
      break;
    case Kind::kOpenMail:
      if (n == aol::kOpenMailForwardIcon) {
        MarkBusy();
        Later(knobs_.latency, [this, doc] {
          auto it = docs_.find(doc);
          if (it != docs_.end()) OpenForward(it->second);
        });
      }
      break;
    case Kind::kForward:
      if (n == aol::kForwardSendNowIcon && d->filled) SendMail(*d, true);
      if (n == aol::kForwardSendLaterIcon && d->filled) SendMail(*d, false);
      break;
    case Kind::kWriteMail:
      if (n == aol::kWriteSendNowIcon && d->filled) SendMail(*d, true);
      if (n == aol::kWriteSendLaterIcon && d->filled) SendMail(*d, false);
      break;
    case Kind::kOnlineMailbox:
      if (n == aol::kMailboxDeleteIcon) DeleteTreeItem(*d, kTreeNew + d->tab);
      break;
    case Kind::kWaiting:
      if (n == aol::kWaitingDeleteIcon) DeleteTreeItem(*d, kTreeWaiting);
      if (n == 3) RunAutomaticAol();
      break;
    case Kind::kError:
      CloseDoc(doc);
      break;
    case Kind::kIm:
      // The address book icon comes first, then eight style icons after
      // the message field, then Send.
      if (n == aol::kImIconsBeforeText + aol::kImSendIcon) SendIm(*d);
      if (n == 12) CloseDoc(doc);
      break;
    case Kind::kSignOn:
      if (n == 2) BeginSignOn();
      break;
    case Kind::kSignOnModal:
    case Kind::kAutoAol:
      CloseDoc(doc);
      break;
    case Kind::kPreferences:
      MarkBusy();
      if (w->text == "Mail" || w->text == "General") {
        const bool mail = w->text == "Mail";
        Later(knobs_.latency, [this, mail] { OpenPreferencePage(mail); });
      }
      break;
    case Kind::kPreferencePage:
      if (n == 1) SavePreferencePage(doc);
      CloseDoc(doc);
      break;
    default:
      break;
  }
}

// --- the frame ---

void SimClient::BuildFrame() {
  ++starts_;
  pid_ = 0x5A4 + static_cast<std::uint32_t>(starts_) * 0x1C;
  memory_ =
      SimMemory(memory_base_ + static_cast<std::uint32_t>(starts_) * 0x10000);
  processes_.clear();
  menu_base_ = 0x0002A000 + static_cast<Hmenu>(starts_) * 0x10;
  frame_ = NewTopLevel(Kind::kFrame, aol::kFrameClass, "America Online");
  tree_.Get(frame_)->cx = knobs_.screen_width;
  tree_.Get(frame_)->cy = knobs_.screen_height;
  Hwnd strip = Add(frame_, aol::kToolbarFrameClass, "");
  toolbar_row_ = Add(strip, aol::kToolbarClass, "");
  AddIcons(toolbar_row_, kToolbarIcons);
  Hwnd combo = Add(toolbar_row_, aol::kComboClass, "");
  keyword_edit_ = Add(combo, "Edit", "", kRoleKeyword);
  AddIcons(toolbar_row_, {"Go"});
  mdi_ = Add(frame_, aol::kMdiClass, "");
}

void SimClient::DestroyClient() {
  ++epoch_;
  popup_.reset();
  popup_pending_ = false;
  std::vector<Hwnd> tops = tree_.Children(0);
  for (Hwnd h : tops) tree_.Destroy(h);
  signed_on_ = false;
  signing_on_ = false;
  close_pending_ = false;
  close_asks_ = 0;
  processes_.clear();
}

// --- the tool bar's mail menu ---

void SimClient::OpenMailMenu() {
  if (popup_ || popup_pending_) return;
  popup_pending_ = true;
  MarkBusy();
  Later(knobs_.latency, [this] {
    popup_pending_ = false;
    popup_ = std::make_unique<PopupMenu>(MailMenuItems());
    SyncMenuWindows();
  });
}

void SimClient::SyncMenuWindows() {
  std::size_t want = popup_ ? static_cast<std::size_t>(popup_->depth()) : 0;
  while (popup_windows_.size() > want) tree_.Destroy(popup_windows_.back());
  while (popup_windows_.size() < want)
    popup_windows_.push_back(
        NewTopLevel(Kind::kMenu, aol::kPopupMenuClass, ""));
  if (want == 0) popup_.reset();
}

void SimClient::MenuResult(PopupMenu::Result r) {
  if (r == PopupMenu::Result::kChosen) {
    int command = popup_->chosen();
    popup_.reset();
    SyncMenuWindows();
    RunMailCommand(command);
    return;
  }
  if (r == PopupMenu::Result::kClosed) popup_.reset();
  SyncMenuWindows();
}

void SimClient::RunMailCommand(int command) {
  std::function<void()> open;
  switch (command) {
    case kCmdReadMail:
    case kCmdOldMail:
    case kCmdSentMail:
      if (!signed_on_) return;
      open = [this, command] {
        OpenOnlineMailbox(command == kCmdReadMail  ? 0
                          : command == kCmdOldMail ? 1
                                                   : 2);
      };
      break;
    case kCmdWriteMail:
      open = [this] { OpenWriteMail(); };
      break;
    case kCmdWaiting:
      open = [this] { OpenWaiting(); };
      break;
    case kCmdIncoming:
      open = [this] { OpenIncoming(); };
      break;
    case kCmdAutoAol:
      open = [this] { RunAutomaticAol(); };
      break;
    default:
      return;
  }
  MarkBusy();
  Later(knobs_.latency, std::move(open));
}

}  // namespace quorvex
