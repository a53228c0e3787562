#include "settings/message_editor.h"

#include <gtest/gtest.h>

#include "settings/memory_registry.h"
#include "settings/settings.h"

namespace quorvex {
namespace {

void Type(MessagesForm& form, int index, const std::string& text) {
  for (char c : text) txtAdd_KeyPress(form, index, c);
}

TEST(MessageEditorTest, EnterAddsEntryLinesButBreaksMailText) {
  MessagesForm form;
  EXPECT_FALSE(txtAdd_KeyPress(form, 0, kKeyEnter));
  EXPECT_TRUE(form.lstChat.Empty());

  Type(form, 0, "hi [h]");
  EXPECT_TRUE(txtAdd_KeyPress(form, 0, kKeyEnter));
  EXPECT_EQ(form.lstChat.Items(), std::vector<std::string>{"hi [h]"});
  EXPECT_EQ(form.txtAdd[0].text, "");
  Type(form, 2, "thx");
  EXPECT_TRUE(txtAdd_KeyPress(form, 2, kKeyEnter));

  form.txtAdd[1].text = "";
  Type(form, 1, "a");
  EXPECT_FALSE(txtAdd_KeyPress(form, 1, kKeyEnter));
  Type(form, 1, "bc");
  txtAdd_KeyPress(form, 1, kKeyBackspace);
  EXPECT_EQ(form.txtAdd[1].text, "a\r\nb");
}

TEST(MessageEditorTest, ListsDeleteByDoubleAndSingleClick) {
  MessagesForm form;
  form.lstChat.Add("one");
  form.lstChat.Add("two");
  lstChat_DblClick(form);  // nothing selected
  EXPECT_EQ(form.lstChat.Count(), 2);
  form.lstChat.Select(1);
  lstChat_DblClick(form);
  EXPECT_EQ(form.lstChat.Items(), std::vector<std::string>{"one"});

  form.lstThankyou.Add("a");
  form.lstThankyou.Add("b");
  lstThankyou_Click(form, 0);
  EXPECT_EQ(form.lstThankyou.Items(), std::vector<std::string>{"b"});
  lstThankyou_Click(form, 5);
  EXPECT_EQ(form.lstThankyou.Count(), 1);
}

TEST(MessageEditorTest, InsertItemsGoToTheShownPageAtTheCaret) {
  MessagesForm form;
  EXPECT_TRUE(ClickInsertItem(form, "frmMessages.mnuHandle"));
  EXPECT_EQ(form.txtAdd[0].text, "[h]");
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

TEST(MessageEditorTest, SaveStoresAndExitDoesNot) {
  MemoryRegistry registry;
  MessagesForm form;
  frmMessages_Load(form, registry);
  form.visible = true;
  form.lstChat.Add("hello");
  cmdExit_Click(form);
  EXPECT_FALSE(form.visible);
  EXPECT_TRUE(registry.Dump(kApp).empty());

  form.visible = true;
  cmdSave_Click(form, registry);
  EXPECT_FALSE(form.visible);
  EXPECT_EQ(registry.GetSetting(kApp, "ChatMsgs", "Chat Msg0", ""), "hello");
}

}  // namespace
}  // namespace quorvex
