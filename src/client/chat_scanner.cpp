#include "client/chat_scanner.h"

#include <algorithm>

#include "client/client_tree.h"
#include "client/window_ops.h"
#include "model/utf8.h"
#include "ports/client_windows.h"

namespace quorvex {

ChatScanner::ChatScanner(WindowApi& api, Host& host, int interval_ms)
    : api_(api), interval_ms_(interval_ms) {
  timer_ = host.CreateTimer([this] { Scan(); });
  timer_->SetInterval(interval_ms_);
}

ChatScanner::~ChatScanner() = default;

int ChatScanner::Subscribe(Handler handler) {
  const int id = next_id_++;
  readers_[id] = Reader{std::move(handler), false};
  return id;
}

void ChatScanner::Unsubscribe(int id) {
  readers_.erase(id);
  timer_->SetEnabled(AnyOn());
}

void ChatScanner::SetEnabled(int id, bool on) {
  auto it = readers_.find(id);
  if (it == readers_.end()) return;
  if (on && !AnyOn()) Drain();
  it->second.on = on;
  timer_->SetEnabled(AnyOn());
}

bool ChatScanner::enabled(int id) const {
  auto it = readers_.find(id);
  return it != readers_.end() && it->second.on;
}

bool ChatScanner::AnyOn() const {
  for (const auto& [id, reader] : readers_)
    if (reader.on) return true;
  return false;
}

namespace {

std::vector<std::string_view> SplitLines(std::string_view text) {
  std::vector<std::string_view> lines;
  if (text.empty()) return lines;
  std::size_t start = 0;
  while (true) {
    const std::size_t end = text.find("\r\n", start);
    if (end == std::string_view::npos) {
      lines.push_back(text.substr(start));
      return lines;
    }
    lines.push_back(text.substr(start, end - start));
    start = end + 2;
  }
}

// The longest run of lines that ends `before` and starts `now`.
std::size_t Overlap(const std::vector<std::string>& before,
                    const std::vector<std::string_view>& now) {
  for (std::size_t k = std::min(before.size(), now.size()); k > 0; --k) {
    if (std::equal(before.end() - static_cast<std::ptrdiff_t>(k), before.end(),
                   now.begin()))
      return k;
  }
  return 0;
}

// NAME, ":", tab, text; anything else is not a line said in the room.
void AddChatLine(std::string_view line, std::vector<ChatLineEvent>* out) {
  const std::size_t colon = line.find(":\t");
  if (colon == std::string_view::npos || colon == 0) return;
  out->push_back({std::string(line.substr(0, colon)),
                  std::string(line.substr(colon + 2))});
}

}  // namespace

std::vector<ChatLineEvent> ChatScanner::Drain() {
  const Hwnd display = FindChild(api_, FindChatRoom(api_), aol::kRichTextClass);
  if (display != display_) {
    // A room window made anew starts with an empty display.
    display_ = display;
    kept_.clear();
  }
  if (!display) return {};
  const std::string text = GetText(api_, display);
  const std::vector<std::string_view> lines = SplitLines(text);
  const std::size_t seen = Overlap(kept_, lines);

  std::vector<ChatLineEvent> fresh;
  for (std::size_t i = seen; i < lines.size(); ++i)
    AddChatLine(lines[i], &fresh);
  // Only what was read goes: the client adds the room's lines whenever
  // they come, also between this read and the deletion, and emptying the
  // whole display would lose such a line. The selection counts characters
  // (the code page's, one each; a byte
  // of the text that is no character of its own is shown as one). A display
  // that takes no deletion is emptied whole.
  kept_.clear();
  if (text.empty()) return fresh;
  api_.SendMessageA(display, win::kEmSetSel, 0,
                    static_cast<std::intptr_t>(Utf8Characters(text)));
  api_.SendMessageA(display, win::kWmClear, 0, 0);
  std::string after = GetText(api_, display);
  if (after.starts_with(text)) {
    SetText(api_, display, "");
    after = GetText(api_, display);
  }
  // One that keeps its lines whatever is done is read by overlap.
  if (!after.empty() && after.starts_with(text))
    kept_.assign(lines.begin(), lines.end());
  return fresh;
}

int ChatScanner::Scan() {
  const std::vector<ChatLineEvent> lines = Drain();
  for (const ChatLineEvent& line : lines) {
    // A handler may switch readers off or on; ask afresh for each line.
    std::vector<int> ids;
    for (const auto& [id, reader] : readers_)
      if (reader.on) ids.push_back(id);
    for (int id : ids) {
      auto it = readers_.find(id);
      if (it == readers_.end() || !it->second.on) continue;
      Handler handler = it->second.handler;  // it may unsubscribe itself
      handler(line.sn, line.text);
    }
  }
  return static_cast<int>(lines.size());
}

std::vector<ChatLineEvent> ChatScanner::ParseDisplay(std::string_view text) {
  std::vector<ChatLineEvent> lines;
  for (std::string_view line : SplitLines(text)) AddChatLine(line, &lines);
  return lines;
}

}  // namespace quorvex
