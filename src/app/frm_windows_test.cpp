// The program's windows as models: the desktop shows a window exactly
// while its model is open, so every window must open from its entry and
// close by its exit, again and again, whatever opened it.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/frm_messages.h"
#include "app/quorvex_app.h"
#include "ports/memory_registry.h"
#include "ports/scripted_prompter.h"
#include "ports/virtual_host.h"
#include "settings/settings.h"
#include "sim/folder_machine.h"
#include "sim/ini_profile_file.h"
#include "sim/sim_client.h"
#include "sim/sim_world.h"
#include "testing/temp_folder.h"

namespace quorvex {
namespace {

class WindowModelsTest : public ::testing::Test {
 protected:
  WindowModelsTest() {
    host.SetEnd(600);
    sim.SetUserName("Host User");
    sim.SetRoomName("Lobby");
    sim.Launch();
    sim.Join("Wren");
    host.RunUntil(1);
    app.Load();
  }

  const TempFolder root{"qv_windows_test_"};
  VirtualHost host;
  SimWorld world;
  SimClient sim{host, world};
  MemoryRegistry registry;
  IniProfileFile profiles;
  FolderMachine machine{root};
  ScriptedPrompter prompter;
  QuorvexApp app{Ports{host, sim, registry, profiles, prompter, machine, 1}};
};

TEST_F(WindowModelsTest, EachWindowOpensByItsEntryAndClosesByItsExit) {
  FrmMain& f = app.frm();
  struct Window {
    const char* entry;
    int index;
    const char* exit;
    const Form& form;
  };
  const std::vector<Window> windows = {
      {"mnuBanOpts", 0, "frmBanning.lblExit", f.forms.frmBanning.form},
      {"mnuMessages", 0, "frmMessages.cmdExit", f.forms.frmMessages.form},
      {"mnuRoomBuster", 0, "frmRoomBuster.lblExit",
       f.forms.frmRoomBuster->form},
      {"mnuServeNChat", 0, "frmChatroom.lblExit", app.frmChatroom().form},
      {"mnuAbout", 0, "frmAbout.lblExit", app.frmAbout().form},
      {"mnuCredits", 0, "frmCredits.lblExit", app.frmCredits().form},
      {"lstBanned", 2, "frmRoom.lblExit", f.forms.frmRoom.form},
  };
  for (const Window& w : windows) {
    int changes = 0;
    const int id = const_cast<Form&>(w.form).Subscribe(
        [&changes](const Form&) { ++changes; });
    // Twice: a window closed by its exit opens again from its entry.
    for (int round = 0; round < 2; ++round) {
      app.Press(w.entry, w.index);
      EXPECT_TRUE(w.form.open()) << w.entry;
      for (const Form* other : app.Windows())
        EXPECT_EQ(other->open(), other == &w.form) << other->name();
      app.Press(w.exit);
      EXPECT_FALSE(w.form.open()) << w.exit;
    }
    // Each open and close told once: the view opens and goes once.
    EXPECT_EQ(changes, 4) << w.entry;
    const_cast<Form&>(w.form).Unsubscribe(id);
  }
}

TEST_F(WindowModelsTest, AWindowOpenAlreadyStaysOpenWithoutANewChange) {
  FrmMain& f = app.frm();
  int changes = 0;
  f.forms.frmRoom.form.Subscribe([&changes](const Form&) { ++changes; });
  app.Press("lstBanned", 2);
  const int people = f.forms.frmRoom.lstRoom.Count();
  ASSERT_GT(people, 0);
  // A second right click reads the room again into the open window.
  sim.Join("Moth");
  host.RunUntil(host.Elapsed() + 1);
  app.Press("lstBanned", 2);
  EXPECT_EQ(changes, 1);
  EXPECT_EQ(f.forms.frmRoom.lstRoom.Count(), people + 1);
}

TEST(FrmMessagesTest, SaveStoresTheTextsAndExitLeavesThemUnsaved) {
  MemoryRegistry registry;
  FrmMessages m;
  m.Form_Load(registry);
  EXPECT_TRUE(m.form.open());
  EXPECT_EQ(m.tab, 0);
  m.lstChat.Add("hello");
  m.cmdExit_Click();
  EXPECT_FALSE(m.form.open());
  EXPECT_TRUE(registry.Dump(kApp).empty());

  m.Form_Load(registry);  // the unsaved line is read over
  EXPECT_EQ(m.lstChat.Count(), 0);
  m.lstChat.Add("hello");
  m.cmdSave_Click(registry);
  EXPECT_FALSE(m.form.open());
  FrmMessages next;
  next.Form_Load(registry);
  EXPECT_EQ(next.lstChat.Items(), std::vector<std::string>{"hello"});
}

}  // namespace
}  // namespace quorvex
