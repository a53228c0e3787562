// Drives the desktop program from another process, as a person would, with
// plain Win32 calls: finds its windows by class and controls by id, clicks,
// types, reads captions and list boxes, answers its dialogs. Used by the
// desktop tests and the screenshot script; never by the program itself.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

namespace quorvex::desktop::remote {

// Polls `done` every 20 ms for up to `seconds`; true when it held.
bool WaitFor(const std::function<bool()>& done, double seconds);
// The top-level window of `class_name` (and `title`, unless null), waited
// for up to `seconds`; nullptr when it did not come.
// With `process_id`, only a window of that process counts (a program
// that is ending may still show its own).
HWND WaitWindow(const wchar_t* class_name, const wchar_t* title, double seconds,
                DWORD process_id = 0);
// Whether a visible top-level window of `class_name` exists.
bool Showing(const wchar_t* class_name);

std::string Text(HWND window);
void SetText(HWND window, const std::string& text);
int ListCount(HWND list);
std::string ListItem(HWND list, int index);

// A posted click: the program handles it in its own time, so a click that
// opens a modal box never blocks the caller.
void Click(HWND control);
void RightClick(HWND control);
void DoubleClickItem(HWND list, int index);
void PressReturn(HWND edit);
// Picks a menu entry of the main window by name, as from its menus.
void PickMenu(HWND main, const std::string& entry);

// Keys as a person presses them, to the window in front: `key` (a
// virtual-key code) with Shift or Alt held.
void PressKey(WORD key, bool shift = false, bool alt = false);
// Types letters, digits and blanks.
void TypeKeys(const std::string& text);
// Brings `window` to the front, so that it takes the keys; false when it
// did not come.
bool ToFront(HWND window);
// The control that has the keyboard focus in `window`'s thread.
HWND Focus(HWND window);

// The dialog box titled `title` (a "#32770" window), waited for.
HWND WaitDialog(const std::string& title, double seconds);
// The dialog's static text that is not a button (its prompt).
std::string DialogPrompt(HWND dialog);
// Presses the dialog's button with the given id (IDOK, IDYES, ...).
void PressDialogButton(HWND dialog, int id);

}  // namespace quorvex::desktop::remote
