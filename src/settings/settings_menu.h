// The click handlers of the settings menu: each asks for a value (or takes
// the clicked preset), validates it, stores it, rewrites its caption and
// saves every setting at once. Invalid answers keep the old value
// silently. Captions written here end in " ] " unless shown otherwise.
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

void mnuHandle_Click(SettingsMenuContext& ctx);
void mnuLAscii_Click(SettingsMenuContext& ctx);
void mnuRAscii_Click(SettingsMenuContext& ctx);
void mnuChatFont_Click(SettingsMenuContext& ctx);
void mnuMailNotify_Click(SettingsMenuContext& ctx);
void mnuMailResize_Click(SettingsMenuContext& ctx);
void mnuMSpeed_Click(SettingsMenuContext& ctx, int Index);
void mnuMMethod_Click(SettingsMenuContext& ctx, int Index);
void mnuListNotify_Click(SettingsMenuContext& ctx);
void mnuMPList_Click(SettingsMenuContext& ctx);
void mnuLSpeed_Click(SettingsMenuContext& ctx, int Index);
void mnuLSend_Click(SettingsMenuContext& ctx, int Index);
void mnuFEnable_Click(SettingsMenuContext& ctx, int Index);
void mnuFMax_Click(SettingsMenuContext& ctx);
void mnuFMininum_Click(SettingsMenuContext& ctx);
void mnuFSpeed_Click(SettingsMenuContext& ctx, int Index);
void mnuBEnableXY_Click(SettingsMenuContext& ctx);
void mnuBMax_Click(SettingsMenuContext& ctx);
void mnuBScroll_Click(SettingsMenuContext& ctx, int Index);
void mnuSStatus_Click(SettingsMenuContext& ctx);
void mnuThankyou_Click(SettingsMenuContext& ctx);
void mnuScrollMethod_Click(SettingsMenuContext& ctx, int Index);
void mnuAOLRes_Click(SettingsMenuContext& ctx);
void mnuCPURes_Click(SettingsMenuContext& ctx);
void mnuSentRes_Click(SettingsMenuContext& ctx);

// The menu entries this file handles: an entry (items 0) or a preset group
// with its number of items, separators included. The click dispatch and
// the program's control table both read this one list.
struct SettingsMenuHandler {
  const char* name;
  int items;
  void (*entry)(SettingsMenuContext&);
  void (*group)(SettingsMenuContext&, int);
};
const std::vector<SettingsMenuHandler>& SettingsMenuHandlers();

// Runs the handler of a settings entry: `name` is an entry ("mnuHandle")
// or a preset group ("mnuMSpeed") with the 1-based item `index`; an item
// name such as "mnuMSpeed(5)" works too. False when `name` is not a
// settings entry, or the item is a separator or out of range.
bool ClickSettingsMenu(SettingsMenuContext& ctx, const std::string& name,
                       int index = 0);

}  // namespace quorvex
