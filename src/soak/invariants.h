// What must hold after every soak run, read from the run's transcript and
// its final state:
//  - every accepted mail request is accounted for: delivered to the
//    requester's mailbox no more often than asked (a grouped forward
//    counts once per requester), and, when not delivered, ended in a way
//    the program knows: a dead mail, a full mailbox, cleared or removed by
//    the user, removed by a ban, still pending (in the list, or in the
//    saved queue after an exit), handed to the client and still waiting
//    to be sent, deleted unsent by the sent-mail check, lost to a fault
//    of the queue's file, or in flight when the program stopped;
//  - no mail reaches anyone who did not ask for something;
//  - the total counter shown equals the one stored, unless a write of the
//    settings failed;
//  - someone who does not flood is not held back by those who do: each
//    mail "asker" asks for in a flood stretch (see soak_room.h) reaches
//    the client within FloodBound seconds, unless the user or the client
//    did something meanwhile that may hold it up (an action, a sign-off,
//    a room that loses clicks) or the run ended first;
//  - no count in a file stops serving: a queue or banned list restored at
//    the start does not end in an empty line, and its label counts the
//    lines restored;
//  - a request said while a start reads the mailbox again is judged as a
//    moment before: each of "early" + n's requests is accepted, unless the
//    client had signed off shortly before;
//  - the program's log (Quorvex.log) and the accounting agree: every mail
//    a requester received has a "sent" line naming them and the mail, every
//    request removed by a ban a "banned" line naming the requester, every
//    removal by the user a "removed by the user" line, every request in
//    the queue when an exit's save of it failed a "lost with a failed
//    save" line; and
//    what the log says happened did: a mail logged sent was asked for by
//    each it names, each dead mail is the room's, or was said to be, or
//    was given up by the program after it took the request; a full
//    mailbox is one of the room's full ones. (A mail received may be logged
//    dead instead of sent when the program took an error box during its forward
//    for one about it, and told the room so.)
#pragma once

#include <map>
#include <string>
#include <vector>

#include "scenario/scenario.h"
#include "settings/settings.h"

namespace quorvex::soak {

struct RunFigures {
  int accepted = 0;       // mail requests accepted
  int delivered = 0;      // forwarded mails received
  int still_pending = 0;  // accepted, pending at the end
  int waiting = 0;        // accepted, handed to the client, waiting to be sent
  int deleted_waiting = 0;  // waiting, deleted by the sent-mail check
  int banned = 0;           // removed from the list by a ban
  int excused = 0;          // accepted, not delivered, ended another known way
  int in_flight = 0;        // of those: taken when the program stopped
  std::map<std::string, int> endings;  // those ended another way, by name
  std::map<std::string, int> faults;   // injected, by kind
  int flood_asks = 0;         // the asker's requests checked against the bound
  double flood_wait_max = 0;  // the longest of their waits, in seconds
  int early_requests = 0;     // requests said during a start, checked
  int restored_lines = 0;     // queue and banned lines restored from files
  int log_lines = 0;          // lines of the log checked
  int log_matched = 0;        // accounted requests found in the log
  double quiet_max = 0;  // the longest the program owed progress without any
};

// What the program does in a room beside flooders, as the flood bound
// needs it.
struct FloodRoom {
  double latency_seconds = 0.05;  // the client's latency
  int flooders = 0;               // people flooding beside the asker
  bool replies_by_mail = false;   // replies by mail, or said in the room
  int sent_restart = 0;  // the sent-mail check after so many mails (< 2: never)
  int bot_scroll = Settings{}.BotScroll;  // seconds between advertisements
};

// The longest a request of someone who does not flood may wait for its
// mail to reach the client, serving `pace` times slower than the
// simulator (1: its own pace).
double FloodBound(const FloodRoom& room, double pace = 1);
// The longest one forward of a mail takes at this client latency, in the
// simulator's pace.
double ForwardSeconds(double latency_seconds);
// The longest the sent-mail check and an advertisement take, the same way.
double SentCheckSeconds(double latency_seconds);
double AdvertisementSeconds(double latency_seconds);
// How many sent-mail checks may come before the asker's forward, with one
// group of each flooder ahead of it.
int SentChecksAhead(int flooders, int sent_restart);

// How much a run through the real windows may differ in timing from the
// simulator's, where the checks below depend on it.
struct Allowances {
  // A request said while a start read the mailbox is queued within this
  // many seconds of the program's clock after the room showed it.
  double heard_within = 2;
  // What a user's action did is written at its moment, or up to this many
  // seconds after it (the simulator does it in no time).
  double acted_within = 0;
  // The flood bound (FloodBound, the simulator's pace of serving) and the
  // longest the program may go without doing anything while it owes
  // progress are this many times the simulator's at least; with
  // `pace_from_run`, as many times as the run's forwards of mails took
  // longer on average than ForwardSeconds (a loaded machine slows every
  // call into the client alike): the flood bound then counts the forwards
  // ahead at the pace this client was served.
  double serving_pace = 1;
  bool pace_from_run = false;
};

// The violations found (empty: the run is clean). `log`, when given, is
// the text of the run's Quorvex.log files, older lines first.
std::vector<std::string> CheckRun(const scenario::Scenario& scenario,
                                  const std::string& transcript_jsonl,
                                  RunFigures* figures,
                                  const std::string* log = nullptr,
                                  const Allowances& allowances = {});

}  // namespace quorvex::soak
