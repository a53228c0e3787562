// Views bound to the core's models through their observers: a list box
// follows its ListBox model change by change, a label its Label. Models
// outlive the windows that show them, so each binding holds a token that
// the window clears when it goes away; the observer then does nothing.
#pragma once

#include <windows.h>

#include <memory>

#include "model/label.h"
#include "model/list_box.h"

namespace quorvex::desktop {

using Alive = std::shared_ptr<bool>;
inline Alive MakeAlive() { return std::make_shared<bool>(true); }

// Fills `list_window` from `model`, then applies each add, removal and
// clear as it happens (no reload).
void BindList(HWND list_window, ListBox& model, const Alive& alive);
// Shows `model`'s caption in `window` now and whenever it changes.
void BindLabel(HWND window, Label& model, const Alive& alive);

// A window's text as UTF-8, and a list box's items.
std::string WindowText(HWND window);
void SetText(HWND window, const std::string& text);

}  // namespace quorvex::desktop
