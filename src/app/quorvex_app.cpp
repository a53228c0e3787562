#include "app/quorvex_app.h"

#include <set>

#include "client/chat_room.h"
#include "client/chat_scanner.h"
#include "client/client_tree.h"
#include "client/room_buster.h"
#include "client/session.h"
#include "model/text_util.h"
#include "requests/ban_policy.h"
#include "requests/request_parser.h"
#include "server/machine_restart.h"
#include "server/replies.h"
#include "server/serve_engine.h"
#include "settings/inserts.h"
#include "settings/menu_tree.h"
#include "settings/message_editor.h"
#include "settings/messages.h"
#include "settings/settings_store.h"

namespace quorvex {

namespace {

constexpr const char* kTitle = "quorvex mail server by kestrin";

// Menu entries whose click handler is a settings handler, and the preset
// groups with their item counts.
const std::set<std::string>& SettingsEntries() {
  static const std::set<std::string> names = {
      "mnuHandle",     "mnuLAscii",     "mnuRAscii",     "mnuChatFont",
      "mnuMailNotify", "mnuMailResize", "mnuListNotify", "mnuMPList",
      "mnuFMax",       "mnuFMininum",   "mnuBEnableXY",  "mnuBMax",
      "mnuSStatus",    "mnuThankyou",   "mnuAOLRes",     "mnuCPURes",
      "mnuSentRes"};
  return names;
}

const std::set<std::string>& SettingsGroups() {
  static const std::set<std::string> names = {
      "mnuMSpeed",  "mnuMMethod", "mnuLSpeed",  "mnuLSend",
      "mnuFEnable", "mnuFSpeed",  "mnuBScroll", "mnuScrollMethod"};
  return names;
}

}  // namespace

QuorvexApp::QuorvexApp(Ports ports)
    : frm_(ports), client_{ports.api, ports.host, frm_.settings, {}} {
  client_.expand_inserts = [this](const std::string& text) {
    InsertValues v = MakeInsertValues(
        frm_.settings, frm_.ports.host.Now(), frm_.pending.Count(),
        frm_.counters.session, frm_.counters.AOLCount, frm_.counters.CPUCount,
        frm_.counters.SentCount);
    return ExpandInserts(text, v);
  };
  BuildMenuTree(frm_.menus);
  engine_ = std::make_unique<ServeEngine>(frm_, client_);

  // The client restart and the room buster drive each other: the buster
  // restarts a signed-off client, the restart re-enters the room with it.
  frm_.frmRoomBuster = std::make_unique<FrmRoomBuster>(client_, [this] {
    if (frm_.aol_restart) frm_.aol_restart();
  });
  frm_.aol_restart = [this] {
    Ports& p = frm_.ports;
    AOLRestart(SessionContext{client_, p.machine, p.profiles, frm_.status,
                              *frm_.frmRoomBuster, frm_.room_name});
  };
  engine_->aol_restart = [this] { frm_.aol_restart(); };
  engine_->set_preferences = [this] { SetMailPreferences(client_); };
}

QuorvexApp::~QuorvexApp() = default;

SettingsMenuContext QuorvexApp::MenuContext() {
  return SettingsMenuContext{frm_.settings,       frm_.menus,
                             frm_.ports.registry, frm_.ports.prompter,
                             &frm_.ServerOn,      &frm_.ScrollSeconds};
}

void QuorvexApp::Say(const std::string& text) { ChatSend(client_, text); }

void QuorvexApp::Load() {
  Ports& p = frm_.ports;
  LoadSettings(frm_.settings, frm_.menus, p.registry, frm_.lblSent,
               GetUserSN(p.api));
  LoadMessages(frm_.frmMessages, p.registry);
  LoadBanning(p.registry, frm_.frmBanning);
  p.registry.Save(kApp, "Settings", "Load", "True");
  p.registry.Save(kApp, "Settings", "Version", kVersion);
  frm_.picTitle.Set(kTitle);
  frm_.SetStatus("status: idle");

  // Chat lines reach the request parser from the start.
  scanner_ = std::make_unique<ChatScanner>(p.api, p.host);
  int reader = scanner_->Subscribe(
      [this](const std::string& sn, const std::string& text) {
        OnChatLine(sn, text);
      });
  scanner_->SetEnabled(reader, true);

  if (RestartPending(p.machine)) {
    // After a machine restart: the state file's queue, not Quorvex.INI's.
    ResumeServing(*engine_, frm_, client_);
    return;
  }
  const std::string ini = p.machine.AppPath() + "\\Quorvex.INI";
  frm_.pending.Load(PendingFile{p.profiles, p.machine.HostPath(ini),
                                [&p, ini] { return p.machine.FileExists(ini); },
                                [&p, ini] { p.machine.RemoveFile(ini); }},
                    frm_.lblPending);
  Say("quorvex\xC2\xB0\xC2\xB7\xC2\xB2 mail server by kestrin");
  Say("<B><U>" + std::to_string(frm_.settings.TotalSent) +
      "</B></U> mails sent since installed");
  Say("loaded by <B><U>" + LCase(frm_.settings.Handle) + "</B></U>");
}

void QuorvexApp::Unload() {
  Ports& p = frm_.ports;
  p.registry.Save(kApp, "Settings", "Load", "False");
  frm_.pending.Save(p.profiles,
                    p.machine.HostPath(p.machine.AppPath() + "\\Quorvex.INI"));
}

void QuorvexApp::lblExit_Click() {
  Say("quorvex\xC2\xB0\xC2\xB7\xC2\xB2 mail server by kestrin");
  Say("<B><U>" + std::to_string(frm_.settings.TotalSent) +
      "</B></U> mails sent since installed");
  Say("unloaded by <B><U>" + LCase(frm_.settings.Handle) + "</B></U>");
  SaveSettings(frm_.settings, frm_.ports.registry);
  if (frm_.Timer1) frm_.Timer1->SetEnabled(false);
  if (frm_.Timer2) frm_.Timer2->SetEnabled(false);
  scanner_.reset();
  Unload();
  frm_.ended = true;
}

void QuorvexApp::OnChatLine(const std::string& screen_name,
                            const std::string& text) {
  if (frm_.ended) return;
  RequestContext ctx{frm_.settings,  frm_.frmBanning, frm_.pending,
                     frm_.lstBanned, frm_.lstMails,   frm_.ReplyQueue,
                     frm_.lblPending};
  HandleChatLine(ctx, screen_name, text);
}

bool QuorvexApp::CanPress(const std::string& control, int index) const {
  static const std::set<std::string> plain = {"lblExit",
                                              "mnuClearALL",
                                              "mnuClearSN",
                                              "mnuRemoveSelected",
                                              "frmBanning.lblExit",
                                              "mnuMessages",
                                              "frmMessages.cmdSave",
                                              "frmMessages.cmdExit",
                                              "frmMessages.lstChat",
                                              "mnuBanOpts",
                                              "cmdStart",
                                              "cmdPause",
                                              "mnuMailSession",
                                              "mnuRoomBuster",
                                              "frmRoomBuster.cmdStart",
                                              "frmRoomBuster.lblExit",
                                              "frmRoom.lstRoom",
                                              "frmRoom.lblExit"};
  if (index == 0 && plain.count(control)) return true;
  if (control == "lstBanned") return index == 0 || index == 1 || index == 2;
  if (control == "frmMessages.Tab") return index >= 1 && index <= 3;
  if (control == "frmMessages.lstThankyou") return index >= 0;
  if (index == 0 && control.rfind("frmMessages.mnu", 0) == 0)
    return frm_.menus.Has(control);
  if (index == 0 && SettingsEntries().count(control)) return true;
  if (index > 0 && SettingsGroups().count(control))
    return frm_.menus.Has(MenuModel::ItemName(control, index));
  return false;
}

void QuorvexApp::Press(const std::string& control, int index) {
  if (frm_.ended) return;
  if (control == "lblExit") return lblExit_Click();
  if (control == "cmdStart") return engine_->cmdStart_Click();
  if (control == "cmdPause") return engine_->cmdPause_Click();
  if (control == "mnuMailSession") return mnuMailSession_Click(frm_, client_);
  if (control == "mnuRoomBuster") return frm_.frmRoomBuster->Form_Load();
  if (control.rfind("frmRoomBuster.", 0) == 0) {
    // Only an open window's controls can be clicked.
    FrmRoomBuster& buster = *frm_.frmRoomBuster;
    if (!buster.loaded()) return;
    if (control == "frmRoomBuster.cmdStart") buster.cmdStart_Click();
    if (control == "frmRoomBuster.lblExit") buster.lblExit_Click();
    return;
  }
  if (control == "mnuClearALL")
    return frm_.pending.mnuClearALL(frm_.lblPending);
  if (control == "mnuClearSN")
    return frm_.pending.mnuClearSN(frm_.ports.prompter, frm_.lblPending);
  if (control == "mnuRemoveSelected")
    return frm_.pending.mnuRemoveSelected(frm_.lblPending);
  if (control == "lstBanned") {
    if (index != 2) return BannedLeftClick(frm_.lstBanned, frm_.lblBanned);
    // The right click opens the room people window on the room as it is.
    ListBox people("people");
    GetRoomPeople(frm_.ports.api, people, true);
    frm_.frmRoom.Load(people.Items(), frm_.lstBanned);
    frm_.frmRoom_open = true;
    return;
  }
  if (control == "frmRoom.lstRoom") {
    if (frm_.frmRoom_open)
      frm_.frmRoom.DoubleClick(frm_.lstBanned, frm_.lblBanned, frm_.pending,
                               frm_.lblPending);
    return;
  }
  if (control == "frmRoom.lblExit") {
    frm_.frmRoom_open = false;
    return;
  }
  if (control == "frmBanning.lblExit")
    return SaveBanning(frm_.ports.registry, frm_.frmBanning);
  if (control == "mnuBanOpts") return;  // the options window shows its controls
  if (control == "mnuMessages")
    return frmMessages_Load(frm_.frmMessages, frm_.ports.registry);
  if (control == "frmMessages.cmdSave")
    return cmdSave_Click(frm_.frmMessages, frm_.ports.registry);
  if (control == "frmMessages.cmdExit") return cmdExit_Click(frm_.frmMessages);
  if (control == "frmMessages.Tab")
    return Tab_Click(frm_.frmMessages, index - 1);
  if (control == "frmMessages.lstChat")
    return lstChat_DblClick(frm_.frmMessages);
  if (control == "frmMessages.lstThankyou") {
    int item = frm_.frmMessages.lstThankyou.selected();
    if (item >= 0) lstThankyou_Click(frm_.frmMessages, item);
    return;
  }
  if (control.rfind("frmMessages.mnu", 0) == 0) {
    ClickInsertItem(frm_.frmMessages, control);
    return;
  }
  SettingsMenuContext ctx = MenuContext();
  ClickSettingsMenu(ctx, control, index);
}

ListBox* QuorvexApp::FindList(const std::string& name) {
  if (name == "lstPending") return &frm_.lstPending();
  if (name == "lstBanned") return &frm_.lstBanned;
  if (name == "frmRoom.lstRoom") return &frm_.frmRoom.lstRoom;
  if (name == "lstMails") return &frm_.lstMails;
  if (name == "frmMessages.lstChat" || name == "lstChat")
    return &frm_.frmMessages.lstChat;
  if (name == "frmMessages.lstThankyou" || name == "lstThankyou")
    return &frm_.frmMessages.lstThankyou;
  return nullptr;
}

bool QuorvexApp::CanSelect(const std::string& list) const {
  return const_cast<QuorvexApp*>(this)->FindList(list) != nullptr;
}

void QuorvexApp::Select(const std::string& list, int index) {
  if (ListBox* l = FindList(list)) l->Select(index);
}

bool QuorvexApp::CanSet(const std::string& control) const {
  static const std::set<std::string> names = {
      "frmBanning.cmbMistakes", "frmBanning.cmbMails",
      "frmBanning.chkPending",  "frmBanning.chkDupReqs",
      "frmBanning.chkFullBox",  "frmMessages.txtAdd(0)",
      "frmMessages.txtAdd(1)",  "frmMessages.txtAdd(2)",
      "frmPausing.chkCPU(0)",   "frmPausing.chkCPU(1)",
      "frmRoomBuster.txtRoom"};
  return names.count(control) > 0;
}

void QuorvexApp::Set(const std::string& control, const std::string& value) {
  BanningForm& b = frm_.frmBanning;
  auto check = [&value] { return static_cast<int>(Val(value)); };
  if (control == "frmBanning.cmbMistakes") b.cmbMistakes.text = value;
  if (control == "frmBanning.cmbMails") b.cmbMails.text = value;
  if (control == "frmBanning.chkPending") b.chkPending.value = check();
  if (control == "frmBanning.chkDupReqs") b.chkDupReqs.value = check();
  if (control == "frmBanning.chkFullBox") b.chkFullBox.value = check();
  if (control == "frmRoomBuster.txtRoom") {
    // A closed window, or the box disabled while busting, takes no typing.
    FrmRoomBuster& buster = *frm_.frmRoomBuster;
    if (buster.loaded() && buster.txtRoom.enabled) buster.txtRoom.text = value;
  }
  for (int i = 0; i < 2; ++i) {
    if (control == "frmPausing.chkCPU(" + std::to_string(i) + ")")
      frm_.frmPausing.chkCPU[i].value = check();
  }
  for (int i = 0; i < 3; ++i) {
    if (control == "frmMessages.txtAdd(" + std::to_string(i) + ")") {
      frm_.frmMessages.txtAdd[i].text = value;
      SetCaret(frm_.frmMessages, i, value.size());
    }
  }
}

std::vector<const ListBox*> QuorvexApp::OpenLists() const {
  std::vector<const ListBox*> lists = {
      &frm_.lstPending(), &frm_.lstBanned, &frm_.lstMails,
      &frm_.frmMessages.lstChat, &frm_.frmMessages.lstThankyou};
  if (frm_.frmRoom_open) lists.push_back(&frm_.frmRoom.lstRoom);
  return lists;
}

std::vector<const Label*> QuorvexApp::Labels() const {
  return {&frm_.lblSession,
          &frm_.lblLists,
          &frm_.lblMails,
          &frm_.lblSent,
          &frm_.lblBanned,
          &frm_.lblPending,
          &frm_.cmdStart,
          &frm_.cmdPause,
          &frm_.frmRoomBuster->cmdStart,
          &frm_.frmRoomBuster->lblBusts};
}

}  // namespace quorvex
