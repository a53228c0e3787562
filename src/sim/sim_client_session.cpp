#include "sim/sim_client_session.h"

#include "ports/client_windows.h"
#include "sim/sim_client.h"

namespace quorvex {

namespace {
const char* const kSignOnSteps[] = {
    "Step 1: Looking for a connection to AOL...",
    "Step 2: Connecting to AOL...",
    "Step 3: Checking password...",
};
constexpr int kSignOnStepCount = 3;
constexpr char kSignOnErrorText[] =
    "Your sign-on attempt failed. Please try again.";
constexpr char kGoodbyeCaption[] = "Goodbye from America Online!";
// Three windows on from the first icon of the "Sign On" window: the
// sign-on button, its second icon.
constexpr int kSignOnIcon = 2;
}  // namespace

void SimClientSession::SetUserName(std::string name) {
  user_name_ = std::move(name);
  world_.AddPerson(user_name_);
}

bool SimClientSession::BeginLaunch() {
  if (launched_) return false;
  launched_ = true;
  world_.AddPerson(user_name_);
  return true;
}

bool SimClientSession::SignOnAtLaunch() {
  if (signed_off_at_start_) {
    ShowSignOnWindow(false);
    return false;
  }
  signed_on_ = true;
  OpenSignedOnWindows();
  return true;
}

void SimClientSession::Start() {
  // One copy of the client runs at a time.
  if (shell_.frame || start_pending_) return;
  start_pending_ = true;
  Notify([](SimObserver& o) { o.OnClient(kClientStarts); });
  Later(
      knobs_.start_time,
      [this, process = shell_.process_epoch] {
        if (process != shell_.process_epoch) return;
        start_pending_ = false;
        if (shell_.frame) return;
        launched_ = true;
        shell_.BuildFrame();
        ShowSignOnWindow(false);
      },
      false);
}

void SimClientSession::Crash() {
  if (!shell_.frame && !start_pending_) return;
  ++shell_.process_epoch;
  start_pending_ = false;
  const bool was_on = signed_on_;
  if (shell_.frame) EndProcess();
  if (was_on) Notify([](SimObserver& o) { o.OnClient(kClientSignsOff); });
  Notify([](SimObserver& o) { o.OnClient(kClientCloses); });
}

void SimClientSession::EndProcess() {
  shell_.EndSession();
  shell_.DestroyWindows();
  signed_on_ = false;
  signing_on_ = false;
  close_pending_ = false;
  close_asks_ = 0;
  shell_.processes.clear();
}

void SimClientSession::RequestFrameClose() {
  if (!shell_.frame || close_pending_) return;
  if (knobs_.close_needs_two && close_asks_ == 0) {
    ++close_asks_;
    return;
  }
  close_pending_ = true;
  Later(
      knobs_.close_time,
      [this, process = shell_.process_epoch] {
        if (!shell_.frame || process != shell_.process_epoch) return;
        bool was_on = signed_on_;
        EndProcess();
        if (was_on) Notify([](SimObserver& o) { o.OnClient(kClientSignsOff); });
        Notify([](SimObserver& o) { o.OnClient(kClientCloses); });
      },
      false);
}

void SimClientSession::ShowSignOnWindow(bool goodbye) {
  Hwnd doc = shell_.NewDoc(SimWindowKind::kSignOn,
                           goodbye ? kGoodbyeCaption : "Sign On");
  Add(doc, aol::kStaticClass, "Select Screen Name:");
  Add(doc, aol::kComboClass, user_name_);
  AddIcons(doc, {"Setup"});
  Add(doc, aol::kStaticClass, "Enter Password:");
  Add(doc, aol::kEditClass, "", kRoleEdit, 1);
  AddIcons(doc, {"Sign On", "Help"});
}

void SimClientSession::ClickIcon(const ClientWindow& window, int icon) {
  if (window.kind == SimWindowKind::kSignOn && icon == kSignOnIcon)
    BeginSignOn();
}

void SimClientSession::BeginSignOn() {
  if (signing_on_ || signed_on_) return;
  signing_on_ = true;
  MarkBusy();
  Later(knobs_.latency, [this] {
    if (!signing_on_) return;
    Hwnd modal = shell_.NewTopLevel(SimWindowKind::kSignOnModal,
                                    aol::kModalClass, "Sign On");
    Add(modal, aol::kStaticClass, kSignOnSteps[0]);
    AddIcons(modal, {"Cancel"});
    signon_modal_ = modal;
    signon_step_ = 1;
    // The modal holds the "Sign On" window, in progress as with its
    // error, until it goes.
    if (ClientWindow* sign_on = shell_.FindWindowOfKind(SimWindowKind::kSignOn))
      sign_on->blocker = modal;
    Later(knobs_.signon_step, [this, modal] { SignOnStep(modal); });
  });
}

void SimClientSession::SignOnStep(Hwnd modal) {
  // Cancelled: the modal is gone or the sign-on was given up.
  if (modal != signon_modal_ || !shell_.windows.count(modal) || !signing_on_)
    return;
  SimWindow* text = tree_.Get(tree_.NthChild(modal, aol::kStaticClass, 1));
  if (signon_step_ < kSignOnStepCount) {
    ++signon_step_;
    text->text = kSignOnSteps[signon_step_ - 1];
    Later(knobs_.signon_step, [this, modal] { SignOnStep(modal); });
    return;
  }
  if (knobs_.signon_failures > 0) {
    // The modal turns into the error and waits to be dismissed.
    --knobs_.signon_failures;
    signing_on_ = false;
    text->text = kSignOnErrorText;
    tree_.Get(shell_.Icon(modal, 1))->text = "OK";
    return;
  }
  tree_.Destroy(modal);
  CompleteSignOn();
}

void SimClientSession::CancelSignOn(Hwnd modal) {
  signing_on_ = false;
  tree_.Destroy(modal);
}

void SimClientSession::CompleteSignOn() {
  signing_on_ = false;
  std::vector<Hwnd> docs = tree_.Children(shell_.mdi);
  for (Hwnd h : docs)
    if (shell_.IsWindowOfKind(h, SimWindowKind::kSignOn)) tree_.Destroy(h);
  signed_on_ = true;
  ims_on_ = true;
  OpenSignedOnWindows();
  Notify([](SimObserver& o) { o.OnClient(kClientSignsOn); });
}

void SimClientSession::OpenSignedOnWindows() {
  Hwnd welcome =
      shell_.NewDoc(SimWindowKind::kWelcome, "Welcome, " + user_name_ + "!");
  Add(welcome, aol::kStaticClass, "Top News");
  AddIcons(welcome, {"You've Got Mail", "Top News", "Channels", "What's New",
                     "Buddy List"});
  Hwnd buddies = shell_.NewDoc(SimWindowKind::kBuddyList, "Buddy List Window");
  Add(buddies, aol::kTreeClass, "", kRoleTree, kTreeBuddies);
  AddIcons(buddies, {"Setup", "Send IM", "Get Info", "Buddy Chat"});
}

void SimClientSession::SignOff() {
  if (!signed_on_) return;
  // What was under way for the session is dropped with it.
  shell_.EndSession();
  std::vector<Hwnd> docs = tree_.Children(shell_.mdi);
  for (Hwnd h : docs) tree_.Destroy(h);
  std::vector<Hwnd> tops = tree_.Children(0);
  for (Hwnd h : tops)
    if (h != shell_.frame) tree_.Destroy(h);
  signed_on_ = false;
  signing_on_ = false;
  ShowSignOnWindow(true);
  Notify([](SimObserver& o) { o.OnClient(kClientSignsOff); });
}

void SimClientSession::SignOffAfter(double seconds) {
  Later(
      seconds, [this] { SignOff(); }, false);
}

void SimClientSession::SaveTo(nlohmann::json& j) const {
  j["user"] = user_name_;
  j["signed_off_at_start"] = signed_off_at_start_;
}

void SimClientSession::RestoreFrom(const nlohmann::json& j) {
  SetUserName(JsonText(j, "user"));
  signed_off_at_start_ = j.value("signed_off_at_start", false);
}

}  // namespace quorvex
