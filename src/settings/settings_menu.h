// The click handlers of the settings menu, driven by the settings table:
// each asks for a value (or takes the clicked preset), validates it, stores
// it, rewrites its caption and saves every setting at once. Invalid answers
// keep the old value silently. Captions written here end in " ] " unless shown
// otherwise.
#pragma once

#include <string>
#include <vector>

#include "model/menu.h"
#include "ports/prompter.h"
#include "ports/registry.h"
#include "settings/settings.h"

namespace quorvex {

struct SettingsMenuContext {
  Settings& settings;
  MenuModel& menus;
  Registry& registry;
  Prompter& prompter;
  // For "now" of the bot scroll menu: whether the server is serving and
  // the advertisement's elapsed-seconds counter. Either may be null (then
  // "now" does nothing).
  const bool* ServerOn = nullptr;
  int* ScrollSeconds = nullptr;
};

// The menu entries the settings table edits, in menu order: an entry
// (items 0) or a preset group with its number of items, separators
// included. The program's control table reads this list.
struct SettingsMenuHandler {
  const char* name;
  int items;
};
const std::vector<SettingsMenuHandler>& SettingsMenuHandlers();

// Runs the handler of a settings entry: `name` is an entry ("mnuHandle")
// or a preset group ("mnuMSpeed") with the 1-based item `index`; an item
// name such as "mnuMSpeed(5)" works too. False when `name` is not a
// settings entry, or the item is a separator or out of range.
bool ClickSettingsMenu(SettingsMenuContext& ctx, const std::string& name,
                       int index = 0);

}  // namespace quorvex
