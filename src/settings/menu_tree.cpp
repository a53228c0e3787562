#include "settings/menu_tree.h"

#include <initializer_list>

#include "settings/inserts.h"
#include "settings/setting_table.h"

namespace quorvex {

namespace {

void AddGroup(MenuModel& menus, const std::string& group,
              const std::string& parent,
              std::initializer_list<const char*> captions) {
  int index = 1;
  for (const char* caption : captions)
    menus.Add(MenuModel::ItemName(group, index++), parent, caption);
}

void AddSpeedGroup(MenuModel& menus, const std::string& group,
                   const std::string& parent) {
  AddGroup(menus, group, parent, {"fast", "medium", "slow", "-", "custom"});
}

// A setting's entry, captioned with the setting's name until LoadSettings
// shows its value.
void AddSetting(MenuModel& menus, const std::string& name,
                const std::string& parent) {
  for (const SettingRow& row : SettingRows()) {
    if (row.entry && row.caption && ShownIn(row) == name) {
      menus.Add(name, parent, row.caption);
      return;
    }
  }
  menus.Add(name, parent, name);  // not a setting: shows up in any test
}

}  // namespace

void BuildMainMenu(MenuModel& menus) {
  menus.Add("mnuSettings", "", "settings");

  menus.Add("mnuPreferences", "mnuSettings", "preferences");
  AddSetting(menus, "mnuHandle", "mnuPreferences");
  AddSetting(menus, "mnuLAscii", "mnuPreferences");
  AddSetting(menus, "mnuRAscii", "mnuPreferences");
  AddSetting(menus, "mnuChatFont", "mnuPreferences");

  menus.Add("mnuLine1", "mnuSettings", "-");

  menus.Add("mnuMailOptions", "mnuSettings", "mail options");
  AddSetting(menus, "mnuMailNotify", "mnuMailOptions");
  AddSetting(menus, "mnuMailResize", "mnuMailOptions");
  AddSetting(menus, "mnuMailSpeed", "mnuMailOptions");
  AddSpeedGroup(menus, "mnuMSpeed", "mnuMailSpeed");
  AddSetting(menus, "mnuMailMethod", "mnuMailOptions");
  AddGroup(menus, "mnuMMethod", "mnuMailMethod", {"regular", "send later"});

  menus.Add("mnuListOptions", "mnuSettings", "list options");
  AddSetting(menus, "mnuListNotify", "mnuListOptions");
  AddSetting(menus, "mnuMPList", "mnuListOptions");
  AddSetting(menus, "mnuListSpeed", "mnuListOptions");
  AddSpeedGroup(menus, "mnuLSpeed", "mnuListSpeed");
  AddSetting(menus, "mnuListSend", "mnuListOptions");
  AddGroup(menus, "mnuLSend", "mnuListSend",
           {"every 10 secs", "every 30 secs", "every 45 secs", "every 60 secs",
            "-", "custom", "-", "upon request", "if no requests pending"});

  menus.Add("mnuFindOptions", "mnuSettings", "find options");
  AddSetting(menus, "mnuFMax", "mnuFindOptions");
  AddSetting(menus, "mnuFMininum", "mnuFindOptions");
  AddSetting(menus, "mnuFEnable(1)", "mnuFindOptions");
  AddSetting(menus, "mnuFEnable(2)", "mnuFindOptions");
  AddSetting(menus, "mnuFindSpeed", "mnuFindOptions");
  AddSpeedGroup(menus, "mnuFSpeed", "mnuFindSpeed");

  menus.Add("mnuBlockOptions", "mnuSettings", "block options");
  AddSetting(menus, "mnuBEnableXY", "mnuBlockOptions");
  AddSetting(menus, "mnuBMax", "mnuBlockOptions");

  menus.Add("mnuBotOptions", "mnuSettings", "bot options");
  AddSetting(menus, "mnuBotScroll", "mnuBotOptions");
  AddGroup(menus, "mnuBScroll", "mnuBotScroll",
           {"now", "-", "every 10 secs", "every 30 secs", "every 45 secs",
            "every 60 secs", "-", "custom"});

  menus.Add("mnuScrollOptions", "mnuSettings", "scroll options");
  AddSetting(menus, "mnuSStatus", "mnuScrollOptions");
  AddSetting(menus, "mnuThankyou", "mnuScrollOptions");
  menus.Add("mnuLine2", "mnuScrollOptions", "-");
  menus.Add("mnuReply", "mnuScrollOptions", "reply the above by");
  AddGroup(menus, "mnuScrollMethod", "mnuReply", {"chat", "email"});

  menus.Add("mnuRestartOptions", "mnuSettings", "restart options");
  AddSetting(menus, "mnuAOLRes", "mnuRestartOptions");
  AddSetting(menus, "mnuCPURes", "mnuRestartOptions");
  AddSetting(menus, "mnuSentRes", "mnuRestartOptions");

  menus.Add("mnuLine3", "mnuSettings", "-");
  menus.Add("mnuMessages", "mnuSettings", "messages");
  menus.Add("mnuRoomBuster", "mnuSettings", "room buster");
  menus.Add("mnuServeNChat", "mnuSettings", "serve && chat");
  menus.Add("mnuBanOpts", "mnuSettings", "banning options");

  menus.Add("mnuPendings", "", "pending");
  menus.Add("mnuClearALL", "mnuPendings", "clear all");
  menus.Add("mnuClearSN", "mnuPendings", "clear sn");
  menus.Add("mnuRemoveSelected", "mnuPendings", "remove selected");

  menus.Add("mnuFiles", "", "file");
  menus.Add("mnuAbout", "mnuFiles", "about");
  menus.Add("mnuCredits", "mnuFiles", "credits");
  menus.Add("mnuLine4", "mnuFiles", "-");
  menus.Add("mnuContactInfo", "mnuFiles", "contact info");
  menus.Add("mnuWeb", "mnuFiles", "quorvex website");
}

void BuildInsertsMenu(MenuModel& menus) {
  const std::string parent = std::string(kMessagesMenuPrefix) + "mnuInserts";
  menus.Add(parent, "", "inserts");
  for (const InsertMenuItem& item : kInsertMenuItems)
    menus.Add(kMessagesMenuPrefix + std::string(item.name), parent,
              item.caption);
}

void BuildMenuTree(MenuModel& menus) {
  BuildMainMenu(menus);
  BuildInsertsMenu(menus);
}

}  // namespace quorvex
