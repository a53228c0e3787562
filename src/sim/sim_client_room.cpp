#include "sim/sim_client_room.h"

#include <algorithm>

#include "model/text_util.h"
#include "model/utf8.h"
#include "ports/client_windows.h"
#include "sim/recipients.h"
#include "sim/rich_text.h"
#include "sim/sim_client.h"

namespace quorvex {

namespace {
constexpr char kImAddress[] = "aol://9293:";
constexpr char kRoomAddress[] = "aol://2719:2-2-";
constexpr char kRoomFullText[] =
    "You are unable to enter this room because it is full.";
constexpr char kImsOffText[] = "You are now ignoring Instant Messages.";
constexpr char kImsOnText[] = "You are now accepting Instant Messages.";
// A people record's name sits 6 bytes into its name block; the list
// item's record holds the block's address 24 bytes in.
constexpr std::uint32_t kNameOffset = 6;
constexpr std::uint32_t kItemPointerOffset = 24;
constexpr std::size_t kItemRecordSize = 32;
constexpr std::uint8_t kHeapFill = 0xCD;
// The chat room's Send icon; in an instant message, Cancel (Send is
// counted from the message field).
constexpr int kRoomSendIcon = 1;
constexpr int kImCancelIcon = 12;
}  // namespace

SimClientRoom::SimClientRoom(SimClientShell& shell, SimClientSession& session,
                             SimClientPreferences& preferences)
    : SimClientPart(shell), session_(session), preferences_(preferences) {
  shell_.OnWindowGone([this](const SimWindow& w) { OnWindowGone(w); });
}

void SimClientRoom::OnWindowGone(const SimWindow& w) {
  if (w.hwnd != room_) return;
  for (const PeopleEntry& e : people_entries_) FreePeopleEntry(e);
  people_entries_.clear();
  room_ = display_ = input_ = people_list_ = count_static_ = 0;
  current_room_.clear();
}

void SimClientRoom::SeatSetupPeople() {
  const std::string user = ScreenNameKey(session_.user_name());
  for (const std::string& p : setup_people_)
    if (ScreenNameKey(p) != user) world_.Join(room_name_, p);
  setup_people_.clear();
}

void SimClientRoom::ShowAtLaunch() {
  current_room_ = world_.Room(room_name_).name;
  room_name_ = current_room_;
  BuildRoomWindow();
}

void SimClientRoom::EnterRoom(const std::string& name) {
  std::string canonical = world_.Room(name).name;
  if (room_) tree_.Destroy(room_);
  current_room_ = canonical;
  room_name_ = canonical;
  display_lines_.clear();
  BuildRoomWindow();
  Notify([&](SimObserver& o) { o.OnClient(kClientEntersPrefix + canonical); });
}

void SimClientRoom::BuildRoomWindow() {
  room_ = shell_.NewDoc(SimWindowKind::kChatRoom, current_room_);
  display_ = Add(room_, aol::kRichTextClass, "", kRoleDisplay);
  input_ = Add(room_, aol::kRichTextClass, "", kRoleInput);
  if (knobs_.room_style_controls) {
    Add(room_, aol::kFontComboClass, "Arial");
    Add(room_, aol::kComboClass, "10");
  }
  people_list_ = Add(room_, aol::kListClass, "", kRolePeople);
  Add(room_, aol::kStaticClass, current_room_);
  count_static_ = Add(room_, aol::kStaticClass, "");
  AddIcons(room_, {"Send", "Notify AOL", "Chat Preferences", "Find a Chat",
                   "Private Chat", "Member Rooms"});
  const std::string& user = session_.user_name();
  AddPeopleEntry(user);
  if (SimRoom* r = world_.FindRoom(current_room_))
    for (const std::string& p : r->people)
      if (ScreenNameKey(p) != ScreenNameKey(user)) AddPeopleEntry(p);
  UpdatePeopleCount();
}

void SimClientRoom::AddPeopleEntry(const std::string& name) {
  // The name is stored whole, zero-terminated, with heap filler after it;
  // at least 16 bytes follow its start so that a 16-byte read succeeds.
  SimMemory& memory = shell_.memory;
  std::size_t span = std::max<std::size_t>(name.size() + 1, 16) + 8;
  std::uint32_t block = memory.Allocate(kNameOffset + span, kHeapFill);
  const std::uint8_t header[kNameOffset] = {0x01, 0x00, 0x10, 0x00, 0x00, 0x00};
  memory.Write(block, header, sizeof header);
  memory.Write(block + kNameOffset, name.data(), name.size());
  const std::uint8_t zero = 0;
  memory.Write(block + kNameOffset + static_cast<std::uint32_t>(name.size()),
               &zero, 1);
  std::uint32_t item = memory.Allocate(kItemRecordSize, kHeapFill);
  memory.WriteU32(item + kItemPointerOffset, block);
  people_entries_.push_back({name, item, block});
}

void SimClientRoom::FreePeopleEntry(const PeopleEntry& e) {
  shell_.memory.Free(e.item);
  shell_.memory.Free(e.name_block);
}

void SimClientRoom::UpdatePeopleCount() {
  if (SimWindow* w = tree_.Get(count_static_))
    w->text = std::to_string(people_entries_.size());
}

std::intptr_t SimClientRoom::PeopleListMessage(SimWindow& list, unsigned msg,
                                               std::uintptr_t wparam) const {
  const auto index = static_cast<std::intptr_t>(wparam);
  const auto count = static_cast<std::intptr_t>(people_entries_.size());
  switch (msg) {
    case win::kLbGetCount:
      return count;
    case win::kLbGetItemData:
      return index >= 0 && index < count ? people_entries_[index].item
                                         : win::kLbErr;
    case win::kLbSetCurSel:
      list.selection =
          index >= 0 && index < count ? static_cast<int>(index) : -1;
      return list.selection >= 0 ? index : win::kLbErr;
    case win::kLbGetCurSel:
      return list.selection;
    default:
      return win::kLbErr;
  }
}

void SimClientRoom::Join(std::string_view name) {
  if (!session_.launched()) {
    setup_people_.emplace_back(name);
    return;
  }
  if (ScreenNameKey(name) == ScreenNameKey(session_.user_name())) return;
  if (!world_.Join(room_name_, name)) return;
  if (room_ && ScreenNameKey(current_room_) == ScreenNameKey(room_name_)) {
    AddPeopleEntry(world_.FindPerson(name)->name);
    UpdatePeopleCount();
  }
}

void SimClientRoom::Leave(std::string_view name) {
  if (!world_.Leave(room_name_, name)) return;
  if (!room_) return;
  std::string key = ScreenNameKey(name);
  // The first entry is the user's own.
  for (std::size_t i = 1; i < people_entries_.size(); ++i) {
    if (ScreenNameKey(people_entries_[i].name) != key) continue;
    FreePeopleEntry(people_entries_[i]);
    people_entries_.erase(people_entries_.begin() +
                          static_cast<std::ptrdiff_t>(i));
    break;
  }
  UpdatePeopleCount();
}

void SimClientRoom::Say(std::string_view name, std::string_view text) {
  Join(name);
  if (!session_.launched() || !room_) return;
  const SimPerson* p = world_.FindPerson(name);
  AppendChatLine(p ? p->name : std::string(name), std::string(text));
}

void SimClientRoom::AppendChatLine(const std::string& sn,
                                   const std::string& text) {
  // The display holds the line as a person reads it; observers hear it as
  // it was typed.
  display_lines_.push_back(sn + ":\t" + RenderedChat(text));
  while (static_cast<int>(display_lines_.size()) >
         std::max(knobs_.display_lines, 1))
    display_lines_.pop_front();
  if (SimWindow* w = tree_.Get(display_)) {
    std::string all;
    for (const std::string& line : display_lines_) {
      if (!all.empty()) all += "\r\n";
      all += line;
    }
    w->text = std::move(all);
  }
  Notify([&](SimObserver& o) { o.OnChat(sn, text); });
}

void SimClientRoom::SetDisplayText(SimWindow& display, std::string text) {
  display_lines_.clear();
  std::string_view rest = text;
  while (!rest.empty()) {
    size_t end = rest.find("\r\n");
    display_lines_.emplace_back(rest.substr(0, end));
    rest = end == std::string_view::npos ? std::string_view{}
                                         : rest.substr(end + 2);
  }
  display.text = std::move(text);
  display_sel_start_ = display_sel_end_ = 0;
}

void SimClientRoom::SelectDisplay(std::intptr_t from, std::intptr_t to) {
  // -1 to the end selects all from the start.
  display_sel_start_ = from < 0 ? 0 : static_cast<std::size_t>(from);
  display_sel_end_ = to < 0 ? std::string::npos : static_cast<std::size_t>(to);
}

void SimClientRoom::ClearDisplaySelection(SimWindow& display) {
  // Characters as the real display shows them: a malformed byte is one.
  const std::size_t from = Utf8Offset(display.text, display_sel_start_);
  const std::size_t to =
      std::max(from, Utf8Offset(display.text, display_sel_end_));
  std::string text = display.text;
  text.erase(from, to - from);
  SetDisplayText(display, std::move(text));
}

void SimClientRoom::SendChatInput() {
  SimWindow* w = tree_.Get(input_);
  if (!w || w->text.empty()) return;
  std::string line = std::move(w->text);
  w->text.clear();
  MarkBusy();
  AppendChatLine(session_.user_name(), line);
}

void SimClientRoom::ClickIcon(const ClientWindow& window, int icon) {
  if (window.kind == SimWindowKind::kChatRoom) {
    if (icon == kRoomSendIcon) SendChatInput();
  } else if (window.kind == SimWindowKind::kIm) {
    // The address book icon comes first, then eight style icons after
    // the message field, then Send.
    if (icon == aol::kImIconsBeforeText + aol::kImSendIcon) SendIm(window.hwnd);
    if (icon == kImCancelIcon) tree_.Destroy(window.hwnd);
  }
}

void SimClientRoom::RunKeyword(const std::string& address) {
  if (!session_.signed_on()) return;
  std::string a = Trim(address);
  std::string lower = LCase(a);
  MarkBusy();
  if (StartsWith(lower, kImAddress)) {
    std::string to = Trim(a.substr(sizeof kImAddress - 1));
    Later(knobs_.latency, [this, to] { OpenIm(to); });
  } else if (lower == "preferences") {
    Later(knobs_.latency, [this] { preferences_.OpenPreferences(); });
  } else if (StartsWith(lower, kRoomAddress)) {
    std::string room = Trim(a.substr(sizeof kRoomAddress - 1));
    if (room.empty()) return;
    Later(knobs_.latency, [this, room] {
      if (!session_.signed_on()) return;
      if (room_ && ScreenNameKey(current_room_) == ScreenNameKey(room)) {
        tree_.BringToTop(room_);
      } else if (!world_.TryEnterRoom(room)) {
        shell_.ShowBox(kRoomFullText, shell_.frame);
        FreePlaceLater(room);
      } else {
        EnterRoom(room);
      }
    });
  }
}

void SimClientRoom::FreePlaceLater(const std::string& room) {
  const SimRoom* r = world_.FindRoom(room);
  if (knobs_.full_room_leave_time <= 0 || !r || r->capacity == 0 ||
      static_cast<int>(r->people.size()) < r->capacity)
    return;
  std::string key = ScreenNameKey(room);
  if (!freeing_rooms_.insert(key).second) return;
  // The world goes on whether or not the user stays signed on.
  Later(
      knobs_.full_room_leave_time,
      [this, key, name = r->name] {
        freeing_rooms_.erase(key);
        const SimRoom* full = world_.FindRoom(name);
        if (!full || full->people.empty() ||
            static_cast<int>(full->people.size()) < full->capacity)
          return;
        std::string person = full->people.front();
        if (room_ && ScreenNameKey(current_room_) == key)
          Leave(person);  // the user got in meanwhile: the list shows it
        else
          world_.Leave(name, person);
      },
      false);
}

void SimClientRoom::OpenIm(const std::string& to) {
  if (!session_.signed_on()) return;
  Hwnd doc = shell_.NewDoc(SimWindowKind::kIm, "Send Instant Message");
  Add(doc, aol::kEditClass, to, kRoleEdit, 1);
  AddIcons(doc, {"Address Book"});
  Add(doc, aol::kFontComboClass, "Arial");
  Add(doc, aol::kComboClass, "10");
  Add(doc, aol::kRichTextClass, "", kRoleBody);
  // Counted from the message field, the ninth icon is Send.
  AddIcons(doc,
           {"Font Color", "Background Color", "Bold", "Italic", "Underline",
            "Smaller", "Normal", "Larger", "Send", "Get Info", "Cancel"});
}

void SimClientRoom::SendIm(Hwnd im) {
  std::string to = tree_.Get(tree_.NthChild(im, aol::kEditClass, 1))->text;
  std::string text =
      tree_.Get(tree_.NthChild(im, aol::kRichTextClass, 1))->text;
  if (Trim(to).empty() || text.empty()) return;
  MarkBusy();
  Notify([&](SimObserver& o) { o.OnIm(to, text); });
  std::string key = ScreenNameKey(to);
  if (key == "$im_off" || key == "$im_on") {
    // The reserved names switch the member's messages and answer with a
    // box; the message window stays until it is closed.
    session_.set_ims_on(key == "$im_on");
    shell_.ShowBox(session_.ims_on() ? kImsOnText : kImsOffText, im);
    return;
  }
  tree_.Destroy(im);
}

void SimClientRoom::SaveTo(nlohmann::json& j) const {
  j["room"] = room_name_;
  j["setup_people"] = setup_people_;
}

void SimClientRoom::RestoreFrom(const nlohmann::json& j) {
  room_name_ = JsonText(j, "room");
  setup_people_.clear();
  for (const nlohmann::json& p :
       j.value("setup_people", nlohmann::json::array()))
    setup_people_.push_back(p.get<std::string>());
}

}  // namespace quorvex
