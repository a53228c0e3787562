#include "desktop/messages_window.h"

#include <windows.h>
// windows.h first: commctrl.h needs its types.
#include <commctrl.h>

#include "desktop/control_ids.h"
#include "desktop/desktop.h"
#include "desktop/menu_popup.h"
#include "desktop/wide_text.h"
#include "settings/menu_tree.h"
#include "settings/message_editor.h"

namespace quorvex::desktop {

namespace {

std::string TxtAddName(int index) {
  return "frmMessages.txtAdd(" + std::to_string(index) + ")";
}

}  // namespace

void MessagesWindow::Open() {
  if (open()) return Refresh();
  CreateSmall(kMessagesClass, desktop_.Title("mnuMessages"), 0, 0, 300, 236,
              false);
  FrmMessages& form = desktop_.app().frm().forms.frmMessages;
  HWND tab = Child(WC_TABCONTROLW, "", WS_TABSTOP, 4, 24, 292, 176, kIdTab);
  const wchar_t* captions[] = {L"chat", L"mail", L"thank You"};
  for (int i = 0; i < 3; ++i) {
    TCITEMW item{};
    item.mask = TCIF_TEXT;
    item.pszText = const_cast<wchar_t*>(captions[i]);
    SendMessageW(tab, TCM_INSERTITEMW, i, reinterpret_cast<LPARAM>(&item));
  }
  const DWORD list =
      LBS_NOTIFY | LBS_NOINTEGRALHEIGHT | WS_VSCROLL | WS_BORDER | WS_TABSTOP;
  const DWORD edit = ES_AUTOHSCROLL | WS_BORDER | WS_TABSTOP;
  Child(L"LISTBOX", "", list, 10, 50, 280, 116, kIdLstChat);
  Child(L"EDIT", "",
        ES_MULTILINE | ES_WANTRETURN | ES_AUTOVSCROLL | WS_VSCROLL | WS_BORDER |
            WS_TABSTOP,
        10, 50, 280, 116, kIdTxtAdd1);
  Child(L"LISTBOX", "", list, 10, 50, 280, 116, kIdLstThankyou);
  for (int i = 0; i < 3; ++i) {
    if (i != 1) Child(L"EDIT", "", edit, 10, 170, 212, 22, kIdTxtAdd0 + i);
    Child(L"BUTTON", "&insert", BS_PUSHBUTTON | WS_TABSTOP, 226, 170, 64, 22,
          kIdCmdInsert0 + i);
  }
  Child(L"BUTTON", "&save && exit", BS_PUSHBUTTON | WS_TABSTOP, 4, 206, 144, 24,
        kIdCmdSave);
  Child(L"BUTTON", "&exit", BS_PUSHBUTTON | WS_TABSTOP, 152, 206, 144, 24,
        kIdCmdExit);
  // The pages' controls are drawn over the tab strip, and Tab goes as
  // they stand from the top: a page's list, its line, its insert button,
  // then save, exit and the tab strip itself.
  for (HWND c : {Item(kIdCmdInsert2), Item(kIdCmdInsert1), Item(kIdCmdInsert0),
                 Item(kIdTxtAdd2), Item(kIdTxtAdd0), Item(kIdLstThankyou),
                 Item(kIdTxtAdd1), Item(kIdLstChat)})
    SetWindowPos(c, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
  SetWindowPos(tab, HWND_BOTTOM, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
  BindList(Item(kIdLstChat), form.lstChat, subs_);
  BindList(Item(kIdLstThankyou), form.lstThankyou, subs_);

  // Return in an entry line adds it to its list.
  QuorvexApp& app = desktop_.app();
  for (int index : {0, 2}) {
    HWND entry = Item(kIdTxtAdd0 + index);
    OnChar(entry, [this, &app, index, entry](wchar_t key) {
      if (key != L'\r') return false;
      const std::string text = WindowText(entry);
      desktop_.Post([this, &app, index, text] {
        app.Set(TxtAddName(index), text);
        app.Press(TxtAddName(index));  // Return
        Refresh();
      });
      return true;
    });
  }
  Refresh();
  ShowWindow(hwnd(), SW_SHOW);
}

void MessagesWindow::Refresh() {
  if (!open()) return;
  const FrmMessages& form = desktop_.app().frm().forms.frmMessages;
  refreshing_ = true;
  for (int i = 0; i < 3; ++i) {
    HWND edit = Item(kIdTxtAdd0 + i);
    if (WindowText(edit) != form.txtAdd[i].text)
      SetText(edit, form.txtAdd[i].text);
  }
  refreshing_ = false;
  SendMessageW(Item(kIdTab), TCM_SETCURSEL, form.tab, 0);
  const int pages[3][3] = {{kIdLstChat, kIdTxtAdd0, kIdCmdInsert0},
                           {kIdTxtAdd1, kIdCmdInsert1, 0},
                           {kIdLstThankyou, kIdTxtAdd2, kIdCmdInsert2}};
  for (int page = 0; page < 3; ++page)
    for (int id : pages[page])
      if (id) ShowWindow(Item(id), page == form.tab ? SW_SHOW : SW_HIDE);
}

LRESULT MessagesWindow::Handle(UINT msg, WPARAM wp, LPARAM lp) {
  if (msg == WM_NOTIFY) {
    const auto* n = reinterpret_cast<const NMHDR*>(lp);
    if (n->idFrom == kIdTab && n->code == TCN_SELCHANGE) {
      const int tab =
          static_cast<int>(SendMessageW(Item(kIdTab), TCM_GETCURSEL, 0, 0));
      QuorvexApp& app = desktop_.app();
      desktop_.Post([this, &app, tab] {
        app.Press("frmMessages.Tab", tab + 1);
        Refresh();
      });
    }
    return 0;
  }
  return SmallWindow::Handle(msg, wp, lp);
}

void MessagesWindow::OnControl(int id, int code, HWND control) {
  QuorvexApp& app = desktop_.app();
  if (id >= kIdTxtAdd0 && id <= kIdTxtAdd2 && code == EN_CHANGE) {
    if (refreshing_) return;
    const std::string text = WindowText(control);
    const int index = id - kIdTxtAdd0;
    desktop_.Post([&app, index, text] { app.Set(TxtAddName(index), text); });
    return;
  }
  if (id >= kIdCmdInsert0 && id <= kIdCmdInsert2 && code == BN_CLICKED)
    return Insert(id - kIdCmdInsert0);
  const int sel = static_cast<int>(SendMessageW(control, LB_GETCURSEL, 0, 0));
  if (id == kIdLstChat && code == LBN_DBLCLK) {
    desktop_.Post([&app, sel] {
      app.Select("frmMessages.lstChat", sel);
      app.Press("frmMessages.lstChat");
    });
  } else if (id == kIdLstThankyou && code == LBN_SELCHANGE) {
    desktop_.Post([&app, sel] {
      app.Select("frmMessages.lstThankyou", sel);
      app.Press("frmMessages.lstThankyou");
    });
  } else if (id == kIdCmdSave && code == BN_CLICKED) {
    Close("frmMessages.cmdSave");
  } else if (id == kIdCmdExit && code == BN_CLICKED) {
    Close("frmMessages.cmdExit");
  }
}

// The inserts menu under the clicked button; the code goes in at the
// entry's caret.
void MessagesWindow::Insert(int index) {
  QuorvexApp& app = desktop_.app();
  const int page = app.frm().forms.frmMessages.tab;
  HWND edit = Item(kIdTxtAdd0 + page);
  DWORD start = 0;
  SendMessageW(edit, EM_GETSEL, reinterpret_cast<WPARAM>(&start), 0);
  const std::wstring text = Wide(WindowText(edit));
  const std::size_t caret =
      Utf8(text.substr(0, std::min<std::size_t>(start, text.size()))).size();
  RECT rc;
  GetWindowRect(Item(kIdCmdInsert0 + index), &rc);
  const std::string picked = TrackMenu(
      app.frm().menus, std::string(kMessagesMenuPrefix) + "mnuInserts", hwnd(),
      {rc.left, rc.bottom});
  if (picked.empty()) return;
  desktop_.Post([this, &app, page, caret, picked] {
    SetCaret(app.frm().forms.frmMessages, page, caret);
    app.Press(picked);
    Refresh();
  });
}

void MessagesWindow::Escape() {
  SendMessageW(Item(kIdCmdExit), BM_CLICK, 0, 0);
}

void MessagesWindow::Close(const char* button) {
  QuorvexApp& app = desktop_.app();
  desktop_.Post([&app, button] { app.Press(button); });
  Destroy();
}

}  // namespace quorvex::desktop
