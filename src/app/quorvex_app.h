// The program as a person uses it: the main window's start-up and exit,
// and every control reachable by name (buttons, labels, menu entries,
// lists, option-window controls). The desktop program and quorvex-sim both
// drive the core through this class.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "app/frm_about.h"
#include "app/frm_chatroom.h"
#include "app/frm_credits.h"
#include "app/frm_main.h"
#include "app/job_log.h"
#include "client/client_context.h"
#include "model/form.h"
#include "settings/settings_menu.h"

namespace quorvex {

class ChatScanner;
class ServeEngine;

class QuorvexApp {
 public:
  explicit QuorvexApp(Ports ports);
  ~QuorvexApp();
  QuorvexApp(const QuorvexApp&) = delete;
  QuorvexApp& operator=(const QuorvexApp&) = delete;

  FrmMain& frm() { return frm_; }
  const FrmMain& frm() const { return frm_; }
  ClientContext& client() { return client_; }
  const JobLog& log() const { return log_; }
  JobLog& log() { return log_; }
  // The serving engine behind cmdStart, cmdPause and the timers; its
  // hooks (the client's restart) are set by whoever provides them.
  ServeEngine& engine() { return *engine_; }

  // The main window's load: settings, texts and banning options, the
  // "Load" marker, title and status, then the resume branch or the queue
  // from Quorvex.INI and the announcement in the room.
  void Load();
  // The unload and terminate handlers: "Load" = "False", queue saved.
  void Unload();
  bool ended() const { return frm_.serving.ended; }
  // The program stops where it stands (the machine goes down).
  void End() { frm_.serving.ended = true; }

  // A line said in the room, as the chat scanner raises it.
  void OnChatLine(const std::string& screen_name, const std::string& text);
  // ChatSend through the client's chat input.
  void Say(const std::string& text);
  // The program's banner in the room, ending "`how` by" the handle
  // ("loaded", "unloaded").
  void SayBanner(const std::string& how);

  // Controls by name, as the control table declares them. `index` is the
  // 1-based item of a preset group (0: none). Names may be qualified by
  // their window ("frmBanning.lblExit"); unqualified names are frmMain's.
  // A control that does not take the press, select or set does nothing.
  static bool CanPress(const std::string& control, int index);
  void Press(const std::string& control, int index = 0);
  static bool CanSelect(const std::string& list);
  void Select(const std::string& list, int index);
  // Selects the first item that reads `text`, case ignored; nothing is
  // selected when no item does.
  void SelectText(const std::string& list, const std::string& text);
  static bool CanSet(const std::string& control);
  void Set(const std::string& control, const std::string& value);

  // Every list box of every open window, by name, for views and the
  // final state.
  std::vector<const ListBox*> OpenLists() const;
  // Every label caption by name (those of the small windows while open).
  std::vector<const Label*> Labels() const { return LabelsOf(false); }
  // Every label any window can show, open or not: views and transcripts
  // subscribe to these once.
  std::vector<const Label*> AllLabels() const { return LabelsOf(true); }
  // The text boxes of open windows that show text the program writes.
  std::vector<std::pair<std::string, const TextBox*>> OpenTexts() const;
  // Every window but the main one.
  std::vector<const Form*> Windows() const;

  // The windows (beside frmMain's state).
  Form& frmMainForm() { return main_form_; }
  FrmChatroom& frmChatroom() { return *frmChatroom_; }
  FrmAbout& frmAbout() { return frmAbout_; }
  FrmCredits& frmCredits() { return frmCredits_; }

  // Handlers the control table calls.
  void lblExit_Click();
  void lblMinimize_Click() { main_form_.Minimize(); }
  void lstBanned_Click(int index);
  void mnuServeNChat_Click();
  SettingsMenuContext MenuContext();

 private:
  // The labels of frmMain and the room buster, then those of the other
  // windows: all of them, or only those of the windows that are open.
  std::vector<const Label*> LabelsOf(bool closed_too) const;

  Form main_form_{"frmMain"};
  FrmMain frm_;
  ClientContext client_;
  // Quorvex.log: every finished job and event (frm_.events writes here).
  JobLog log_;
  std::unique_ptr<ChatScanner> scanner_;
  std::unique_ptr<ServeEngine> engine_;
  // After the scanner: it is gone before the scanner it listens to.
  std::unique_ptr<FrmChatroom> frmChatroom_;
  FrmAbout frmAbout_;
  FrmCredits frmCredits_;
};

}  // namespace quorvex
