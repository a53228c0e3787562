#include "sim/popup_menu.h"

#include <cctype>

#include "ports/window_api.h"

namespace quorvex {

namespace {
constexpr int kVkLeft = 37;
constexpr int kVkDown = 40;
}  // namespace

PopupMenu::PopupMenu(std::vector<MenuItem> items) : items_(std::move(items)) {
  levels_.push_back({&items_, -1});
}

char PopupMenu::Mnemonic(std::string_view caption) {
  for (std::size_t i = 0; i + 1 < caption.size(); ++i) {
    if (caption[i] != '&') continue;
    if (caption[i + 1] == '&') {
      ++i;
      continue;
    }
    return static_cast<char>(
        std::tolower(static_cast<unsigned char>(caption[i + 1])));
  }
  return 0;
}

PopupMenu::Result PopupMenu::Activate(int index) {
  Level& level = levels_.back();
  const MenuItem& item = (*level.items)[index];
  level.selected = index;
  if (!item.submenu.empty()) {
    levels_.push_back({&item.submenu, 0});
    return Result::kNone;
  }
  chosen_ = item.command;
  levels_.clear();
  return Result::kChosen;
}

PopupMenu::Result PopupMenu::KeyDown(int vk) {
  if (levels_.empty()) return Result::kNone;
  Level& level = levels_.back();
  const int n = static_cast<int>(level.items->size());
  switch (vk) {
    case win::kVkUp:
      if (n) level.selected = level.selected <= 0 ? n - 1 : level.selected - 1;
      return Result::kNone;
    case kVkDown:
      if (n) level.selected = (level.selected + 1) % n;
      return Result::kNone;
    case win::kVkRight:
      if (level.selected >= 0 &&
          !(*level.items)[level.selected].submenu.empty())
        return Activate(level.selected);
      return Result::kNone;
    case kVkLeft:
      if (levels_.size() > 1) levels_.pop_back();
      return Result::kNone;
    case win::kVkReturn:
      if (level.selected >= 0) return Activate(level.selected);
      return Result::kNone;
    case win::kVkEscape:
      levels_.pop_back();
      return levels_.empty() ? Result::kClosed : Result::kNone;
    default:
      return Result::kNone;
  }
}

PopupMenu::Result PopupMenu::Char(char c) {
  if (levels_.empty()) return Result::kNone;
  char want = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  const auto& items = *levels_.back().items;
  for (int i = 0; i < static_cast<int>(items.size()); ++i)
    if (Mnemonic(items[i].caption) == want) return Activate(i);
  return Result::kNone;
}

}  // namespace quorvex
