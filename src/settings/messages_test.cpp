#include "settings/messages.h"

#include <gtest/gtest.h>

#include "settings/memory_registry.h"
#include "settings/settings.h"

namespace quorvex {
namespace {

TEST(MessagesTest, NothingStoredGivesEmptyListsAndDefaultMailText) {
  MemoryRegistry registry;
  MessagesForm form;
  form.lstChat.Add("left over");
  LoadMessages(form, registry);
  EXPECT_TRUE(form.lstChat.Empty());
  EXPECT_TRUE(form.lstThankyou.Empty());
  EXPECT_EQ(form.txtAdd[1].text,
            "this email has been sent to you at your request in the chat "
            "room. i do not send unsolicited mail. if you feel this mail is "
            "being sent in error, please press reply and in the body of the "
            "email say \x22remove me\x22 to be removed from my list.");
}

TEST(MessagesTest, GapsCloseUpAndSaveRenumbers) {
  MemoryRegistry registry;
  registry.Save(kApp, "ChatMsgs", "ChatMsgTotal", "3");
  registry.Save(kApp, "ChatMsgs", "Chat Msg0", "first [h]");
  registry.Save(kApp, "ChatMsgs", "Chat Msg2", "third");
  registry.Save(kApp, "ChatMsgs", "Chat Msg7", "beyond the count");
  registry.Save(kApp, "ThankYouMsgs", "ThankYouMsgTotal", "2");
  registry.Save(kApp, "ThankYouMsgs", "thankyou msg0", "");
  registry.Save(kApp, "ThankYouMsgs", "ThankYou Msg1", "ty");
  registry.Save(kApp, "MailMsgs", "Mail Msg", "line 1\r\nline 2");

  MessagesForm form;
  LoadMessages(form, registry);
  EXPECT_EQ(form.lstChat.Items(),
            (std::vector<std::string>{"first [h]", "third"}));
  EXPECT_EQ(form.lstThankyou.Items(), std::vector<std::string>{"ty"});
  EXPECT_EQ(form.txtAdd[1].text, "line 1\r\nline 2");

  SaveMessages(form, registry);
  auto chat = registry.Dump(kApp)["ChatMsgs"];
  EXPECT_EQ(chat["ChatMsgTotal"], "2");
  EXPECT_EQ(chat["Chat Msg1"], "third");
  EXPECT_EQ(chat.count("Chat Msg2"), 0u);
  // Outside the old count: not ours to delete.
  EXPECT_EQ(chat["Chat Msg7"], "beyond the count");
  EXPECT_EQ(registry.Dump(kApp)["ThankYouMsgs"].size(), 2u);
  EXPECT_EQ(registry.GetSetting(kApp, "ThankYouMsgs", "ThankYou Msg0", ""),
            "ty");

  // A list emptied in the editor leaves only its count.
  form.lstChat.Clear();
  SaveMessages(form, registry);
  chat = registry.Dump(kApp)["ChatMsgs"];
  EXPECT_EQ(chat["ChatMsgTotal"], "0");
  EXPECT_EQ(chat.count("Chat Msg0") + chat.count("Chat Msg1"), 0u);
}

TEST(MessagesTest, OddTotalsDoNotLoadOrStall) {
  MemoryRegistry registry;
  registry.Save(kApp, "ChatMsgs", "Chat Msg0", "a");
  registry.Save(kApp, "ChatMsgs", "Chat Msg01", "not index 1");
  MessagesForm form;
  for (const char* total : {"-1", "abc", "-5"}) {
    registry.Save(kApp, "ChatMsgs", "ChatMsgTotal", total);
    LoadMessages(form, registry);
    EXPECT_TRUE(form.lstChat.Empty()) << total;
  }
  registry.Save(kApp, "ChatMsgs", "ChatMsgTotal", "2000000000");
  LoadMessages(form, registry);
  EXPECT_EQ(form.lstChat.Items(), std::vector<std::string>{"a"});
}

}  // namespace
}  // namespace quorvex
