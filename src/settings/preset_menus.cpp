#include "settings/preset_menus.h"

#include "model/text_util.h"

namespace quorvex {

int SpeedItemFor(float value) {
  for (int i = 0; i < static_cast<int>(kSpeedPresets.size()); ++i)
    if (value == kSpeedPresets[i]) return i + 1;
  return kSpeedCustom;
}

std::string SpeedCustomCaption(float value) {
  return std::string(value == 0 ? "turbo" : "custom") + " - [ " +
         SingleText(value) + " ]";
}

int ListSendItemFor(int value) {
  switch (value) {
    case 0:
      return kLSendUponRequest;
    case 10:
      return 1;
    case 30:
      return 2;
    case 45:
      return 3;
    case 60:
      return 4;
    default:
      return kLSendCustom;
  }
}

int BotScrollItemFor(int value) {
  switch (value) {
    case 10:
      return 3;
    case 30:
      return 4;
    case 45:
      return 5;
    case 60:
      return 6;
    default:
      return kBScrollCustom;
  }
}

bool IsPresetSeparator(const std::string& group, int index) {
  if (group == "mnuMSpeed" || group == "mnuLSpeed" || group == "mnuFSpeed")
    return index == 4;
  if (group == "mnuLSend") return index == 5 || index == 7;
  if (group == "mnuBScroll") return index == 2 || index == 7;
  return false;
}

void CheckOnly(MenuModel& menus, const std::string& group, int items,
               int index) {
  for (int i = 1; i <= items; ++i) {
    if (IsPresetSeparator(group, i)) continue;
    menus.SetChecked(MenuModel::ItemName(group, i), i == index);
  }
}

}  // namespace quorvex
