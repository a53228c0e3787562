// The chat room, its people in the client's memory, the keyword box and
// instant messages.
#include <gtest/gtest.h>

#include <cstring>

#include "sim/sim_rig.h"

namespace quorvex {
namespace {

class SimRoomTest : public ::testing::Test {
 protected:
  void SetUp() override {
    rig_.client.SetUserName("Host");
    rig_.client.AddPerson("Ann");
    rig_.client.SetRoomName("Lobby");
    rig_.client.Launch();
  }
  Hwnd Room() { return api_.FindWindowEx(rig_.Mdi(), 0, "AOL Child", "Lobby"); }
  Hwnd Display() { return rig_.Nth(Room(), "RICHCNTL", 1); }
  Hwnd Input() { return rig_.Nth(Room(), "RICHCNTL", 2); }

  // The people list read the way the program reads it.
  std::vector<std::string> ReadPeople(std::uint32_t access = 0xF0010) {
    Hwnd list = api_.FindWindowEx(Room(), 0, "_AOL_Listbox", nullptr);
    std::uint32_t pid = 0;
    api_.GetWindowThreadProcessId(list, &pid);
    ProcessHandle p = api_.OpenProcess(access, false, pid);
    if (!p) return {"<no process>"};
    std::vector<std::string> names;
    auto count = api_.SendMessage(list, win::kLbGetCount, 0, 0);
    for (std::intptr_t i = 0; i < count; ++i) {
      auto item = static_cast<std::uint32_t>(api_.SendMessage(
          list, win::kLbGetItemData, static_cast<std::uintptr_t>(i), 0));
      unsigned char ptr[4] = {};
      std::size_t read = 0;
      api_.ReadProcessMemory(p, item + 24, ptr, 4, &read);
      std::uint32_t at = (ptr[0] | ptr[1] << 8 | ptr[2] << 16 |
                          static_cast<std::uint32_t>(ptr[3]) << 24) +
                         6;
      char bytes[16] = {};
      api_.ReadProcessMemory(p, at, bytes, 16, &read);
      names.emplace_back(bytes, strnlen(bytes, 16));
    }
    api_.CloseHandle(p);
    return names;
  }

  SimRig rig_;
  SimClient& api_ = rig_.client;
};

TEST_F(SimRoomTest, ReturnInTheInputSaysTheLine) {
  rig_.SetText(Input(), "hello all");
  api_.SendMessage(Input(), win::kWmChar, 13, 0);
  EXPECT_EQ(rig_.Text(Input()), "");
  EXPECT_EQ(rig_.Text(Display()), "Host:\thello all");
  ASSERT_EQ(rig_.events.chats.size(), 1u);
  EXPECT_EQ(rig_.events.chats[0].sn, "Host");
  EXPECT_EQ(rig_.events.chats[0].text, "hello all");

  // Posted, the line goes when the program yields; a key down works too.
  rig_.SetText(Input(), "<b>two</b>");
  api_.PostMessage(Input(), win::kWmChar, 13, 0);
  EXPECT_EQ(rig_.Text(Input()), "<b>two</b>");
  rig_.Run(0.01);
  EXPECT_EQ(rig_.Text(Input()), "");
  rig_.SetText(Input(), "three");
  rig_.PostKey(Input(), win::kVkReturn);
  rig_.Run(0.01);
  // An empty input says nothing.
  api_.SendMessage(Input(), win::kWmChar, 13, 0);
  EXPECT_EQ(rig_.Text(Display()),
            "Host:\thello all\r\nHost:\t<b>two</b>\r\nHost:\tthree");

  // Others' lines, and the hidden input still takes typing.
  api_.Say("ann", "hi Host");
  EXPECT_EQ(rig_.events.chats.back().sn, "Ann");
  api_.ShowWindow(Input(), win::kSwHide);
  for (char c : std::string("ok"))
    api_.SendMessage(Input(), win::kWmChar, c, 0);
  api_.SendMessage(Input(), win::kWmChar, 13, 0);
  EXPECT_EQ(api_.DisplayLines().back(), "Host:\tok");
  EXPECT_EQ(rig_.events.chats.size(), 5u);
}

TEST_F(SimRoomTest, InputAnswersLineMessagesLikeARichEdit) {
  rig_.SetText(Input(), "half typed");
  // Line 1 of a one-line text does not exist.
  EXPECT_EQ(api_.SendMessage(Input(), win::kEmLineIndex, 1, 0), -1);
  EXPECT_EQ(api_.SendMessage(Input(), win::kEmLineLength,
                             static_cast<std::uintptr_t>(-1), 0),
            0);
  std::string line = "x";
  EXPECT_EQ(api_.SendMessageGetText(Input(), win::kEmGetLine, 1, &line, 0), 0);
  EXPECT_EQ(line, "");
  rig_.SetText(Input(), "one\rtwo");
  EXPECT_EQ(api_.SendMessage(Input(), win::kEmLineIndex, 1, 0), 4);
  EXPECT_EQ(api_.SendMessage(Input(), win::kEmLineLength, 4, 0), 3);
  EXPECT_EQ(api_.SendMessageGetText(Input(), win::kEmGetLine, 1, &line, 3), 3);
  EXPECT_EQ(line, "two");
}

TEST_F(SimRoomTest, DisplayKeepsOnlyItsLastLines) {
  api_.knobs().display_lines = 3;
  for (int i = 1; i <= 5; ++i) api_.Say("Ann", "line " + std::to_string(i));
  EXPECT_EQ(rig_.Text(Display()),
            "Ann:\tline 3\r\nAnn:\tline 4\r\nAnn:\tline 5");
  EXPECT_EQ(api_.DisplayLines().size(), 3u);
  EXPECT_EQ(rig_.events.chats.size(), 5u);  // every line was seen

  // Emptied like any rich edit, it goes on with the lines said after.
  api_.SendMessageSetText(Display(), win::kWmSetText, 0, "");
  EXPECT_EQ(rig_.Text(Display()), "");
  api_.Say("Ann", "line 6");
  EXPECT_EQ(rig_.Text(Display()), "Ann:\tline 6");
}

TEST_F(SimRoomTest, PeopleAreReadFromTheClientsMemory) {
  api_.Join("Twenty Character Nam");  // 20 characters: the reader cuts it
  api_.Say("Bob", "hey");             // joins first
  EXPECT_EQ(ReadPeople(), (std::vector<std::string>{
                              "Host", "Ann", "Twenty Character", "Bob"}));
  Hwnd count = rig_.Nth(Room(), "_AOL_Static", 2);
  EXPECT_EQ(rig_.Text(count), "4");

  // Without the right to read, or for another process, nothing opens.
  EXPECT_EQ(ReadPeople(0x0400), std::vector<std::string>{"<no process>"});
  EXPECT_EQ(api_.OpenProcess(0xF0010, false, api_.process_id() + 1), 0u);

  // A stale item address reads nothing once its person has left.
  Hwnd list = api_.FindWindowEx(Room(), 0, "_AOL_Listbox", nullptr);
  auto ann_item = static_cast<std::uint32_t>(
      api_.SendMessage(list, win::kLbGetItemData, 1, 0));
  api_.Leave("ANN");
  EXPECT_EQ(ReadPeople(),
            (std::vector<std::string>{"Host", "Twenty Character", "Bob"}));
  EXPECT_EQ(rig_.Text(count), "3");
  ProcessHandle p = api_.OpenProcess(0xF0010, false, api_.process_id());
  char buf[4];
  std::size_t read = 99;
  EXPECT_FALSE(api_.ReadProcessMemory(p, ann_item + 24, buf, 4, &read));
  EXPECT_EQ(read, 0u);
  api_.CloseHandle(p);
  EXPECT_FALSE(api_.ReadProcessMemory(p, ann_item, buf, 1, &read));
  EXPECT_EQ(api_.SendMessage(list, win::kLbGetItemData, 9, 0), -1);
}

TEST_F(SimRoomTest, LinesAreSeenOnlyWhileInTheRoom) {
  api_.SignOff();
  EXPECT_EQ(Room(), 0u);
  api_.Say("Cy", "anyone?");
  EXPECT_TRUE(rig_.events.chats.empty());
  EXPECT_TRUE(rig_.world.InRoom("Lobby", "cy"));
  EXPECT_EQ(api_.current_room(), "");
}

TEST_F(SimRoomTest, InstantMessagesAndTheReservedNames) {
  rig_.Keyword("aol://9293:$IM_OFF");
  rig_.Run(0.1);
  Hwnd im = rig_.Doc("Send Instant Message");
  ASSERT_NE(im, 0u);
  Hwnd field = api_.FindWindowEx(im, 0, "RICHCNTL", nullptr);
  Hwnd send = rig_.Nth(im, "_AOL_Icon", 9, field);
  EXPECT_EQ(rig_.Text(send), "Send");
  rig_.SetText(field, "=)");
  rig_.Click(send);
  ASSERT_EQ(rig_.events.ims.size(), 1u);
  EXPECT_EQ(rig_.events.ims[0].to, "$IM_OFF");
  EXPECT_EQ(rig_.events.ims[0].text, "=)");
  EXPECT_FALSE(api_.ims_on());
  Hwnd box = api_.FindWindow("#32770", "America Online");
  ASSERT_NE(box, 0u);
  Hwnd button = api_.FindWindowEx(box, 0, "Button", nullptr);
  rig_.PostKey(button, win::kVkSpace);
  rig_.Run(0.01);
  EXPECT_FALSE(api_.IsWindow(box));
  EXPECT_TRUE(api_.IsWindow(im));  // stays until the program closes it
  api_.PostMessage(im, win::kWmClose, 0, 0);
  rig_.Run(0.01);
  EXPECT_FALSE(api_.IsWindow(im));

  // To a person: the window closes with no box.
  rig_.Keyword("aol://9293:Ann");
  rig_.Run(0.1);
  im = rig_.Doc("Send Instant Message");
  field = api_.FindWindowEx(im, 0, "RICHCNTL", nullptr);
  rig_.SetText(field, "psst");
  rig_.Click(rig_.Nth(im, "_AOL_Icon", 9, field));
  EXPECT_FALSE(api_.IsWindow(im));
  EXPECT_EQ(api_.FindWindow("#32770", nullptr), 0u);
  EXPECT_EQ(rig_.events.ims.back().to, "Ann");
}

TEST_F(SimRoomTest, MemberRoomsRefuseEntryWhileFull) {
  rig_.world.Join("Tech Chat", "Zed");
  api_.SetRoomCapacity("Tech Chat", 2);
  rig_.world.Join("Tech Chat", "Yan");
  rig_.Keyword("aol://2719:2-2-TechChat");
  rig_.Run(0.1);
  Hwnd box = api_.FindWindow("#32770", "America Online");
  ASSERT_NE(box, 0u);
  EXPECT_EQ(api_.current_room(), "Lobby");
  api_.SendMessage(box, win::kWmClose, 0, 0);
  EXPECT_FALSE(api_.IsWindow(box));

  rig_.world.Leave("Tech Chat", "Yan");
  Hwnd old_room = Room();
  rig_.Keyword("aol://2719:2-2-TechChat");
  rig_.Run(0.1);
  EXPECT_EQ(api_.current_room(), "Tech Chat");
  EXPECT_FALSE(api_.IsWindow(old_room));
  Hwnd room = api_.FindWindowEx(rig_.Mdi(), 0, "AOL Child", nullptr);
  EXPECT_EQ(api_.GetWindowText(room, 100), "Tech Chat");
  EXPECT_EQ(rig_.events.client.back(), "enters Tech Chat");
  // People now join and speak in the new room.
  api_.Say("Zed", "welcome");
  EXPECT_EQ(rig_.events.chats.back().sn, "Zed");
}

}  // namespace
}  // namespace quorvex
