// The main window's state: every list, label, counter, flag and option
// window model the server works on. The main window owns all shared state;
// the serving loop, its jobs, the request handling and the other windows
// each see the part they work on through a context made here, on the one
// thread.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/frm_banning.h"
#include "app/frm_messages.h"
#include "app/frm_pausing.h"
#include "app/frm_room.h"
#include "app/frm_room_buster.h"
#include "model/draw_status.h"
#include "model/job_event.h"
#include "model/label.h"
#include "model/list_box.h"
#include "model/menu.h"
#include "ports/host.h"
#include "ports/machine.h"
#include "ports/ports.h"
#include "ports/profile_file.h"
#include "ports/prompter.h"
#include "ports/registry.h"
#include "ports/window_api.h"
#include "requests/pending_queue.h"
#include "requests/request_parser.h"
#include "requests/serve_counters.h"
#include "server/forward_job.h"
#include "server/machine_restart.h"
#include "server/replies.h"
#include "server/serve_engine.h"
#include "server/server_common.h"
#include "settings/settings.h"

namespace quorvex {

// The tool tip of lstBanned.
inline constexpr const char* kBannedToolTip =
    "left click to remove, right click to add";

struct FrmMain {
  explicit FrmMain(Ports p) : ports(p) {}
  FrmMain(const FrmMain&) = delete;
  FrmMain& operator=(const FrmMain&) = delete;

  Ports ports;

  // Settings record and the menu bar that edits it.
  Settings settings;
  MenuModel menus;

  // The mailbox as read, the queues and the banned.
  struct Lists {
    ListBox lstMails{"lstMails"};
    // Where each title of lstMails stands in the mailbox (zero-based, as
    // OpenMail takes it): the list leaves out other servers' list mails,
    // so that mail number n is not always the n-th mail of the mailbox.
    std::vector<int> mail_positions;
    ListBox lstBanned{"lstBanned"};
    PendingQueue pending;  // its list box is `lstPending`
    ListBox ReplyQueue{"ReplyQueue"};
    ListBox MistakeList{"MistakeList"};
    // The list mails found in the mailbox (mail positions, 1-based).
    ListBox lstLists{"lstLists"};
    // lstMails' count before the start's read of the mailbox, while it is
    // read again (-1 otherwise): requests said meanwhile are judged by it.
    int mails_while_reading = -1;
    // Mail numbers that could not be forwarded; never opened again.
    std::vector<std::string> dead_mails;
  } lists;

  // The counters and the labels that show them.
  struct Counts {
    Label lblSession{"lblSession", kSessionCount(0)};
    Label lblLists{"lblLists", kListsCount(0)};
    Label lblMails{"lblMails", kMailsCount(0)};
    Label lblSent{"lblSent", kTotalCount(0)};
    Label lblBanned{"lblBanned", kBannedCount(0)};
    Label lblPending{"lblPending", kPendingCount(0)};
    ServeCounters counters;
  } counts;

  // The buttons' captions, the title and the status strip.
  struct Controls {
    Label cmdStart{"cmdStart", "&start"};
    Label cmdPause{"cmdPause", "&pause"};
    Label picTitle{"picTitle", ""};
    StatusStrip status;
  } controls;

  // The serving flags, the seconds counted between lists and scrolls, the
  // room to return to and the timers.
  struct Serving {
    bool ServerOn = false;
    bool ServerPaused = false;
    int ListSeconds = 0;    // 16-bit in the original; saturates here
    int ScrollSeconds = 0;  // likewise
    std::string room_name;  // the room to return to after a restart
    std::unique_ptr<HostTimer> Timer1;
    std::unique_ptr<HostTimer> Timer2;
    // The program has ended (exit label, or a reboot).
    bool ended = false;
  } serving;

  // Where the jobs and events that finish are reported: the program's log.
  JobEventSink events;

  // The client restart (AOLRestart, client/session.h), which the serving
  // loop and the room buster run; set up by the program with its client
  // context.
  std::function<void()> aol_restart;

  // The other windows.
  struct Forms {
    // Option windows whose controls are the live store of their values.
    FrmBanning frmBanning;
    FrmMessages frmMessages;
    // The restart options window, shown from the restart options but not
    // consulted.
    FrmPausing frmPausing;
    // The room buster window, set up with the client context.
    std::unique_ptr<FrmRoomBuster> frmRoomBuster;
    // The room people window, opened by a right click on lstBanned; it
    // reads the room when it opens.
    FrmRoom frmRoom;
  } forms;

  ListBox& lstPending() { return lists.pending.list(); }
  const ListBox& lstPending() const { return lists.pending.list(); }
  void SetStatus(const std::string& text) {
    controls.status.Draw(text, kBandColour);
  }
};

// The contexts the request handling and the serving jobs work in, each on
// the part of the main window it reads or changes.
RequestContext MakeRequestContext(FrmMain& frm);
// The counters a take or a find advances, with their labels.
CounterView MakeCounterView(FrmMain& frm);
// The ban policy working on frm's lists, saying its warnings in the room.
BanContext MakeBanContext(FrmMain& frm, const ClientContext& c);
MailboxLists MakeMailboxLists(FrmMain& frm);
MailJobContext MakeMailJobContext(FrmMain& frm);
ReplyContext MakeReplyContext(FrmMain& frm);
RestartContext MakeRestartContext(FrmMain& frm);
ServeContext MakeServeContext(FrmMain& frm);
// The serving loop's jobs, each on its context.
ServeJobs MakeServeJobs(FrmMain& frm, const ClientContext& c);

}  // namespace quorvex
