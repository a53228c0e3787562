#include "client/chat_room.h"

#include "model/text_util.h"
#include "testing/test_client.h"

namespace quorvex {
namespace {

class ChatRoomTest : public ClientTest {
 protected:
  Hwnd Input() {
    const Hwnd room = FindChatRoom(api);
    return api.FindWindowExA(room, FindChild(api, room, "RICHCNTL"), "RICHCNTL",
                             nullptr);
  }
};

TEST_F(ChatRoomTest, SendsTheMarkedUpLineAndRestoresHalfTypedText) {
  settings.ChatFont = "Arial";
  settings.LAscii = "(";
  settings.RAscii = ")";
  c.expand_inserts = [](const std::string& s) {
    return ReplaceText(s, "[h]", "srv");
  };
  sim.knobs().os = OsVersion{1, 4, 10};  // not Windows 2000: whole text
  Launch();
  SetText(api, Input(), "half typ");
  ChatSend(c, "[h] here");
  // Typed with its mark-up, shown without it.
  EXPECT_EQ(chats.back(), "<font color=#003377 face=\"Arial\">(srv here)");
  EXPECT_EQ(sim.DisplayLines().back(), "Joe Smith:\t(srv here)");
  EXPECT_EQ(GetText(api, Input()), "half typ");
  EXPECT_TRUE(api.IsWindowVisible(Input()));

  // On Windows 2000 only the input's second line is saved.
  sim.knobs().os = OsVersion{2, 5, 0};
  SetText(api, Input(), "half typ");
  ChatSend(c, "one");
  EXPECT_EQ(GetText(api, Input()), "");
  SetText(api, Input(), "first\r\nsecond");
  EXPECT_EQ(GetChatInputText(api), "second");
  ChatSend(c, "two");
  EXPECT_EQ(GetText(api, Input()), "second");
  EXPECT_EQ(sim.DisplayLines().size(), 3u);

  // Without a room it returns at once.
  sim.SignOff();
  const double start = host.Elapsed();
  ChatSend(c, "nobody hears");
  EXPECT_EQ(sim.DisplayLines().size(), 3u);
  EXPECT_LT(host.Elapsed() - start, 1);
}

TEST_F(ChatRoomTest, PeopleFromTheClientsMemory) {
  sim.AddPerson("Ann");
  sim.AddPerson("Bob Smith");
  sim.AddPerson("Averyveryverylongname");  // 21 characters
  Launch();
  ListBox unique("lstPeople");
  GetRoomPeople(api, unique, true);
  GetRoomPeople(api, unique, true);  // nothing twice
  EXPECT_EQ(unique.Items(),
            (std::vector<std::string>{"Joe Smith", "Ann", "Bob Smith",
                                      "Averyveryverylon"}));
  ListBox all("people");
  GetRoomPeople(api, all, false);
  GetRoomPeople(api, all, false);
  ASSERT_EQ(all.Count(), 8);
  EXPECT_EQ(all.Item(1), "ann");
  EXPECT_EQ(all.Item(4), "joe smith");

  sim.SignOff();  // no room: nothing added
  ListBox none("none");
  GetRoomPeople(api, none, true);
  EXPECT_TRUE(none.Empty());
}

}  // namespace
}  // namespace quorvex
