#include "client/chat_scanner.h"

#include <functional>
#include <utility>

#include "client/chat_room.h"
#include "testing/test_client.h"

namespace quorvex {
namespace {

class ChatScannerTest : public ClientTest {
 protected:
  ChatScannerTest() {
    reader = scanner.Subscribe(
        [this](const std::string& sn, const std::string& text) {
          heard.push_back(sn + ": " + text);
        });
  }
  void Start() {
    Launch();
    scanner.SetEnabled(reader, true);
  }
  ChatScanner scanner{api, host};
  int reader = 0;
  std::vector<std::string> heard;
};

TEST(ChatDisplayTest, ParsesNameTabTextLines) {
  std::vector<std::string> got;
  for (const auto& line : ChatScanner::ParseDisplay(
           "Ann:\thi\r\nBob Lee:\tsays a:\tb\r\n\r\nno line here\r\nCat:\t"))
    got.push_back(line.sn + "|" + line.text);
  EXPECT_EQ(got,
            (std::vector<std::string>{"Ann|hi", "Bob Lee|says a:\tb", "Cat|"}));
  EXPECT_TRUE(ChatScanner::ParseDisplay("").empty());
}

TEST_F(ChatScannerTest, EveryLineOnceInOrderOwnLinesIncluded) {
  Launch();
  sim.Say("Ann", "before");
  scanner.SetEnabled(reader, true);  // what was said before is not news
  sim.Say("Ann", "hi");
  ChatSend(c, "hello");
  for (int i = 0; i < 3; ++i) sim.Say("Ann", "again");
  Run(5);
  // The program's own line is heard as the display shows it, its tags
  // rendered away.
  EXPECT_EQ(ChatLine(c, "hello"),
            "<font color=#003377 face=\"tahoma\">\xC2\xB7\xE2\x80\xA2[hello]"
            "\xE2\x80\xA2\xC2\xB7");
  EXPECT_EQ(heard,
            (std::vector<std::string>{
                "Ann: hi",
                "Joe Smith: \xC2\xB7\xE2\x80\xA2[hello]\xE2\x80\xA2\xC2\xB7",
                "Ann: again", "Ann: again", "Ann: again"}));
  // A room made anew is followed.
  Keyword(api, "aol://2719:2-2-Den");
  Run(1);
  sim.Say("Cat", "in the den");
  Run(1);
  EXPECT_EQ(heard.back(), "Cat: in the den");
  EXPECT_EQ(heard.size(), 6u);
}

// The client adds a line after the scanner has read the display and
// before it deletes what it read, as a real client does whenever a line
// comes.
class LineAfterRead : public RecordingApi {
 public:
  using RecordingApi::RecordingApi;
  std::function<void()> after_read;
  std::intptr_t SendMessageGetText(Hwnd h, unsigned msg, std::uintptr_t w,
                                   std::string* out,
                                   std::size_t chars) override {
    const std::intptr_t r =
        RecordingApi::SendMessageGetText(h, msg, w, out, chars);
    if (msg == win::kWmGetText && after_read)
      std::exchange(after_read, nullptr)();
    return r;
  }
};

TEST_F(ChatScannerTest, ALineAddedBetweenTheReadAndTheDeletionIsReadNext) {
  Launch();
  LineAfterRead racing(sim);
  ChatScanner racing_scanner(racing, host);
  std::vector<std::string> got;
  const int id = racing_scanner.Subscribe(
      [&](const std::string& sn, const std::string& text) {
        got.push_back(sn + ": " + text);
      });
  racing_scanner.SetEnabled(id, true);
  // Two-byte characters and a byte that is no character of its own (a
  // lone continuation byte): the display shows it as one character, and
  // the count of what was read must select just that, not the line break
  // of the line that came after.
  const std::string typed = "first \xC3\xA9t\xC3\xA9 \xA6!";
  sim.Say("Ann", typed);
  racing.after_read = [&] { sim.Say("Bob", "between"); };
  EXPECT_EQ(racing_scanner.Scan(), 1);
  EXPECT_EQ(racing_scanner.Scan(), 1);
  EXPECT_EQ(racing_scanner.Scan(), 0);
  EXPECT_EQ(got, (std::vector<std::string>{"Ann: " + typed, "Bob: between"}));
  // Nothing read stays behind.
  EXPECT_EQ(GetText(api, FindChild(api, FindChatRoom(api), "RICHCNTL")), "");
}

TEST_F(ChatScannerTest, DisplayThatKeepsItsLinesIsReadByOverlap) {
  sim.knobs().display_lines = 10;
  Start();
  for (int i = 0; i < 13; ++i) {
    sim.Say(i < 10 ? "Ann" : "Bob", "line " + std::to_string(i));
    if (i == 9) Run(1);  // a full display, then three lines more
  }
  Run(1);
  ASSERT_EQ(heard.size(), 13u);
  EXPECT_EQ(heard[12], "Bob: line 12");
}

TEST_F(ChatScannerTest, FloodOfIdenticalLinesIsHeardWhole) {
  api.SetClearableDisplay(true);
  Start();
  // 100 lines a second, the same line from three people in turn: 25 lines
  // between two reads, a quarter of what the display holds.
  const char* const people[] = {"Ann", "Bob", "Cat"};
  std::vector<std::string> said;
  for (int i = 0; i < 3000; ++i) {
    const char* who = people[i % 3];
    said.push_back(std::string(who) + ": /srv send 5");
    host.Schedule(0.01 * (i + 1), [this, who] { sim.Say(who, "/srv send 5"); });
  }
  Run(40);
  EXPECT_EQ(heard, said);
}

TEST_F(ChatScannerTest, OneReadPerDisplayfulIsEnough) {
  api.SetClearableDisplay(true);
  sim.knobs().display_lines = 10;
  Start();
  // More than a displayful between two reads: the oldest are gone.
  for (int n : {10, 15}) {
    for (int i = 0; i < n; ++i) sim.Say("Ann", "same");
    EXPECT_EQ(scanner.Scan(), 10);
  }
  EXPECT_EQ(heard.size(), 20u);
}

TEST_F(ChatScannerTest, ReadersSwitchOnAndOffApart) {
  api.SetClearableDisplay(true);
  Launch();
  std::vector<std::string> mirror;
  const int window = scanner.Subscribe(
      [&](const std::string& sn, const std::string&) { mirror.push_back(sn); });
  scanner.SetEnabled(window, true);
  sim.Say("Ann", "one");
  Run(1);
  scanner.SetEnabled(reader, true);
  sim.Say("Bob", "two");
  Run(1);
  scanner.Unsubscribe(window);
  sim.Say("Cat", "three");
  Run(1);
  scanner.SetEnabled(reader, false);
  sim.Say("Dan", "unheard");
  Run(1);
  EXPECT_EQ(mirror, (std::vector<std::string>{"Ann", "Bob"}));
  EXPECT_EQ(heard, (std::vector<std::string>{"Bob: two", "Cat: three"}));
}

}  // namespace
}  // namespace quorvex
