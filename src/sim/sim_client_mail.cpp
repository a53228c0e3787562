#include "sim/sim_client_mail.h"

#include <algorithm>
#include <functional>

#include "model/text_util.h"
#include "ports/client_windows.h"
#include "sim/recipients.h"
#include "sim/sim_client.h"

namespace quorvex {

namespace {

constexpr char kNoRecipientText[] = "You must specify at least one recipient.";
constexpr char kSendingText[] = "Sending mail...";
constexpr char kSessionRunning[] = "AOL session is in progress.";
constexpr char kSessionDone[] = "AOL session is complete.";

// Send Now is the 14th icon of a forward window, Send Later the 15th.
const std::vector<const char*> kForwardIcons = {
    "Font Color",     "Background Color",
    "Bold",           "Italic",
    "Underline",      "Left",
    "Center",         "Right",
    "Smaller",        "Larger",
    "Spell Check",    "Insert Picture",
    "Favorite Place", "Send Now",
    "Send Later",     "Attachments",
    "Address Book"};
// In Write Mail they are the 16th and 17th.
const std::vector<const char*> kWriteIcons = {
    "Font Color",     "Background Color",
    "Bold",           "Italic",
    "Underline",      "Left",
    "Center",         "Right",
    "Justify",        "Smaller",
    "Normal",         "Larger",
    "Spell Check",    "Insert Picture",
    "Favorite Place", "Send Now",
    "Send Later",     "Attachments",
    "Address Book"};
// Forward is the 8th icon of an open mail.
const std::vector<const char*> kOpenMailIcons = {
    "Previous", "Next",      "Keep As New", "Print", "Save",
    "Reply",    "Reply All", "Forward",     "Delete"};
// Delete is the 7th icon of the online mailbox.
const std::vector<const char*> kOnlineMailboxIcons = {
    "Read",  "Status",  "Keep As New", "Save",
    "Reply", "Forward", "Delete",      "Help"};
const char* const kTabNames[] = {"New Mail", "Old Mail", "Sent Mail"};

// The icons a mail window shows before it is complete.
std::vector<const char*> FirstIcons(const std::vector<const char*>& all) {
  constexpr std::size_t kEarly = 5;
  return {all.begin(), all.begin() + std::min(kEarly, all.size())};
}

// The tool bar's first icon reads the online mailbox; in the lists'
// windows, Read is the first icon too.
constexpr int kToolbarReadIcon = 1;
constexpr int kReadIcon = 1;
constexpr int kSendAllIcon = 3;

enum MailCommand : int {
  kCmdNone = 0,
  kCmdReadMail,
  kCmdWriteMail,
  kCmdOldMail,
  kCmdSentMail,
  kCmdWaiting,
  kCmdAutoAol,
  kCmdIncoming,
};

// The tool bar's mail menu. From no highlight, Up, Up, Right, Return
// reaches "Incoming/Saved Mail" through "Read Offline Mail".
std::vector<MenuItem> MailMenuItems() {
  return {
      {"&Read Mail", kCmdReadMail, {}},
      {"&Write Mail", kCmdWriteMail, {}},
      {"Ol&d Mail", kCmdOldMail, {}},
      {"&Sent Mail", kCmdSentMail, {}},
      {"Mail Waiting to &be Sent", kCmdWaiting, {}},
      {"&Automatic AOL", kCmdAutoAol, {}},
      {"Address Boo&k", kCmdNone, {}},
      {"Read &Offline Mail",
       0,
       {{"&Incoming/Saved Mail", kCmdIncoming, {}},
        {"Mail I've Sen&t", kCmdNone, {}}}},
      {"Mail &Preferences", kCmdNone, {}},
  };
}

}  // namespace

SimClientMail::SimClientMail(SimClientShell& shell,
                             const SimClientSession& session,
                             const SimClientPreferences& preferences)
    : SimClientPart(shell), session_(session), preferences_(preferences) {
  shell_.OnWindowGone([this](const SimWindow& w) { OnWindowGone(w); });
  shell_.OnSessionEnd([this] {
    popup_.reset();
    popup_pending_ = false;
  });
}

void SimClientMail::OnWindowGone(const SimWindow& w) {
  mail_windows_.erase(w.hwnd);
  auto pw = std::find(popup_windows_.begin(), popup_windows_.end(), w.hwnd);
  if (pw != popup_windows_.end()) popup_windows_.erase(pw);
}

void SimClientMail::AddMail(std::string title, std::string sender,
                            std::string body) {
  MailItem m;
  m.id = next_mail_id_++;
  m.date = shell_.Today();
  m.sender = std::move(sender);  // empty: the user, whatever the name
  m.title = std::move(title);
  m.body = std::move(body);
  int number = static_cast<int>(incoming_.size()) + 1;
  m.dead = dead_numbers_.count(number) > 0;
  incoming_.push_back(std::move(m));
}

void SimClientMail::SetDeadMail(int number, bool dead) {
  if (dead)
    dead_numbers_.insert(number);
  else
    dead_numbers_.erase(number);
  if (number >= 1 && number <= static_cast<int>(incoming_.size()))
    incoming_[number - 1].dead = dead;
}

void SimClientMail::SetErrorLine(std::string_view name, std::string line) {
  if (line.empty())
    error_lines_.erase(ScreenNameKey(name));
  else
    error_lines_[ScreenNameKey(name)] = std::move(line);
}

std::vector<std::string> SimClientMail::IncomingTitles() const {
  std::vector<std::string> out;
  for (const MailItem& m : incoming_) out.push_back(m.title);
  return out;
}

std::vector<SimClientMail::WaitingMail> SimClientMail::Waiting() const {
  std::vector<WaitingMail> out;
  for (const OutMail& m : waiting_)
    out.push_back(
        {m.cc.empty() ? m.to : m.to + ", " + m.cc, m.subject, m.body});
  return out;
}

SimClientMail::MailItem* SimClientMail::MailById(std::uint64_t id) {
  for (MailItem& m : incoming_)
    if (m.id == id) return &m;
  return nullptr;
}

SimClientMail::MailWindow* SimClientMail::MailWindowOf(Hwnd doc) {
  // Only a live window has a record: one gone leaves none behind.
  return shell_.windows.count(doc) ? &mail_windows_[doc] : nullptr;
}

// --- the tool bar and its mail menu ---

void SimClientMail::ClickToolbarIcon(int icon) {
  if (icon == kToolbarReadIcon && session_.signed_on()) {
    MarkBusy();
    Later(knobs_.latency, [this] { OpenOnlineMailbox(0); });
  } else if (icon == aol::kToolbarWriteIcon) {
    MarkBusy();
    Later(knobs_.latency, [this] { OpenWriteMail(); });
  } else if (icon == aol::kToolbarMailIcon) {
    OpenMailMenu();
  }
}

void SimClientMail::OpenMailMenu() {
  if (popup_ || popup_pending_) return;
  popup_pending_ = true;
  MarkBusy();
  Later(knobs_.latency, [this] {
    popup_pending_ = false;
    popup_ = std::make_unique<PopupMenu>(MailMenuItems());
    SyncMenuWindows();
  });
}

void SimClientMail::SyncMenuWindows() {
  std::size_t want = popup_ ? static_cast<std::size_t>(popup_->depth()) : 0;
  while (popup_windows_.size() > want) tree_.Destroy(popup_windows_.back());
  while (popup_windows_.size() < want)
    popup_windows_.push_back(
        shell_.NewTopLevel(SimWindowKind::kMenu, aol::kPopupMenuClass, ""));
  if (want == 0) popup_.reset();
}

void SimClientMail::MenuKeyDown(int vk) {
  if (popup_) MenuResult(popup_->KeyDown(vk));
}

void SimClientMail::MenuChar(char c) {
  if (popup_) MenuResult(popup_->Char(c));
}

void SimClientMail::CloseMenu() {
  popup_.reset();
  SyncMenuWindows();
}

void SimClientMail::MenuResult(PopupMenu::Result r) {
  if (r == PopupMenu::Result::kChosen) {
    int command = popup_->chosen();
    popup_.reset();
    SyncMenuWindows();
    RunMailCommand(command);
    return;
  }
  if (r == PopupMenu::Result::kClosed) popup_.reset();
  SyncMenuWindows();
}

void SimClientMail::RunMailCommand(int command) {
  std::function<void()> open;
  switch (command) {
    case kCmdReadMail:
    case kCmdOldMail:
    case kCmdSentMail:
      if (!session_.signed_on()) return;
      open = [this, command] {
        OpenOnlineMailbox(command == kCmdReadMail  ? 0
                          : command == kCmdOldMail ? 1
                                                   : 2);
      };
      break;
    case kCmdWriteMail:
      open = [this] { OpenWriteMail(); };
      break;
    case kCmdWaiting:
      open = [this] { OpenWaiting(); };
      break;
    case kCmdIncoming:
      open = [this] { OpenIncoming(); };
      break;
    case kCmdAutoAol:
      open = [this] { RunAutomaticAol(); };
      break;
    default:
      return;
  }
  MarkBusy();
  Later(knobs_.latency, std::move(open));
}

// --- the mail windows' icons ---

void SimClientMail::ClickIcon(const ClientWindow& window, int icon) {
  const Hwnd doc = window.hwnd;
  switch (window.kind) {
    case SimWindowKind::kIncoming:
      if (icon == kReadIcon) {
        Hwnd t = tree_.NthChild(doc, aol::kTreeClass, 1);
        if (t) OpenSelectedMail(*tree_.Get(t));
      }
      break;
    case SimWindowKind::kOpenMail:
      if (icon == aol::kOpenMailForwardIcon) {
        MarkBusy();
        Later(knobs_.latency, [this, doc] {
          if (shell_.windows.count(doc)) OpenForward(doc);
        });
      }
      break;
    case SimWindowKind::kForward:
    case SimWindowKind::kWriteMail: {
      const bool forward = window.kind == SimWindowKind::kForward;
      const int now =
          forward ? aol::kForwardSendNowIcon : aol::kWriteSendNowIcon;
      const int later =
          forward ? aol::kForwardSendLaterIcon : aol::kWriteSendLaterIcon;
      const MailWindow* mw = MailWindowOf(doc);
      if (!mw || !mw->filled) break;
      if (icon == now) SendMail(doc, true);
      if (icon == later) SendMail(doc, false);
      break;
    }
    case SimWindowKind::kOnlineMailbox:
      if (icon == aol::kMailboxDeleteIcon)
        DeleteListItem(doc, kTreeNew + MailWindowOf(doc)->tab);
      break;
    case SimWindowKind::kWaiting:
      if (icon == aol::kWaitingDeleteIcon) DeleteListItem(doc, kTreeWaiting);
      if (icon == kSendAllIcon) RunAutomaticAol();
      break;
    case SimWindowKind::kError:
    case SimWindowKind::kAutoAol:
      tree_.Destroy(doc);
      break;
    default:
      break;
  }
}

// --- the lists ---

Hwnd SimClientMail::FindList(Hwnd parent, int which) const {
  for (Hwnd h : tree_.Children(parent)) {
    const SimWindow* w = tree_.Get(h);
    if (w->role == kRoleTree && w->tag == which) return h;
    if (Hwnd found = FindList(h, which)) return found;
  }
  return 0;
}

int SimClientMail::ListCount(const SimWindow& list) {
  switch (list.tag) {
    case kTreeIncoming:
      return static_cast<int>(incoming_.size());
    case kTreeSent: {
      const ClientWindow* owner = shell_.WindowOf(list.hwnd);
      const MailWindow* mw = owner ? MailWindowOf(owner->hwnd) : nullptr;
      return std::min(mw ? mw->loaded : 0, static_cast<int>(sent_.size()));
    }
    case kTreeWaiting:
      return static_cast<int>(waiting_.size());
    case kTreeBuddies:
      return 3;
    default:  // new and old mail: nothing waits online
      return 0;
  }
}

std::string SimClientMail::ListItem(const SimWindow& list, int i) {
  auto out_mail = [](const OutMail& m) {
    return m.date + "\t" + m.to + "\t" + m.subject;
  };
  switch (list.tag) {
    case kTreeIncoming: {
      const MailItem& m = incoming_[i];
      return m.date + "\t" +
             (m.sender.empty() ? session_.user_name() : m.sender) + "\t" +
             m.title;
    }
    case kTreeSent:
      return out_mail(sent_[i]);
    case kTreeWaiting:
      return out_mail(waiting_[i]);
    case kTreeBuddies: {
      static const char* const kGroups[] = {"Buddies (0/0)", "Family (0/0)",
                                            "Co-Workers (0/0)"};
      return kGroups[i];
    }
    default:
      return "";
  }
}

std::intptr_t SimClientMail::ListMessage(SimWindow& w, unsigned msg,
                                         std::uintptr_t wparam,
                                         std::string* out,
                                         std::size_t buffer_chars) {
  const auto index = static_cast<std::intptr_t>(wparam);
  const auto count = static_cast<std::intptr_t>(ListCount(w));
  if (w.selection >= count) w.selection = -1;
  const bool valid = index >= 0 && index < count;
  switch (msg) {
    case win::kLbGetCount:
      return count;
    case win::kLbGetTextLen:
      return valid ? static_cast<std::intptr_t>(
                         ListItem(w, static_cast<int>(index)).size())
                   : win::kLbErr;
    case win::kLbGetText: {
      if (!valid) return win::kLbErr;
      std::string item = ListItem(w, static_cast<int>(index));
      if (out) *out = buffer_chars ? item.substr(0, buffer_chars - 1) : "";
      return static_cast<std::intptr_t>(item.size());
    }
    case win::kLbSetCurSel:
      w.selection = valid ? static_cast<int>(index) : -1;
      return valid ? index : win::kLbErr;
    case win::kLbGetCurSel:
      return w.selection;
    case win::kLbGetItemData:
      return 0;
    default:
      return 0;
  }
}

// --- reading ---

void SimClientMail::OpenIncoming() {
  if (ClientWindow* w = shell_.FindWindowOfKind(SimWindowKind::kIncoming)) {
    tree_.BringToTop(w->hwnd);
    tree_.Get(w->hwnd)->minimized = false;
    return;
  }
  Hwnd doc = shell_.NewDoc(SimWindowKind::kIncoming, "Incoming/Saved Mail");
  Add(doc, aol::kTreeClass, "", kRoleTree, kTreeIncoming);
  Add(doc, aol::kStaticClass, "Incoming/Saved Mail");
  AddIcons(doc, {"Read", "Help"});
}

void SimClientMail::OpenSelectedMail(const SimWindow& list) {
  if (list.tag != kTreeIncoming) return;
  int sel = list.selection;
  if (sel < 0 || sel >= static_cast<int>(incoming_.size())) return;
  std::uint64_t id = incoming_[sel].id;
  MarkBusy();
  Later(knobs_.latency, [this, id] {
    if (const MailItem* m = MailById(id)) OpenMail(*m);
  });
}

void SimClientMail::OpenMail(const MailItem& mail) {
  Hwnd doc = shell_.NewDoc(SimWindowKind::kOpenMail, mail.title);
  mail_windows_[doc].mail_id = mail.id;
  Add(doc, aol::kStaticClass,
      "From: " + (mail.sender.empty() ? session_.user_name() : mail.sender));
  Add(doc, aol::kRichTextClass, mail.body);
  AddIcons(doc, kOpenMailIcons);
}

// --- writing and sending ---

void SimClientMail::OpenForward(Hwnd open_mail) {
  const MailItem* mail = MailById(MailWindowOf(open_mail)->mail_id);
  if (!mail) return;
  const std::uint64_t id = mail->id;
  const std::string caption = "Fwd: " + mail->title;
  Hwnd doc = shell_.NewDoc(SimWindowKind::kForward, caption);
  mail_windows_[doc].mail_id = id;
  mail_windows_[doc].open_mail = open_mail;
  Add(doc, aol::kStaticClass, "Send To:");
  Add(doc, aol::kEditClass, "", kRoleEdit, 1);
  Add(doc, aol::kStaticClass, "Copy To:");
  Add(doc, aol::kEditClass, "", kRoleEdit, 2);
  Add(doc, aol::kStaticClass, "Subject:");
  Add(doc, aol::kEditClass, caption, kRoleEdit, 3);
  Add(doc, aol::kFontComboClass, "Arial");
  Add(doc, aol::kComboClass, "10");
  Add(doc, aol::kRichTextClass, "", kRoleBody);
  // The window fills in steps: a few blank icons first, the rest with
  // their texts a little later.
  AddIcons(doc, FirstIcons(kForwardIcons), false);
  Later(knobs_.latency, [this, doc] { FillComposeIcons(doc); });
}

void SimClientMail::OpenWriteMail() {
  Hwnd doc = shell_.NewDoc(SimWindowKind::kWriteMail, "Write Mail");
  Add(doc, aol::kStaticClass, "Send To:");
  Add(doc, aol::kEditClass, "", kRoleEdit, 1);
  Add(doc, aol::kStaticClass, "Copy To:");
  Add(doc, aol::kEditClass, "", kRoleEdit, 2);
  Add(doc, aol::kStaticClass, "Subject:");
  Add(doc, aol::kEditClass, "", kRoleEdit, 3);
  Add(doc, aol::kFontComboClass, "Arial");
  Add(doc, aol::kComboClass, "10");
  Add(doc, aol::kRichTextClass, "", kRoleBody);
  AddIcons(doc, FirstIcons(kWriteIcons), false);
  Later(knobs_.latency, [this, doc] { FillComposeIcons(doc); });
}

void SimClientMail::FillComposeIcons(Hwnd doc) {
  MailWindow* mw = MailWindowOf(doc);
  if (!mw) return;
  const auto& texts = shell_.IsWindowOfKind(doc, SimWindowKind::kForward)
                          ? kForwardIcons
                          : kWriteIcons;
  std::size_t have = FirstIcons(texts).size();
  AddIcons(doc, std::vector<const char*>(texts.begin() + have, texts.end()));
  for (std::size_t i = 0; i < have; ++i)
    tree_.Get(shell_.Icon(doc, static_cast<int>(i) + 1))->text = texts[i];
  mw->filled = true;
}

void SimClientMail::CloseForward(Hwnd forward) {
  const MailWindow* mw = MailWindowOf(forward);
  const Hwnd open_mail = mw ? mw->open_mail : 0;
  tree_.Destroy(forward);
  // The mail it came from goes with it.
  if (shell_.windows.count(open_mail)) tree_.Destroy(open_mail);
}

void SimClientMail::SendMail(Hwnd h, bool now) {
  MailWindow& doc = *MailWindowOf(h);
  // Send Now needs the connection; Send Later works offline.
  if (doc.sending || (now && !session_.signed_on())) return;
  auto field = [&](int n) {
    return tree_.Get(tree_.NthChild(h, aol::kEditClass, n))->text;
  };
  OutMail m;
  m.date = shell_.Today();
  m.to = field(1);
  m.cc = field(2);
  m.subject = field(3);
  m.body = tree_.Get(tree_.NthChild(h, aol::kRichTextClass, 1))->text;
  if (ParseRecipients(m.to).empty() && ParseRecipients(m.cc).empty()) {
    shell_.ShowBox(kNoRecipientText, h);
    return;
  }
  if (knobs_.max_body_chars && m.body.size() > knobs_.max_body_chars) {
    shell_.ShowBox(kTooLongText, h);
    return;
  }
  if (preferences_.Preference(kPrefSpellCheck) == 1 && !doc.spell_checked) {
    // The check comes first and holds the mail; the click that asked for
    // it sends nothing.
    doc.spell_checked = true;
    MarkBusy();
    shell_.ShowNote("Spell Check", kSpellCheckNote, h);
    return;
  }
  const bool forward = shell_.IsWindowOfKind(h, SimWindowKind::kForward);
  if (forward) {
    const MailItem* src = MailById(doc.mail_id);
    m.forward_of = src ? src->title : "";
    m.dead = !src || src->dead;
    if (now && m.dead) {
      shell_.ShowBox(kDeadMailText, h);
      return;
    }
  }
  MarkBusy();
  Notify([&](SimObserver& o) {
    o.OnMail(session_.user_name(), m.to, m.subject, m.body, now);
  });
  if (!now) {
    waiting_.push_back(m);
    if (forward)
      CloseForward(h);
    else
      tree_.Destroy(h);
    return;
  }
  doc.sending = true;
  Hwnd status = shell_.NewDoc(SimWindowKind::kStatus, "Status");
  Add(status, aol::kStaticClass, kSendingText);
  Later(knobs_.send_time, [this, h, status, m] { FinishSend(h, status, m); });
}

void SimClientMail::FinishSend(Hwnd doc, Hwnd status, const OutMail& mail) {
  std::vector<std::string> errors = Deliver(mail);
  sent_.push_back(mail);
  // Without "close mail after it has been sent" the window stays, sent.
  if (shell_.windows.count(doc) && preferences_.Preference(kPrefClose) == 1) {
    if (shell_.IsWindowOfKind(doc, SimWindowKind::kForward))
      CloseForward(doc);
    else
      tree_.Destroy(doc);
  }
  if (shell_.windows.count(status)) tree_.Destroy(status);
  if (preferences_.Preference(kPrefConfirm) == 1)
    shell_.ShowNote("America Online", kMailSentNote);
  if (!errors.empty()) ShowErrors(errors);
}

std::vector<std::string> SimClientMail::Deliver(const OutMail& mail) {
  std::vector<std::string> errors;
  std::vector<std::string> names = ParseRecipients(mail.to).All();
  for (const std::string& n : ParseRecipients(mail.cc).All())
    names.push_back(n);
  std::set<std::string> done;
  const std::string& user = session_.user_name();
  const std::string self = ScreenNameKey(user);
  for (const std::string& name : names) {
    std::string key = ScreenNameKey(name);
    if (!done.insert(key).second) continue;
    ReceivedMail r{user, mail.subject, mail.body, mail.forward_of};
    if (key == self) {
      // Mail to oneself lands at the end of the offline mailbox.
      MailItem m;
      m.id = next_mail_id_++;
      m.date = shell_.Today();
      m.title = mail.subject;
      m.body = mail.body;
      incoming_.push_back(std::move(m));
      world_.AddPerson(user).mailbox.push_back(std::move(r));
      continue;
    }
    if (world_.Deliver(name, std::move(r))) continue;
    auto line = error_lines_.find(key);
    errors.push_back(line != error_lines_.end()
                         ? line->second
                         : name + " - " + kFullMailboxReason);
  }
  return errors;
}

void SimClientMail::ShowErrors(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& l : lines) {
    if (!text.empty()) text += "\r\n";
    text += l;
  }
  Hwnd doc = shell_.NewDoc(SimWindowKind::kError, "Error");
  Add(doc, aol::kViewClass, text);
  AddIcons(doc, {"OK"});
}

// --- the online mailbox and the mail waiting ---

void SimClientMail::OpenOnlineMailbox(int tab) {
  if (!session_.signed_on()) return;
  if (ClientWindow* w =
          shell_.FindWindowOfKind(SimWindowKind::kOnlineMailbox)) {
    MailWindowOf(w->hwnd)->tab = tab;
    tree_.BringToTop(w->hwnd);
    return;
  }
  Hwnd doc = shell_.NewDoc(SimWindowKind::kOnlineMailbox,
                           session_.user_name() + "'s Online Mailbox");
  mail_windows_[doc].tab = tab;
  Hwnd tabs = Add(doc, aol::kTabControlClass, "");
  for (int i = 0; i < 3; ++i) {
    Hwnd page = Add(tabs, aol::kTabPageClass, kTabNames[i]);
    Add(page, aol::kTreeClass, "", kRoleTree, kTreeNew + i);
  }
  AddIcons(doc, kOnlineMailboxIcons);
  // The sent list fills in steps, as the service sends it.
  Later(knobs_.latency, [this, doc] { FillSentList(doc); });
}

void SimClientMail::FillSentList(Hwnd doc) {
  MailWindow* mw = MailWindowOf(doc);
  if (!mw) return;
  mw->loaded += std::max(knobs_.sent_fill_step, 1);
  if (mw->loaded < static_cast<int>(sent_.size()))
    Later(knobs_.latency, [this, doc] { FillSentList(doc); });
}

void SimClientMail::OpenWaiting() {
  if (ClientWindow* w = shell_.FindWindowOfKind(SimWindowKind::kWaiting)) {
    tree_.BringToTop(w->hwnd);
    return;
  }
  Hwnd doc = shell_.NewDoc(SimWindowKind::kWaiting, "Mail Waiting to be Sent");
  Add(doc, aol::kTreeClass, "", kRoleTree, kTreeWaiting);
  AddIcons(doc, {"Read", "Delete", "Send All", "Help"});
}

void SimClientMail::DeleteListItem(Hwnd doc, int which) {
  SimWindow* w = tree_.Get(FindList(doc, which));
  if (!w) return;
  MailWindow* mw = MailWindowOf(doc);
  std::vector<OutMail>* list = nullptr;
  std::size_t shown = 0;
  if (which == kTreeSent) {
    list = &sent_;
    shown = std::min<std::size_t>(static_cast<std::size_t>(mw->loaded),
                                  sent_.size());
  } else if (which == kTreeWaiting) {
    list = &waiting_;
    shown = waiting_.size();
  }
  if (!list || shown == 0) return;
  // One item per click: the selected one, else the first.
  std::size_t at =
      w->selection >= 0 && static_cast<std::size_t>(w->selection) < shown
          ? static_cast<std::size_t>(w->selection)
          : 0;
  list->erase(list->begin() + static_cast<std::ptrdiff_t>(at));
  if (which == kTreeSent) mw->loaded = static_cast<int>(shown) - 1;
  w->selection = -1;
  MarkBusy();
}

// --- Automatic AOL: the mail waiting goes out, one by one ---

void SimClientMail::RunAutomaticAol() {
  if (!session_.signed_on()) return;
  if (ClientWindow* w = shell_.FindWindowOfKind(SimWindowKind::kAutoAol)) {
    tree_.BringToTop(w->hwnd);
    return;
  }
  Hwnd modal = shell_.NewTopLevel(SimWindowKind::kAutoAol, aol::kModalClass,
                                  "Automatic AOL");
  Add(modal, aol::kViewClass, kSessionRunning);
  AddIcons(modal, {"Cancel"});
  Later(knobs_.send_time, [this, modal] { AutomaticAolStep(modal); });
}

void SimClientMail::AutomaticAolStep(Hwnd modal) {
  if (!shell_.windows.count(modal)) return;  // cancelled
  if (waiting_.empty()) {
    tree_.Get(tree_.NthChild(modal, aol::kViewClass, 1))->text = kSessionDone;
    tree_.Get(shell_.Icon(modal, 1))->text = "OK";
    return;
  }
  OutMail m = waiting_.front();
  waiting_.erase(waiting_.begin());
  if (m.dead) {
    shell_.ShowBox(kDeadMailText);
  } else {
    std::vector<std::string> errors = Deliver(m);
    sent_.push_back(m);
    if (!errors.empty()) ShowErrors(errors);
  }
  Later(knobs_.send_time, [this, modal] { AutomaticAolStep(modal); });
}

// --- what outlives the process ---

namespace {

nlohmann::json OutMailsToJson(const auto& mails) {
  nlohmann::json a = nlohmann::json::array();
  for (const auto& m : mails)
    a.push_back({{"date", m.date},
                 {"to", m.to},
                 {"cc", m.cc},
                 {"subject", m.subject},
                 {"body", m.body},
                 {"forward_of", m.forward_of},
                 {"dead", m.dead}});
  return a;
}

}  // namespace

void SimClientMail::SaveTo(nlohmann::json& j) const {
  j["incoming"] = nlohmann::json::array();
  for (const MailItem& m : incoming_)
    j["incoming"].push_back({{"date", m.date},
                             {"sender", m.sender},
                             {"title", m.title},
                             {"body", m.body},
                             {"dead", m.dead}});
  j["dead_numbers"] = dead_numbers_;
  j["waiting"] = OutMailsToJson(waiting_);
  j["sent"] = OutMailsToJson(sent_);
  // Only when set, so that a state without them reads as before.
  if (!error_lines_.empty()) j["error_lines"] = error_lines_;
}

void SimClientMail::RestoreFrom(const nlohmann::json& j) {
  using nlohmann::json;
  incoming_.clear();
  for (const json& m : j.value("incoming", json::array())) {
    MailItem item;
    item.id = next_mail_id_++;
    item.date = JsonText(m, "date");
    item.sender = JsonText(m, "sender");
    item.title = JsonText(m, "title");
    item.body = JsonText(m, "body");
    item.dead = m.value("dead", false);
    incoming_.push_back(std::move(item));
  }
  dead_numbers_.clear();
  for (const json& n : j.value("dead_numbers", json::array()))
    dead_numbers_.insert(n.get<int>());
  auto out_mails = [](const json& a, std::vector<OutMail>* mails) {
    mails->clear();
    for (const json& m : a) {
      OutMail out;
      out.date = JsonText(m, "date");
      out.to = JsonText(m, "to");
      out.cc = JsonText(m, "cc");
      out.subject = JsonText(m, "subject");
      out.body = JsonText(m, "body");
      out.forward_of = JsonText(m, "forward_of");
      out.dead = m.value("dead", false);
      mails->push_back(std::move(out));
    }
  };
  out_mails(j.value("waiting", json::array()), &waiting_);
  out_mails(j.value("sent", json::array()), &sent_);
  error_lines_.clear();
  const json lines = j.value("error_lines", json::object());
  for (const auto& [key, line] : lines.items())
    if (line.is_string()) error_lines_[key] = line.get<std::string>();
}

}  // namespace quorvex
