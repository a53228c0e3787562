// The room buster: enters a member chat room that is full by asking for
// it again and again (one try a tick of Timer1) until a place is free,
// counting the refusals, and says the result in the chat. It works on the
// controls of its window (app/frm_room_buster.h), which it opens and
// closes. The client restart uses it to return to the server's room.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "client/client_context.h"
#include "model/controls.h"
#include "model/form.h"
#include "model/label.h"
#include "ports/host.h"

namespace quorvex {

// Timer1's interval. A tick already waits for the client's answer to its
// try, so this is only the rest between an answer and the next try: time
// for the refusal box just closed to go and for the client to settle,
// while still trying about twice a second.
inline constexpr int kRoomBusterInterval = 500;

// The restart flag: what the client restart is doing with the buster.
enum class BusterRestart {
  kNone,
  // A restart is bringing the client back (closing, starting, signing
  // on); a second restart must not start inside it.
  kClient,
  // The bust runs for a restart, which waits for it to end.
  kBust,
};

class RoomBuster {
 public:
  // `window` is the buster's window, opened and closed here; it is only
  // held (not used) until the first call. `aol_restart` is the client
  // restart, run when a tick finds the client signed off. `window` and
  // `c` must outlive the buster.
  RoomBuster(Form& window, const ClientContext& c,
             std::function<void()> aol_restart);
  ~RoomBuster();
  RoomBuster(const RoomBuster&) = delete;
  RoomBuster& operator=(const RoomBuster&) = delete;

  TextBox txtRoom;
  Label cmdStart{"frmRoomBuster.cmdStart", "&start"};
  Label lblBusts{"frmRoomBuster.lblBusts", kBustsCount(0)};
  Label picTitle{"frmRoomBuster.picTitle", ""};
  std::unique_ptr<HostTimer> Timer1;
  BusterRestart restart = BusterRestart::kNone;

  // Opens the window (nothing when it is open already).
  void Form_Load();
  // Closes it: the timer stops and the controls are as a fresh window's.
  void Form_Unload();
  void lblExit_Click() { Form_Unload(); }
  // Starts when idle, stops when busting.
  void cmdStart_Click();
  void Timer1_Timer();

  bool loaded() const { return window_.open(); }
  bool busting() const { return busting_; }
  // True while a tick runs: a restart started from it cannot wait for the
  // buster, whose next tick only comes after this one.
  bool in_tick() const { return in_tick_; }
  int tries() const { return tries_; }
  int busts() const { return busts_; }

 private:
  void Start();
  void Stop();

  Form& window_;
  const ClientContext& c_;
  std::function<void()> aol_restart_;
  bool busting_ = false;
  bool in_tick_ = false;
  int tries_ = 0;
  int busts_ = 0;
};

}  // namespace quorvex
