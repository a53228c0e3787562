// The menu tree as data: every entry has a name, a caption, a check mark
// and an enabled state. Items of a preset group are named like
// "mnuMSpeed(5)" (1-based, the way scenarios and the transcript name them).
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "model/observers.h"

namespace quorvex {

struct MenuEntry {
  std::string name;    // "mnuHandle" or "mnuMSpeed(5)"
  std::string parent;  // "" for a top-level menu
  std::string caption;
  bool checked = false;
  bool enabled = true;
};

class MenuModel {
 public:
  using Observer = std::function<void(const MenuEntry&)>;

  // Adds an entry at the end of its parent's children.
  MenuEntry& Add(std::string name, std::string parent, std::string caption);
  bool Has(const std::string& name) const { return entries_.count(name) > 0; }
  // The entry; throws std::out_of_range for an unknown name.
  const MenuEntry& Get(const std::string& name) const;
  void SetCaption(const std::string& name, std::string caption);
  void SetChecked(const std::string& name, bool checked);
  void SetEnabled(const std::string& name, bool enabled);
  const std::string& Caption(const std::string& name) const {
    return Get(name).caption;
  }
  bool Checked(const std::string& name) const { return Get(name).checked; }
  bool Enabled(const std::string& name) const { return Get(name).enabled; }

  // Entry names in the order they were added (menu order).
  const std::vector<std::string>& Order() const { return order_; }
  std::vector<std::string> Children(const std::string& parent) const;

  int Subscribe(Observer o) { return observers_.Add(std::move(o)); }
  void Unsubscribe(int id) { observers_.Remove(id); }

  static std::string ItemName(const std::string& group, int index) {
    return group + "(" + std::to_string(index) + ")";
  }

 private:
  MenuEntry& Mutable(const std::string& name);
  void Notify(const MenuEntry& e) { observers_.Notify(e); }
  std::map<std::string, MenuEntry> entries_;
  std::vector<std::string> order_;
  Observers<const MenuEntry&> observers_;
};

}  // namespace quorvex
