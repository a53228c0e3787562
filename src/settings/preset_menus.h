// The preset groups of the settings menu (speeds, list send, bot scroll,
// mail and reply method): their values and check marks, shared by the
// loader and the click handlers.
#pragma once

#include <array>
#include <string>

#include "model/menu.h"
#include "settings/settings.h"

namespace quorvex {

inline constexpr std::array<float, 3> kSpeedPresets = {0.1345f, 0.3567f,
                                                       0.6899f};
inline constexpr int kSpeedCustom = 5;
inline constexpr int kSpeedItems = 5;

// The preset item (1 to 3) whose value equals `value` as a single, else
// the custom item.
int SpeedItemFor(float value);
// "custom - [ v ]", or "turbo - [ 0 ]" for 0.
std::string SpeedCustomCaption(float value);

// List send: items 1-4 every 10/30/45/60 secs, 6 custom, 8 upon request,
// 9 the session flag; 5 and 7 are separators.
inline constexpr int kLSendItems = 9;
inline constexpr int kLSendCustom = 6;
inline constexpr int kLSendUponRequest = 8;
inline constexpr int kLSendIfNoPending = 9;
// The item a stored ListAdvertise selects (custom for any other value).
int ListSendItemFor(int value);

// Bot scroll: 1 now, 3-6 every 10/30/45/60 secs, 8 custom; 2 and 7 are
// separators.
inline constexpr int kBScrollItems = 8;
inline constexpr int kBScrollNow = 1;
inline constexpr int kBScrollCustom = 8;
int BotScrollItemFor(int value);

// Whether item `index` of a group is a separator.
bool IsPresetSeparator(const std::string& group, int index);

// Checks item `index` of `group` and unchecks the others, separators left
// alone; an index of 0 unchecks every item.
void CheckOnly(MenuModel& menus, const std::string& group, int items,
               int index);

}  // namespace quorvex
