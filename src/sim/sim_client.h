// The simulated chat client: the client's window tree and the behaviour
// behind it, reached only through the WindowApi port, as the program
// reaches the real client. It knows nothing of the program.
//
// Windows open some time after they are asked for (Host::Schedule),
// posted messages arrive when the program yields, and the client's faults
// (lost clicks, full mailboxes, dead mails, full rooms, sign-offs, failed
// sign-ons) are knobs. Random choices come from one seeded generator, so a
// run is repeatable.
//
// Use: construct on a Host and a SimWorld, make the set-up calls, then
// Launch(); drive the room with Say/Join/Leave and the session with
// SignOff/Start; watch through a SimObserver and Mailboxes().
//
// SimClient is the face of four parts, each with its own state and file
// pair: the room (sim_client_room), the mail (sim_client_mail), the
// session (sim_client_session) and the preferences (sim_client_prefs),
// over the shell they share (sim_client_shell: the window tree, the
// knobs, the process). It answers the WindowApi calls and hands each
// message and click to the part whose window it reaches.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ports/host.h"
#include "ports/window_api.h"
#include "sim/popup_menu.h"
#include "sim/sim_client_mail.h"
#include "sim/sim_client_prefs.h"
#include "sim/sim_client_room.h"
#include "sim/sim_client_session.h"
#include "sim/sim_client_shell.h"
#include "sim/sim_knobs.h"
#include "sim/sim_memory.h"
#include "sim/sim_observer.h"
#include "sim/sim_world.h"
#include "sim/window_tree.h"

namespace quorvex {

// What SimObserver::OnClient reports.
inline constexpr char kClientStarts[] = "starts";
inline constexpr char kClientCloses[] = "closes";
inline constexpr char kClientSignsOn[] = "signs on";
inline constexpr char kClientSignsOff[] = "signs off";
inline constexpr char kClientEntersPrefix[] = "enters ";  // + room name

// The client's own texts that the program looks for.
inline constexpr char kDeadMailText[] =
    "That message is no longer available for forwarding.";
inline constexpr char kTooLongText[] = "Message is too long or too complex";
inline constexpr char kFullMailboxReason[] = "Mailbox is full";
inline constexpr char kMailSentNote[] = "Your mail has been sent.";
inline constexpr char kSpellCheckNote[] = "No misspellings found.";

// The mail preferences whose boxes change how mail is sent.
inline constexpr char kPrefConfirm[] = "Confirm mail after it has been sent";
inline constexpr char kPrefClose[] = "Close mail after it has been sent";
inline constexpr char kPrefSpellCheck[] =
    "Perform a spell check before sending mail";

class SimClient : public WindowApi {
 public:
  SimClient(Host& host, SimWorld& world, std::uint64_t seed = 1);
  ~SimClient() override;
  SimClient(const SimClient&) = delete;
  SimClient& operator=(const SimClient&) = delete;

  // --- Set-up (before Launch; mails and people may come later too) ---
  void SetUserName(std::string name) { session_.SetUserName(std::move(name)); }
  // The room the user is in when the client is launched signed on.
  void SetRoomName(std::string name) { room_.SetRoomName(std::move(name)); }
  // Someone in the user's room.
  void AddPerson(std::string_view name) { room_.Join(name); }
  // One more mail at the end of "Incoming/Saved Mail"; the sender
  // defaults to the user.
  void AddMail(std::string title, std::string sender = "",
               std::string body = "") {
    mail_.AddMail(std::move(title), std::move(sender), std::move(body));
  }
  void SetFullMailbox(std::string_view name, bool full = true) {
    shell_.world.SetFullMailbox(name, full);
  }
  // Forwarding mail `number` (1-based position in "Incoming/Saved Mail")
  // fails: the mail is no longer available.
  void SetDeadMail(int number, bool dead = true) {
    mail_.SetDeadMail(number, dead);
  }
  // The line the error window shows for `name` when a mail cannot reach
  // them (a full mailbox), in place of "name - Mailbox is full"; the
  // whole text, line breaks included; "" restores the usual line.
  void SetErrorLine(std::string_view name, std::string line) {
    mail_.SetErrorLine(name, std::move(line));
  }
  void SetLatency(double seconds) { shell_.knobs.latency = seconds; }
  void SetSignedOffAtStart(bool signed_off = true) {
    session_.SetSignedOffAtStart(signed_off);
  }
  // A member room holds `capacity` people, the user included; 0: no limit.
  void SetRoomCapacity(std::string_view room, int capacity) {
    shell_.world.SetRoomCapacity(room, capacity);
  }
  // The room is reported full for the next `times` tries.
  void RefuseRoom(std::string_view room, int times) {
    shell_.world.RefuseRoom(room, times);
  }
  SimKnobs& knobs() { return shell_.knobs; }
  // Where the client's heap (the people list's records) starts; each
  // start of the client moves it on by 64 KB.
  void SetMemoryBase(std::uint32_t base) { shell_.memory_base = base; }
  void SetObserver(SimObserver* observer) { shell_.observer = observer; }
  // Opens the client as set up, at once: running and, unless signed off
  // at start, signed on with the user in the room.
  void Launch();

  // --- Driving ---
  // A line from someone in the user's room; the person joins first when
  // absent. Seen only while the user is in the room.
  void Say(std::string_view name, std::string_view text) {
    room_.Say(name, text);
  }
  void Join(std::string_view name) { room_.Join(name); }
  void Leave(std::string_view name) { room_.Leave(name); }
  // The connection is lost: online windows close, the goodbye window
  // shows.
  void SignOff() { session_.SignOff(); }
  void SignOffAfter(double seconds) { session_.SignOffAfter(seconds); }
  // The machine runs the client's program.
  void Start() { session_.Start(); }
  // The client's process ends at once, as a crashing client's does: its
  // windows go without a close, and a start under way never comes.
  void Crash() { session_.Crash(); }

  // --- Across processes (a client started again keeps its world) ---
  // What outlives the client's process: the user and the room to return
  // to, the people with their mailboxes and the rooms, the mailbox and
  // the mail waiting or sent, the preferences and remembered window
  // sizes, and the knobs with the faults still to come (sign-on failures,
  // refusals of full rooms). Windows and what was under way are not kept.
  nlohmann::json SaveState() const;
  // Restores a saved state into a client not launched yet; then Launch()
  // (the client as first set up) or Start() (its program run again).
  void RestoreState(const nlohmann::json& state);

  // --- Observation ---
  std::map<std::string, std::vector<ReceivedMail>> Mailboxes() const {
    return shell_.world.Mailboxes();
  }
  SimWorld& world() { return shell_.world; }
  const WindowTree& tree() const { return shell_.tree; }
  bool running() const { return session_.running(); }
  // Started and not yet showing its frame.
  bool starting() const { return session_.starting(); }
  bool signed_on() const { return session_.signed_on(); }
  bool ims_on() const { return session_.ims_on(); }
  const std::string& user_name() const { return session_.user_name(); }
  // The room the user is in, "" when none.
  const std::string& current_room() const { return room_.current_room(); }
  const std::deque<std::string>& DisplayLines() const {
    return room_.display_lines();
  }
  std::vector<std::string> IncomingTitles() const {
    return mail_.IncomingTitles();
  }
  int WaitingCount() const { return mail_.WaitingCount(); }
  // "Mail Waiting to be Sent", oldest first.
  using WaitingMail = SimClientMail::WaitingMail;
  std::vector<WaitingMail> Waiting() const { return mail_.Waiting(); }
  int SentCount() const { return mail_.SentCount(); }
  std::uint32_t process_id() const { return shell_.pid; }
  // A preference check box's saved state, by its label (-1: unknown).
  int Preference(const std::string& label) const {
    return preferences_.Preference(label);
  }
  // Saves a preference check box's state, as the page's OK would.
  void SetPreference(const std::string& label, int checked) {
    preferences_.SetPreference(label, checked);
  }
  // The "Mail Preferences" page's boxes as saved, in the page's order.
  std::vector<std::pair<std::string, int>> MailPreferences() const {
    return preferences_.MailPreferences();
  }
  Point WindowSize(Hwnd hwnd) const;
  // The client's address space, where the people list's records lie.
  const SimMemory& memory() const { return shell_.memory; }
  // The pop-up menu now open, null when none.
  const PopupMenu* popup() const { return mail_.popup(); }

  // --- WindowApi ---
  Hwnd FindWindowA(const char* class_name, const char* caption) override;
  Hwnd FindWindowExA(Hwnd parent, Hwnd child_after, const char* class_name,
                     const char* caption) override;
  Hwnd GetWindow(Hwnd hwnd, unsigned cmd) override;
  std::string GetClassNameA(Hwnd hwnd, int max_chars) override;
  int GetWindowTextLengthA(Hwnd hwnd) override;
  std::string GetWindowTextA(Hwnd hwnd, int max_chars) override;
  bool IsWindow(Hwnd hwnd) override;
  bool IsWindowVisible(Hwnd hwnd) override;
  std::intptr_t SendMessageA(Hwnd hwnd, unsigned msg, std::uintptr_t wparam,
                             std::intptr_t lparam) override;
  std::intptr_t SendMessageGetText(Hwnd hwnd, unsigned msg,
                                   std::uintptr_t wparam, std::string* out,
                                   std::size_t buffer_chars) override;
  std::intptr_t SendMessageSetText(Hwnd hwnd, unsigned msg,
                                   std::uintptr_t wparam,
                                   std::string_view text) override;
  bool PostMessageA(Hwnd hwnd, unsigned msg, std::uintptr_t wparam,
                    std::intptr_t lparam) override;
  Hmenu GetMenu(Hwnd hwnd) override;
  Hmenu GetSubMenu(Hmenu menu, int position) override;
  std::uint32_t GetMenuItemID(Hmenu menu, int position) override;
  Point GetCursorPos() override { return shell_.cursor; }
  void SetCursorPos(int x, int y) override;
  Point ScreenSize() override;
  void ShowWindow(Hwnd hwnd, int cmd) override;
  void SetWindowPos(Hwnd hwnd, std::intptr_t insert_after, int x, int y, int cx,
                    int cy, unsigned flags) override;
  void ReleaseCapture() override {}
  std::uint32_t GetWindowThreadProcessId(Hwnd hwnd,
                                         std::uint32_t* process_id) override;
  ProcessHandle OpenProcess(std::uint32_t access, bool inherit,
                            std::uint32_t process_id) override;
  bool ReadProcessMemory(ProcessHandle process, std::uint32_t address,
                         void* buffer, std::size_t size,
                         std::size_t* bytes_read) override;
  void CloseHandle(ProcessHandle handle) override;
  OsVersion GetVersionExA() override { return shell_.knobs.os; }

 private:
  // A WM_CLOSE to a document or top-level window.
  void CloseDoc(Hwnd hwnd);
  std::intptr_t Dispatch(Hwnd hwnd, unsigned msg, std::uintptr_t wparam,
                         std::intptr_t lparam);
  std::intptr_t ListMessage(SimWindow& list, unsigned msg,
                            std::uintptr_t wparam, std::string* out,
                            std::size_t buffer_chars);
  void Click(Hwnd hwnd);
  void RunFrameCommand(std::uint32_t id);

  SimClientShell shell_;
  SimClientSession session_;
  SimClientPreferences preferences_;
  SimClientRoom room_;
  SimClientMail mail_;
};

}  // namespace quorvex
