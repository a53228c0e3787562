// Mistakes and bans: the banning options (the controls of the options
// window, app/frm_banning.h), the in-memory mistake counts, and the
// banned list.
#pragma once

#include <functional>
#include <string>

#include "model/controls.h"
#include "model/job_event.h"
#include "model/label.h"
#include "model/list_box.h"
#include "ports/registry.h"
#include "requests/pending_queue.h"

namespace quorvex {

// The options as the options window's controls hold them: they are the
// live store of the options; the combo boxes are editable and their text
// is the value.
struct BanningOptions {
  BanningOptions();

  ComboBox cmbMistakes;  // mistakes allowed before a ban
  CheckBox chkPending;   // enforce the per-person pending limit
  ComboBox cmbMails;     // the per-person pending limit
  CheckBox chkDupReqs;   // a duplicate request is a mistake
  CheckBox chkFullBox;   // a full mailbox is a mistake

  // The combo texts as numbers; a text that is no number stands for the
  // default (3 mistakes, 500 mails).
  double Mistakes() const;
  double Mails() const;
  // The mistakes text itself, or the default's when it is no number.
  std::string MistakesText() const;
};

// Section "Banning" of the registry. A stored text that is no small
// integer (or no check box value) loads as the default.
void LoadBanning(const Registry& registry, BanningOptions& options);
void SaveBanning(Registry& registry, const BanningOptions& options);

struct BanContext {
  const BanningOptions& banning;
  ListBox& MistakeList;  // sn + "-" + count, or sn + "-banned"
  ListBox& lstBanned;
  Label& lblBanned;
  PendingQueue& pending;
  std::function<void(const std::string&)> say;  // one chat line
  // Where finished jobs are reported (the program's log); none: nowhere.
  const JobEventSink* events = nullptr;
};

// Records one mistake of `sn` (lower case) and bans at the limit. Once
// anybody stands banned in the mistake list, no mistake is counted any
// more; with a limit of exactly 1 nobody is ever banned.
void AddMistake(BanContext& ctx, const std::string& sn);

// A left click on the banned list: lifts the selected ban.
void BannedLeftClick(ListBox& lstBanned, Label& lblBanned);

}  // namespace quorvex
