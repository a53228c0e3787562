#include "app/quorvex_app.h"

#include "app/control_table.h"
#include "app/frm_room_buster.h"
#include "client/chat_room.h"
#include "client/chat_scanner.h"
#include "client/client_tree.h"
#include "client/session.h"
#include "model/draw_status.h"
#include "model/text_util.h"
#include "requests/ban_policy.h"
#include "requests/reply_order.h"
#include "requests/request_parser.h"
#include "server/machine_restart.h"
#include "server/serve_engine.h"
#include "settings/inserts.h"
#include "settings/menu_tree.h"
#include "settings/message_editor.h"
#include "settings/messages.h"
#include "settings/settings_store.h"

namespace quorvex {

namespace {}  // namespace

QuorvexApp::QuorvexApp(Ports ports)
    : frm_(ports),
      client_{ports.api, ports.host, frm_.settings, {}},
      log_(ports.machine, ports.host) {
  // A log that cannot be written loses its line, never the serving.
  frm_.events = [this](std::span<const JobEvent> e) { log_.Write(e); };
  client_.expand_inserts = [this](const std::string& text) {
    InsertValues v = MakeInsertValues(
        frm_.settings, frm_.ports.host.Now(), frm_.lists.pending.Count(),
        frm_.counts.counters.session, frm_.counts.counters.AOLCount,
        frm_.counts.counters.CPUCount, frm_.counts.counters.SentCount);
    return ExpandInserts(text, v);
  };
  BuildMenuTree(frm_.menus);
  engine_ = std::make_unique<ServeEngine>(MakeServeContext(frm_), client_,
                                          MakeServeJobs(frm_, client_));

  // The client restart and the room buster drive each other: the buster
  // restarts a signed-off client, the restart re-enters the room with it.
  frm_.forms.frmRoomBuster = std::make_unique<FrmRoomBuster>(client_, [this] {
    if (!frm_.aol_restart) return;
    frm_.aol_restart();
    if (!frm_.serving.ended)
      Emit(&frm_.events, JobOutcome::kClientRestarted, "", "room buster");
  });
  frm_.aol_restart = [this] {
    Ports& p = frm_.ports;
    AOLRestart(SessionContext{client_, p.machine, p.profiles,
                              frm_.controls.status, *frm_.forms.frmRoomBuster,
                              frm_.serving.room_name});
  };
  engine_->aol_restart = [this] { frm_.aol_restart(); };
  engine_->set_preferences = [this] { SetMailPreferences(client_); };
  frmChatroom_ = std::make_unique<FrmChatroom>(
      client_,
      [this](const std::string& text) {
        frm_.lists.ReplyQueue.Add(ReplyOrder::Say(text));
      },
      frm_.serving.ServerOn);
}

QuorvexApp::~QuorvexApp() = default;

SettingsMenuContext QuorvexApp::MenuContext() {
  return SettingsMenuContext{
      frm_.settings,          frm_.menus,
      frm_.ports.registry,    frm_.ports.prompter,
      &frm_.serving.ServerOn, &frm_.serving.ScrollSeconds};
}

void QuorvexApp::Say(const std::string& text) { ChatSend(client_, text); }

void QuorvexApp::SayBanner(const std::string& how) {
  Say("quorvex\xC2\xB0\xC2\xB7\xC2\xB2 mail server by kestrin");
  Say("<B><U>" + std::to_string(frm_.settings.TotalSent) +
      "</B></U> mails sent since installed");
  Say(how + " by <B><U>" + LCase(frm_.settings.Handle) + "</B></U>");
}

void QuorvexApp::Load() {
  Ports& p = frm_.ports;
  LoadSettings(frm_.settings, frm_.menus, p.registry, frm_.counts.lblSent,
               GetUserSN(p.api));
  LoadMessages(frm_.forms.frmMessages, p.registry);
  LoadBanning(p.registry, frm_.forms.frmBanning);
  p.registry.Save(kApp, "Settings", "Load", "True");
  p.registry.Save(kApp, "Settings", "Version", kVersion);
  frm_.controls.picTitle.Set(kWindowTitle);
  frm_.SetStatus("status: idle");
  main_form_.Open();
  Emit(&frm_.events, JobOutcome::kStarted, "", "program");

  // Chat lines reach the request parser from the start.
  scanner_ = std::make_unique<ChatScanner>(p.api, p.host);
  int reader = scanner_->Subscribe(
      [this](const std::string& sn, const std::string& text) {
        OnChatLine(sn, text);
      });
  scanner_->SetEnabled(reader, true);

  if (RestartPending(p.machine)) {
    // After a machine restart: the state file's queue, not Quorvex.INI's.
    ResumeServing(*engine_, MakeRestartContext(frm_), client_);
    return;
  }
  const std::string ini = p.machine.AppPath() + "\\Quorvex.INI";
  frm_.lists.pending.Load(
      PendingFile{p.profiles, p.machine.HostPath(ini),
                  [&p, ini] { return p.machine.FileExists(ini); },
                  [&p, ini] { p.machine.RemoveFile(ini); }},
      frm_.counts.lblPending);
  SayBanner("loaded");
}

void QuorvexApp::Unload() {
  Ports& p = frm_.ports;
  p.registry.Save(kApp, "Settings", "Load", "False");
  const PendingQueue& queue = frm_.lists.pending;
  if (queue.Save(p.profiles,
                 p.machine.HostPath(p.machine.AppPath() + "\\Quorvex.INI")))
    return;
  // Not lost when the state a machine restart saved holds it: the next
  // start restores that one.
  if (queue.HeldIn(p.profiles.Dump(p.machine.HostPath(kRestartStateFile)),
                   kRestartSection))
    return;
  Emit(&frm_.events,
       RequestEvents(JobOutcome::kLostWithFailedSave, queue.list().Items()));
}

void QuorvexApp::lblExit_Click() {
  SayBanner("unloaded");
  SaveSettings(frm_.settings, frm_.ports.registry);
  if (frm_.serving.Timer1) frm_.serving.Timer1->SetEnabled(false);
  if (frm_.serving.Timer2) frm_.serving.Timer2->SetEnabled(false);
  // The program's other windows go with it.
  frmChatroom_->Form_Unload();
  scanner_.reset();
  Unload();
  main_form_.Close();
  frm_.serving.ended = true;
  Emit(&frm_.events, JobOutcome::kStopped, "", "program");
}

void QuorvexApp::OnChatLine(const std::string& screen_name,
                            const std::string& text) {
  if (frm_.serving.ended) return;
  RequestContext ctx = MakeRequestContext(frm_);
  HandleChatLine(ctx, screen_name, text);
}

void QuorvexApp::lstBanned_Click(int index) {
  if (index != 2)
    return BannedLeftClick(frm_.lists.lstBanned, frm_.counts.lblBanned);
  // The right click opens the room people window on the room as it is.
  ListBox people("people");
  GetRoomPeople(frm_.ports.api, people, true);
  frm_.forms.frmRoom.Load(people.Items(), frm_.lists.lstBanned);
  frm_.forms.frmRoom.form.Open();
}

void QuorvexApp::mnuServeNChat_Click() {
  // Chat lines come from the one scanner, which runs once loaded.
  if (scanner_) frmChatroom_->Form_Load(*scanner_);
}

bool QuorvexApp::CanPress(const std::string& control, int index) {
  const Control* c = FindControl(control);
  return c && c->Presses(index);
}

void QuorvexApp::Press(const std::string& control, int index) {
  if (frm_.serving.ended) return;
  const Control* c = FindControl(control);
  if (c && c->Presses(index)) c->press(*this, index);
}

bool QuorvexApp::CanSelect(const std::string& list) {
  const Control* c = FindControl(list);
  return c && c->list;
}

void QuorvexApp::Select(const std::string& list, int index) {
  const Control* c = FindControl(list);
  if (!c || !c->list) return;
  if (ListBox* l = c->list(*this)) l->Select(index);
}

void QuorvexApp::SelectText(const std::string& list, const std::string& text) {
  const Control* c = FindControl(list);
  if (!c || !c->list) return;
  if (ListBox* l = c->list(*this)) l->Select(l->FindExact(text));
}

bool QuorvexApp::CanSet(const std::string& control) {
  const Control* c = FindControl(control);
  return c && c->set;
}

void QuorvexApp::Set(const std::string& control, const std::string& value) {
  const Control* c = FindControl(control);
  if (c && c->set) c->set(*this, value);
}

std::vector<const ListBox*> QuorvexApp::OpenLists() const {
  std::vector<const ListBox*> lists = {
      &frm_.lstPending(), &frm_.lists.lstBanned, &frm_.lists.lstMails,
      &frm_.forms.frmMessages.lstChat, &frm_.forms.frmMessages.lstThankyou};
  if (frm_.forms.frmRoom.form.open())
    lists.push_back(&frm_.forms.frmRoom.lstRoom);
  if (frmChatroom_->form.open()) lists.push_back(&frmChatroom_->lstPeople);
  return lists;
}

std::vector<const Label*> QuorvexApp::LabelsOf(bool closed_too) const {
  std::vector<const Label*> labels = {&frm_.counts.lblSession,
                                      &frm_.counts.lblLists,
                                      &frm_.counts.lblMails,
                                      &frm_.counts.lblSent,
                                      &frm_.counts.lblBanned,
                                      &frm_.counts.lblPending,
                                      &frm_.controls.cmdStart,
                                      &frm_.controls.cmdPause,
                                      &frm_.forms.frmRoomBuster->cmdStart,
                                      &frm_.forms.frmRoomBuster->lblBusts};
  if (closed_too || frmChatroom_->form.open())
    labels.push_back(&frmChatroom_->lblPeople);
  if (closed_too || frmAbout_.form.open())
    for (const Label* l : frmAbout_.Labels()) labels.push_back(l);
  if (closed_too || frmCredits_.form.open())
    for (const Label* l : frmCredits_.Labels()) labels.push_back(l);
  return labels;
}

std::vector<std::pair<std::string, const TextBox*>> QuorvexApp::OpenTexts()
    const {
  if (!frmChatroom_->form.open()) return {};
  return {{"frmChatroom.txtChat", &frmChatroom_->txtChat},
          {"frmChatroom.txtSend", &frmChatroom_->txtSend}};
}

std::vector<const Form*> QuorvexApp::Windows() const {
  return {&frm_.forms.frmBanning.form,
          &frm_.forms.frmRoom.form,
          &frm_.forms.frmMessages.form,
          &frm_.forms.frmRoomBuster->form,
          &frmChatroom_->form,
          &frm_.forms.frmPausing.form,
          &frmAbout_.form,
          &frmCredits_.form};
}

}  // namespace quorvex
