#include "sim/window_tree.h"

#include <algorithm>

#include "model/text_util.h"

namespace quorvex {

namespace {
const std::vector<Hwnd> kNoChildren;
// Handles look like the platform's: above 16 bits, never reused.
constexpr Hwnd kFirstHandle = 0x000100B6;
constexpr Hwnd kHandleStep = 0x16;
}  // namespace

WindowTree::WindowTree() : next_handle_(kFirstHandle) {}

Hwnd WindowTree::Create(Hwnd parent, std::string class_name, std::string text,
                        bool on_top) {
  if (parent != 0 && !Exists(parent)) return 0;
  Hwnd h = next_handle_;
  next_handle_ += kHandleStep;
  SimWindow w;
  w.hwnd = h;
  w.parent = parent;
  w.class_name = std::move(class_name);
  w.text = std::move(text);
  w.owner = parent == 0 ? h : Get(parent)->owner;
  auto& siblings = SiblingsOf(w);
  if (on_top)
    siblings.insert(siblings.begin(), h);
  else
    siblings.push_back(h);
  windows_.emplace(h, std::move(w));
  return h;
}

void WindowTree::Destroy(Hwnd hwnd) {
  SimWindow* w = Get(hwnd);
  if (!w) return;
  auto& siblings = SiblingsOf(*w);
  siblings.erase(std::remove(siblings.begin(), siblings.end(), hwnd),
                 siblings.end());
  DestroyOne(hwnd);
}

void WindowTree::DestroyOne(Hwnd hwnd) {
  auto it = windows_.find(hwnd);
  if (it == windows_.end()) return;
  // Children go first; copy, since hooks may look at the tree.
  std::vector<Hwnd> kids = it->second.children;
  for (Hwnd c : kids) DestroyOne(c);
  it = windows_.find(hwnd);
  if (it == windows_.end()) return;
  if (on_destroy_) on_destroy_(it->second);
  windows_.erase(hwnd);
}

SimWindow* WindowTree::Get(Hwnd hwnd) {
  auto it = windows_.find(hwnd);
  return it == windows_.end() ? nullptr : &it->second;
}

const SimWindow* WindowTree::Get(Hwnd hwnd) const {
  auto it = windows_.find(hwnd);
  return it == windows_.end() ? nullptr : &it->second;
}

bool WindowTree::IsVisible(Hwnd hwnd) const {
  const SimWindow* w = Get(hwnd);
  while (w) {
    if (!w->visible) return false;
    if (w->parent == 0) return true;
    w = Get(w->parent);
  }
  return false;
}

const std::vector<Hwnd>& WindowTree::Children(Hwnd parent) const {
  if (parent == 0) return top_;
  const SimWindow* w = Get(parent);
  return w ? w->children : kNoChildren;
}

std::vector<Hwnd>& WindowTree::SiblingsOf(const SimWindow& w) {
  return w.parent == 0 ? top_ : Get(w.parent)->children;
}

const std::vector<Hwnd>& WindowTree::SiblingsOf(const SimWindow& w) const {
  return w.parent == 0 ? top_ : Get(w.parent)->children;
}

Hwnd WindowTree::Find(Hwnd parent, Hwnd after, const char* class_name,
                      const char* caption) const {
  if (parent != 0 && !Exists(parent)) return 0;
  const auto& kids = Children(parent);
  auto it = kids.begin();
  if (after != 0) {
    it = std::find(kids.begin(), kids.end(), after);
    // A window that is not a child of `parent` matches nothing.
    if (it == kids.end()) return 0;
    ++it;
  }
  for (; it != kids.end(); ++it) {
    const SimWindow& w = *Get(*it);
    if (class_name && !EqualsIgnoreCase(w.class_name, class_name)) continue;
    if (caption && w.text != caption) continue;
    return w.hwnd;
  }
  return 0;
}

Hwnd WindowTree::NthChild(Hwnd parent, std::string_view class_name,
                          int n) const {
  std::string cls(class_name);
  Hwnd h = 0;
  for (int i = 0; i < n; ++i) {
    h = Find(parent, h, cls.c_str(), nullptr);
    if (h == 0) return 0;
  }
  return h;
}

Hwnd WindowTree::Walk(Hwnd hwnd, unsigned cmd) const {
  const SimWindow* w = Get(hwnd);
  if (!w) return 0;
  if (cmd == win::kGwChild)
    return w->children.empty() ? 0 : w->children.front();
  const auto& sib = SiblingsOf(*w);
  auto it = std::find(sib.begin(), sib.end(), hwnd);
  switch (cmd) {
    case 0:  // GW_HWNDFIRST
      return sib.front();
    case 1:  // GW_HWNDLAST
      return sib.back();
    case win::kGwHwndNext:
      return (it + 1) == sib.end() ? 0 : *(it + 1);
    case 3:  // GW_HWNDPREV
      return it == sib.begin() ? 0 : *(it - 1);
    case 4:  // GW_OWNER: the client's windows have none
    default:
      return 0;
  }
}

void WindowTree::BringToTop(Hwnd hwnd) {
  SimWindow* w = Get(hwnd);
  if (!w) return;
  auto& sib = SiblingsOf(*w);
  auto it = std::find(sib.begin(), sib.end(), hwnd);
  std::rotate(sib.begin(), it, it + 1);
}

}  // namespace quorvex
