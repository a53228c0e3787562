// The serving engine: the start/pause/stop lifecycle behind cmdStart and
// cmdPause, and the serving loop on Timer1 (1 ms) with its one-second
// companion Timer2. Everything runs on the one thread; the waits inside a
// tick yield, so chat lines, clicks and Timer2 run in the middle of it and
// only take effect at the tick's fixed points.
#pragma once

#include <functional>
#include <initializer_list>
#include <memory>
#include <string>

#include "client/client_context.h"
#include "model/job_event.h"
#include "model/label.h"
#include "model/list_box.h"
#include "ports/host.h"
#include "ports/prompter.h"
#include "requests/pending_queue.h"
#include "requests/serve_counters.h"
#include "server/server_common.h"
#include "settings/settings.h"

namespace quorvex {

// What the serving loop itself reads and changes: the lifecycle's flags
// and buttons, the clocks and their intervals, the mailbox it reads at the
// start, the reply queue it answers and the restart counters.
struct ServeContext {
  const Settings& settings;
  Prompter& prompter;  // asks whether to make lists when there are none
  MailboxLists mailbox;
  const PendingQueue& pending;
  ListBox& ReplyQueue;
  ServeCounters& counters;
  bool& ServerOn;
  bool& ServerPaused;
  Label& cmdStart;
  Label& cmdPause;
  int& ListSeconds;
  int& ScrollSeconds;
  std::string& room_name;  // the room to return to after a restart
  std::unique_ptr<HostTimer>& Timer1;
  std::unique_ptr<HostTimer>& Timer2;
  StatusStrip& status;
  const bool& ended;
  // Where finished jobs are reported (the program's log); none: nowhere.
  const JobEventSink* events = nullptr;
};

// The jobs of a tick, of its reply phase and of the start, as the
// forwarding, list, find, reply and restart code provides them
// (DefaultServeJobs, serve_jobs.h); tests may put others in. A job left
// unset is skipped.
struct ServeJobs {
  std::function<void()> mail;   // one forward
  std::function<void()> list;   // list serving
  std::function<void()> find;   // one find
  std::function<void()> sweep;  // error boxes
  // The list mails of lstMails into lstLists; their number.
  std::function<int()> collect_lists;
  // Writes the lists anew ("make lists" answered yes).
  std::function<void()> build_lists;
  // The answers of the reply phase and the advertisement.
  std::function<void(const std::string& sn)> thank_you;
  std::function<void(const std::string& sn)> status;
  std::function<void()> advertise;
  // A full mailbox, counted as a mistake when the banning options say so.
  std::function<void(const std::string& sn)> full_mailbox;
  // The machine restart.
  std::function<void()> cpu_restart;
};

// The message a start gives when the client is not running.
inline constexpr const char* kNoClientTitle = "quorvex";
inline constexpr const char* kNoClientText =
    "america online is not running.\r\n\r\nstart america online, sign on "
    "and enter the chat room you serve, then press start again.";

class ServeEngine {
 public:
  // Creates Timer1 and Timer2 (disabled). What the context and `c` refer
  // to must outlive the engine.
  ServeEngine(const ServeContext& ctx, const ClientContext& c, ServeJobs jobs);
  ~ServeEngine();
  ServeEngine(const ServeEngine&) = delete;
  ServeEngine& operator=(const ServeEngine&) = delete;

  // Starts when idle; asks the next tick to stop when serving. With no
  // client running there is no mailbox to read: the person is told so and
  // the server stays idle, its queue as it was.
  void cmdStart_Click();
  // Asks the next tick to pause when serving; resumes when paused.
  void cmdPause_Click();
  // One serving cycle; one tick of the second clock.
  void Timer1_Timer();
  void Timer2_Timer();

  // The client's restart and sign-on (AOLRestart); unset: the client is
  // left as it is.
  std::function<void()> aol_restart;
  // The client's mail preferences, set when serving starts; may be unset.
  std::function<void()> set_preferences;

  ServeJobs& jobs() { return jobs_; }
  // The screen name read from the client at the last start.
  const std::string& user_sn() const { return user_sn_; }

 private:
  void Start();
  void Resume();
  void Stop();
  void PauseServer();
  void ReplyPhase();
  void Reply(const std::string& sn, const std::string& kind);
  // The restart checks and the jobs of a serving tick.
  void ServeSteps();
  // `why` says, for the log, what called for it.
  void RestartClient(const std::string& why);
  void RestartMachine(const std::string& why);
  void ClearSent(const std::string& why);
  void PrepareClient();
  void RememberRoom();
  // Says each line after a pause, and pauses once more after the last:
  // the frame of every announcement in the room.
  void Announce(std::initializer_list<std::string> lines);
  void Announce(const std::string& line);
  void SetTimers(bool enabled);

  ServeContext ctx_;
  const ClientContext& c_;
  ServeJobs jobs_;
  std::string user_sn_;
  bool starting_ = false;
  bool restarting_ = false;
};

}  // namespace quorvex
