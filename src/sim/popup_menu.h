// A pop-up menu driven by the keyboard, as the platform's menu loop does:
// Up and Down move the highlight (from none, Up takes the last item),
// Right or Return opens a submenu, Return picks, a letter picks the item
// whose caption underlines it ("&Sent Mail": s), Escape closes a level.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quorvex {

struct MenuItem {
  std::string caption;  // "&" marks the underlined letter
  int command = 0;
  std::vector<MenuItem> submenu;
};

class PopupMenu {
 public:
  enum class Result { kNone, kChosen, kClosed };

  explicit PopupMenu(std::vector<MenuItem> items);

  Result KeyDown(int vk);
  Result Char(char c);

  // The chosen item's command, after kChosen.
  int chosen() const { return chosen_; }
  // Open levels: 1 is the menu itself, 2 a submenu of it, ...
  int depth() const { return static_cast<int>(levels_.size()); }
  // The highlighted item of a level (0-based), -1 for none.
  int selected(int level) const { return levels_[level].selected; }
  const std::vector<MenuItem>& items() const { return items_; }

  static char Mnemonic(std::string_view caption);

 private:
  struct Level {
    const std::vector<MenuItem>* items;
    int selected;
  };
  Result Activate(int index);

  std::vector<MenuItem> items_;
  std::vector<Level> levels_;
  int chosen_ = 0;
};

}  // namespace quorvex
