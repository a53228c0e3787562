#include "desktop/main_window.h"

#include "app/job_log.h"
#include "desktop/band.h"
#include "desktop/control_ids.h"
#include "desktop/desktop.h"
#include "desktop/menu_popup.h"
#include "model/draw_status.h"

namespace quorvex::desktop {

std::string LostLogLinesTitle(int lost) {
  return std::string(kWindowTitle) + " - " + LostLinesNotice(lost);
}

void MainWindow::Create() {
  CreateTopLevel(kMainClass, kWindowTitle, 80, 60, kWidth, kHeight);
  CreateControls();
  Bind();
  ShowWindow(hwnd(), SW_SHOW);
  UpdateWindow(hwnd());
}

void MainWindow::CreateControls() {
  CreateBand(hwnd(), kIdPicTitle, 0, 0, kWidth, 20, true);
  HWND minimize = Child(L"STATIC", "_", SS_CENTER | SS_NOTIFY, kWidth - 36, 3,
                        14, 14, kIdLblMinimize);
  HWND exit = Child(L"STATIC", "x", SS_CENTER | SS_NOTIFY, kWidth - 18, 3, 14,
                    14, kIdLblExit);
  SetWindowPos(minimize, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
  SetWindowPos(exit, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
  CreateBand(hwnd(), kIdPicStatus, 0, 21, kWidth, 18, false);

  // The counters, three to a row.
  const int col = (kWidth - 8) / 3;
  struct Counter {
    int id;
    const char* tip;
  };
  const Counter counters[] = {
      {kIdLblSession, "total mails sent this session"},
      {kIdLblLists, "lists you current are serving"},
      {kIdLblMails, "mails you are currently serving"},
      {kIdLblSent, "total mails sent since install"},
      {kIdLblBanned, nullptr},
      {kIdLblPending, nullptr},
  };
  for (int i = 0; i < 6; ++i) {
    HWND label = Child(L"STATIC", "", SS_LEFT | SS_NOTIFY, 6 + (i % 3) * col,
                       44 + (i / 3) * 16, col - 4, 15, counters[i].id);
    if (counters[i].tip) AddToolTip(hwnd(), label, counters[i].tip);
  }

  const DWORD list_style =
      LBS_NOTIFY | LBS_NOINTEGRALHEIGHT | WS_VSCROLL | WS_BORDER | WS_TABSTOP;
  Child(L"LISTBOX", "", list_style, 4, 80, 152, 160, kIdLstMails);
  HWND pending =
      Child(L"LISTBOX", "", list_style, 162, 80, 154, 98, kIdLstPending);
  HWND banned =
      Child(L"LISTBOX", "", list_style, 162, 182, 154, 58, kIdLstBanned);
  AddToolTip(hwnd(), pending, "right click for options");
  AddToolTip(hwnd(), banned, kBannedToolTip);
  OnMouseDown(banned, [this](UINT msg) { lstBanned_MouseDown(msg); });
  OnMouseDown(pending, [this](UINT msg) { lstPending_MouseDown(msg); });

  const int button = (kWidth - 20) / 4;
  const int ids[] = {kIdCmdStart, kIdCmdPause, kIdCmdFile, kIdCmdSettings};
  for (int i = 0; i < 4; ++i)
    Child(L"BUTTON", "", BS_PUSHBUTTON | WS_TABSTOP, 4 + i * (button + 4), 248,
          button, 24, ids[i]);
  SetText(Item(kIdCmdFile), "&file");
  SetText(Item(kIdCmdSettings), "&settings");
}

void MainWindow::Bind() {
  FrmMain& frm = desktop_.app().frm();
  HWND title = Item(kIdPicTitle);
  HWND status = Item(kIdPicStatus);
  SetBand(title, kBandColour, frm.controls.picTitle.caption());
  subs_.Add(frm.controls.picTitle, [title](const Label& l) {
    SetBand(title, kBandColour, l.caption());
  });
  SetBand(status, frm.controls.status.colour(), frm.controls.status.text());
  subs_.Add(frm.controls.status, [status](const StatusStrip& s) {
    SetBand(status, s.colour(), s.text());
  });
  BindLabel(Item(kIdLblSession), frm.counts.lblSession, subs_);
  BindLabel(Item(kIdLblLists), frm.counts.lblLists, subs_);
  BindLabel(Item(kIdLblMails), frm.counts.lblMails, subs_);
  BindLabel(Item(kIdLblSent), frm.counts.lblSent, subs_);
  BindLabel(Item(kIdLblBanned), frm.counts.lblBanned, subs_);
  BindLabel(Item(kIdLblPending), frm.counts.lblPending, subs_);
  BindLabel(Item(kIdCmdStart), frm.controls.cmdStart, subs_);
  BindLabel(Item(kIdCmdPause), frm.controls.cmdPause, subs_);
  BindList(Item(kIdLstMails), frm.lists.lstMails, subs_);
  BindList(Item(kIdLstPending), frm.lstPending(), subs_);
  BindList(Item(kIdLstBanned), frm.lists.lstBanned, subs_);
  // Lines of Quorvex.log that could not be written are told in the
  // window's text (its task-bar button, Alt+Tab); the drawn title and the
  // status strip keep theirs, and nothing waits for a click.
  HWND main = hwnd();
  subs_.Add(desktop_.app().log(), [main](const JobLog& log) {
    SetText(main, LostLogLinesTitle(log.failures()));
  });
}

LRESULT MainWindow::Handle(UINT msg, WPARAM wp, LPARAM lp) {
  switch (msg) {
    case kMsgMenuCommand:
      desktop_.RunMenu(
          MenuEntryName(desktop_.app().frm().menus, static_cast<int>(wp)));
      return 0;
    case WM_CONTEXTMENU:
      // From the keyboard (Shift+F10, the menu key): what a right click
      // on the list does; the mouse's own right clicks are handled as
      // they come.
      if (static_cast<short>(LOWORD(lp)) == -1 &&
          static_cast<short>(HIWORD(lp)) == -1) {
        HWND list = reinterpret_cast<HWND>(wp);
        if (list == Item(kIdLstPending)) {
          RECT rc;
          GetWindowRect(list, &rc);
          const std::string picked =
              TrackMenu(desktop_.app().frm().menus, "mnuPendings", hwnd(),
                        {rc.left, rc.top});
          if (!picked.empty()) desktop_.RunMenu(picked);
        } else if (list == Item(kIdLstBanned)) {
          desktop_.OpenRoom();
        }
        return 0;
      }
      break;
    case WM_CLOSE:
      // Closing from the task bar leaves as lblExit does.
      OnCommand(kIdLblExit, STN_CLICKED, nullptr);
      return 0;
  }
  return Window::Handle(msg, wp, lp);
}

void MainWindow::OnCommand(int id, int code, HWND) {
  QuorvexApp& app = desktop_.app();
  Desktop& d = desktop_;
  switch (id) {
    case kIdLblMinimize:
      if (code == STN_CLICKED) ShowWindow(hwnd(), SW_MINIMIZE);
      return;
    case kIdLblExit:
      if (code == STN_CLICKED)
        d.Post([&app, &d] {
          app.Press("lblExit");
          if (app.ended()) d.Close();
        });
      return;
    case kIdCmdStart:
      if (code == BN_CLICKED) d.Post([&app] { app.Press("cmdStart"); });
      return;
    case kIdCmdPause:
      if (code == BN_CLICKED) d.Post([&app] { app.Press("cmdPause"); });
      return;
    case kIdCmdFile:
      if (code == BN_CLICKED) PopUp("mnuFiles", kIdCmdFile);
      return;
    case kIdCmdSettings:
      if (code == BN_CLICKED) PopUp("mnuSettings", kIdCmdSettings);
      return;
    case kIdLstMails:
    case kIdLstPending:
      if (code == LBN_SELCHANGE) {
        const int sel =
            static_cast<int>(SendMessageW(Item(id), LB_GETCURSEL, 0, 0));
        const char* name = id == kIdLstMails ? "lstMails" : "lstPending";
        d.Post([&app, name, sel] { app.Select(name, sel); });
      }
      return;
  }
}

void MainWindow::PopUp(const std::string& menu, int button_id) {
  RECT rc;
  GetWindowRect(Item(button_id), &rc);
  const std::string picked =
      TrackMenu(desktop_.app().frm().menus, menu, hwnd(), {rc.left, rc.bottom});
  if (!picked.empty()) desktop_.RunMenu(picked);
}

// A left click removes the selected name; a right click opens the room
// people window to add one.
void MainWindow::lstBanned_MouseDown(UINT msg) {
  QuorvexApp& app = desktop_.app();
  if (msg == WM_LBUTTONDOWN) {
    const int sel =
        static_cast<int>(SendMessageW(Item(kIdLstBanned), LB_GETCURSEL, 0, 0));
    desktop_.Post([&app, sel] {
      app.Select("lstBanned", sel);
      app.Press("lstBanned", 1);
    });
  } else if (msg == WM_RBUTTONDOWN) {
    desktop_.OpenRoom();
  }
}

void MainWindow::lstPending_MouseDown(UINT msg) {
  if (msg != WM_RBUTTONUP) return;
  POINT at;
  GetCursorPos(&at);
  const std::string picked =
      TrackMenu(desktop_.app().frm().menus, "mnuPendings", hwnd(), at);
  if (!picked.empty()) desktop_.RunMenu(picked);
}

}  // namespace quorvex::desktop
