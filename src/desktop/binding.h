// Views bound to the core's models through their observers: a list box
// follows its ListBox model change by change, a label its Label. Models
// outlive the windows that show them, so every view holds its
// subscriptions and ends them when its window goes away.
#pragma once

#include <windows.h>

#include <string>

#include "model/controls.h"
#include "model/label.h"
#include "model/list_box.h"
#include "model/subscriptions.h"

namespace quorvex::desktop {

// Fills `list_window` from `model`, then applies each add, removal and
// clear as it happens (no reload).
void BindList(HWND list_window, ListBox& model, Subscriptions& subs);
// Shows `model`'s caption in `window` now and whenever it changes.
void BindLabel(HWND window, Label& model, Subscriptions& subs);
// Shows `model`'s text in `window` now and whenever it changes (a
// multi-line box scrolls to its end, where the newest line is).
void BindText(HWND window, TextBox& model, Subscriptions& subs);

// A window's text as UTF-8, and a list box's items.
std::string WindowText(HWND window);
void SetText(HWND window, const std::string& text);

}  // namespace quorvex::desktop
