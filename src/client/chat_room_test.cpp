#include "client/chat_room.h"

#include "client/client_tree.h"
#include "client/test_client.h"
#include "client/window_ops.h"
#include "model/text_util.h"

namespace quorvex {
namespace {

class ChatRoomTest : public ClientTest {
 protected:
  Hwnd Input() {
    const Hwnd room = FindChatRoom(api);
    return api.FindWindowEx(room, FindChild(api, room, "RICHCNTL"), "RICHCNTL",
                            nullptr);
  }
  std::string LastDisplayLine() {
    return sim.DisplayLines().empty() ? "" : sim.DisplayLines().back();
  }
};

TEST_F(ChatRoomTest, LineMarkUpAndInserts) {
  settings.ChatFont = "Arial";
  settings.LAscii = "(";
  settings.RAscii = ")";
  EXPECT_EQ(ChatLine(c, "hi"), "<font color=#003377 face=\"Arial\">(hi)");
  c.expand_inserts = [](const std::string& s) {
    return ReplaceText(s, "[h]", "srv");
  };
  EXPECT_EQ(ChatLine(c, "[h] here"),
            "<font color=#003377 face=\"Arial\">(srv here)");
}

TEST_F(ChatRoomTest, SendsTheLineAndRestoresHalfTypedText) {
  settings.ChatFont = "Arial";
  settings.LAscii = "(";
  settings.RAscii = ")";
  sim.knobs().os = OsVersion{1, 4, 10};  // not Windows 2000: whole text
  Launch();
  SetText(api, Input(), "half typ");
  ChatSend(c, "hi");
  EXPECT_EQ(LastDisplayLine(),
            "Joe Smith:\t<font color=#003377 face=\"Arial\">(hi)");
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
}

TEST_F(ChatRoomTest, ReturnsWhenTheRoomIsGone) {
  sim.SetSignedOffAtStart();
  Launch();
  ChatSend(c, "nobody hears");
  EXPECT_TRUE(sim.DisplayLines().empty());
  EXPECT_LT(host.Elapsed(), 1);
}

TEST_F(ChatRoomTest, PeopleFromTheClientsMemory) {
  sim.AddPerson("Ann");
  sim.AddPerson("Bob Smith");
  sim.AddPerson("Averyveryverylongname");  // 21 characters
  Launch();
  ListBox unique("lstPeople");
  GetRoomPeople(api, unique, true);
  EXPECT_EQ(unique.Items(),
            (std::vector<std::string>{"Joe Smith", "Ann", "Bob Smith",
                                      "Averyveryverylon"}));
  GetRoomPeople(api, unique, true);  // nothing twice
  EXPECT_EQ(unique.Count(), 4);

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
