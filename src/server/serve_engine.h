// The serving engine: the start/pause/stop lifecycle behind cmdStart and
// cmdPause, and the serving loop on Timer1 (1 ms) with its one-second
// companion Timer2. Everything runs on the one thread; the waits inside a
// tick yield, so chat lines, clicks and Timer2 run in the middle of it and
// only take effect at the tick's fixed points.
#pragma once

#include <functional>
#include <string>

#include "client/client_context.h"
#include "server/frm_main.h"

namespace quorvex {

// The jobs of a tick and of the start, as the forwarding, list and find
// code provides them (DefaultServeJobs); tests may put others in.
struct ServeJobs {
  std::function<void(FrmMain&, const ClientContext&)> mail;   // one forward
  std::function<void(FrmMain&, const ClientContext&)> list;   // list serving
  std::function<void(FrmMain&, const ClientContext&)> find;   // one find
  std::function<void(FrmMain&, const ClientContext&)> sweep;  // error boxes
  // The list mails of lstMails into lstLists; their number.
  std::function<int(FrmMain&)> collect_lists;
  // Writes the lists anew ("make lists" answered yes).
  std::function<void(FrmMain&, const ClientContext&)> build_lists;
};
ServeJobs DefaultServeJobs();

class ServeEngine {
 public:
  // Creates Timer1 and Timer2 (disabled) in `frm`. Both references must
  // outlive the engine.
  ServeEngine(FrmMain& frm, const ClientContext& c,
              ServeJobs jobs = DefaultServeJobs());
  ~ServeEngine();
  ServeEngine(const ServeEngine&) = delete;
  ServeEngine& operator=(const ServeEngine&) = delete;

  // Starts when idle; asks the next tick to stop when serving.
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
  // The machine restart; CPURestart when unset.
  std::function<void()> cpu_restart;

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
  void RestartClient();
  void RestartMachine();
  void ClearSent();
  void PrepareClient();
  void RememberRoom();
  void Announce(const std::string& line);
  void SetTimers(bool enabled);

  FrmMain& frm_;
  const ClientContext& c_;
  ServeJobs jobs_;
  std::string user_sn_;
  bool starting_ = false;
};

}  // namespace quorvex
