// The simulated client's session: the user, the program's start, close
// and crash, the "Sign On" window with its progress modal, sign-on
// failures and sign-off.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "sim/sim_client_shell.h"

namespace quorvex {

class SimClientSession : public SimClientPart {
 public:
  explicit SimClientSession(SimClientShell& shell) : SimClientPart(shell) {}

  void SetUserName(std::string name);
  void SetSignedOffAtStart(bool signed_off) {
    signed_off_at_start_ = signed_off;
  }

  // The first half of a launch: false when the client was launched
  // already.
  bool BeginLaunch();
  // After the frame is built: signed on with the welcome windows, or the
  // "Sign On" window when signed off at start. True when signed on.
  bool SignOnAtLaunch();
  // The program run again: the "Sign On" window a while later.
  void Start();
  void Crash();
  void RequestFrameClose();
  // The connection is lost: online windows close, the goodbye window
  // shows.
  void SignOff();
  void SignOffAfter(double seconds);
  // The sign-on modal closed: a sign-on under way is cancelled.
  void CancelSignOn(Hwnd modal);
  void ClickIcon(const ClientWindow& window, int icon);

  bool launched() const { return launched_; }
  bool running() const { return shell_.frame != 0; }
  bool starting() const { return start_pending_; }
  bool signed_on() const { return signed_on_; }
  bool ims_on() const { return ims_on_; }
  void set_ims_on(bool on) { ims_on_ = on; }
  const std::string& user_name() const { return user_name_; }

  void SaveTo(nlohmann::json& j) const;
  void RestoreFrom(const nlohmann::json& j);

 private:
  void ShowSignOnWindow(bool goodbye);
  void BeginSignOn();
  void SignOnStep(Hwnd modal);
  void CompleteSignOn();
  void OpenSignedOnWindows();
  // The process ends: every window goes, the session with them.
  void EndProcess();

  std::string user_name_ = "Host";
  bool signed_off_at_start_ = false;
  bool launched_ = false;
  bool signed_on_ = false;
  bool signing_on_ = false;
  bool start_pending_ = false;
  bool close_pending_ = false;
  int close_asks_ = 0;
  bool ims_on_ = true;
  // The sign-on modal under way and its step, 1..3.
  Hwnd signon_modal_ = 0;
  int signon_step_ = 0;
};

}  // namespace quorvex
