#include "app/control_table.h"

#include <algorithm>

#include "app/file_menu.h"
#include "app/quorvex_app.h"
#include "model/text_util.h"
#include "requests/ban_policy.h"
#include "server/replies.h"
#include "server/serve_engine.h"
#include "settings/inserts.h"
#include "settings/message_editor.h"
#include "settings/settings_menu.h"

namespace quorvex {

namespace {

constexpr int kReturn = 13;
constexpr int kMaxKeyCode = 99;

using Press = std::function<void(QuorvexApp&, int)>;
using Pick = std::function<ListBox*(QuorvexApp&)>;
using Put = std::function<void(QuorvexApp&, const std::string&)>;

// The window a qualified name names; frmMain for a bare one.
std::string WindowOf(const std::string& name) {
  const auto dot = name.find('.');
  return dot == std::string::npos ? "frmMain" : name.substr(0, dot);
}

Control Clicked(std::string name, ControlKind kind, Press press,
                int min_index = 0, int max_index = 0) {
  Control c{name, WindowOf(name), kind};
  c.min_index = min_index;
  c.max_index = max_index;
  c.press = std::move(press);
  return c;
}

Control Listed(std::string name, Pick list, Press press = nullptr,
               int max_index = 0) {
  Control c{name, WindowOf(name), ControlKind::kList};
  c.list = std::move(list);
  c.press = std::move(press);
  c.max_index = max_index;
  return c;
}

// A text box's press is a key typed in it: Return, unless the press names
// another key code.
Control Typed(std::string name, ControlKind kind, Put set,
              Press press = nullptr) {
  Control c{name, WindowOf(name), kind};
  c.set = std::move(set);
  c.press = std::move(press);
  if (c.press) c.max_index = kMaxKeyCode;
  return c;
}

int KeyOf(int index) { return index == 0 ? kReturn : index; }

void RemovedByUser(FrmMain& f, const std::vector<std::string>& lines) {
  Emit(&f.events, RequestEvents(JobOutcome::kRemovedByUser, lines));
}

// A check box's value as typed: its leading number.
int CheckValue(const std::string& value) {
  return static_cast<int>(Val(value));
}

std::vector<Control> MakeTable() {
  using K = ControlKind;
  std::vector<Control> t;

  // frmMain: buttons, labels, lists, and the menu bar.
  t.push_back(Clicked("cmdStart", K::kButton,
                      [](QuorvexApp& a, int) { a.engine().cmdStart_Click(); }));
  t.push_back(Clicked("cmdPause", K::kButton,
                      [](QuorvexApp& a, int) { a.engine().cmdPause_Click(); }));
  t.push_back(Clicked("lblExit", K::kLabel,
                      [](QuorvexApp& a, int) { a.lblExit_Click(); }));
  t.push_back(Clicked("lblMinimize", K::kLabel,
                      [](QuorvexApp& a, int) { a.lblMinimize_Click(); }));
  t.push_back(Listed("lstPending",
                     [](QuorvexApp& a) { return &a.frm().lstPending(); }));
  // A plain press is the left click; "lstBanned 2" the right click.
  t.push_back(Listed(
      "lstBanned", [](QuorvexApp& a) { return &a.frm().lists.lstBanned; },
      [](QuorvexApp& a, int index) { a.lstBanned_Click(index); }, 2));
  t.push_back(Listed("lstMails",
                     [](QuorvexApp& a) { return &a.frm().lists.lstMails; }));

  // The pending list's pop-up: what it removes is logged as it goes.
  t.push_back(Clicked("mnuClearALL", K::kMenu, [](QuorvexApp& a, int) {
    FrmMain& f = a.frm();
    RemovedByUser(f, f.lists.pending.mnuClearALL(f.counts.lblPending));
  }));
  t.push_back(Clicked("mnuClearSN", K::kMenu, [](QuorvexApp& a, int) {
    FrmMain& f = a.frm();
    RemovedByUser(
        f, f.lists.pending.mnuClearSN(f.ports.prompter, f.counts.lblPending));
  }));
  t.push_back(Clicked("mnuRemoveSelected", K::kMenu, [](QuorvexApp& a, int) {
    FrmMain& f = a.frm();
    RemovedByUser(f, f.lists.pending.mnuRemoveSelected(f.counts.lblPending));
  }));
  t.push_back(Clicked("mnuMailSession", K::kMenu, [](QuorvexApp& a, int) {
    mnuMailSession_Click(MakeReplyContext(a.frm()), a.client());
  }));
  for (const SettingsMenuHandler& h : SettingsMenuHandlers()) {
    const std::string name = h.name;
    t.push_back(Clicked(
        name, K::kMenu,
        [name](QuorvexApp& a, int index) {
          SettingsMenuContext ctx = a.MenuContext();
          ClickSettingsMenu(ctx, name, index);
        },
        h.items > 0 ? 1 : 0, h.items));
  }
  t.push_back(Clicked("mnuMessages", K::kMenu, [](QuorvexApp& a, int) {
    a.frm().forms.frmMessages.Form_Load(a.frm().ports.registry);
  }));
  t.push_back(Clicked("mnuRoomBuster", K::kMenu, [](QuorvexApp& a, int) {
    a.frm().forms.frmRoomBuster->Form_Load();
  }));
  t.push_back(Clicked("mnuServeNChat", K::kMenu,
                      [](QuorvexApp& a, int) { a.mnuServeNChat_Click(); }));
  t.push_back(Clicked("mnuBanOpts", K::kMenu, [](QuorvexApp& a, int) {
    a.frm().forms.frmBanning.form.Open();
  }));
  t.push_back(Clicked("mnuAbout", K::kMenu,
                      [](QuorvexApp& a, int) { a.frmAbout().Form_Load(); }));
  t.push_back(Clicked("mnuCredits", K::kMenu,
                      [](QuorvexApp& a, int) { a.frmCredits().Form_Load(); }));
  t.push_back(Clicked("mnuContactInfo", K::kMenu, [](QuorvexApp& a, int) {
    mnuContactInfo_Click(a.frm().ports.prompter);
  }));
  t.push_back(Clicked("mnuWeb", K::kMenu, [](QuorvexApp& a, int) {
    mnuWeb_Click(a.frm().ports.prompter);
  }));

  // frmBanning: its controls hold the options; closing saves them.
  t.push_back(Clicked("frmBanning.lblExit", K::kLabel, [](QuorvexApp& a, int) {
    SaveBanning(a.frm().ports.registry, a.frm().forms.frmBanning);
    a.frm().forms.frmBanning.form.Close();
  }));
  t.push_back(Typed("frmBanning.cmbMistakes", K::kComboBox,
                    [](QuorvexApp& a, const std::string& v) {
                      a.frm().forms.frmBanning.cmbMistakes.Set(v);
                    }));
  t.push_back(Typed("frmBanning.cmbMails", K::kComboBox,
                    [](QuorvexApp& a, const std::string& v) {
                      a.frm().forms.frmBanning.cmbMails.Set(v);
                    }));
  t.push_back(Typed("frmBanning.chkPending", K::kCheckBox,
                    [](QuorvexApp& a, const std::string& v) {
                      a.frm().forms.frmBanning.chkPending.Set(CheckValue(v));
                    }));
  t.push_back(Typed("frmBanning.chkDupReqs", K::kCheckBox,
                    [](QuorvexApp& a, const std::string& v) {
                      a.frm().forms.frmBanning.chkDupReqs.Set(CheckValue(v));
                    }));
  t.push_back(Typed("frmBanning.chkFullBox", K::kCheckBox,
                    [](QuorvexApp& a, const std::string& v) {
                      a.frm().forms.frmBanning.chkFullBox.Set(CheckValue(v));
                    }));

  // frmRoom: a press on lstRoom is the double click that bans.
  t.push_back(Listed(
      "frmRoom.lstRoom",
      [](QuorvexApp& a) { return &a.frm().forms.frmRoom.lstRoom; },
      [](QuorvexApp& a, int) {
        FrmMain& f = a.frm();
        if (!f.forms.frmRoom.form.open()) return;
        const std::string banned =
            f.forms.frmRoom.DoubleClick(f.lists.lstBanned, f.counts.lblBanned,
                                        f.lists.pending, f.counts.lblPending);
        if (!banned.empty())
          Emit(&f.events, JobOutcome::kBanned, banned, "by the user");
      }));
  t.push_back(Clicked("frmRoom.lblExit", K::kLabel, [](QuorvexApp& a, int) {
    a.frm().forms.frmRoom.form.Close();
  }));

  // frmMessages: the editor of the chat, mail and thank-you texts.
  t.push_back(
      Clicked("frmMessages.cmdSave", K::kButton, [](QuorvexApp& a, int) {
        a.frm().forms.frmMessages.cmdSave_Click(a.frm().ports.registry);
      }));
  t.push_back(Clicked(
      "frmMessages.cmdExit", K::kButton,
      [](QuorvexApp& a, int) { a.frm().forms.frmMessages.cmdExit_Click(); }));
  t.push_back(Clicked(
      "frmMessages.Tab", K::kTab,
      [](QuorvexApp& a, int index) {
        Tab_Click(a.frm().forms.frmMessages, index - 1);
      },
      1, 3));
  t.push_back(Listed(
      "frmMessages.lstChat",
      [](QuorvexApp& a) { return &a.frm().forms.frmMessages.lstChat; },
      [](QuorvexApp& a, int) { lstChat_DblClick(a.frm().forms.frmMessages); }));
  t.push_back(Listed(
      "frmMessages.lstThankyou",
      [](QuorvexApp& a) { return &a.frm().forms.frmMessages.lstThankyou; },
      [](QuorvexApp& a, int) {
        FrmMessages& m = a.frm().forms.frmMessages;
        if (m.lstThankyou.selected() >= 0)
          lstThankyou_Click(m, m.lstThankyou.selected());
      },
      99));
  for (const InsertMenuItem& item : kInsertMenuItems) {
    const std::string name = std::string("frmMessages.") + item.name;
    t.push_back(Clicked(name, K::kMenu, [name](QuorvexApp& a, int) {
      ClickInsertItem(a.frm().forms.frmMessages, name);
    }));
  }
  // Each entry line: set its text; a press is Return typed in it.
  for (int i = 0; i < 3; ++i) {
    t.push_back(Typed(
        "frmMessages.txtAdd(" + std::to_string(i) + ")", K::kTextBox,
        [i](QuorvexApp& a, const std::string& v) {
          FrmMessages& m = a.frm().forms.frmMessages;
          m.txtAdd[i].Set(v);
          SetCaret(m, i, v.size());
        },
        [i](QuorvexApp& a, int index) {
          txtAdd_KeyPress(a.frm().forms.frmMessages, i, KeyOf(index));
        }));
  }

  // frmPausing: shown by the restart options, consulted by nothing.
  for (int i = 0; i < 2; ++i) {
    t.push_back(Typed("frmPausing.chkCPU(" + std::to_string(i) + ")",
                      K::kCheckBox, [i](QuorvexApp& a, const std::string& v) {
                        a.frm().forms.frmPausing.chkCPU[i].Set(CheckValue(v));
                      }));
  }

  // frmRoomBuster: only an open window's controls can be used, and the
  // room box takes no typing while busting.
  t.push_back(
      Clicked("frmRoomBuster.cmdStart", K::kButton, [](QuorvexApp& a, int) {
        FrmRoomBuster& b = *a.frm().forms.frmRoomBuster;
        if (b.loaded()) b.cmdStart_Click();
      }));
  t.push_back(
      Clicked("frmRoomBuster.lblExit", K::kLabel, [](QuorvexApp& a, int) {
        FrmRoomBuster& b = *a.frm().forms.frmRoomBuster;
        if (b.loaded()) b.lblExit_Click();
      }));
  t.push_back(Typed("frmRoomBuster.txtRoom", K::kTextBox,
                    [](QuorvexApp& a, const std::string& v) {
                      FrmRoomBuster& b = *a.frm().forms.frmRoomBuster;
                      if (b.loaded() && b.txtRoom.enabled) b.txtRoom.Set(v);
                    }));

  // frmChatroom: the serve-and-chat window.
  t.push_back(Clicked("frmChatroom.lblExit", K::kLabel, [](QuorvexApp& a, int) {
    a.frmChatroom().lblExit_Click();
  }));
  t.push_back(Typed(
      "frmChatroom.txtSend", K::kTextBox,
      [](QuorvexApp& a, const std::string& v) {
        if (a.frmChatroom().form.open()) a.frmChatroom().txtSend.Set(v);
      },
      [](QuorvexApp& a, int index) {
        if (a.frmChatroom().form.open())
          a.frmChatroom().txtSend_KeyPress(KeyOf(index));
      }));
  t.push_back(Listed("frmChatroom.lstPeople",
                     [](QuorvexApp& a) { return &a.frmChatroom().lstPeople; }));

  // frmAbout and frmCredits close by their exit labels.
  t.push_back(Clicked("frmAbout.lblExit", K::kLabel, [](QuorvexApp& a, int) {
    a.frmAbout().lblExit_Click();
  }));
  t.push_back(Clicked("frmCredits.lblExit", K::kLabel, [](QuorvexApp& a, int) {
    a.frmCredits().lblExit_Click();
  }));
  return t;
}

}  // namespace

const std::vector<Control>& ControlTable() {
  static const std::vector<Control> table = MakeTable();
  return table;
}

const Control* FindControl(std::string_view name) {
  const std::vector<Control>& t = ControlTable();
  auto it = std::find_if(t.begin(), t.end(),
                         [name](const Control& c) { return c.name == name; });
  return it == t.end() ? nullptr : &*it;
}

}  // namespace quorvex
