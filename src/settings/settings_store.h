// Loading and saving the settings record (registry section "Settings").
#pragma once

#include <string>

#include "model/label.h"
#include "model/menu.h"
#include "ports/registry.h"
#include "settings/settings.h"

namespace quorvex {

inline constexpr const char* kSettingsSection = "Settings";
// The settings format; an older marker (1 to 4) wipes the stored data once.
inline constexpr int kSettingsFormat = 5;

// Fills the record from the registry (defaults for what is missing or
// unreadable), writes every setting caption in its load form (ending
// " ]"), checks the preset items and shows "sent: " + total in lblSent.
// `signed_on_sn` is the handle's default. The menu tree must be built.
void LoadSettings(Settings& settings, MenuModel& menus, Registry& registry,
                  Label& lblSent, const std::string& signed_on_sn);

// Rewrites every stored setting, then "Version". The reply method goes
// under "StatusMethod" (it is read from "ScrollMethod"; kept so).
void SaveSettings(const Settings& settings, Registry& registry);

}  // namespace quorvex
