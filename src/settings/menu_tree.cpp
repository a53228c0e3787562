#include "settings/menu_tree.h"

#include <initializer_list>

#include "settings/inserts.h"

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

}  // namespace

void BuildMainMenu(MenuModel& menus) {
  menus.Add("mnuSettings", "", "settings");

  menus.Add("mnuPreferences", "mnuSettings", "preferences");
  menus.Add("mnuHandle", "mnuPreferences", "handle");
  menus.Add("mnuLAscii", "mnuPreferences", "left ascii");
  menus.Add("mnuRAscii", "mnuPreferences", "right ascii");
  menus.Add("mnuChatFont", "mnuPreferences", "chat font");

  menus.Add("mnuLine1", "mnuSettings", "-");

  menus.Add("mnuMailOptions", "mnuSettings", "mail options");
  menus.Add("mnuMailNotify", "mnuMailOptions", "notify");
  menus.Add("mnuMailResize", "mnuMailOptions", "resize");
  menus.Add("mnuMailSpeed", "mnuMailOptions", "speed");
  AddSpeedGroup(menus, "mnuMSpeed", "mnuMailSpeed");
  menus.Add("mnuMailMethod", "mnuMailOptions", "method");
  AddGroup(menus, "mnuMMethod", "mnuMailMethod", {"regular", "send later"});

  menus.Add("mnuListOptions", "mnuSettings", "list options");
  menus.Add("mnuListNotify", "mnuListOptions", "notify");
  menus.Add("mnuMPList", "mnuListOptions", "list size");
  menus.Add("mnuListSpeed", "mnuListOptions", "speed");
  AddSpeedGroup(menus, "mnuLSpeed", "mnuListSpeed");
  menus.Add("mnuListSend", "mnuListOptions", "send");
  AddGroup(menus, "mnuLSend", "mnuListSend",
           {"every 10 secs", "every 30 secs", "every 45 secs", "every 60 secs",
            "-", "custom", "-", "upon request", "if no requests pending"});

  menus.Add("mnuFindOptions", "mnuSettings", "find options");
  menus.Add("mnuFMax", "mnuFindOptions", "max");
  menus.Add("mnuFMininum", "mnuFindOptions", "mininum");
  AddGroup(menus, "mnuFEnable", "mnuFindOptions", {"enable x", "enable x&&y"});
  menus.Add("mnuFindSpeed", "mnuFindOptions", "speed");
  AddSpeedGroup(menus, "mnuFSpeed", "mnuFindSpeed");

  menus.Add("mnuBlockOptions", "mnuSettings", "block options");
  menus.Add("mnuBEnableXY", "mnuBlockOptions", "enable x-y");
  menus.Add("mnuBMax", "mnuBlockOptions", "max");

  menus.Add("mnuBotOptions", "mnuSettings", "bot options");
  menus.Add("mnuBotScroll", "mnuBotOptions", "scroll");
  AddGroup(menus, "mnuBScroll", "mnuBotScroll",
           {"now", "-", "every 10 secs", "every 30 secs", "every 45 secs",
            "every 60 secs", "-", "custom"});

  menus.Add("mnuScrollOptions", "mnuSettings", "scroll options");
  menus.Add("mnuSStatus", "mnuScrollOptions", "status");
  menus.Add("mnuThankyou", "mnuScrollOptions", "thankyou");
  menus.Add("mnuLine2", "mnuScrollOptions", "-");
  menus.Add("mnuReply", "mnuScrollOptions", "reply the above by");
  AddGroup(menus, "mnuScrollMethod", "mnuReply", {"chat", "email"});

  menus.Add("mnuRestartOptions", "mnuSettings", "restart options");
  menus.Add("mnuAOLRes", "mnuRestartOptions", "aol");
  menus.Add("mnuCPURes", "mnuRestartOptions", "cpu");
  menus.Add("mnuSentRes", "mnuRestartOptions", "del sent");

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
