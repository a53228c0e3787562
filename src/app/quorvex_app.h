// The program as a person uses it: the main window's start-up and exit,
// and every control reachable by name (buttons, labels, menu entries,
// lists, option-window controls). The desktop program and quorvex-sim both
// drive the core through this class.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "client/client_context.h"
#include "server/frm_main.h"
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
  // The serving engine behind cmdStart, cmdPause and the timers; its
  // hooks (the client's restart) are set by whoever provides them.
  ServeEngine& engine() { return *engine_; }

  // The main window's load: settings, texts and banning options, the
  // "Load" marker, title and status, then the resume branch or the queue
  // from Quorvex.INI and the announcement in the room.
  void Load();
  // The unload and terminate handlers: "Load" = "False", queue saved.
  void Unload();
  bool ended() const { return frm_.ended; }
  // The program stops where it stands (the machine goes down).
  void End() { frm_.ended = true; }

  // A line said in the room, as the chat scanner raises it.
  void OnChatLine(const std::string& screen_name, const std::string& text);
  // ChatSend through the client's chat input.
  void Say(const std::string& text);

  // Controls by name. `index` is the 1-based item of a preset group
  // (0: none). Names may be qualified by their window ("frmBanning.lblExit");
  // unqualified names are frmMain's.
  bool CanPress(const std::string& control, int index) const;
  void Press(const std::string& control, int index = 0);
  bool CanSelect(const std::string& list) const;
  void Select(const std::string& list, int index);
  bool CanSet(const std::string& control) const;
  void Set(const std::string& control, const std::string& value);

  // Every list box of every open window, by name, for views and the
  // final state.
  std::vector<const ListBox*> OpenLists() const;
  // Every label caption by name.
  std::vector<const Label*> Labels() const;

 private:
  SettingsMenuContext MenuContext();
  ListBox* FindList(const std::string& name);
  void lblExit_Click();
  void frmBanning_lblExit_Click();
  void lstBanned_Click();

  FrmMain frm_;
  ClientContext client_;
  std::unique_ptr<ChatScanner> scanner_;
  std::unique_ptr<ServeEngine> engine_;
};

}  // namespace quorvex
