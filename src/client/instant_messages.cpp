#include "client/instant_messages.h"

#include <string>

#include "client/client_menus.h"
#include "client/client_tree.h"
#include "client/wait.h"
#include "client/window_ops.h"
#include "ports/client_windows.h"

namespace quorvex {

void SendIM(const ClientContext& c, std::string_view recipient,
            std::string_view message) {
  WindowApi& api = c.api;
  const std::string address = "aol://9293:" + std::string(recipient);
  Keyword(api, address);

  // A client signed off opens no window and sends nothing: the wait ends
  // there, and the caller's next step finds the client signed off.
  Hwnd window = 0, field = 0, send = 0;
  if (WaitUntil(
          c.host,
          [&] {
            window = FindDocument(api, kSendIm);
            field = FindChild(api, window, aol::kRichTextClass);
            send = FindNthChildAfter(api, window, field, aol::kIconClass,
                                     aol::kImSendIcon);
            return window && field && send;
          },
          AskingAgain(SignedOff(api), [&] { Keyword(api, address); })) !=
      WaitEnd::kMet)
    return;

  SetText(api, field, message);
  ClickIcon(api, send);

  // A click lost on a busy client is made again, at a pace. A box is
  // made before its controls and shown after them: it is pressed once it
  // shows (a key posted to a button not yet made goes nowhere, and one
  // taken before the box shows is undone by the box taking the focus).
  Hwnd box = 0;
  if (WaitUntil(
          c.host,
          [&] {
            box = api.FindWindowA(aol::kDialogClass, "America Online");
            window = FindDocument(api, kSendIm);
            return box ? api.IsWindowVisible(box) &&
                             FindChild(api, box, "Button") != 0
                       : !window;
          },
          AskingAgain(SignedOff(api), [&] { ClickIcon(api, send); })) !=
      WaitEnd::kMet)
    return;
  if (!box) return;  // sent without an answer box
  PostKey(api, FindChild(api, box, "Button"), win::kVkSpace);
  api.PostMessageA(window, win::kWmClose, 0, 0);
}

void IMsOff(const ClientContext& c) { SendIM(c, "$IM_OFF", "=)"); }

void IMsOn(const ClientContext& c) { SendIM(c, "$IM_ON", "=)"); }

}  // namespace quorvex
