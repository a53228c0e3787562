#include "model/menu.h"

#include <stdexcept>

namespace quorvex {

MenuEntry& MenuModel::Add(std::string name, std::string parent,
                          std::string caption) {
  auto [it, inserted] = entries_.emplace(
      name, MenuEntry{name, std::move(parent), std::move(caption)});
  if (!inserted) throw std::logic_error("menu entry twice: " + name);
  order_.push_back(std::move(name));
  return it->second;
}

const MenuEntry& MenuModel::Get(const std::string& name) const {
  auto it = entries_.find(name);
  if (it == entries_.end()) throw std::out_of_range("no menu entry " + name);
  return it->second;
}

MenuEntry& MenuModel::Mutable(const std::string& name) {
  auto it = entries_.find(name);
  if (it == entries_.end()) throw std::out_of_range("no menu entry " + name);
  return it->second;
}

void MenuModel::SetCaption(const std::string& name, std::string caption) {
  MenuEntry& e = Mutable(name);
  if (e.caption == caption) return;
  e.caption = std::move(caption);
  Notify(e);
}

void MenuModel::SetChecked(const std::string& name, bool checked) {
  MenuEntry& e = Mutable(name);
  if (e.checked == checked) return;
  e.checked = checked;
  Notify(e);
}

void MenuModel::SetEnabled(const std::string& name, bool enabled) {
  MenuEntry& e = Mutable(name);
  if (e.enabled == enabled) return;
  e.enabled = enabled;
  Notify(e);
}

std::vector<std::string> MenuModel::Children(const std::string& parent) const {
  std::vector<std::string> out;
  for (const auto& n : order_)
    if (entries_.at(n).parent == parent) out.push_back(n);
  return out;
}

}  // namespace quorvex
