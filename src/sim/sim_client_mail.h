// The simulated client's mail: "Incoming/Saved Mail" with its open mails,
// the online mailbox's lists, the forward and Write Mail windows, sending
// now or later ("Mail Waiting to be Sent", Automatic AOL), delivery with
// its error lines, dead mails, and the tool bar's mail icons and menu.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "sim/popup_menu.h"
#include "sim/sim_client_prefs.h"
#include "sim/sim_client_session.h"
#include "sim/sim_client_shell.h"

namespace quorvex {

class SimClientMail : public SimClientPart {
 public:
  // A mail in "Mail Waiting to be Sent".
  struct WaitingMail {
    std::string to, subject, body;
  };

  SimClientMail(SimClientShell& shell, const SimClientSession& session,
                const SimClientPreferences& preferences);

  // One more mail at the end of "Incoming/Saved Mail"; the sender
  // defaults to the user.
  void AddMail(std::string title, std::string sender, std::string body);
  // Forwarding mail `number` (1-based position in "Incoming/Saved Mail")
  // fails: the mail is no longer available.
  void SetDeadMail(int number, bool dead);
  // The line the error window shows for `name` when a mail cannot reach
  // them, in place of "name - Mailbox is full"; "" restores that.
  void SetErrorLine(std::string_view name, std::string line);

  // The tool bar's Read, Write and mail menu icons.
  void ClickToolbarIcon(int icon);
  void ClickIcon(const ClientWindow& window, int icon);
  // Return in a mail list opens the selected mail.
  void OpenSelectedMail(const SimWindow& list);
  // A list message to a mail list.
  std::intptr_t ListMessage(SimWindow& list, unsigned msg,
                            std::uintptr_t wparam, std::string* out,
                            std::size_t buffer_chars);
  // A forward window goes with the mail it came from.
  void CloseForward(Hwnd forward);

  // The tool bar's mail menu, while open: its keys, and its close.
  bool menu_open() const { return popup_ != nullptr; }
  void MenuKeyDown(int vk);
  void MenuChar(char c);
  void CloseMenu();
  const PopupMenu* popup() const { return popup_.get(); }

  std::vector<std::string> IncomingTitles() const;
  int WaitingCount() const { return static_cast<int>(waiting_.size()); }
  // "Mail Waiting to be Sent", oldest first.
  std::vector<WaitingMail> Waiting() const;
  int SentCount() const { return static_cast<int>(sent_.size()); }

  void SaveTo(nlohmann::json& j) const;
  void RestoreFrom(const nlohmann::json& j);

 private:
  struct MailItem {
    std::uint64_t id = 0;
    std::string date, sender, title, body;
    bool dead = false;
  };
  struct OutMail {
    std::string date, to, cc, subject, body, forward_of;
    bool dead = false;
  };
  // What a mail window shows beyond its controls.
  struct MailWindow {
    std::uint64_t mail_id = 0;  // open mail, forward: the mail
    Hwnd open_mail = 0;         // forward: the open mail it came from
    bool sending = false;
    bool filled = false;         // compose windows: the icons carry texts
    bool spell_checked = false;  // compose windows: the spelling was checked
    int tab = 0;     // online mailbox: the active tab (0 new, 2 sent)
    int loaded = 0;  // online mailbox: sent mails listed so far
  };

  int ListCount(const SimWindow& list);
  std::string ListItem(const SimWindow& list, int i);
  Hwnd FindList(Hwnd parent, int which) const;
  void OpenIncoming();
  void OpenMail(const MailItem& mail);
  void OpenForward(Hwnd open_mail);
  void OpenWriteMail();
  void FillComposeIcons(Hwnd doc);
  void SendMail(Hwnd doc, bool now);
  void FinishSend(Hwnd doc, Hwnd status, const OutMail& mail);
  // Delivers a mail; the error lines for the names it could not reach.
  std::vector<std::string> Deliver(const OutMail& mail);
  void ShowErrors(const std::vector<std::string>& lines);
  void OpenOnlineMailbox(int tab);
  void FillSentList(Hwnd doc);
  void OpenWaiting();
  void DeleteListItem(Hwnd doc, int which);
  void RunAutomaticAol();
  void AutomaticAolStep(Hwnd modal);
  MailItem* MailById(std::uint64_t id);
  MailWindow* MailWindowOf(Hwnd doc);
  void OpenMailMenu();
  void MenuResult(PopupMenu::Result r);
  void SyncMenuWindows();
  void RunMailCommand(int command);
  void OnWindowGone(const SimWindow& w);

  const SimClientSession& session_;
  const SimClientPreferences& preferences_;

  std::vector<MailItem> incoming_;
  std::uint64_t next_mail_id_ = 1;
  std::set<int> dead_numbers_;  // numbers set before their mail came
  std::vector<OutMail> waiting_;
  std::vector<OutMail> sent_;
  // Error lines set for names (by ScreenNameKey).
  std::map<std::string, std::string> error_lines_;
  std::map<Hwnd, MailWindow> mail_windows_;

  std::unique_ptr<PopupMenu> popup_;
  std::vector<Hwnd> popup_windows_;
  bool popup_pending_ = false;
};

}  // namespace quorvex
