#include "desktop/chat_window.h"

#include "desktop/band.h"
#include "desktop/control_ids.h"
#include "desktop/desktop.h"
#include "model/draw_status.h"

namespace quorvex::desktop {

namespace {
constexpr const char* kTxtSend = "frmChatroom.txtSend";
constexpr int kReturn = 13;
}  // namespace

void ChatroomWindow::Open() {
  FrmChatroom& form = desktop_.app().frmChatroom();
  if (open() || !form.form.open()) return;
  CreateSmall(kChatroomClass, desktop_.Title("mnuServeNChat"), 0, 0, kWidth,
              kHeight);
  HWND title = Item(kIdPicTitle);
  SetBand(title, kBandColour, form.picTitle.caption());
  subs_.Add(form.picTitle, [title](const Label& l) {
    SetBand(title, kBandColour, l.caption());
  });
  Child(L"EDIT", "",
        ES_MULTILINE | ES_READONLY | ES_AUTOVSCROLL | WS_VSCROLL | WS_BORDER, 6,
        26, 208, 170, kIdTxtChat);
  Child(L"LISTBOX", "",
        LBS_NOINTEGRALHEIGHT | LBS_NOSEL | WS_VSCROLL | WS_BORDER | WS_TABSTOP,
        220, 26, 94, 150, kIdLstPeople);
  Child(L"STATIC", "", SS_LEFT, 222, 180, 92, 16, kIdLblPeople);
  HWND send = Child(L"EDIT", "", ES_AUTOHSCROLL | WS_BORDER | WS_TABSTOP, 6,
                    204, 308, 22, kIdTxtSend);
  BindText(Item(kIdTxtChat), form.txtChat, subs_);
  BindList(Item(kIdLstPeople), form.lstPeople, subs_);
  BindLabel(Item(kIdLblPeople), form.lblPeople, subs_);
  // The line is the person's until the model empties it (once said or
  // queued, or when the window is reset).
  subs_.Add(form.txtSend, [this, send](const TextBox& box) {
    if (!box.text.empty() || WindowText(send).empty()) return;
    following_ = true;
    SetText(send, "");
    following_ = false;
  });
  OnChar(send, [this](wchar_t key) {
    if (key != L'\r') return false;
    txtSend_Return();
    return true;
  });
  ShowWindow(hwnd(), SW_SHOW);
  SetFocus(send);
}

void ChatroomWindow::OnControl(int id, int code, HWND control) {
  if (id != kIdTxtSend || code != EN_CHANGE || following_) return;
  QuorvexApp& app = desktop_.app();
  const std::string text = WindowText(control);
  desktop_.Post([&app, text] { app.Set(kTxtSend, text); });
}

// Return hands the line as it stands to the model, which says it, queues
// it or (when empty) does nothing.
void ChatroomWindow::txtSend_Return() {
  QuorvexApp& app = desktop_.app();
  const std::string text = WindowText(Item(kIdTxtSend));
  desktop_.Post([&app, text] {
    app.Set(kTxtSend, text);
    app.Press(kTxtSend, kReturn);
  });
}

}  // namespace quorvex::desktop
