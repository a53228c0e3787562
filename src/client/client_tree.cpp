#include "client/client_tree.h"

#include "client/wait.h"
#include "client/window_ops.h"
#include "model/text_util.h"
#include "ports/client_windows.h"

namespace quorvex {

Hwnd FindFrame(WindowApi& api) {
  return api.FindWindowA(aol::kFrameClass, nullptr);
}

Hwnd FindMdiClient(WindowApi& api) {
  return FindChild(api, FindFrame(api), aol::kMdiClass);
}

Hwnd FindDocument(WindowApi& api, const char* caption) {
  return api.FindWindowExA(FindMdiClient(api), 0, aol::kChildClass, caption);
}

Hwnd FindToolbarIcon(WindowApi& api, int n) {
  const Hwnd toolbar = FindChild(api, FindFrame(api), aol::kToolbarFrameClass);
  const Hwnd icons = FindChild(api, toolbar, aol::kToolbarClass);
  return FindNthChild(api, icons, aol::kIconClass, n);
}

Hwnd FindClientChild(WindowApi& api, std::string_view caption) {
  const Hwnd mdi = FindMdiClient(api);
  const std::string wanted(caption);
  if (Hwnd exact = api.FindWindowExA(mdi, 0, aol::kChildClass, wanted.c_str()))
    return exact;
  const Hwnd top = FindChild(api, mdi, aol::kChildClass);
  return GetCaption(api, top).find(wanted) != std::string::npos ? top : 0;
}

Hwnd WaitForClientChild(const ClientContext& c, std::string_view caption) {
  const double start = ClockToWholeSecond(c.host);
  auto out_of_time = [&] { return c.host.Clock() - start >= 1.0; };
  const WaitOptions within_budget{.give_up = out_of_time, .wake_by = start + 1};

  Hwnd window = 0;
  WaitUntil(
      c.host, [&] { return (window = FindClientChild(c.api, caption)) != 0; },
      within_budget);
  Hwnd rich = 0;
  WaitUntil(
      c.host,
      [&] {
        return (rich = FindChild(c.api, window, aol::kRichTextClass)) != 0;
      },
      within_budget);
  if (rich != 0) PostKey(c.api, rich, win::kVkEscape);
  DoEvents(c.host, 2);
  return out_of_time() ? 0 : window;
}

Hwnd FindClientChildWhere(WindowApi& api,
                          const std::function<bool(Hwnd)>& test) {
  return FindChildWhere(api, FindMdiClient(api), aol::kChildClass, nullptr,
                        test);
}

bool IsChatRoom(WindowApi& api, Hwnd w) {
  return FindChild(api, w, aol::kRichTextClass) &&
         FindChild(api, w, aol::kListClass) &&
         FindChild(api, w, aol::kIconClass) &&
         FindChild(api, w, aol::kStaticClass);
}

Hwnd FindChatRoom(WindowApi& api) {
  return FindClientChildWhere(api, [&](Hwnd w) { return IsChatRoom(api, w); });
}

Hwnd FindOpenMail(WindowApi& api) {
  return FindClientChildWhere(api, [&](Hwnd w) {
    const Hwnd rich = FindChild(api, w, aol::kRichTextClass);
    return rich && !api.FindWindowExA(w, rich, aol::kRichTextClass, nullptr) &&
           !FindChild(api, w, aol::kComboClass) &&
           !FindChild(api, w, aol::kFontComboClass) && !IsChatRoom(api, w);
  });
}

Hwnd FindComposeWindow(WindowApi& api) {
  return FindClientChildWhere(api, [&](Hwnd w) {
    return FindChild(api, w, aol::kRichTextClass) &&
           FindChild(api, w, aol::kStaticClass) &&
           FindChild(api, w, aol::kComboClass) &&
           FindChild(api, w, aol::kFontComboClass) && !IsChatRoom(api, w);
  });
}

Hwnd FindWriteMail(WindowApi& api) {
  const Hwnd mdi = FindMdiClient(api);
  if (!mdi) return 0;
  return FindChildWhere(api, mdi, aol::kChildClass, kWriteMail,
                        [&](Hwnd w) { return !IsChatRoom(api, w); });
}

Hwnd FindTabbedMailbox(WindowApi& api) {
  return FindClientChildWhere(api, [&](Hwnd w) {
    const Hwnd tabs = FindChild(api, w, aol::kTabControlClass);
    return tabs && FindChild(api, tabs, aol::kTabPageClass);
  });
}

std::string GetUserSN(WindowApi& api) {
  std::string caption;
  const Hwnd welcome = FindClientChildWhere(api, [&](Hwnd child) {
    caption = GetCaption(api, child);
    return StartsWith(caption, "Welcome, ");
  });
  if (!welcome) return "";
  // Without the "!" the old runtime failed on a negative length; the rest
  // of the caption is the best guess.
  const auto bang = caption.find('!');
  return bang == std::string::npos ? caption.substr(9)
                                   : caption.substr(9, bang - 9);
}

bool IsSignedOn(WindowApi& api) {
  return FindChildByTitle(api, FindMdiClient(api), "Welcome, ") != 0;
}

std::function<bool()> SignedOff(WindowApi& api) {
  return [&api] { return !IsSignedOn(api); };
}

std::function<bool()> Gone(WindowApi& api, Hwnd hwnd) {
  return [&api, hwnd] { return !api.IsWindow(hwnd); };
}

}  // namespace quorvex
