// The simulated client's session: launch, start and close of the
// program, sign-on with its progress modal, sign-off, and the automatic
// mail session.
#include "model/text_util.h"
#include "ports/client_windows.h"
#include "sim/recipients.h"
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
constexpr char kSessionRunning[] = "AOL session is in progress.";
constexpr char kSessionDone[] = "AOL session is complete.";
constexpr char kGoodbyeCaption[] = "Goodbye from America Online!";
}  // namespace

void SimClient::Launch() {
  if (launched_) return;
  launched_ = true;
  world_.AddPerson(user_name_);
  for (const std::string& p : setup_people_)
    if (ScreenNameKey(p) != ScreenNameKey(user_name_))
      world_.Join(room_name_, p);
  setup_people_.clear();
  BuildFrame();
  if (signed_off_at_start_) {
    ShowSignOnWindow(false);
    return;
  }
  signed_on_ = true;
  OpenSignedOnWindows();
  // Already in the room: no entry to report.
  current_room_ = world_.Room(room_name_).name;
  room_name_ = current_room_;
  BuildRoomWindow();
}

void SimClient::Start() {
  // One copy of the client runs at a time.
  if (frame_ || start_pending_) return;
  start_pending_ = true;
  Notify([](SimObserver& o) { o.OnClient(kClientStarts); });
  Later(
      knobs_.start_time,
      [this, process = process_epoch_] {
        if (process != process_epoch_) return;
        start_pending_ = false;
        if (frame_) return;
        launched_ = true;
        BuildFrame();
        ShowSignOnWindow(false);
      },
      false);
}

void SimClient::Crash() {
  if (!frame_ && !start_pending_) return;
  ++process_epoch_;
  start_pending_ = false;
  const bool was_on = signed_on_;
  if (frame_) DestroyClient();
  if (was_on) Notify([](SimObserver& o) { o.OnClient(kClientSignsOff); });
  Notify([](SimObserver& o) { o.OnClient(kClientCloses); });
}

void SimClient::RequestFrameClose() {
  if (!frame_ || close_pending_) return;
  if (knobs_.close_needs_two && close_asks_ == 0) {
    ++close_asks_;
    return;
  }
  close_pending_ = true;
  Later(
      knobs_.close_time,
      [this, process = process_epoch_] {
        if (!frame_ || process != process_epoch_) return;
        bool was_on = signed_on_;
        DestroyClient();
        if (was_on) Notify([](SimObserver& o) { o.OnClient(kClientSignsOff); });
        Notify([](SimObserver& o) { o.OnClient(kClientCloses); });
      },
      false);
}

void SimClient::ShowSignOnWindow(bool goodbye) {
  Hwnd doc = NewDoc(Kind::kSignOn, goodbye ? kGoodbyeCaption : "Sign On");
  Add(doc, aol::kStaticClass, "Select Screen Name:");
  Add(doc, aol::kComboClass, user_name_);
  AddIcons(doc, {"Setup"});
  Add(doc, aol::kStaticClass, "Enter Password:");
  Add(doc, aol::kEditClass, "", kRoleEdit, 1);
  // Three windows on from the first icon: the sign-on button.
  AddIcons(doc, {"Sign On", "Help"});
}

void SimClient::BeginSignOn() {
  if (signing_on_ || signed_on_) return;
  signing_on_ = true;
  MarkBusy();
  Later(knobs_.latency, [this] {
    if (!signing_on_) return;
    Hwnd modal = NewTopLevel(Kind::kSignOnModal, aol::kModalClass, "Sign On");
    Add(modal, aol::kStaticClass, kSignOnSteps[0]);
    AddIcons(modal, {"Cancel"});
    docs_[modal].step = 1;
    // The modal holds the "Sign On" window, in progress as with its
    // error, until it goes.
    if (Doc* sign_on = FindDoc(Kind::kSignOn)) sign_on->blocker = modal;
    Later(knobs_.signon_step, [this, modal] { SignOnStep(modal); });
  });
}

void SimClient::SignOnStep(Hwnd modal) {
  auto it = docs_.find(modal);
  if (it == docs_.end() || !signing_on_) return;  // cancelled
  Doc& d = it->second;
  SimWindow* text = tree_.Get(tree_.NthChild(modal, aol::kStaticClass, 1));
  if (d.step < kSignOnStepCount) {
    ++d.step;
    text->text = kSignOnSteps[d.step - 1];
    Later(knobs_.signon_step, [this, modal] { SignOnStep(modal); });
    return;
  }
  if (knobs_.signon_failures > 0) {
    // The modal turns into the error and waits to be dismissed.
    --knobs_.signon_failures;
    signing_on_ = false;
    text->text = kSignOnErrorText;
    tree_.Get(Icon(modal, 1))->text = "OK";
    return;
  }
  tree_.Destroy(modal);
  CompleteSignOn();
}

void SimClient::CompleteSignOn() {
  signing_on_ = false;
  std::vector<Hwnd> docs = tree_.Children(mdi_);
  for (Hwnd h : docs) {
    auto it = docs_.find(h);
    if (it != docs_.end() && it->second.kind == Kind::kSignOn) tree_.Destroy(h);
  }
  signed_on_ = true;
  ims_on_ = true;
  OpenSignedOnWindows();
  Notify([](SimObserver& o) { o.OnClient(kClientSignsOn); });
}

void SimClient::OpenSignedOnWindows() {
  Hwnd welcome = NewDoc(Kind::kWelcome, "Welcome, " + user_name_ + "!");
  Add(welcome, aol::kStaticClass, "Top News");
  AddIcons(welcome, {"You've Got Mail", "Top News", "Channels", "What's New",
                     "Buddy List"});
  Hwnd buddies = NewDoc(Kind::kBuddyList, "Buddy List Window");
  Add(buddies, aol::kTreeClass, "", kRoleTree, kTreeBuddies);
  AddIcons(buddies, {"Setup", "Send IM", "Get Info", "Buddy Chat"});
}

void SimClient::SignOff() {
  if (!signed_on_) return;
  // What was under way for the session is dropped with it.
  ++epoch_;
  popup_.reset();
  popup_pending_ = false;
  std::vector<Hwnd> docs = tree_.Children(mdi_);
  for (Hwnd h : docs) tree_.Destroy(h);
  std::vector<Hwnd> tops = tree_.Children(0);
  for (Hwnd h : tops)
    if (h != frame_) tree_.Destroy(h);
  signed_on_ = false;
  signing_on_ = false;
  ShowSignOnWindow(true);
  Notify([](SimObserver& o) { o.OnClient(kClientSignsOff); });
}

void SimClient::SignOffAfter(double seconds) {
  Later(
      seconds, [this] { SignOff(); }, false);
}

void SimClient::RunAutomaticAol() {
  if (!signed_on_) return;
  if (Doc* d = FindDoc(Kind::kAutoAol)) {
    tree_.BringToTop(d->hwnd);
    return;
  }
  Hwnd modal = NewTopLevel(Kind::kAutoAol, aol::kModalClass, "Automatic AOL");
  Add(modal, aol::kViewClass, kSessionRunning);
  AddIcons(modal, {"Cancel"});
  Later(knobs_.send_time, [this, modal] { AutomaticAolStep(modal); });
}

void SimClient::AutomaticAolStep(Hwnd modal) {
  if (!docs_.count(modal)) return;  // cancelled
  if (waiting_.empty()) {
    tree_.Get(tree_.NthChild(modal, aol::kViewClass, 1))->text = kSessionDone;
    tree_.Get(Icon(modal, 1))->text = "OK";
    return;
  }
  OutMail m = waiting_.front();
  waiting_.erase(waiting_.begin());
  if (m.dead) {
    ShowBox(BoxKind::kDeadMail, kDeadMailText);
  } else {
    std::vector<std::string> errors = Deliver(m);
    sent_.push_back(m);
    if (!errors.empty()) ShowErrors(errors);
  }
  Later(knobs_.send_time, [this, modal] { AutomaticAolStep(modal); });
}

}  // namespace quorvex
