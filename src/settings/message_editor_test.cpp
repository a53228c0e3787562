#include "settings/message_editor.h"

#include <gtest/gtest.h>

#include "ports/memory_registry.h"
#include "settings/messages.h"
#include "settings/settings.h"

namespace quorvex {
namespace {

// Loading with gaps, deleting by click and saving renumbered also run whole
// in tests/scenarios/loaded_kept.scn.

void Type(MessageControls& form, int index, const std::string& text) {
  for (char c : text) txtAdd_KeyPress(form, index, c);
}

TEST(MessagesTest, NothingStoredGivesEmptyListsAndDefaultMailText) {
  MemoryRegistry registry;
  MessageControls form;
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

TEST(MessagesTest, SaveTouchesOnlyKeysOfTheOldCount) {
  MemoryRegistry registry;
  registry.Save(kApp, "ChatMsgs", "ChatMsgTotal", "1");
  registry.Save(kApp, "ChatMsgs", "Chat Msg0", "first");
  registry.Save(kApp, "ChatMsgs", "Chat Msg7", "beyond the count");
  registry.Save(kApp, "ThankYouMsgs", "ThankYouMsgTotal", "2");
  registry.Save(kApp, "ThankYouMsgs", "thankyou msg0", "");  // skipped
  registry.Save(kApp, "ThankYouMsgs", "ThankYou Msg1", "ty");
  registry.Save(kApp, "MailMsgs", "Mail Msg", "line 1\r\nline 2");

  MessageControls form;
  LoadMessages(form, registry);
  EXPECT_EQ(form.lstThankyou.Items(), std::vector<std::string>{"ty"});
  EXPECT_EQ(form.txtAdd[1].text, "line 1\r\nline 2");

  form.lstChat.Clear();
  SaveMessages(form, registry);
  auto dump = registry.Dump(kApp);
  // An emptied list leaves its count; keys past the old count are not ours.
  EXPECT_EQ(dump["ChatMsgs"],
            (std::map<std::string, std::string>{
                {"ChatMsgTotal", "0"}, {"Chat Msg7", "beyond the count"}}));
  EXPECT_EQ(dump["ThankYouMsgs"].size(), 2u);
  EXPECT_EQ(registry.GetSetting(kApp, "ThankYouMsgs", "ThankYou Msg0", ""),
            "ty");
}

TEST(MessagesTest, OddTotalsDoNotLoadOrStall) {
  MemoryRegistry registry;
  registry.Save(kApp, "ChatMsgs", "Chat Msg0", "a");
  registry.Save(kApp, "ChatMsgs", "Chat Msg01", "not index 1");
  MessageControls form;
  for (const char* total : {"-1", "abc", "-5"}) {
    registry.Save(kApp, "ChatMsgs", "ChatMsgTotal", total);
    LoadMessages(form, registry);
    EXPECT_TRUE(form.lstChat.Empty()) << total;
  }
  registry.Save(kApp, "ChatMsgs", "ChatMsgTotal", "2000000000");
  LoadMessages(form, registry);
  EXPECT_EQ(form.lstChat.Items(), std::vector<std::string>{"a"});
}

// Keys load when their index is a plain decimal below the count: not the
// count itself, not a neighbour of the digits; up to fifteen digits.
TEST(MessagesTest, OnlyPlainIndexesBelowTheCountLoad) {
  MemoryRegistry registry;
  registry.Save(kApp, "ChatMsgs", "ChatMsgTotal", "2");
  for (const char* key :
       {"Chat Msg1", "Chat Msg2", "Chat Msg/", "Chat Msg:", "Chat Msg0"})
    registry.Save(kApp, "ChatMsgs", key, key);
  MessageControls form;
  LoadMessages(form, registry);
  EXPECT_EQ(form.lstChat.Items(),
            (std::vector<std::string>{"Chat Msg0", "Chat Msg1"}));

  registry.Save(kApp, "ChatMsgs", "ChatMsgTotal", "1000000000000000");
  registry.Save(kApp, "ChatMsgs", "Chat Msg100000000000000", "15 digits");
  LoadMessages(form, registry);
  EXPECT_EQ(form.lstChat.Items(),
            (std::vector<std::string>{"Chat Msg0", "Chat Msg1", "Chat Msg2",
                                      "15 digits"}));
}

// Return adding an entry line (and nothing from an empty one) runs whole in
// tests/scenarios/small_windows.scn.
TEST(MessageEditorTest, EnterIsTakenByEntryLinesButBreaksMailText) {
  MessageControls form;
  EXPECT_FALSE(txtAdd_KeyPress(form, 0, kKeyEnter));
  Type(form, 2, "thx");
  EXPECT_TRUE(txtAdd_KeyPress(form, 2, kKeyEnter));
  Type(form, 1, "a");
  EXPECT_FALSE(txtAdd_KeyPress(form, 1, kKeyEnter));
  Type(form, 1, "bc");
  txtAdd_KeyPress(form, 1, kKeyBackspace);
  EXPECT_EQ(form.txtAdd[1].text, "a\r\nb");
}

// Printable keys from the blank to "~" and the tab are typed, nothing
// around them; backspace takes one whole character and nothing before the
// start; the pages are 0 to 2.
TEST(MessageEditorTest, KeysAndPagesAtTheirEdges) {
  MessageControls form;
  for (int key : {31, 32, 126, 127, int{'\t'}}) txtAdd_KeyPress(form, 0, key);
  EXPECT_EQ(form.txtAdd[0].text, " ~\t");

  // A byte that is no character of its own is one as the box shows it.
  const std::pair<const char*, const char*> backs[] = {
      {"a", ""},
      {"\xC3\xA9", ""},
      {"a\xA6", "a"},
      {"\xC3\xA9\xA9", "\xC3\xA9"}};
  for (const auto& [text, left] : backs) {
    form.txtAdd[1].text = text;
    SetCaret(form, 1, 0);
    txtAdd_KeyPress(form, 1, kKeyBackspace);
    EXPECT_EQ(form.txtAdd[1].text, text);
    SetCaret(form, 1, 9);
    txtAdd_KeyPress(form, 1, kKeyBackspace);
    EXPECT_EQ(form.txtAdd[1].text, left) << text;
  }
  // Nor before the start of a text too long for a string's own buffer (a
  // read before it is one the address sanitizer sees).
  const std::string longer = "a text longer than sixteen";
  form.txtAdd[1].text = longer;
  SetCaret(form, 1, 0);
  txtAdd_KeyPress(form, 1, kKeyBackspace);
  EXPECT_EQ(form.txtAdd[1].text, longer);

  for (int page : {2, 3, -1}) Tab_Click(form, page);
  EXPECT_EQ(form.tab, 2);
  Tab_Click(form, 0);
  EXPECT_EQ(form.tab, 0);
}

TEST(MessageEditorTest, ListsDeleteByDoubleAndSingleClick) {
  MessageControls form;
  form.lstChat.Add("one");
  lstChat_DblClick(form);  // nothing selected
  EXPECT_EQ(form.lstChat.Count(), 1);

  form.lstThankyou.Add("a");
  form.lstThankyou.Add("b");
  lstThankyou_Click(form, 0);
  EXPECT_EQ(form.lstThankyou.Items(), std::vector<std::string>{"b"});
  lstThankyou_Click(form, 5);
  EXPECT_EQ(form.lstThankyou.Count(), 1);
}

TEST(MessageEditorTest, InsertItemsGoToTheShownPageAtTheCaret) {
  MessageControls form;
  form.txtAdd[0].text = "ab";
  SetCaret(form, 0, 1);
  EXPECT_TRUE(ClickInsertItem(form, "mnuAOL"));
  Type(form, 0, "!");
  EXPECT_EQ(form.txtAdd[0].text, "a[aol]!b");

  Tab_Click(form, 1);
  form.txtAdd[1].text = "mail";
  SetCaret(form, 1, 99);  // clamped to the end
  EXPECT_TRUE(ClickInsertItem(form, "frmMessages.mnuWeb"));
  EXPECT_EQ(form.txtAdd[1].text, "mail[web]");
  Tab_Click(form, 7);
  EXPECT_EQ(form.tab, 1);
  EXPECT_FALSE(ClickInsertItem(form, "mnuMailNotify"));
}

}  // namespace
}  // namespace quorvex
