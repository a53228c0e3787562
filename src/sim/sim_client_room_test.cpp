// The chat room, its people in the client's memory, the keyword box and
// instant messages.
#include "client/chat_room.h"
#include "model/list_box.h"
#include "sim/sim_client_fixture.h"

namespace quorvex {
namespace {

class SimRoomTest : public SimClientTest {
 protected:
  void SetUp() override { api_.Launch(); }
  Hwnd Room() {
    return api_.FindWindowExA(FindMdiClient(api_), 0, "AOL Child", "Lobby");
  }
  Hwnd Display() { return FindNthChild(api_, Room(), "RICHCNTL", 1); }
  Hwnd OpenIm(const std::string& to) {
    Keyword(api_, "aol://9293:" + to);
    rig_.Run(0.1);
    return FindDocument(api_, "Send Instant Message");
  }
};

TEST_F(SimRoomTest, DisplayKeepsOnlyItsLastLines) {
  api_.knobs().display_lines = 3;
  for (int i = 1; i <= 5; ++i) api_.Say("Ann", "line " + std::to_string(i));
  EXPECT_EQ(GetText(api_, Display()),
            "Ann:\tline 3\r\nAnn:\tline 4\r\nAnn:\tline 5");
  EXPECT_EQ(rig_.events.chats.size(), 5u);  // every line was seen
  // Emptied like any rich edit, it goes on with the lines said after.
  api_.SendMessageSetText(Display(), win::kWmSetText, 0, "");
  api_.Say("Ann", "line 6");
  EXPECT_EQ(GetText(api_, Display()), "Ann:\tline 6");
}

TEST_F(SimRoomTest, PeopleAreReadFromTheClientsMemory) {
  api_.Say("Bob", "hey");  // joins first
  ListBox people("lstPeople");
  GetRoomPeople(api_, people, true);
  EXPECT_EQ(people.Items(), (std::vector<std::string>{"Host", "Ann", "Bob"}));
  Hwnd count = FindNthChild(api_, Room(), "_AOL_Static", 2);
  EXPECT_EQ(GetText(api_, count), "3");
  // Without the right to read, or for another process, nothing opens.
  EXPECT_EQ(api_.OpenProcess(0x0400, false, api_.process_id()), 0u);
  EXPECT_EQ(api_.OpenProcess(0xF0010, false, api_.process_id() + 1), 0u);
  // A stale item address reads nothing once its person has left.
  Hwnd list = api_.FindWindowExA(Room(), 0, "_AOL_Listbox", nullptr);
  auto ann_item = static_cast<std::uint32_t>(
      api_.SendMessageA(list, win::kLbGetItemData, 1, 0));
  api_.Leave("ANN");
  EXPECT_EQ(GetText(api_, count), "2");
  ProcessHandle p = api_.OpenProcess(0xF0010, false, api_.process_id());
  char buf[4];
  std::size_t read = 99;
  EXPECT_FALSE(api_.ReadProcessMemory(p, ann_item + 24, buf, 4, &read));
  EXPECT_EQ(read, 0u);
}

TEST_F(SimRoomTest, AnInstantMessageToAPersonClosesItsWindow) {
  // No box answers, unlike for the reserved names the program sends to.
  Hwnd im = OpenIm("Ann");
  Hwnd field = api_.FindWindowExA(im, 0, "RICHCNTL", nullptr);
  SetText(api_, field, "psst");
  ClickIcon(api_, FindNthChildAfter(api_, im, field, "_AOL_Icon", 9));
  EXPECT_FALSE(api_.IsWindow(im));
  EXPECT_EQ(api_.FindWindowA("#32770", nullptr), 0u);
  EXPECT_EQ(rig_.events.ims.back().to, "Ann");
}

}  // namespace
}  // namespace quorvex
