// The simulated client's mail: the mailboxes and their lists, open mail,
// the forward and Write Mail windows, sending now or later, and the
// client's error boxes.
#include <algorithm>
#include <set>

#include "model/text_util.h"
#include "ports/client_windows.h"
#include "sim/recipients.h"
#include "sim/sim_client.h"

namespace quorvex {

namespace {

constexpr char kNoRecipientText[] = "You must specify at least one recipient.";
constexpr char kSendingText[] = "Sending mail...";

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

}  // namespace

SimClient::MailItem* SimClient::MailById(std::uint64_t id) {
  for (MailItem& m : incoming_)
    if (m.id == id) return &m;
  return nullptr;
}

Hwnd SimClient::FindTree(Hwnd parent, int which) const {
  for (Hwnd h : tree_.Children(parent)) {
    const SimWindow* w = tree_.Get(h);
    if (w->role == kRoleTree && w->tag == which) return h;
    if (Hwnd found = FindTree(h, which)) return found;
  }
  return 0;
}

int SimClient::TreeCount(const SimWindow& tree) {
  switch (tree.tag) {
    case kTreeIncoming:
      return static_cast<int>(incoming_.size());
    case kTreeSent: {
      const Doc* d = DocOf(tree.hwnd);
      return std::min(d ? d->loaded : 0, static_cast<int>(sent_.size()));
    }
    case kTreeWaiting:
      return static_cast<int>(waiting_.size());
    case kTreeBuddies:
      return 3;
    default:  // new and old mail: nothing waits online
      return 0;
  }
}

std::string SimClient::TreeItem(const SimWindow& tree, int i) {
  auto out_mail = [](const OutMail& m) {
    return m.date + "\t" + m.to + "\t" + m.subject;
  };
  switch (tree.tag) {
    case kTreeIncoming: {
      const MailItem& m = incoming_[i];
      return m.date + "\t" + (m.sender.empty() ? user_name_ : m.sender) + "\t" +
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

std::intptr_t SimClient::TreeMessage(SimWindow& w, unsigned msg,
                                     std::uintptr_t wparam, std::string* out,
                                     std::size_t buffer_chars) {
  const auto index = static_cast<std::intptr_t>(wparam);
  if (w.role == kRolePeople) {
    // An owner-data list: its items are addresses in the client's memory.
    const auto count = static_cast<std::intptr_t>(people_entries_.size());
    switch (msg) {
      case win::kLbGetCount:
        return count;
      case win::kLbGetItemData:
        return index >= 0 && index < count ? people_entries_[index].item
                                           : win::kLbErr;
      case win::kLbSetCurSel:
        w.selection =
            index >= 0 && index < count ? static_cast<int>(index) : -1;
        return w.selection >= 0 ? index : win::kLbErr;
      case win::kLbGetCurSel:
        return w.selection;
      default:
        return win::kLbErr;
    }
  }
  if (w.role != kRoleTree) return 0;
  const auto count = static_cast<std::intptr_t>(TreeCount(w));
  if (w.selection >= count) w.selection = -1;
  const bool valid = index >= 0 && index < count;
  switch (msg) {
    case win::kLbGetCount:
      return count;
    case win::kLbGetTextLen:
      return valid ? static_cast<std::intptr_t>(
                         TreeItem(w, static_cast<int>(index)).size())
                   : win::kLbErr;
    case win::kLbGetText: {
      if (!valid) return win::kLbErr;
      std::string item = TreeItem(w, static_cast<int>(index));
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

void SimClient::OpenIncoming() {
  if (Doc* d = FindDoc(Kind::kIncoming)) {
    tree_.BringToTop(d->hwnd);
    tree_.Get(d->hwnd)->minimized = false;
    return;
  }
  Hwnd doc = NewDoc(Kind::kIncoming, "Incoming/Saved Mail");
  Add(doc, aol::kTreeClass, "", kRoleTree, kTreeIncoming);
  Add(doc, aol::kStaticClass, "Incoming/Saved Mail");
  AddIcons(doc, {"Read", "Help"});
}

void SimClient::OpenSelectedMail(SimWindow& tree) {
  if (tree.tag != kTreeIncoming) return;
  int sel = tree.selection;
  if (sel < 0 || sel >= static_cast<int>(incoming_.size())) return;
  std::uint64_t id = incoming_[sel].id;
  MarkBusy();
  Later(knobs_.latency, [this, id] {
    if (const MailItem* m = MailById(id)) OpenMail(*m);
  });
}

void SimClient::OpenMail(const MailItem& mail) {
  Hwnd doc = NewDoc(Kind::kOpenMail, mail.title);
  docs_[doc].mail_id = mail.id;
  Add(doc, aol::kStaticClass,
      "From: " + (mail.sender.empty() ? user_name_ : mail.sender));
  Add(doc, aol::kRichTextClass, mail.body);
  AddIcons(doc, kOpenMailIcons);
}

void SimClient::OpenForward(Doc& open_mail) {
  const MailItem* mail = MailById(open_mail.mail_id);
  if (!mail) return;
  const Hwnd from = open_mail.hwnd;
  const std::uint64_t id = mail->id;
  const std::string caption = "Fwd: " + mail->title;
  Hwnd doc = NewDoc(Kind::kForward, caption);
  docs_[doc].mail_id = id;
  docs_[doc].open_mail = from;
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

void SimClient::OpenWriteMail() {
  Hwnd doc = NewDoc(Kind::kWriteMail, "Write Mail");
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

void SimClient::FillComposeIcons(Hwnd doc) {
  auto it = docs_.find(doc);
  if (it == docs_.end()) return;
  const auto& texts =
      it->second.kind == Kind::kForward ? kForwardIcons : kWriteIcons;
  std::size_t have = FirstIcons(texts).size();
  AddIcons(doc, std::vector<const char*>(texts.begin() + have, texts.end()));
  for (std::size_t i = 0; i < have; ++i)
    tree_.Get(Icon(doc, static_cast<int>(i) + 1))->text = texts[i];
  it->second.filled = true;
}

void SimClient::SendMail(Doc& doc, bool now) {
  // Send Now needs the connection; Send Later works offline.
  if (doc.sending || (now && !signed_on_)) return;
  const Hwnd h = doc.hwnd;
  auto field = [&](int n) {
    return tree_.Get(tree_.NthChild(h, aol::kEditClass, n))->text;
  };
  OutMail m;
  m.date = Today();
  m.to = field(1);
  m.cc = field(2);
  m.subject = field(3);
  m.body = tree_.Get(tree_.NthChild(h, aol::kRichTextClass, 1))->text;
  if (ParseRecipients(m.to).empty() && ParseRecipients(m.cc).empty()) {
    ShowBox(BoxKind::kNoRecipient, kNoRecipientText, h);
    return;
  }
  if (knobs_.max_body_chars && m.body.size() > knobs_.max_body_chars) {
    ShowBox(BoxKind::kTooLong, kTooLongText, h);
    return;
  }
  if (Preference(kPrefSpellCheck) == 1 && !doc.spell_checked) {
    // The check comes first and holds the mail; the click that asked for
    // it sends nothing.
    doc.spell_checked = true;
    MarkBusy();
    ShowNote("Spell Check", kSpellCheckNote, h);
    return;
  }
  if (doc.kind == Kind::kForward) {
    const MailItem* src = MailById(doc.mail_id);
    m.forward_of = src ? src->title : "";
    m.dead = !src || src->dead;
    if (now && m.dead) {
      ShowBox(BoxKind::kDeadMail, kDeadMailText, h);
      return;
    }
  }
  MarkBusy();
  Notify([&](SimObserver& o) {
    o.OnMail(user_name_, m.to, m.subject, m.body, now);
  });
  if (!now) {
    waiting_.push_back(m);
    CloseDoc(h);
    return;
  }
  doc.sending = true;
  Hwnd status = NewDoc(Kind::kStatus, "Status");
  Add(status, aol::kStaticClass, kSendingText);
  Later(knobs_.send_time, [this, h, status, m] { FinishSend(h, status, m); });
}

std::vector<SimClient::WaitingMail> SimClient::Waiting() const {
  std::vector<WaitingMail> out;
  for (const OutMail& m : waiting_)
    out.push_back(
        {m.cc.empty() ? m.to : m.to + ", " + m.cc, m.subject, m.body});
  return out;
}

void SimClient::FinishSend(Hwnd doc, Hwnd status, const OutMail& mail) {
  std::vector<std::string> errors = Deliver(mail);
  sent_.push_back(mail);
  // Without "close mail after it has been sent" the window stays, sent.
  if (docs_.count(doc) && Preference(kPrefClose) == 1) CloseDoc(doc);
  if (docs_.count(status)) tree_.Destroy(status);
  if (Preference(kPrefConfirm) == 1) ShowNote("America Online", kMailSentNote);
  if (!errors.empty()) ShowErrors(errors);
}

std::vector<std::string> SimClient::Deliver(const OutMail& mail) {
  std::vector<std::string> errors;
  std::vector<std::string> names = ParseRecipients(mail.to).All();
  for (const std::string& n : ParseRecipients(mail.cc).All())
    names.push_back(n);
  std::set<std::string> done;
  const std::string self = ScreenNameKey(user_name_);
  for (const std::string& name : names) {
    std::string key = ScreenNameKey(name);
    if (!done.insert(key).second) continue;
    ReceivedMail r{user_name_, mail.subject, mail.body, mail.forward_of};
    if (key == self) {
      // Mail to oneself lands at the end of the offline mailbox.
      MailItem m;
      m.id = next_mail_id_++;
      m.date = Today();
      m.title = mail.subject;
      m.body = mail.body;
      incoming_.push_back(std::move(m));
      world_.AddPerson(user_name_).mailbox.push_back(std::move(r));
      continue;
    }
    if (!world_.Deliver(name, std::move(r)))
      errors.push_back(name + " - " + kFullMailboxReason);
  }
  return errors;
}

void SimClient::ShowErrors(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& l : lines) {
    if (!text.empty()) text += "\r\n";
    text += l;
  }
  Hwnd doc = NewDoc(Kind::kError, "Error");
  Add(doc, aol::kViewClass, text);
  AddIcons(doc, {"OK"});
}

Hwnd SimClient::ShowBox(BoxKind kind, const std::string& text, Hwnd holds) {
  Hwnd box = NewTopLevel(Kind::kBox, aol::kDialogClass, "America Online");
  docs_[box].box = kind;
  docs_[box].box_for = holds;
  Add(box, "Static", text);
  Add(box, "Button", "OK", kRoleButton);
  auto held = docs_.find(holds);
  if (held != docs_.end()) held->second.blocker = box;
  return box;
}

Hwnd SimClient::ShowNote(const std::string& caption, const std::string& text,
                         Hwnd holds) {
  Hwnd note = NewTopLevel(Kind::kBox, aol::kModalClass, caption);
  docs_[note].box_for = holds;
  Add(note, aol::kViewClass, text);
  Add(note, aol::kButtonClass, "OK", kRoleButton);
  auto held = docs_.find(holds);
  if (held != docs_.end()) held->second.blocker = note;
  return note;
}

void SimClient::PressBoxButton(Hwnd box) {
  auto it = docs_.find(box);
  if (it != docs_.end() && it->second.kind == Kind::kBox) tree_.Destroy(box);
}

void SimClient::OpenOnlineMailbox(int tab) {
  if (!signed_on_) return;
  if (Doc* d = FindDoc(Kind::kOnlineMailbox)) {
    d->tab = tab;
    tree_.BringToTop(d->hwnd);
    return;
  }
  Hwnd doc = NewDoc(Kind::kOnlineMailbox, user_name_ + "'s Online Mailbox");
  docs_[doc].tab = tab;
  Hwnd tabs = Add(doc, aol::kTabControlClass, "");
  for (int i = 0; i < 3; ++i) {
    Hwnd page = Add(tabs, aol::kTabPageClass, kTabNames[i]);
    Add(page, aol::kTreeClass, "", kRoleTree, kTreeNew + i);
  }
  AddIcons(doc, kOnlineMailboxIcons);
  // The sent list fills in steps, as the service sends it.
  Later(knobs_.latency, [this, doc] { FillSentList(doc); });
}

void SimClient::FillSentList(Hwnd doc) {
  auto it = docs_.find(doc);
  if (it == docs_.end()) return;
  Doc& d = it->second;
  d.loaded += std::max(knobs_.sent_fill_step, 1);
  if (d.loaded < static_cast<int>(sent_.size()))
    Later(knobs_.latency, [this, doc] { FillSentList(doc); });
}

void SimClient::OpenWaiting() {
  if (Doc* d = FindDoc(Kind::kWaiting)) {
    tree_.BringToTop(d->hwnd);
    return;
  }
  Hwnd doc = NewDoc(Kind::kWaiting, "Mail Waiting to be Sent");
  Add(doc, aol::kTreeClass, "", kRoleTree, kTreeWaiting);
  AddIcons(doc, {"Read", "Delete", "Send All", "Help"});
}

void SimClient::DeleteTreeItem(Doc& doc, int which) {
  Hwnd tree = FindTree(doc.hwnd, which);
  SimWindow* w = tree_.Get(tree);
  if (!w) return;
  std::vector<OutMail>* list = nullptr;
  std::size_t shown = 0;
  if (which == kTreeSent) {
    list = &sent_;
    shown = std::min<std::size_t>(static_cast<std::size_t>(doc.loaded),
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
  if (which == kTreeSent) doc.loaded = static_cast<int>(shown) - 1;
  w->selection = -1;
  MarkBusy();
}

}  // namespace quorvex
