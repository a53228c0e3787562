// The client's window tree: the frame, its MDI client and the document
// windows in it, found by caption or by the set of their children, and the
// sign-on facts read from it. Every lookup starts again from the frame.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "client/client_context.h"
#include "ports/window_api.h"

namespace quorvex {

inline constexpr const char* kIncomingMail = "Incoming/Saved Mail";
inline constexpr const char* kMailWaiting = "Mail Waiting to be Sent";
inline constexpr const char* kWriteMail = "Write Mail";
inline constexpr const char* kSendIm = "Send Instant Message";

// FindWindowA("AOL Frame25", none).
Hwnd FindFrame(WindowApi& api);
// The frame's "MDIClient".
Hwnd FindMdiClient(WindowApi& api);
// The "AOL Child" with exactly this caption under the MDI client.
Hwnd FindDocument(WindowApi& api, const char* caption);
// The tool bar's n-th "_AOL_Icon" (frame > "AOL Toolbar" > "_AOL_Toolbar").
Hwnd FindToolbarIcon(WindowApi& api, int n);

// The exact caption; failing that, the topmost document window when its
// caption contains the text.
Hwnd FindClientChild(WindowApi& api, std::string_view caption);
// FindClientChild and then its "RICHCNTL", both within one second from the
// clock rounded to a whole second; presses Escape in the control. 0 when
// the second ran out.
Hwnd WaitForClientChild(const ClientContext& c, std::string_view caption);

// The first document window, from the top of the Z order, that passes the
// test (each "AOL Child" under the MDI client in turn).
Hwnd FindClientChildWhere(WindowApi& api,
                          const std::function<bool(Hwnd)>& test);
// Recognised by their children.
Hwnd FindChatRoom(WindowApi& api);
// FindChatRoom's test: a room has a rich-text control, a people list, an
// icon and a static text. A room has its style and font boxes as a mail
// being written has, and any caption: every search for a mail window
// passes over a window that passes this test.
bool IsChatRoom(WindowApi& api, Hwnd window);
Hwnd FindOpenMail(WindowApi& api);
// A mail being written or forwarded.
Hwnd FindComposeWindow(WindowApi& api);
// The "Write Mail" window (never the room, whatever its name).
Hwnd FindWriteMail(WindowApi& api);
Hwnd FindTabbedMailbox(WindowApi& api);

// The screen name from the "Welcome, NAME!" window, or "".
std::string GetUserSN(WindowApi& api);
bool IsSignedOn(WindowApi& api);
// For WaitOptions::give_up: the client is signed off.
std::function<bool()> SignedOff(WindowApi& api);
// For WaitOptions::give_up: the window is gone.
std::function<bool()> Gone(WindowApi& api, Hwnd hwnd);

}  // namespace quorvex
