#include "sim/sim_client_shell.h"

#include <algorithm>
#include <cstdio>

#include "ports/client_windows.h"

namespace quorvex {

namespace {

constexpr int kDefaultWidth = 480;
constexpr int kDefaultHeight = 360;

// The tool bar's icons, left to right: Write is the 2nd, the mail menu
// the 3rd; after them the keyword box and its Go icon.
const std::vector<const char*> kToolbarIcons = {
    "Read",   "Write",     "Mail Center", "Print",    "My Files",
    "My AOL", "Favorites", "Internet",    "Channels", "People",
    "Quotes", "Perks",     "Weather"};

}  // namespace

SimClientShell::SimClientShell(Host& host, SimWorld& world, std::uint64_t seed)
    : host(host), world(world), rng_(seed) {
  tree.SetDestroyHook([this](const SimWindow& w) { OnDestroyed(w); });
}

SimClientShell::~SimClientShell() { alive_.reset(); }

void SimClientShell::Later(double delay, std::function<void()> fn,
                           bool session_bound) {
  std::weak_ptr<int> alive = alive_;
  std::uint64_t epoch = epoch_;
  host.Schedule(delay, [this, alive, epoch, session_bound, fn = std::move(fn)] {
    if (alive.expired()) return;
    if (session_bound && epoch != epoch_) return;
    fn();
  });
}

void SimClientShell::MarkBusy() {
  busy_until_ = std::max(busy_until_, host.Clock() + knobs.busy);
}

bool SimClientShell::ClickLost() {
  if (knobs.lost_click_chance <= 0 || host.Clock() >= busy_until_) return false;
  double r = static_cast<double>(rng_() >> 11) * (1.0 / 9007199254740992.0);
  return r < knobs.lost_click_chance;
}

std::string SimClientShell::Today() const {
  CivilTime t = host.Now();
  char buf[16];
  std::snprintf(buf, sizeof buf, "%02d/%02d/%04d", t.month, t.day, t.year);
  return buf;
}

ClientWindow* SimClientShell::WindowOf(Hwnd hwnd) {
  const SimWindow* w = tree.Get(hwnd);
  if (!w) return nullptr;
  auto it = windows.find(w->owner);
  return it == windows.end() ? nullptr : &it->second;
}

ClientWindow* SimClientShell::FindWindowOfKind(SimWindowKind kind) {
  for (Hwnd parent : {mdi, Hwnd{0}}) {
    for (Hwnd h : tree.Children(parent)) {
      auto it = windows.find(h);
      if (it != windows.end() && it->second.kind == kind) return &it->second;
    }
  }
  return nullptr;
}

bool SimClientShell::IsWindowOfKind(Hwnd hwnd, SimWindowKind kind) const {
  auto it = windows.find(hwnd);
  return it != windows.end() && it->second.kind == kind;
}

Hwnd SimClientShell::NewDoc(SimWindowKind kind, std::string caption) {
  Hwnd h = tree.Create(mdi, aol::kChildClass, std::move(caption), true);
  if (!h) return 0;
  SimWindow* w = tree.Get(h);
  w->owner = h;
  auto size = remembered_sizes.find(kind);
  w->cx = size == remembered_sizes.end() ? kDefaultWidth : size->second.x;
  w->cy = size == remembered_sizes.end() ? kDefaultHeight : size->second.y;
  windows[h] = ClientWindow{kind, h};
  MarkBusy();
  return h;
}

Hwnd SimClientShell::NewTopLevel(SimWindowKind kind, const char* class_name,
                                 std::string caption) {
  Hwnd h = tree.Create(0, class_name, std::move(caption), true);
  windows[h] = ClientWindow{kind, h};
  MarkBusy();
  return h;
}

Hwnd SimClientShell::Add(Hwnd parent, const char* class_name, std::string text,
                         int role, int tag) {
  Hwnd h = tree.Create(parent, class_name, std::move(text));
  if (SimWindow* w = tree.Get(h)) {
    w->role = role;
    w->tag = tag;
  }
  return h;
}

void SimClientShell::AddIcons(Hwnd parent,
                              const std::vector<const char*>& texts,
                              bool with_text) {
  int n = 0;
  for (Hwnd h : tree.Children(parent))
    if (tree.Get(h)->role == kRoleIcon) ++n;
  for (const char* t : texts)
    Add(parent, aol::kIconClass, with_text ? t : "", kRoleIcon, ++n);
}

Hwnd SimClientShell::Icon(Hwnd doc, int n) const {
  return tree.NthChild(doc, aol::kIconClass, n);
}

bool SimClientShell::Blocked(Hwnd doc) const {
  auto it = windows.find(doc);
  return it != windows.end() && it->second.blocker != 0 &&
         tree.Exists(it->second.blocker);
}

Hwnd SimClientShell::ShowBox(const std::string& text, Hwnd holds) {
  Hwnd box =
      NewTopLevel(SimWindowKind::kBox, aol::kDialogClass, "America Online");
  Add(box, "Static", text);
  Add(box, "Button", "OK", kRoleButton);
  auto held = windows.find(holds);
  if (held != windows.end()) held->second.blocker = box;
  return box;
}

Hwnd SimClientShell::ShowNote(const std::string& caption,
                              const std::string& text, Hwnd holds) {
  Hwnd note = NewTopLevel(SimWindowKind::kBox, aol::kModalClass, caption);
  Add(note, aol::kViewClass, text);
  Add(note, aol::kButtonClass, "OK", kRoleButton);
  auto held = windows.find(holds);
  if (held != windows.end()) held->second.blocker = note;
  return note;
}

void SimClientShell::PressBoxButton(Hwnd box) {
  if (IsWindowOfKind(box, SimWindowKind::kBox)) tree.Destroy(box);
}

void SimClientShell::BuildFrame() {
  ++starts;
  pid = 0x5A4 + static_cast<std::uint32_t>(starts) * 0x1C;
  memory =
      SimMemory(memory_base + static_cast<std::uint32_t>(starts) * 0x10000);
  processes.clear();
  menu_base = 0x0002A000 + static_cast<Hmenu>(starts) * 0x10;
  frame =
      NewTopLevel(SimWindowKind::kFrame, aol::kFrameClass, "America Online");
  tree.Get(frame)->cx = knobs.screen_width;
  tree.Get(frame)->cy = knobs.screen_height;
  Hwnd strip = Add(frame, aol::kToolbarFrameClass, "");
  toolbar_row = Add(strip, aol::kToolbarClass, "");
  AddIcons(toolbar_row, kToolbarIcons);
  Hwnd combo = Add(toolbar_row, aol::kComboClass, "");
  keyword_edit = Add(combo, "Edit", "", kRoleKeyword);
  AddIcons(toolbar_row, {"Go"});
  mdi = Add(frame, aol::kMdiClass, "");
}

void SimClientShell::DestroyWindows() {
  std::vector<Hwnd> tops = tree.Children(0);
  for (Hwnd h : tops) tree.Destroy(h);
}

void SimClientShell::EndSession() {
  ++epoch_;
  for (const auto& fn : session_end_) fn();
}

void SimClientShell::OnDestroyed(const SimWindow& w) {
  auto it = windows.find(w.hwnd);
  if (it != windows.end()) {
    windows.erase(it);
    // Whatever it held takes input again.
    for (auto& [hwnd, held] : windows)
      if (held.blocker == w.hwnd) held.blocker = 0;
  }
  for (const auto& fn : window_gone_) fn(w);
  if (w.hwnd == frame) frame = mdi = toolbar_row = keyword_edit = 0;
}

}  // namespace quorvex
