// The simulated client's windows: handles, classes, texts, parents and the
// sibling order (Z order), with the lookups of user32 (FindWindowExA,
// GetWindow). Behaviour lives in SimClient; this is the tree alone.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "ports/window_api.h"

namespace quorvex {

struct SimWindow {
  Hwnd hwnd = 0;
  Hwnd parent = 0;  // 0: a top-level window
  std::string class_name;
  std::string text;            // caption, or the control's text
  std::vector<Hwnd> children;  // first = top of the Z order
  bool visible = true;
  bool minimized = false;
  int x = 0, y = 0, cx = 0, cy = 0;
  // What the client uses the window for (SimClient's own numbering) and a
  // role-specific number (an icon's position, ...).
  int role = 0;
  int tag = 0;
  // The document window (or top-level window) a control belongs to.
  Hwnd owner = 0;
  bool pressed = false;  // a mouse button or the space key went down on it
  int selection = -1;    // a list's selected item
  int check = 0;         // a check box's state
};

class WindowTree {
 public:
  // Called for each window just before it is removed (children first).
  using DestroyHook = std::function<void(const SimWindow&)>;

  WindowTree();

  // Makes a window. `on_top` puts it first among its siblings (a new
  // document or top-level window); otherwise it goes last (a control).
  Hwnd Create(Hwnd parent, std::string class_name, std::string text,
              bool on_top = false);
  // Removes a window and everything under it. Unknown handles are ignored.
  void Destroy(Hwnd hwnd);
  void SetDestroyHook(DestroyHook hook) { on_destroy_ = std::move(hook); }

  SimWindow* Get(Hwnd hwnd);
  const SimWindow* Get(Hwnd hwnd) const;
  bool Exists(Hwnd hwnd) const { return windows_.count(hwnd) > 0; }
  // The window and all its ancestors are shown.
  bool IsVisible(Hwnd hwnd) const;

  // Children of `parent` (0: the top-level windows), top first.
  const std::vector<Hwnd>& Children(Hwnd parent) const;
  // FindWindowExA: the first child of `parent` after `after` (0: from the
  // first) whose class matches ignoring case and whose text matches
  // exactly; a null class or caption matches anything.
  Hwnd Find(Hwnd parent, Hwnd after, const char* class_name,
            const char* caption) const;
  // The n-th (1-based) child of a class, or 0.
  Hwnd NthChild(Hwnd parent, std::string_view class_name, int n) const;
  // GetWindow with GW_HWNDFIRST/LAST/NEXT/PREV and GW_CHILD.
  Hwnd Walk(Hwnd hwnd, unsigned cmd) const;
  // Moves a window to the top of its siblings.
  void BringToTop(Hwnd hwnd);

  int size() const { return static_cast<int>(windows_.size()); }

 private:
  std::vector<Hwnd>& SiblingsOf(const SimWindow& w);
  const std::vector<Hwnd>& SiblingsOf(const SimWindow& w) const;
  void DestroyOne(Hwnd hwnd);

  std::unordered_map<Hwnd, SimWindow> windows_;
  std::vector<Hwnd> top_;
  // Handles are never reused, so a window made anew has a new handle.
  Hwnd next_handle_;
  DestroyHook on_destroy_;
};

}  // namespace quorvex
