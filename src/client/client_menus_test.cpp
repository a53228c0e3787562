#include "client/client_menus.h"

#include "client/client_tree.h"
#include "client/test_client.h"
#include "client/window_ops.h"

namespace quorvex {
namespace {

using ClientMenusTest = ClientTest;

TEST_F(ClientMenusTest, OfflineMailboxThroughTheMailMenuKeys) {
  AddMails(2);
  Launch();
  api.SetCursorPos(100, 200);
  api.messages.clear();
  OpenOfflineMailbox(c);
  EXPECT_EQ(api.GetCursorPos().x, 100);
  EXPECT_EQ(api.GetCursorPos().y, 200);

  std::vector<std::pair<unsigned, std::uintptr_t>> keys;
  for (const auto& m : api.messages)
    if (m.posted && (m.msg == win::kWmKeyDown || m.msg == win::kWmKeyUp))
      keys.emplace_back(m.msg, m.wparam);
  // The second Up has no key up.
  const std::vector<std::pair<unsigned, std::uintptr_t>> expected = {
      {win::kWmKeyDown, 38}, {win::kWmKeyUp, 38}, {win::kWmKeyDown, 38},
      {win::kWmKeyDown, 39}, {win::kWmKeyUp, 39}, {win::kWmKeyDown, 13},
      {win::kWmKeyUp, 13}};
  EXPECT_EQ(keys, expected);
  Run(1);
  EXPECT_NE(FindDocument(api, kIncomingMail), 0u);
}

TEST_F(ClientMenusTest, ToolbarMenuPicksTheEntryByItsLetter) {
  Launch();
  RunToolbarMenu(c, 3, 'b');
  Run(1);
  EXPECT_NE(FindDocument(api, kMailWaiting), 0u);
  EXPECT_EQ(FindTabbedMailbox(api), 0u);
  RunToolbarMenu(c, 3, 'S');
  Run(1);
  EXPECT_NE(FindTabbedMailbox(api), 0u);
}

}  // namespace
}  // namespace quorvex
