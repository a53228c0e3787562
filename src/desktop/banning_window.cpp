#include "desktop/banning_window.h"

#include "app/frm_banning.h"
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

// The item chosen in a combo box's list (its edit may still hold the old
// text when the box says so); nothing when none is.
bool ChosenItem(HWND combo, std::string& text) {
  const LRESULT sel = SendMessageW(combo, CB_GETCURSEL, 0, 0);
  if (sel == CB_ERR) return false;
  const LRESULT n = SendMessageW(combo, CB_GETLBTEXTLEN, sel, 0);
  std::wstring item(static_cast<std::size_t>(n) + 1, L'\0');
  SendMessageW(combo, CB_GETLBTEXT, sel, reinterpret_cast<LPARAM>(item.data()));
  item.resize(static_cast<std::size_t>(n));
  text = Utf8(item);
  return true;
}

}  // namespace

void BanningWindow::Open() {
  if (open()) return;
  CreateSmall(kBanningClass, desktop_.Title("mnuBanOpts"), 0, 0, 300, 166);
  const FrmBanning& b = desktop_.app().frm().forms.frmBanning;
  const DWORD check = BS_AUTOCHECKBOX | WS_TABSTOP;
  const DWORD combo = CBS_DROPDOWN | WS_VSCROLL | WS_TABSTOP;
  Child(L"STATIC", kMistakesCaption, SS_LEFT, 8, 28, 200, 30, 0);
  FillCombo(Child(L"COMBOBOX", "", combo, 232, 30, 60, 200, kIdCmbMistakes),
            b.cmbMistakes);
  Child(L"BUTTON", kPendingCaptionBefore, check, 8, 68, 100, 18, kIdChkPending);
  FillCombo(Child(L"COMBOBOX", "", combo, 110, 67, 60, 200, kIdCmbMails),
            b.cmbMails);
  Child(L"STATIC", kPendingCaptionAfter, SS_LEFT, 176, 70, 60, 16, 0);
  Child(L"BUTTON", kDupReqsCaption, check, 8, 96, 250, 18, kIdChkDupReqs);
  Child(L"BUTTON", kFullBoxCaption, check, 8, 122, 250, 18, kIdChkFullBox);
  SendMessageW(Item(kIdChkPending), BM_SETCHECK, b.chkPending.value, 0);
  SendMessageW(Item(kIdChkDupReqs), BM_SETCHECK, b.chkDupReqs.value, 0);
  SendMessageW(Item(kIdChkFullBox), BM_SETCHECK, b.chkFullBox.value, 0);
  for (int id : {kIdCmbMistakes, kIdCmbMails}) {
    HWND combo = Item(id);
    subs_.Add(Model(id), [this, combo](const ComboBox& model) {
      ShowStored(combo, model);
    });
  }
  ShowWindow(hwnd(), SW_SHOW);
}

ComboBox& BanningWindow::Model(int id) {
  FrmBanning& b = desktop_.app().frm().forms.frmBanning;
  return id == kIdCmbMistakes ? b.cmbMistakes : b.cmbMails;
}

void BanningWindow::ShowStored(HWND combo, const ComboBox& model) {
  if (!open() || WindowText(combo) == model.text) return;
  following_ = true;
  SetText(combo, model.text);
  following_ = false;
}

// What the person typed, or chose from the list (by a click or Return in
// the open list, or an arrow key while it is closed), is stored. Browsing
// the open list stores nothing, and once the list closes the box shows
// what is stored, whatever the list left in its edit.
void BanningWindow::OnCombo(int id, int code, HWND combo) {
  const char* name =
      id == kIdCmbMistakes ? "frmBanning.cmbMistakes" : "frmBanning.cmbMails";
  std::string value;
  switch (code) {
    case CBN_EDITCHANGE:
      if (following_) return;
      value = WindowText(combo);
      break;
    case CBN_SELCHANGE:
      if (SendMessageW(combo, CB_GETDROPPEDSTATE, 0, 0)) return;
      [[fallthrough]];
    case CBN_SELENDOK:
      if (!ChosenItem(combo, value)) return;
      break;
    case CBN_CLOSEUP:
    case CBN_SELENDCANCEL:
      // After the box has done with its edit, and after any choice handed
      // to the model before.
      desktop_.Post([this, id, combo] { ShowStored(combo, Model(id)); });
      return;
    default:
      return;
  }
  QuorvexApp& app = desktop_.app();
  desktop_.Post([&app, name, value] { app.Set(name, value); });
}

void BanningWindow::OnControl(int id, int code, HWND control) {
  const char* name = nullptr;
  std::string value;
  switch (id) {
    case kIdCmbMistakes:
    case kIdCmbMails:
      return OnCombo(id, code, control);
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
