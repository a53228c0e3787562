#include "app/frm_chatroom.h"

#include "testing/test_client.h"

namespace quorvex {
namespace {

class ChatroomTest : public ClientTest {
 protected:
  ChatroomTest() {
    Launch();
    Run(1);
  }
  ChatScanner scanner{api, host};
  ListBox reply_queue{"ReplyQueue"};
  bool server_on = false;
  FrmChatroom window{
      c, [this](const std::string& text) { reply_queue.Add("send-" + text); },
      server_on};
};

TEST_F(ChatroomTest, MirrorIsEmptiedAtSixHundredCharacters) {
  window.Form_Load(scanner);
  // "Ann:" + text + CR LF: 593 characters of text make 599 in all.
  window.Chat1_ChatLine("Ann", std::string(593, 'a'));
  EXPECT_EQ(window.txtChat.text.size(), 599u);
  EXPECT_EQ(window.txtChat_SelStart(), 599u);
  window.Timer1_Timer();
  EXPECT_EQ(window.txtChat.text.size(), 599u);

  // Characters count, not bytes: 599 of them in 600 bytes stay.
  window.txtChat.Set(std::string(598, 'b') + "\xC2\xB7");
  EXPECT_EQ(window.txtChat_SelStart(), 599u);
  window.Timer1_Timer();
  EXPECT_EQ(window.txtChat.text.size(), 600u);

  window.txtChat.Set(std::string(600, 'b'));
  window.Timer1_Timer();
  EXPECT_EQ(window.txtChat.text, "");
  EXPECT_EQ(window.txtChat_SelStart(), 0u);
}

TEST_F(ChatroomTest, MirrorsTheRoomFromTheSharedScannerWhileOpen) {
  std::vector<std::string> main_heard;
  int main_reader =
      scanner.Subscribe([&](const std::string& sn, const std::string& text) {
        main_heard.push_back(sn + ":" + text);
      });
  scanner.SetEnabled(main_reader, true);
  window.Form_Load(scanner);
  sim.Say("Ann", "one");
  Run(1);
  window.Form_Unload();
  sim.Say("Ann", "two");
  Run(1);
  // The main window hears both; the closed window started afresh and
  // hears nothing more.
  EXPECT_EQ(main_heard, (std::vector<std::string>{"Ann:one", "Ann:two"}));
  EXPECT_EQ(window.txtChat.text, "");
  window.Form_Load(scanner);
  sim.Say("Ann", "three");
  Run(1);
  EXPECT_EQ(window.txtChat.text, "Ann:three\r\n");
}

TEST_F(ChatroomTest, ReturnSaysTheLineWhileTheServerIsIdle) {
  window.Form_Load(scanner);
  // Empty box, or a key that is not Return: nothing at all. The people
  // list and the queueing while serving run whole in the serve_and_chat
  // scenario.
  window.txtSend_KeyPress(13);
  window.txtSend.Set("hi");
  window.txtSend_KeyPress('a');
  EXPECT_TRUE(reply_queue.Empty());
  EXPECT_EQ(window.txtSend.text, "hi");

  const double before = host.Elapsed();
  window.txtSend_KeyPress(13);
  ASSERT_EQ(chats.size(), 1u);
  EXPECT_NE(chats[0].find("hi"), std::string::npos);
  // 0.55 s before and 0.45 s after the line, besides the typing itself.
  EXPECT_GE(host.Elapsed() - before, 1.0);
  EXPECT_TRUE(reply_queue.Empty());
}

}  // namespace
}  // namespace quorvex
