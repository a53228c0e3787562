// Raises one event (screen name, text) for every line said in the chat
// room, once and in order, the program's own lines included: it stands in
// for the chat-scanning control of the main window.
//
// A host timer reads the room's chat display (its first "RICHCNTL": lines
// of NAME, ":", tab, text, joined by CR LF) and then deletes what it read
// (selected, then cleared), so that each read sees only the lines said
// since the last one, and a line the client adds between the read and the
// deletion stays for the next read. Comparing two
// reads instead cannot tell where the new lines start once the display is
// full and people repeat the same line: the text does not change. A
// display that will not be emptied is still read that way, as a fallback:
// the longest run of lines that ended the last read and starts this one
// is taken as already seen, which is exact until the display is full.
//
// The guarantee (display emptied): nothing is missed as long as a read
// comes at least once per N lines, N the display's capacity. A read comes
// every interval, plus however long the program goes without yielding
// (never long: every wait yields). At 250 ms and a display of 100 lines
// that is 400 lines a second, far more than a room can say; a shorter
// interval buys nothing but CPU, and the events are still prompt.
//
// The room is found afresh on every read, so a room window made anew (a
// new handle after a restart or a re-entry) is followed without notice.
// Reading empties the display, so one scanner serves every reader of a
// client: each subscribes and switches its own events on and off.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ports/host.h"
#include "ports/window_api.h"

namespace quorvex {

struct ChatLineEvent {
  std::string sn;
  std::string text;
};

class ChatScanner {
 public:
  using Handler =
      std::function<void(const std::string& sn, const std::string& text)>;
  static constexpr int kIntervalMs = 250;

  ChatScanner(WindowApi& api, Host& host, int interval_ms = kIntervalMs);
  ChatScanner(const ChatScanner&) = delete;
  ChatScanner& operator=(const ChatScanner&) = delete;
  ~ChatScanner();

  // A reader of the room; its events start switched off.
  int Subscribe(Handler handler);
  void Unsubscribe(int id);
  // While no reader is on, the display is left alone. Switching the first
  // one on drops what the display holds: events are for lines said from
  // then on.
  void SetEnabled(int id, bool on);
  bool enabled(int id) const;
  int interval_ms() const { return interval_ms_; }

  // One read of the display (what the timer runs); returns the lines read.
  int Scan();

  // The chat lines of a display text; text that is not a chat line
  // (no ":" and tab after a name) is skipped.
  static std::vector<ChatLineEvent> ParseDisplay(std::string_view text);

 private:
  struct Reader {
    Handler handler;
    bool on = false;
  };
  bool AnyOn() const;
  // Reads and empties the display; the lines read.
  std::vector<ChatLineEvent> Drain();

  WindowApi& api_;
  // The display last read, and its lines when it would not be emptied.
  Hwnd display_ = 0;
  std::vector<std::string> kept_;
  int interval_ms_;
  std::unique_ptr<HostTimer> timer_;
  std::map<int, Reader> readers_;
  int next_id_ = 1;
};

}  // namespace quorvex
