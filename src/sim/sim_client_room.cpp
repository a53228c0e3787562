// The simulated client's chat room, its people list in the client's
// memory, the keyword box and instant messages.
#include <algorithm>

#include "model/text_util.h"
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
}  // namespace

void SimClient::EnterRoom(const std::string& name) {
  std::string canonical = world_.Room(name).name;
  if (room_) tree_.Destroy(room_);
  current_room_ = canonical;
  room_name_ = canonical;
  display_lines_.clear();
  BuildRoomWindow();
  Notify([&](SimObserver& o) { o.OnClient(kClientEntersPrefix + canonical); });
}

void SimClient::BuildRoomWindow() {
  room_ = NewDoc(Kind::kChatRoom, current_room_);
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
  AddPeopleEntry(user_name_);
  if (SimRoom* r = world_.FindRoom(current_room_))
    for (const std::string& p : r->people)
      if (ScreenNameKey(p) != ScreenNameKey(user_name_)) AddPeopleEntry(p);
  UpdatePeopleCount();
}

void SimClient::AddPeopleEntry(const std::string& name) {
  // The name is stored whole, zero-terminated, with heap filler after it;
  // at least 16 bytes follow its start so that a 16-byte read succeeds.
  std::size_t span = std::max<std::size_t>(name.size() + 1, 16) + 8;
  std::uint32_t block = memory_.Allocate(kNameOffset + span, kHeapFill);
  const std::uint8_t header[kNameOffset] = {0x01, 0x00, 0x10, 0x00, 0x00, 0x00};
  memory_.Write(block, header, sizeof header);
  memory_.Write(block + kNameOffset, name.data(), name.size());
  const std::uint8_t zero = 0;
  memory_.Write(block + kNameOffset + static_cast<std::uint32_t>(name.size()),
                &zero, 1);
  std::uint32_t item = memory_.Allocate(kItemRecordSize, kHeapFill);
  memory_.WriteU32(item + kItemPointerOffset, block);
  people_entries_.push_back({name, item, block});
}

void SimClient::FreePeopleEntry(const PeopleEntry& e) {
  memory_.Free(e.item);
  memory_.Free(e.name_block);
}

void SimClient::UpdatePeopleCount() {
  if (SimWindow* w = tree_.Get(count_static_))
    w->text = std::to_string(people_entries_.size());
}

void SimClient::Join(std::string_view name) {
  if (!launched_) {
    setup_people_.emplace_back(name);
    return;
  }
  if (ScreenNameKey(name) == ScreenNameKey(user_name_)) return;
  if (!world_.Join(room_name_, name)) return;
  if (room_ && ScreenNameKey(current_room_) == ScreenNameKey(room_name_)) {
    AddPeopleEntry(world_.FindPerson(name)->name);
    UpdatePeopleCount();
  }
}

void SimClient::Leave(std::string_view name) {
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

void SimClient::Say(std::string_view name, std::string_view text) {
  Join(name);
  if (!launched_ || !room_) return;
  const SimPerson* p = world_.FindPerson(name);
  AppendChatLine(p ? p->name : std::string(name), std::string(text));
}

void SimClient::AppendChatLine(const std::string& sn, const std::string& text) {
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

void SimClient::SendChatInput() {
  SimWindow* w = tree_.Get(input_);
  if (!w || w->text.empty()) return;
  std::string line = std::move(w->text);
  w->text.clear();
  MarkBusy();
  AppendChatLine(user_name_, line);
}

void SimClient::TypeChar(SimWindow& w, char c) {
  if (c == '\b') {
    if (!w.text.empty()) w.text.pop_back();
  } else if (c == '\r') {
    if (w.role == kRoleBody) w.text += "\r\n";
  } else if (static_cast<unsigned char>(c) >= 32 || c == '\t') {
    w.text += c;
  }
}

void SimClient::RunKeyword(const std::string& address) {
  if (!signed_on_) return;
  std::string a = Trim(address);
  std::string lower = LCase(a);
  MarkBusy();
  if (StartsWith(lower, kImAddress)) {
    std::string to = Trim(a.substr(sizeof kImAddress - 1));
    Later(knobs_.latency, [this, to] { OpenIm(to); });
  } else if (lower == "preferences") {
    Later(knobs_.latency, [this] { OpenPreferences(); });
  } else if (StartsWith(lower, kRoomAddress)) {
    std::string room = Trim(a.substr(sizeof kRoomAddress - 1));
    if (room.empty()) return;
    Later(knobs_.latency, [this, room] {
      if (!signed_on_) return;
      if (room_ && ScreenNameKey(current_room_) == ScreenNameKey(room)) {
        tree_.BringToTop(room_);
      } else if (!world_.TryEnterRoom(room)) {
        ShowBox(BoxKind::kRoomFull, kRoomFullText, frame_);
        FreePlaceLater(room);
      } else {
        EnterRoom(room);
      }
    });
  }
}

void SimClient::FreePlaceLater(const std::string& room) {
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

void SimClient::OpenIm(const std::string& to) {
  if (!signed_on_) return;
  Hwnd doc = NewDoc(Kind::kIm, "Send Instant Message");
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

void SimClient::SendIm(Doc& doc) {
  const Hwnd h = doc.hwnd;
  std::string to = tree_.Get(tree_.NthChild(h, aol::kEditClass, 1))->text;
  std::string text = tree_.Get(tree_.NthChild(h, aol::kRichTextClass, 1))->text;
  if (Trim(to).empty() || text.empty()) return;
  MarkBusy();
  Notify([&](SimObserver& o) { o.OnIm(to, text); });
  std::string key = ScreenNameKey(to);
  if (key == "$im_off" || key == "$im_on") {
    // The reserved names switch the member's messages and answer with a
    // box; the message window stays until it is closed.
    ims_on_ = key == "$im_on";
    ShowBox(BoxKind::kPlain, ims_on_ ? kImsOnText : kImsOffText, h);
    return;
  }
  CloseDoc(h);
}

}  // namespace quorvex
