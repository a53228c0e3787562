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
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "ports/host.h"
#include "ports/window_api.h"
#include "sim/popup_menu.h"
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
  void SetUserName(std::string name);
  // The room the user is in when the client is launched signed on.
  void SetRoomName(std::string name);
  // Someone in the user's room.
  void AddPerson(std::string_view name);
  // One more mail at the end of "Incoming/Saved Mail"; the sender
  // defaults to the user.
  void AddMail(std::string title, std::string sender = "",
               std::string body = "");
  void SetFullMailbox(std::string_view name, bool full = true);
  // Forwarding mail `number` (1-based position in "Incoming/Saved Mail")
  // fails: the mail is no longer available.
  void SetDeadMail(int number, bool dead = true);
  void SetLatency(double seconds) { knobs_.latency = seconds; }
  void SetSignedOffAtStart(bool signed_off = true) {
    signed_off_at_start_ = signed_off;
  }
  // A member room holds `capacity` people, the user included; 0: no limit.
  void SetRoomCapacity(std::string_view room, int capacity);
  // The room is reported full for the next `times` tries.
  void RefuseRoom(std::string_view room, int times);
  SimKnobs& knobs() { return knobs_; }
  // Where the client's heap (the people list's records) starts; each
  // start of the client moves it on by 64 KB.
  void SetMemoryBase(std::uint32_t base) { memory_base_ = base; }
  void SetObserver(SimObserver* observer) { observer_ = observer; }
  // Opens the client as set up, at once: running and, unless signed off
  // at start, signed on with the user in the room.
  void Launch();

  // --- Driving ---
  // A line from someone in the user's room; the person joins first when
  // absent. Seen only while the user is in the room.
  void Say(std::string_view name, std::string_view text);
  void Join(std::string_view name);
  void Leave(std::string_view name);
  // The connection is lost: online windows close, the goodbye window
  // shows.
  void SignOff();
  void SignOffAfter(double seconds);
  // The machine runs the client's program.
  void Start();
  // The client's process ends at once, as a crashing client's does: its
  // windows go without a close, and a start under way never comes.
  void Crash();

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
    return world_.Mailboxes();
  }
  SimWorld& world() { return world_; }
  const WindowTree& tree() const { return tree_; }
  bool running() const { return frame_ != 0; }
  // Started and not yet showing its frame.
  bool starting() const { return start_pending_; }
  bool signed_on() const { return signed_on_; }
  bool ims_on() const { return ims_on_; }
  const std::string& user_name() const { return user_name_; }
  // The room the user is in, "" when none.
  const std::string& current_room() const { return current_room_; }
  const std::deque<std::string>& DisplayLines() const { return display_lines_; }
  std::vector<std::string> IncomingTitles() const;
  int WaitingCount() const { return static_cast<int>(waiting_.size()); }
  // "Mail Waiting to be Sent", oldest first.
  struct WaitingMail {
    std::string to, subject, body;
  };
  std::vector<WaitingMail> Waiting() const;
  int SentCount() const { return static_cast<int>(sent_.size()); }
  std::uint32_t process_id() const { return pid_; }
  // A preference check box's saved state, by its label (-1: unknown).
  int Preference(const std::string& label) const;
  // Saves a preference check box's state, as the page's OK would.
  void SetPreference(const std::string& label, int checked) {
    preferences_[label] = checked ? 1 : 0;
  }
  // The "Mail Preferences" page's boxes as saved, in the page's order.
  std::vector<std::pair<std::string, int>> MailPreferences() const;
  Point WindowSize(Hwnd hwnd) const;
  // The client's address space, where the people list's records lie.
  const SimMemory& memory() const { return memory_; }
  // The pop-up menu now open, null when none.
  const PopupMenu* popup() const { return popup_.get(); }

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
  Point GetCursorPos() override { return cursor_; }
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
  OsVersion GetVersionExA() override { return knobs_.os; }

 private:
  // What a document or top-level window is.
  enum class Kind {
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
  enum Role : int {
    kRoleNone = 0,
    kRoleIcon,     // tag: position among the window's icons, from 1
    kRoleButton,   // a message box's push button
    kRoleDisplay,  // the chat display
    kRoleInput,    // the chat input
    kRolePeople,   // the room's people list
    kRoleTree,     // a mail list; tag: which (a Tree value)
    kRoleKeyword,  // the keyword box's edit
    kRoleEdit,     // a one-line edit; tag: position from 1
    kRoleBody,     // a mail or message body
    kRoleCheck,    // a preference check box
  };
  enum class BoxKind { kPlain, kDeadMail, kTooLong, kNoRecipient, kRoomFull };
  enum Tree : int {
    kTreeIncoming = 0,
    kTreeNew,
    kTreeOld,
    kTreeSent,
    kTreeWaiting,
    kTreeBuddies
  };

  struct Doc {
    Kind kind = Kind::kFrame;
    Hwnd hwnd = 0;
    std::uint64_t mail_id = 0;  // open mail, forward: the mail
    Hwnd open_mail = 0;         // forward: the open mail it came from
    Hwnd blocker = 0;           // the message box holding this window
    bool sending = false;
    bool filled = false;  // mail windows: the icons carry their texts
    int tab = 0;          // online mailbox: the active tab (0 new, 2 sent)
    int loaded = 0;       // online mailbox: sent mails listed so far
    int step = 0;         // sign-on modal: 1..3; automatic AOL: mails sent
    bool failed = false;  // sign-on modal: shows the error
    bool spell_checked = false;  // mail windows: the spelling was checked
    BoxKind box = BoxKind::kPlain;
    Hwnd box_for = 0;  // a message box: the window it holds
  };
  struct MailItem {
    std::uint64_t id = 0;
    std::string date, sender, title, body;
    bool dead = false;
  };
  struct OutMail {
    std::string date, to, cc, subject, body, forward_of;
    bool dead = false;
  };
  struct PeopleEntry {
    std::string name;
    std::uint32_t item = 0;  // the list item's data: its record's address
    std::uint32_t name_block = 0;
  };

  // --- plumbing (sim_client.cpp) ---
  void Later(double delay, std::function<void()> fn, bool session_bound = true);
  void Notify(const std::function<void(SimObserver&)>& fn) {
    if (observer_) fn(*observer_);
  }
  void MarkBusy();
  bool ClickLost();
  std::string Today() const;
  Doc* DocOf(Hwnd hwnd);  // the document a window belongs to
  Doc* FindDoc(Kind kind);
  Hwnd NewDoc(Kind kind, std::string caption);
  Hwnd NewTopLevel(Kind kind, const char* class_name, std::string caption);
  Hwnd Add(Hwnd parent, const char* class_name, std::string text,
           int role = kRoleNone, int tag = 0);
  void AddIcons(Hwnd parent, const std::vector<const char*>& texts,
                bool with_text = true);
  Hwnd Icon(Hwnd doc, int n) const;
  void CloseDoc(Hwnd hwnd);
  void OnDestroyed(const SimWindow& w);
  std::intptr_t Dispatch(Hwnd hwnd, unsigned msg, std::uintptr_t wparam,
                         std::intptr_t lparam);
  void Click(Hwnd hwnd);
  void BuildFrame();
  void DestroyClient();
  void RunFrameCommand(std::uint32_t id);
  void OpenMailMenu();
  void MenuResult(PopupMenu::Result r);
  void SyncMenuWindows();
  void RunMailCommand(int command);

  // --- the room, the keyword box, instant messages (sim_client_room.cpp)
  void EnterRoom(const std::string& name);
  void BuildRoomWindow();
  void AddPeopleEntry(const std::string& name);
  void FreePeopleEntry(const PeopleEntry& e);
  void UpdatePeopleCount();
  void AppendChatLine(const std::string& sn, const std::string& text);
  // The display's text as set or left by a deletion; its lines follow it.
  void SetDisplayText(SimWindow& w, std::string text);
  void SendChatInput();
  void TypeChar(SimWindow& w, char c);
  void RunKeyword(const std::string& address);
  // After a refusal: someone leaves the full room in a while.
  void FreePlaceLater(const std::string& room);
  void OpenIm(const std::string& to);
  void SendIm(Doc& doc);

  // --- mail (sim_client_mail.cpp) ---
  int TreeCount(const SimWindow& tree);
  std::string TreeItem(const SimWindow& tree, int i);
  Hwnd FindTree(Hwnd parent, int which) const;
  std::intptr_t TreeMessage(SimWindow& tree, unsigned msg,
                            std::uintptr_t wparam, std::string* out,
                            std::size_t buffer_chars);
  void OpenIncoming();
  void OpenSelectedMail(SimWindow& tree);
  void OpenMail(const MailItem& mail);
  void OpenForward(Doc& open_mail);
  void OpenWriteMail();
  void FillComposeIcons(Hwnd doc);
  void SendMail(Doc& doc, bool now);
  void FinishSend(Hwnd doc, Hwnd status, const OutMail& mail);
  // Delivers a mail; the names it could not reach, as "name - reason".
  std::vector<std::string> Deliver(const OutMail& mail);
  void ShowErrors(const std::vector<std::string>& lines);
  Hwnd ShowBox(BoxKind kind, const std::string& text, Hwnd holds = 0);
  // One of the client's own modal notes ("_AOL_Modal" with its text and an
  // "OK" button), holding `holds` until it is dismissed.
  Hwnd ShowNote(const std::string& caption, const std::string& text,
                Hwnd holds = 0);
  // A window held by a modal takes no input until the modal is dismissed.
  bool Blocked(Hwnd doc);
  void PressBoxButton(Hwnd box);
  void OpenOnlineMailbox(int tab);
  void FillSentList(Hwnd doc);
  void OpenWaiting();
  void DeleteTreeItem(Doc& doc, int tree);
  MailItem* MailById(std::uint64_t id);

  // --- preferences (sim_client_prefs.cpp) ---
  void OpenPreferences();
  void OpenPreferencePage(bool mail);
  void SavePreferencePage(Hwnd page);

  // --- the session (sim_client_session.cpp) ---
  void ShowSignOnWindow(bool goodbye);
  void BeginSignOn();
  void SignOnStep(Hwnd modal);
  void CompleteSignOn();
  void OpenSignedOnWindows();
  void RequestFrameClose();
  void RunAutomaticAol();
  void AutomaticAolStep(Hwnd modal);

  Host& host_;
  SimWorld& world_;
  SimKnobs knobs_;
  SimObserver* observer_ = nullptr;
  std::mt19937_64 rng_;
  std::shared_ptr<int> alive_ = std::make_shared<int>(0);
  // Bumped when the session ends: what was under way for it is dropped.
  std::uint64_t epoch_ = 0;

  WindowTree tree_;
  std::map<Hwnd, Doc> docs_;
  SimMemory memory_;
  std::uint32_t memory_base_ = 0x00A3F000;
  std::map<ProcessHandle, std::uint32_t> processes_;
  ProcessHandle next_process_handle_ = 0x1F4;
  std::uint32_t pid_ = 0;
  int starts_ = 0;
  // Bumped by a crash: a start under way for the old process never comes.
  std::uint64_t process_epoch_ = 0;

  std::string user_name_ = "Host";
  std::string room_name_ = "Lobby";
  bool signed_off_at_start_ = false;
  bool launched_ = false;
  std::vector<std::string> setup_people_;
  bool signed_on_ = false;
  bool signing_on_ = false;
  bool start_pending_ = false;
  bool close_pending_ = false;
  int close_asks_ = 0;
  bool ims_on_ = true;
  double busy_until_ = 0;
  Point cursor_{512, 384};
  // The chat display's selection, in characters (code points).
  std::size_t display_sel_start_ = 0, display_sel_end_ = 0;

  // The frame and its fixed parts.
  Hwnd frame_ = 0, mdi_ = 0, toolbar_row_ = 0, keyword_edit_ = 0;
  Hmenu menu_base_ = 0;
  std::unique_ptr<PopupMenu> popup_;
  std::vector<Hwnd> popup_windows_;
  bool popup_pending_ = false;

  // The room the user is in.
  std::string current_room_;
  Hwnd room_ = 0, display_ = 0, input_ = 0, people_list_ = 0, count_static_ = 0;
  std::deque<std::string> display_lines_;
  std::vector<PeopleEntry> people_entries_;
  // Full rooms someone is about to leave (by ScreenNameKey).
  std::set<std::string> freeing_rooms_;

  // Mail.
  std::vector<MailItem> incoming_;
  std::uint64_t next_mail_id_ = 1;
  std::set<int> dead_numbers_;  // numbers set before their mail came
  std::vector<OutMail> waiting_;
  std::vector<OutMail> sent_;
  std::map<Kind, Point> remembered_sizes_;
  // Preference check boxes by label: saved with the page's OK.
  std::map<std::string, int> preferences_;
};

}  // namespace quorvex
