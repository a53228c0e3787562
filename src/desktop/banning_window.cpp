#include "desktop/banning_window.h"

#include "desktop/control_ids.h"
#include "desktop/desktop.h"
#include "desktop/wide_text.h"

namespace quorvex::desktop {

namespace {

void FillCombo(HWND combo, const ComboBox& model) {
  for (const std::string& choice : model.choices)
    SendMessageW(combo, CB_ADDSTRING, 0,
                 reinterpret_cast<LPARAM>(Wide(choice).c_str()));
  SetText(combo, model.text);
}

// The text a combo box is about to show: on a pick from the list, the
// picked item (its edit still holds the old text when it says so).
std::string ComboText(HWND combo, int code) {
  if (code == CBN_SELCHANGE) {
    const LRESULT sel = SendMessageW(combo, CB_GETCURSEL, 0, 0);
    if (sel != CB_ERR) {
      const LRESULT n = SendMessageW(combo, CB_GETLBTEXTLEN, sel, 0);
      std::wstring text(static_cast<std::size_t>(n) + 1, L'\0');
      SendMessageW(combo, CB_GETLBTEXT, sel,
                   reinterpret_cast<LPARAM>(text.data()));
      text.resize(static_cast<std::size_t>(n));
      return Utf8(text);
    }
  }
  return WindowText(combo);
}

}  // namespace

void BanningWindow::Open(POINT at) {
  if (open()) return;
  CreateSmall(kBanningClass, "banning options", at.x, at.y, 300, 166);
  const BanningForm& b = desktop_.app().frm().frmBanning;
  const DWORD check = BS_AUTOCHECKBOX | WS_TABSTOP;
  const DWORD combo = CBS_DROPDOWN | WS_VSCROLL | WS_TABSTOP;
  Child(L"STATIC", "number of mistakes before banning the requester", SS_LEFT,
        8, 28, 200, 30, 0);
  FillCombo(Child(L"COMBOBOX", "", combo, 232, 30, 60, 200, kIdCmbMistakes),
            b.cmbMistakes);
  Child(L"BUTTON", "ban for having", check, 8, 68, 100, 18, kIdChkPending);
  FillCombo(Child(L"COMBOBOX", "", combo, 110, 67, 60, 200, kIdCmbMails),
            b.cmbMails);
  Child(L"STATIC", "pending", SS_LEFT, 176, 70, 60, 16, 0);
  Child(L"BUTTON", "ban for duplicate requestings", check, 8, 96, 250, 18,
        kIdChkDupReqs);
  Child(L"BUTTON", "ban for full mail box", check, 8, 122, 250, 18,
        kIdChkFullBox);
  SendMessageW(Item(kIdChkPending), BM_SETCHECK, b.chkPending.value, 0);
  SendMessageW(Item(kIdChkDupReqs), BM_SETCHECK, b.chkDupReqs.value, 0);
  SendMessageW(Item(kIdChkFullBox), BM_SETCHECK, b.chkFullBox.value, 0);
  ShowWindow(hwnd(), SW_SHOW);
}

void BanningWindow::OnControl(int id, int code, HWND control) {
  const char* name = nullptr;
  std::string value;
  switch (id) {
    case kIdCmbMistakes:
    case kIdCmbMails:
      if (code != CBN_EDITCHANGE && code != CBN_SELCHANGE) return;
      name = id == kIdCmbMistakes ? "frmBanning.cmbMistakes"
                                  : "frmBanning.cmbMails";
      value = ComboText(control, code);
      break;
    case kIdChkPending:
    case kIdChkDupReqs:
    case kIdChkFullBox:
      if (code != BN_CLICKED) return;
      name = id == kIdChkPending   ? "frmBanning.chkPending"
             : id == kIdChkDupReqs ? "frmBanning.chkDupReqs"
                                   : "frmBanning.chkFullBox";
      value.assign(1, SendMessageW(control, BM_GETCHECK, 0, 0) == BST_CHECKED
                          ? '1'
                          : '0');
      break;
    default:
      return;
  }
  QuorvexApp& app = desktop_.app();
  desktop_.Post([&app, name, value] { app.Set(name, value); });
}

}  // namespace quorvex::desktop
