// Window primitives: each is the short sequence of window operations the
// client automation is written with. Handles are never kept between
// operations; every lookup starts again from a parent the caller found.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "ports/window_api.h"

namespace quorvex {

// The first child whose class, upper-cased, contains `class_name`
// upper-cased (a substring test), walking GW_CHILD then GW_HWNDNEXT.
Hwnd FindChildByClass(WindowApi& api, Hwnd parent, std::string_view class_name);
// The same walk over captions.
Hwnd FindChildByTitle(WindowApi& api, Hwnd parent, std::string_view text);
// The first child of `class_name` (and `caption`, when given) that passes
// the test, walking FindWindowExA with the previous one as "after". A walk
// cut short by a window that closed under it starts again, as the walks
// above do.
Hwnd FindChildWhere(WindowApi& api, Hwnd parent, const char* class_name,
                    const char* caption, const std::function<bool(Hwnd)>& test);

// The n-th child (from 1) of a class: FindWindowExA again with the previous
// match as "after", n - 1 times. As with FindWindowExA, a step that finds
// nothing makes the next one start from the first child again.
Hwnd FindNthChild(WindowApi& api, Hwnd parent, const char* class_name, int n);
// The n-th child of a class counted on after `after` (n = 1: the next one).
Hwnd FindNthChildAfter(WindowApi& api, Hwnd parent, Hwnd after,
                       const char* class_name, int n);
// `steps` times GetWindow(GW_HWNDNEXT).
Hwnd NextSibling(WindowApi& api, Hwnd hwnd, int steps = 1);
// FindWindowExA(parent, none, class, none).
Hwnd FindChild(WindowApi& api, Hwnd parent, const char* class_name);

// GetWindowTextLengthA, then GetWindowTextA with length + 1.
std::string GetCaption(WindowApi& api, Hwnd hwnd);
// WM_GETTEXTLENGTH, then WM_GETTEXT with length + 1.
std::string GetText(WindowApi& api, Hwnd hwnd);
// WM_SETTEXT.
void SetText(WindowApi& api, Hwnd hwnd, std::string_view text);
// WM_CLOSE, sent.
void CloseWindow(WindowApi& api, Hwnd hwnd);

// Button down and up, sent: the click has been handled on return.
void ClickIcon(WindowApi& api, Hwnd icon);
// The same, posted: a tool-bar icon opens a menu that would block a sent
// message.
void PostClickIcon(WindowApi& api, Hwnd icon);
// WM_CHAR, sent, when the window exists.
void SendChar(WindowApi& api, Hwnd hwnd, int char_code);
// Key down and key up, posted.
void PostKey(WindowApi& api, Hwnd hwnd, int virtual_key);

void HideWindow(WindowApi& api, Hwnd hwnd);
void ShowWindowNormal(WindowApi& api, Hwnd hwnd);
void MinimizeWindow(WindowApi& api, Hwnd hwnd);
// Sizes a window to 1 x 1 where it stands.
void ShrinkWindow(WindowApi& api, Hwnd hwnd);

}  // namespace quorvex
