// What the parts of the simulated client share: the window tree with the
// record of its document and top-level windows, the knobs, the random
// generator, the clock with its "later" that a session's end cancels,
// and the client's process (its frame, handle counters and memory).
//
// Each part (room, mail, session, preferences) derives from
// SimClientPart, which lends it the shell's members under their usual
// names; the parts keep their own state.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <random>
#include <string>
#include <vector>

#include "ports/host.h"
#include "ports/window_api.h"
#include "sim/sim_knobs.h"
#include "sim/sim_memory.h"
#include "sim/sim_observer.h"
#include "sim/sim_world.h"
#include "sim/window_tree.h"

namespace quorvex {

// What a document or top-level window is. The numbers are saved with the
// remembered window sizes: new kinds go at the end.
enum class SimWindowKind {
  kFrame,
  kChatRoom,
  kWelcome,
  kBuddyList,
  kIncoming,
  kOpenMail,
  kForward,
  kWriteMail,
  kOnlineMailbox,
  kWaiting,
  kStatus,
  kError,
  kIm,
  kSignOn,
  kMenu,
  kBox,
  kSignOnModal,
  kAutoAol,
  kPreferences,
  kPreferencePage,
};

// What a control is for (SimWindow::role).
enum SimRole : int {
  kRoleNone = 0,
  kRoleIcon,     // tag: position among the window's icons, from 1
  kRoleButton,   // a message box's push button
  kRoleDisplay,  // the chat display
  kRoleInput,    // the chat input
  kRolePeople,   // the room's people list
  kRoleTree,     // a mail list; tag: which (a SimMailList value)
  kRoleKeyword,  // the keyword box's edit
  kRoleEdit,     // a one-line edit; tag: position from 1
  kRoleBody,     // a mail or message body
  kRoleCheck,    // a preference check box
};

// The mail lists (tree views), by SimWindow::tag.
enum SimMailList : int {
  kTreeIncoming = 0,
  kTreeNew,
  kTreeOld,
  kTreeSent,
  kTreeWaiting,
  kTreeBuddies
};

// A document or top-level window of the client: what it is, and the
// modal box holding it (0: none), which takes its input until dismissed.
struct ClientWindow {
  SimWindowKind kind = SimWindowKind::kFrame;
  Hwnd hwnd = 0;
  Hwnd blocker = 0;
};

class SimClientShell {
 public:
  SimClientShell(Host& host, SimWorld& world, std::uint64_t seed);
  ~SimClientShell();

  // Runs `fn` after `delay` seconds unless the client is gone by then or,
  // when `session_bound`, its session has ended.
  void Later(double delay, std::function<void()> fn, bool session_bound = true);
  void Notify(const std::function<void(SimObserver&)>& fn) {
    if (observer) fn(*observer);
  }
  void MarkBusy();
  // A click landing while the client is busy may be lost.
  bool ClickLost();
  // The date as the mail lists show it.
  std::string Today() const;

  // The document or top-level window a window belongs to.
  ClientWindow* WindowOf(Hwnd hwnd);
  // The topmost document (then top-level window) of that kind.
  ClientWindow* FindWindowOfKind(SimWindowKind kind);
  bool IsWindowOfKind(Hwnd hwnd, SimWindowKind kind) const;
  Hwnd NewDoc(SimWindowKind kind, std::string caption);
  Hwnd NewTopLevel(SimWindowKind kind, const char* class_name,
                   std::string caption);
  Hwnd Add(Hwnd parent, const char* class_name, std::string text,
           int role = kRoleNone, int tag = 0);
  void AddIcons(Hwnd parent, const std::vector<const char*>& texts,
                bool with_text = true);
  Hwnd Icon(Hwnd doc, int n) const;
  // A window held by a modal takes no input until the modal is dismissed.
  bool Blocked(Hwnd doc) const;

  // The client's message boxes ("#32770" with a static text and an "OK"
  // button), holding `holds` until dismissed.
  Hwnd ShowBox(const std::string& text, Hwnd holds = 0);
  // One of the client's own modal notes ("_AOL_Modal" with its text and an
  // "OK" button), holding `holds` until it is dismissed.
  Hwnd ShowNote(const std::string& caption, const std::string& text,
                Hwnd holds = 0);
  void PressBoxButton(Hwnd box);

  // The process: a new frame with its tool bar, a new process id and
  // address space.
  void BuildFrame();
  // Every window goes; what was under way for the session is dropped.
  void DestroyWindows();
  // Drops what was under way for the session and tells the parts.
  void EndSession();
  // Called by EndSession, for what a part must drop with the session.
  void OnSessionEnd(std::function<void()> fn) {
    session_end_.push_back(std::move(fn));
  }
  // Called for each document or top-level window as it goes.
  void OnWindowGone(std::function<void(const SimWindow&)> fn) {
    window_gone_.push_back(std::move(fn));
  }

  Host& host;
  SimWorld& world;
  SimKnobs knobs;
  SimObserver* observer = nullptr;
  WindowTree tree;
  std::map<Hwnd, ClientWindow> windows;
  // Later windows of a kind open at the size remembered for it.
  std::map<SimWindowKind, Point> remembered_sizes;

  // The process.
  SimMemory memory;
  std::uint32_t memory_base = 0x00A3F000;
  std::map<ProcessHandle, std::uint32_t> processes;
  ProcessHandle next_process_handle = 0x1F4;
  std::uint32_t pid = 0;
  int starts = 0;
  // Bumped by a crash: a start under way for the old process never comes.
  std::uint64_t process_epoch = 0;

  // The frame and its fixed parts.
  Hwnd frame = 0, mdi = 0, toolbar_row = 0, keyword_edit = 0;
  Hmenu menu_base = 0;
  Point cursor{512, 384};

 private:
  void OnDestroyed(const SimWindow& w);

  std::mt19937_64 rng_;
  std::shared_ptr<int> alive_ = std::make_shared<int>(0);
  // Bumped when the session ends: what was under way for it is dropped.
  std::uint64_t epoch_ = 0;
  double busy_until_ = 0;
  std::vector<std::function<void()>> session_end_;
  std::vector<std::function<void(const SimWindow&)>> window_gone_;
};

// A saved text field, "" when absent or not a text.
inline std::string JsonText(const nlohmann::json& j, const char* key) {
  return j.contains(key) && j[key].is_string() ? j[key].get<std::string>()
                                               : std::string();
}

// The base of a part: the shell's members under the names the parts use.
class SimClientPart {
 protected:
  explicit SimClientPart(SimClientShell& shell)
      : shell_(shell),
        host_(shell.host),
        world_(shell.world),
        knobs_(shell.knobs),
        tree_(shell.tree) {}

  void Later(double delay, std::function<void()> fn,
             bool session_bound = true) {
    shell_.Later(delay, std::move(fn), session_bound);
  }
  void Notify(const std::function<void(SimObserver&)>& fn) {
    shell_.Notify(fn);
  }
  void MarkBusy() { shell_.MarkBusy(); }
  Hwnd Add(Hwnd parent, const char* class_name, std::string text,
           int role = kRoleNone, int tag = 0) {
    return shell_.Add(parent, class_name, std::move(text), role, tag);
  }
  void AddIcons(Hwnd parent, const std::vector<const char*>& texts,
                bool with_text = true) {
    shell_.AddIcons(parent, texts, with_text);
  }

  SimClientShell& shell_;
  Host& host_;
  SimWorld& world_;
  SimKnobs& knobs_;
  WindowTree& tree_;
};

}  // namespace quorvex
