#include "mirror.h"

#include <cstring>
#include <set>
#include <vector>

#include "ports/client_windows.h"
#include "win32/code_page.h"

namespace quorvex::standin {

namespace {

Mirror* g_mirror = nullptr;

// Where the simulated client's heap may lie and how far it may grow: the
// people list's records must lie below 4 GB, as in the 32-bit client. The
// first free one of these fixed places is taken.
constexpr std::uintptr_t kHeapBases[] = {0x00A30000, 0x10000000, 0x20000000,
                                         0x30000000, 0x50000000, 0x70000000};
constexpr std::size_t kHeapSize = 0x01000000;

// Messages another process may send or post that the client answers.
bool Forwarded(UINT msg) {
  switch (msg) {
    case WM_DESTROY:
    case WM_SETTEXT:
    case WM_GETTEXT:
    case WM_GETTEXTLENGTH:
    case WM_CLOSE:
    case EM_LINEINDEX:
    case EM_LINELENGTH:
    case EM_GETLINE:
    case EM_SETSEL:
    case WM_CLEAR:
    case WM_KEYDOWN:
    case WM_KEYUP:
    case WM_CHAR:
    case WM_COMMAND:
    case LB_SETCURSEL:
    case LB_GETTEXT:
    case LB_GETTEXTLEN:
    case LB_GETCOUNT:
    case LB_GETITEMDATA:
    case LB_GETCURSEL:
    case BM_GETCHECK:
    case BM_SETCHECK:
    case WM_LBUTTONDOWN:
    case WM_LBUTTONUP:
      return true;
    default:
      return false;
  }
}

constexpr std::size_t kWhole = 1 << 20;

bool IsModalClass(const std::string& class_name) {
  return class_name == aol::kDialogClass || class_name == aol::kPopupMenuClass;
}

// A callback of the system's own calling convention (a lambda has the
// C++ one, which differs in a 32-bit program).
BOOL CALLBACK FindMessageBox(HWND h, LPARAM out) {
  wchar_t cls[16];
  if (::GetClassNameW(h, cls, 16) && std::wstring(cls) == L"#32770") {
    *reinterpret_cast<HWND*>(out) = h;
    return FALSE;
  }
  return TRUE;
}

// The message box this thread shows, if any.
HWND OwnMessageBox() {
  HWND found = nullptr;
  ::EnumThreadWindows(::GetCurrentThreadId(), FindMessageBox,
                      reinterpret_cast<LPARAM>(&found));
  return found;
}

// Builds the real menu of `items`; `paths[id]` is where each command id's
// item lies (ids from 1: an id of 0 is no choice).
HMENU BuildMenu(const std::vector<MenuItem>& items, std::vector<int> at,
                std::vector<std::vector<int>>& paths) {
  HMENU menu = ::CreatePopupMenu();
  for (std::size_t i = 0; i < items.size(); ++i) {
    std::vector<int> here = at;
    here.push_back(static_cast<int>(i));
    const std::wstring caption = win32::Utf8ToWide(items[i].caption);
    if (!items[i].submenu.empty()) {
      HMENU sub = BuildMenu(items[i].submenu, here, paths);
      ::AppendMenuW(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(sub),
                    caption.c_str());
    } else {
      ::AppendMenuW(menu, MF_STRING, paths.size(), caption.c_str());
      paths.push_back(here);
    }
  }
  return menu;
}

void CopyOut(const std::string& utf8, wchar_t* buffer, std::size_t chars,
             LRESULT* result) {
  const std::wstring w = win32::Utf8ToWide(utf8);
  if (!buffer || chars == 0) {
    *result = 0;
    return;
  }
  const std::size_t n = std::min(w.size(), chars - 1);
  std::memcpy(buffer, w.data(), n * sizeof(wchar_t));
  buffer[n] = 0;
  *result = static_cast<LRESULT>(n);
}

}  // namespace

Mirror::Mirror(SimClient& sim, Host& host) : sim_(sim), host_(host) {
  g_mirror = this;
  for (std::uintptr_t base : kHeapBases) {
    memory_ = ::VirtualAlloc(reinterpret_cast<void*>(base), kHeapSize,
                             MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
    if (memory_) {
      heap_base_ = base;
      sim_.SetMemoryBase(static_cast<std::uint32_t>(base) + 0x1000);
      break;
    }
  }
}

Mirror::~Mirror() {
  own_destroy_ = true;
  for (auto& [sim, real] : reals_)
    if (real.hwnd && !::GetParent(real.hwnd)) ::DestroyWindow(real.hwnd);
  if (memory_) ::VirtualFree(memory_, 0, MEM_RELEASE);
  g_mirror = nullptr;
}

HWND Mirror::RealOf(Hwnd sim) const {
  auto it = reals_.find(sim);
  return it == reals_.end() ? nullptr : it->second.hwnd;
}

HWND Mirror::Create(const SimWindow& w, HWND parent) {
  const std::wstring cls = win32::Utf8ToWide(w.class_name);
  const std::wstring text = win32::Utf8ToWide(w.text);
  HINSTANCE inst = ::GetModuleHandleW(nullptr);
  WNDCLASSW wc{};
  const bool known = ::GetClassInfoW(inst, cls.c_str(), &wc) ||
                     ::GetClassInfoW(nullptr, cls.c_str(), &wc);
  if (!known) {
    wc = WNDCLASSW{};
    wc.lpfnWndProc = &Mirror::Proc;
    wc.hInstance = inst;
    wc.lpszClassName = cls.c_str();
    ::RegisterClassW(&wc);
  }
  DWORD style = parent ? WS_CHILD : WS_OVERLAPPEDWINDOW;
  if (w.class_name == "#32768") style = WS_POPUP;
  if (w.class_name == "Edit") style |= ES_AUTOHSCROLL;
  // The MDI client class wants to know where its window menu is.
  CLIENTCREATESTRUCT ccs{nullptr, 0xFF00};
  void* param = w.class_name == "MDIClient" ? &ccs : nullptr;
  HWND h = ::CreateWindowExW(0, cls.c_str(), text.c_str(), style, 0, 0, 200, 20,
                             parent, nullptr, inst, param);
  if (!h) return nullptr;
  // Windows of the platform's own classes answer through us too.
  const auto proc =
      reinterpret_cast<WNDPROC>(::GetWindowLongPtrW(h, GWLP_WNDPROC));
  if (proc != &Mirror::Proc) {
    original_[h] = proc;
    ::SetWindowLongPtrW(h, GWLP_WNDPROC,
                        reinterpret_cast<LONG_PTR>(&Mirror::Proc));
  }
  sims_[h] = w.hwnd;
  return h;
}

void Mirror::Sync() {
  if (syncing_) return;
  syncing_ = true;
  // Every window's place is checked after a sync that made or moved
  // windows, or after a window was moved from outside.
  checking_ = !order_known_;
  order_known_ = true;
  SyncChildren(0, nullptr);
  // Windows the client no longer has.
  const WindowTree& tree = sim_.tree();
  std::vector<Hwnd> gone;
  for (const auto& [sim, real] : reals_)
    if (!tree.Exists(sim)) gone.push_back(sim);
  own_destroy_ = true;
  for (Hwnd sim : gone) {
    auto it = reals_.find(sim);
    if (it == reals_.end()) continue;
    HWND h = it->second.hwnd;
    reals_.erase(it);
    if (h && ::IsWindow(h)) ::DestroyWindow(h);
  }
  own_destroy_ = false;
  SyncMemory();
  SyncModals();
  syncing_ = false;
}

void Mirror::SyncChildren(Hwnd parent, HWND real_parent) {
  const WindowTree& tree = sim_.tree();
  HWND previous = nullptr;
  for (Hwnd child : tree.Children(parent)) {
    const SimWindow* w = tree.Get(child);
    if (!w) continue;
    // Boxes and pop-up menus are the platform's (SyncModals).
    if (!parent && IsModalClass(w->class_name)) continue;
    Real& r = reals_[child];
    if (!r.hwnd || !::IsWindow(r.hwnd)) {
      OrderChanged();
      r.hwnd = Create(*w, real_parent);
      r.text = w->text;
      r.visible = !w->visible;  // forces the first ShowWindow
      r.above = r.hwnd;         // and a look at its place
      if (!r.hwnd) continue;
    }
    if (r.text != w->text) {
      r.text = w->text;
      const std::wstring t = win32::Utf8ToWide(w->text);
      ::DefWindowProcW(r.hwnd, WM_SETTEXT, 0,
                       reinterpret_cast<LPARAM>(t.c_str()));
    }
    if (r.visible != w->visible) {
      r.visible = w->visible;
      ::ShowWindow(r.hwnd, w->visible ? SW_SHOWNA : SW_HIDE);
    }
    // Sibling order: each child right after the one before it. Asking the
    // system where a window stands is a round trip to the window server
    // under Wine, and a sync follows every message the program sends (two
    // a mail title): it is asked only when the client's order changed
    // here or the real order may have changed (see order_known_).
    if (real_parent && (checking_ || r.above != previous)) {
      if (::GetWindow(r.hwnd, GW_HWNDPREV) != previous) {
        ::SetWindowPos(r.hwnd, previous ? previous : HWND_TOP, 0, 0, 0, 0,
                       SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
        OrderChanged();
      }
      r.above = previous;
    }
    previous = r.hwnd;
    if (w->class_name == "AOL Frame25") SyncMenu(child, r.hwnd);
    SyncChildren(child, r.hwnd);
  }
}

void Mirror::SyncMenu(Hwnd frame, HWND real) {
  if (menu_owner_ == real && ::GetMenu(real)) return;
  menu_owner_ = real;
  const Hmenu base = sim_.GetMenu(frame);
  if (!base) return;
  HMENU bar = ::CreateMenu();
  for (int i = 0;; ++i) {
    const Hmenu sub = sim_.GetSubMenu(base, i);
    if (!sub) break;
    HMENU popup = ::CreatePopupMenu();
    for (int j = 0; j < 64; ++j) {
      const std::uint32_t id = sim_.GetMenuItemID(sub, j);
      if (id == 0xFFFFFFFFu) break;
      ::AppendMenuW(popup, MF_STRING, id, L"item");
    }
    ::AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(popup), L"menu");
  }
  ::SetMenu(real, bar);
}

void Mirror::SyncMemory() {
  if (!memory_) return;
  auto* base = static_cast<std::uint8_t*>(memory_);
  const auto& blocks = sim_.memory().mapped();
  // Freed blocks read as zeros.
  for (const auto& [at, size] : written_)
    if (!blocks.count(at) && at >= heap_base_ &&
        at + size <= heap_base_ + kHeapSize)
      std::memset(base + (at - heap_base_), 0, size);
  written_.clear();
  for (const auto& [at, bytes] : blocks) {
    if (at < heap_base_ || at + bytes.size() > heap_base_ + kHeapSize) continue;
    std::memcpy(base + (at - heap_base_), bytes.data(), bytes.size());
    written_[at] = bytes.size();
  }
}

void Mirror::SyncModals() {
  const WindowTree& tree = sim_.tree();
  for (Hwnd top : tree.Children(0)) {
    const SimWindow* w = tree.Get(top);
    if (w && w->class_name == aol::kDialogClass &&
        seen_boxes_.insert(top).second)
      boxes_.push_back(top);
  }
  std::erase_if(boxes_, [&](Hwnd b) { return !tree.Exists(b); });
  std::erase_if(seen_boxes_, [&](Hwnd b) { return !tree.Exists(b); });
  // The client took down what is showing (it signed off, say).
  if (box_ && !tree.Exists(box_))
    if (HWND real = OwnMessageBox()) ::EndDialog(real, IDCANCEL);
  if (menu_ && !sim_.popup()) ::EndMenu();
  if (modal_) return;
  if (sim_.popup() && !menu_) {
    modal_ = true;
    host_.Schedule(0, [this] { TrackMenu(); });
  } else if (!boxes_.empty()) {
    modal_ = true;
    const Hwnd next = boxes_.front();
    boxes_.pop_front();
    host_.Schedule(0, [this, next] { ShowBox(next); });
  }
}

void Mirror::ShowBox(Hwnd sim_box) {
  const WindowTree& tree = sim_.tree();
  if (const SimWindow* w = tree.Get(sim_box)) {
    const SimWindow* text = tree.Get(tree.Find(sim_box, 0, "Static", nullptr));
    const std::wstring caption = win32::Utf8ToWide(w->text);
    const std::wstring body = win32::Utf8ToWide(text ? text->text : "");
    box_ = sim_box;
    ::MessageBoxW(nullptr, body.c_str(), caption.c_str(), MB_OK);
    box_ = 0;
    // Pressed or closed, the client's box goes the same way.
    if (tree.Exists(sim_box)) sim_.SendMessageA(sim_box, win::kWmClose, 0, 0);
  }
  modal_ = false;
  Sync();
}

void Mirror::TrackMenu() {
  const PopupMenu* popup = sim_.popup();
  const HWND owner = RealOf(sim_.FindWindowA(aol::kFrameClass, nullptr));
  if (popup && owner) {
    std::vector<std::vector<int>> paths(1);
    HMENU menu = BuildMenu(popup->items(), {}, paths);
    menu_ = true;
    const int id = static_cast<int>(
        ::TrackPopupMenu(menu, TPM_RETURNCMD | TPM_NONOTIFY | TPM_LEFTALIGN, 40,
                         40, 0, owner, nullptr));
    menu_ = false;
    ::DestroyMenu(menu);
    ChooseInSimMenu(id > 0 && id < static_cast<int>(paths.size())
                        ? paths[id]
                        : std::vector<int>{});
  }
  modal_ = false;
  Sync();
}

void Mirror::ChooseInSimMenu(const std::vector<int>& path) {
  auto key = [this](int vk) {
    sim_.SendMessageA(sim_.FindWindowA(aol::kPopupMenuClass, nullptr),
                      win::kWmKeyDown, static_cast<std::uintptr_t>(vk), 0);
  };
  if (path.empty()) {
    for (int i = 0; i < 8 && sim_.popup(); ++i) key(VK_ESCAPE);
    return;
  }
  for (std::size_t level = 0; level < path.size() && sim_.popup(); ++level) {
    for (int i = 0;
         i < 64 && sim_.popup()->depth() == int(level) + 1 &&
         sim_.popup()->selected(static_cast<int>(level)) != path[level];
         ++i)
      key(VK_DOWN);
    key(VK_RETURN);
  }
}

LRESULT CALLBACK Mirror::Proc(HWND hwnd, UINT msg, WPARAM wparam,
                              LPARAM lparam) {
  Mirror* m = g_mirror;
  WNDPROC original = nullptr;
  Hwnd sim = 0;
  if (m) {
    if (auto it = m->original_.find(hwnd); it != m->original_.end())
      original = it->second;
    if (auto it = m->sims_.find(hwnd); it != m->sims_.end()) sim = it->second;
  }
  // A window moved among its siblings, by this process or another: the
  // next sync checks every window's place.
  if (msg == WM_WINDOWPOSCHANGED && m &&
      !(reinterpret_cast<const WINDOWPOS*>(lparam)->flags & SWP_NOZORDER))
    m->OrderChanged();
  if (msg == WM_NCDESTROY && m) {
    m->OrderChanged();
    m->sims_.erase(hwnd);
    m->original_.erase(hwnd);
  }
  if (m && sim && Forwarded(msg) && !(msg == WM_DESTROY && m->own_destroy_)) {
    bool handled = false;
    const LRESULT r = m->Handle(hwnd, sim, msg, wparam, lparam, &handled);
    if (handled) {
      m->Sync();
      if (msg != WM_DESTROY) return r;
    }
  }
  return original ? ::CallWindowProcW(original, hwnd, msg, wparam, lparam)
                  : ::DefWindowProcW(hwnd, msg, wparam, lparam);
}

LRESULT Mirror::Handle(HWND /*hwnd*/, Hwnd sim, UINT msg, WPARAM wparam,
                       LPARAM lparam, bool* handled) {
  *handled = true;
  // Only what another process sends (or anyone posts) reaches the client;
  // the platform's own messages to the window stay the platform's.
  const bool sent = ::InSendMessage();
  if (!sent) {
    if (msg == WM_DESTROY || msg == WM_SETTEXT || msg == WM_GETTEXT ||
        msg == WM_GETTEXTLENGTH) {
      *handled = false;
      return 0;
    }
    sim_.PostMessageA(sim, msg, wparam, lparam);
    return 0;
  }
  LRESULT r = 0;
  std::string text;
  switch (msg) {
    case WM_SETTEXT:
      return sim_.SendMessageSetText(
          sim, msg, wparam,
          lparam ? win32::WideToUtf8(reinterpret_cast<const wchar_t*>(lparam))
                 : std::string());
    // The simulated client counts its texts in UTF-8 bytes, a real
    // window in UTF-16 units: ask for the whole text and cut it here.
    case WM_GETTEXTLENGTH:
      sim_.SendMessageGetText(sim, WM_GETTEXT, kWhole, &text, kWhole);
      return static_cast<LRESULT>(win32::Utf8ToWide(text).size());
    case WM_GETTEXT:
      sim_.SendMessageGetText(sim, msg, kWhole, &text, kWhole);
      CopyOut(text, reinterpret_cast<wchar_t*>(lparam), wparam, &r);
      return r;
    case LB_GETTEXTLEN:
    case LB_GETTEXT: {
      const auto len = sim_.SendMessageA(sim, LB_GETTEXTLEN, wparam, 0);
      if (len < 0) return LB_ERR;
      sim_.SendMessageGetText(sim, LB_GETTEXT, wparam, &text,
                              static_cast<std::size_t>(len) + 1);
      const std::size_t wide = win32::Utf8ToWide(text).size();
      if (msg == LB_GETTEXTLEN) return static_cast<LRESULT>(wide);
      CopyOut(text, reinterpret_cast<wchar_t*>(lparam), wide + 1, &r);
      return r;
    }
    case EM_GETLINE: {
      auto* buf = reinterpret_cast<wchar_t*>(lparam);
      const std::size_t size = buf ? *reinterpret_cast<WORD*>(buf) : 0;
      sim_.SendMessageGetText(sim, msg, wparam, &text, kWhole);
      const std::wstring w = win32::Utf8ToWide(text);
      const std::size_t n = std::min(w.size(), size);
      if (buf && n) std::memcpy(buf, w.data(), n * sizeof(wchar_t));
      return static_cast<LRESULT>(n);
    }
    default:
      return sim_.SendMessageA(sim, msg, wparam, lparam);
  }
}

}  // namespace quorvex::standin
