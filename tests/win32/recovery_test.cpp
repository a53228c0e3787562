// The client dies mid-forward: its process is killed outright while the
// program forwards a mail and more requests wait. The program notices the
// lost client, starts the client's program again from the folder Win.INI
// names (a new process of the stand-in, with the same world), signs on
// through its "Sign On" window, busts back into the room and serves every
// other request. Only the group that was being forwarded is lost, as the
// program intends; no wait hangs (the watchdog bounds the test).
#include <gtest/gtest.h>
#include <windows.h>

#include <cstdio>
#include <functional>
#include <string>

#include "app/program.h"
#include "client/client_tree.h"
#include "ports/ports.h"
#include "ports/scripted_prompter.h"
#include "settings/settings.h"
#include "standin_checks.h"
#include "standin_process.h"
#include "win32/win32_host.h"
#include "win32/win32_machine.h"
#include "win32/win32_profile_file.h"
#include "win32/win32_registry.h"
#include "win32/win32_window_api.h"
#include "windows_folder.h"

namespace quorvex {
namespace {

using nlohmann::json;

// Both processes' clocks run this many times the wall clock.
constexpr double kSpeed = 4;

TEST(RecoveryTest, AClientKilledMidForwardIsStartedAgainAndServesTheRest) {
  test::WindowsFolder folder;
  win32::Win32Registry registry("Software\\Quorvex Recovery Test");
  registry.DeleteApp(kApp);
  registry.Save(kApp, "Settings", "Handle", "srv");
  registry.Save(kApp, "Settings", "MailResize", "False");
  win32::Win32ProfileFile profiles;
  test::NameStandInInWinIni();

  test::StandInProcess client(
      "--user Host --room Lobby --mails 5 --people Ann,Bob,Cal,Dan --speed " +
          std::to_string(kSpeed),
      150);
  ASSERT_TRUE(client.running());
  client.Command(test::kEarlierListMail);
  const DWORD first_pid = client.pid();

  win32::Win32Host host(kSpeed);
  win32::Win32WindowApi api;
  win32::Win32Machine machine;
  // Nothing may restart this machine.
  machine.SetExitWindows([](unsigned) { return false; });
  ScriptedPrompter prompter;
  QuorvexProgram program(
      Ports{host, api, registry, profiles, prompter, machine, 1}, {});

  // The kill: at the moment the forward of the first mail asks the open
  // mail for its forward window, with the other requests queued.
  bool killed = false;
  int pending_at_kill = -1;
  json state;
  program.Run(false, [&] {
    FrmMain& frm = program.app().frm();
    frm.controls.status.Subscribe([&](const StatusStrip& s) {
      client.Note("the program's " + s.text());
      if (!killed && s.text() == "status: forwarding mail") {
        pending_at_kill = frm.lstPending().Count();
        killed = client.Kill();
      }
    });
    program.app().Press("cmdStart");
    ASSERT_TRUE(frm.serving.ServerOn) << frm.controls.status.text();
    for (const char* line : {"say Ann|/srv send 1", "say Bob|/srv send 2",
                             "say Cal|/srv send 3", "say Dan|/srv send 4"})
      client.Command(line);
    // Served until each of the others has the mail asked for.
    const double end = host.Clock() + 200;
    double next_look = 0;
    while (host.Clock() < end) {
      host.DoEvents(std::min(end, host.Clock() + 0.1));
      client.Pump();
      if (host.Clock() < next_look) continue;
      next_look = host.Clock() + 1;
      state = client.State();
      if (!test::ForwardsReceived(state, "Bob").empty() &&
          !test::ForwardsReceived(state, "Cal").empty() &&
          !test::ForwardsReceived(state, "Dan").empty())
        break;
    }
    // A little longer: nothing more may come.
    const double more = host.Clock() + 15;
    while (host.Clock() < more) host.DoEvents(more);
    state = client.State();
    EXPECT_TRUE(frm.lstPending().Empty()) << frm.lstPending().Items().size();
    program.app().End();
  });
  registry.DeleteApp(kApp);

  ASSERT_TRUE(killed) << "the forward never began";
  EXPECT_EQ(pending_at_kill, 3);
  // The client came back as a new process of its program, signed on, in
  // its room, and said so there.
  EXPECT_NE(client.pid(), first_pid);
  EXPECT_NE(client.pid(), 0u);
  EXPECT_TRUE(state["signed_on"]) << state.dump(1);
  EXPECT_EQ(state["room"], "Lobby");
  EXPECT_EQ(test::Heard(state, "quorvex restarted <B><U>aol</B></U>"), 1);
  // Every other request was served, once; the group under way was lost.
  EXPECT_EQ(test::ForwardsReceived(state, "Bob"),
            std::vector<std::string>{"mail 2"});
  EXPECT_EQ(test::ForwardsReceived(state, "Cal"),
            std::vector<std::string>{"mail 3"});
  EXPECT_EQ(test::ForwardsReceived(state, "Dan"),
            std::vector<std::string>{"mail 4"});
  EXPECT_TRUE(test::ForwardsReceived(state, "Ann").empty());
}

}  // namespace
}  // namespace quorvex
