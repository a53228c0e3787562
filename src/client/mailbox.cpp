#include "client/mailbox.h"

#include <algorithm>
#include <functional>

#include "client/client_menus.h"
#include "client/client_tree.h"
#include "client/wait.h"
#include "client/window_ops.h"
#include "model/draw_status.h"
#include "model/text_util.h"
#include "ports/client_windows.h"

namespace quorvex {

namespace {

// The mail whose window is shrunk (zero-based), and how long each of the
// windows may take to come before the shrinking is given up.
constexpr int kShrinkMail = 2;
constexpr double kShrinkWindowSeconds = 60;

Hwnd FindIncomingMail(WindowApi& api) {
  return FindDocument(api, kIncomingMail);
}

int ListCount(WindowApi& api, Hwnd list) {
  return static_cast<int>(api.SendMessageA(list, win::kLbGetCount, 0, 0));
}

std::string ListText(WindowApi& api, Hwnd list, int index) {
  const auto at = static_cast<std::uintptr_t>(index);
  const auto length = api.SendMessageA(list, win::kLbGetTextLen, at, 0);
  const auto buffer =
      static_cast<std::size_t>(std::max<std::intptr_t>(length, 0) + 1);
  std::string text;
  api.SendMessageGetText(list, win::kLbGetText, at, &text, buffer);
  return text;
}

// "Incoming/Saved Mail", opened through the tool bar's menu when missing.
Hwnd OpenIncomingMail(const ClientContext& c) {
  Hwnd box = FindIncomingMail(c.api);
  if (box) return box;
  OpenOfflineMailbox(c);
  Pause(c.host, 0.8);
  return FindIncomingMail(c.api);
}

// Shrinks the window and has the client remember its size for the next
// windows of its kind.
void RememberSmall(const ClientContext& c, Hwnd window) {
  ShrinkWindow(c.api, window);
  RunClientMenu(c.api, 2, 7);
}

}  // namespace

// Closes every window the finder finds.
void CloseAll(const ClientContext& c, Hwnd (*find)(WindowApi&)) {
  WaitUntil(c.host,
            [&] {
              const Hwnd w = find(c.api);
              if (w) CloseWindow(c.api, w);
              return w == 0;
            },
            {.give_up = SignedOff(c.api)});
}

std::string MailTitleOf(std::string_view item) {
  const auto first = item.find('\t');
  const auto second =
      first == std::string_view::npos ? first : item.find('\t', first + 1);
  const std::string_view title =
      second == std::string_view::npos ? item : item.substr(second + 1);
  return ReplaceAll(title, std::string_view("\0", 1), "");
}

bool IsForeignListTitle(std::string_view title) {
  return Like(title, "*velo-grid list number *");
}

bool KeepsMailTitle(std::string_view title, int position, bool skipForeignLists,
                    std::vector<int>* positions) {
  if (skipForeignLists && IsForeignListTitle(title)) return false;
  if (positions) positions->push_back(position);
  return true;
}

void LoadMailbox(const ClientContext& c, ListBox& list, bool skipForeignLists,
                 StatusStrip& status, std::vector<int>* positions) {
  WindowApi& api = c.api;
  Hwnd tree = 0;
  int count = 0;
  WaitUntil(c.host, [&] {
    const Hwnd box = OpenIncomingMail(c);
    if (!box) return false;
    tree = FindChild(api, box, aol::kTreeClass);
    count = ListCount(api, tree);
    if (count == 0) CloseWindow(api, box);
    return count > 0;
  });

  for (int i = 0; i < count; ++i) {
    c.host.DoEvents();
    // Added before it is judged, as the list shows it for a moment.
    list.Add(MailTitleOf(ListText(api, tree, i)));
    if (!KeepsMailTitle(list.Item(list.Count() - 1), i, skipForeignLists,
                        positions))
      list.Remove(list.Count() - 1);
    // The index, not the number read: the first report says 0 mails.
    if (i % 10 == 0)
      status.Draw("status: refreshed " + std::to_string(i) + " mails",
                  kBandColour);
  }
}

int GetMailCount(WindowApi& api) {
  const Hwnd box = FindIncomingMail(api);
  if (!box) return 0;
  return ListCount(api, FindChild(api, box, aol::kTreeClass));
}

std::string GetMailTitle(WindowApi& api, int position) {
  const Hwnd tree = FindChild(api, FindIncomingMail(api), aol::kTreeClass);
  if (ListCount(api, tree) < position) return "";
  return MailTitleOf(ListText(api, tree, position));
}

void OpenMail(const ClientContext& c, int position) {
  WindowApi& api = c.api;
  const Hwnd tree = FindChild(api, FindIncomingMail(api), aol::kTreeClass);
  if (ListCount(api, tree) < position || !IsSignedOn(api)) return;
  DoEvents(c.host, 2);
  api.SendMessageA(tree, win::kLbSetCurSel,
                   static_cast<std::uintptr_t>(position), 0);
  PostKey(api, tree, win::kVkReturn);
}

namespace {

// Opens a window from the tool bar's mail menu, asking until `find` finds
// it; 0 once the client has signed off (or is gone): the online mailbox
// and its lists never come then.
Hwnd OpenFromMailMenu(const ClientContext& c, char key,
                      const std::function<Hwnd()>& find) {
  Hwnd window = 0;
  if (WaitUntil(c.host, [&] { return (window = find()) != 0; },
                {.give_up = SignedOff(c.api), .every = 1, .repeat = [&] {
                   RunToolbarMenu(c, aol::kToolbarMailIcon, key);
                   Pause(c.host, 0.8);
                 }}) != WaitEnd::kMet)
    return 0;
  return window;
}

// Clicks `icon` until `list` is empty; false when the client signed off
// first.
bool ClickUntilEmpty(const ClientContext& c, Hwnd icon, Hwnd list) {
  WindowApi& api = c.api;
  return WaitUntil(c.host,
                   [&] {
                     DoEvents(c.host, 2);
                     ClickIcon(api, icon);
                     DoEvents(c.host, 2);
                     return ListCount(api, list) == 0;
                   },
                   {.give_up = SignedOff(api)}) == WaitEnd::kMet;
}

}  // namespace

void DeleteSentMail(const ClientContext& c) {
  WindowApi& api = c.api;
  const Hwnd box =
      OpenFromMailMenu(c, 'S', [&] { return FindTabbedMailbox(api); });
  if (!box) return;
  const Hwnd tabs = FindChild(api, box, aol::kTabControlClass);
  const Hwnd sent = FindChild(
      api, FindNthChild(api, tabs, aol::kTabPageClass, 3), aol::kTreeClass);
  const Hwnd delete_icon =
      FindNthChild(api, box, aol::kIconClass, aol::kMailboxDeleteIcon);

  // The client fills the list in steps: wait until two reads agree.
  int count = 0;
  if (WaitUntil(c.host,
                [&] {
                  const int before = ListCount(api, sent);
                  Pause(c.host, 2);
                  count = ListCount(api, sent);
                  return before == count;
                },
                {.give_up = SignedOff(api)}) != WaitEnd::kMet)
    return;

  if (count != 0) {
    if (!ClickUntilEmpty(c, delete_icon, sent)) return;
    PauseSeconds(c.host, 1);
  }
  CloseWindow(api, box);
}

void DeleteMailWaiting(const ClientContext& c) {
  WindowApi& api = c.api;
  const Hwnd box =
      OpenFromMailMenu(c, 'b', [&] { return FindDocument(api, kMailWaiting); });
  if (!box) return;
  const Hwnd delete_icon =
      FindNthChild(api, box, aol::kIconClass, aol::kWaitingDeleteIcon);
  const Hwnd queued = FindChild(api, box, aol::kTreeClass);
  if (!ClickUntilEmpty(c, delete_icon, queued)) return;
  PauseSeconds(c.host, 1);
  CloseWindow(api, box);
}

void ShrinkMailWindows(const ClientContext& c) {
  WindowApi& api = c.api;
  const auto signed_off = SignedOff(api);
  Hwnd box = 0;
  if (WaitUntil(c.host, [&] { return (box = OpenIncomingMail(c)) != 0; },
                {.give_up = signed_off}) != WaitEnd::kMet)
    return;
  MinimizeWindow(api, box);
  DoEvents(c.host, 2);

  // The third mail; the last one of a shorter mailbox, which would
  // otherwise never open.
  const int position =
      std::max(0, std::min(kShrinkMail, GetMailCount(api) - 1));
  auto open = [&] { OpenMail(c, position); };
  const WaitOptions nudged =
      AskingAgain(signed_off, open, kShrinkWindowSeconds);
  open();
  // The mail's window with its Forward icon, which the client makes after
  // the window.
  Hwnd mail = 0;
  Hwnd forward_icon = 0;
  if (WaitUntil(
          c.host,
          [&] {
            mail = FindOpenMail(api);
            forward_icon = mail ? FindNthChild(api, mail, aol::kIconClass,
                                               aol::kOpenMailForwardIcon)
                                : 0;
            return forward_icon != 0;
          },
          nudged) != WaitEnd::kMet)
    return;
  RememberSmall(c, mail);

  ClickIcon(api, forward_icon);
  Hwnd forward = 0;
  const WaitOptions click_again = AskingAgain(
      signed_off, [&] { ClickIcon(api, forward_icon); }, kShrinkWindowSeconds);
  if (WaitUntil(
          c.host, [&] { return (forward = FindComposeWindow(api)) != 0; },
          click_again) != WaitEnd::kMet)
    return;
  RememberSmall(c, forward);
  CloseAll(c, FindComposeWindow);
  CloseAll(c, FindOpenMail);

  const Hwnd write_icon = FindToolbarIcon(api, aol::kToolbarWriteIcon);
  PostClickIcon(api, write_icon);
  Hwnd write = 0;
  if (WaitUntil(
          c.host, [&] { return (write = FindWriteMail(api)) != 0; },
          AskingAgain(
              signed_off, [&] { PostClickIcon(api, write_icon); },
              kShrinkWindowSeconds)) != WaitEnd::kMet)
    return;
  RememberSmall(c, write);
  CloseAll(c, FindWriteMail);
}

}  // namespace quorvex
