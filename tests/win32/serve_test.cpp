// The whole program serving a room through real windows: the program core
// with the Win32 ports in this process, the stand-in client in another.
// People ask for a mail, the list and a find; the test checks what
// reached their mailboxes and what the room heard. (What serving costs
// in CPU is measured by qv_win32_cpu.)
#include <gtest/gtest.h>
#include <windows.h>

#include <cstdio>
#include <functional>
#include <string>

#include "app/program.h"
#include "client/client_tree.h"
#include "ports/client_windows.h"
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

namespace quorvex {
namespace {

bool HasSubjectContaining(const nlohmann::json& box, const std::string& part) {
  for (const auto& mail : box)
    if (mail["subject"].get<std::string>().find(part) != std::string::npos)
      return true;
  return false;
}

bool HasForwardOf(const nlohmann::json& box, const std::string& title) {
  for (const auto& mail : box)
    if (mail["forward_of"] == title) return true;
  return false;
}

class ServeTest : public testing::Test {
 protected:
  // A registry key of the test's own, so that a user's settings stay as
  // they are.
  static constexpr const char* kRoot = "Software\\Quorvex Serve Test";

  // Both processes' clocks run this many times faster than the wall
  // clock.
  static constexpr double kSpeed = 3;

  ServeTest()
      : standin(
            "--user Host --room Lobby --mails 6 --people Ann,Bob,Cal --speed " +
                std::to_string(kSpeed),
            120),
        host(kSpeed),
        registry(kRoot) {
    registry.DeleteApp(kApp);
    registry.Save(kApp, "Settings", "Handle", "srv");
  }
  ~ServeTest() override { registry.DeleteApp(kApp); }

  // Serves, yielding to the message loop, until `done` holds for the
  // stand-in's state (looked at twice a second) or `seconds` pass.
  bool ServeUntil(const std::function<bool(const nlohmann::json&)>& done,
                  double seconds) {
    const double end = host.Clock() + seconds;
    double next_look = 0;
    while (host.Clock() < end) {
      if (host.Clock() >= next_look) {
        last_state = standin.State();
        if (done(last_state)) return true;
        next_look = host.Clock() + 0.5;
      }
      host.DoEvents(std::min(end, host.Clock() + 0.1));
    }
    last_state = standin.State();
    return done(last_state);
  }

  test::StandInProcess standin;
  win32::Win32Host host;
  win32::Win32WindowApi api;
  win32::Win32Registry registry;
  win32::Win32ProfileFile profiles;
  win32::Win32Machine machine;
  ScriptedPrompter prompter;
  nlohmann::json last_state;
};

TEST_F(ServeTest, PeopleReceiveAMailTheListAndFindResults) {
  ASSERT_TRUE(standin.running());
  // Nothing may restart this machine.
  machine.SetExitWindows([](unsigned) { return false; });
  standin.Command(test::kEarlierListMail);
  std::vector<std::string> prompts;
  prompter.SetObserver(
      [&prompts](const PromptRecord& r) { prompts.push_back(r.prompt); });

  QuorvexProgram program(
      Ports{host, api, registry, profiles, prompter, machine, 1}, {});
  bool served = false;
  // Where the program stands, every few seconds, for a run that stalls.
  auto progress = host.CreateTimer([&] {
    std::fprintf(
        stderr, "[serve] %.1f s: %s (prefs %d, mail prefs %d, im %d)\n",
        host.Clock(), program.app().frm().controls.status.text().c_str(),
        FindDocument(api, "Preferences") != 0,
        api.FindWindowA(aol::kModalClass, "Mail Preferences") != 0,
        FindDocument(api, kSendIm) != 0);
  });
  progress->SetInterval(5000);
  progress->SetEnabled(true);
  program.Run(false, [&] {
    program.app().Press("cmdStart");
    ASSERT_TRUE(program.app().frm().serving.ServerOn)
        << "status: " << program.app().frm().controls.status.text();
    standin.Command("say Ann|/srv send 2");
    standin.Command("say Bob|/srv send list");
    standin.Command("say Cal|/srv find mail");
    served = ServeUntil(
        [](const nlohmann::json& s) {
          return HasForwardOf(test::MailboxOf(s, "Ann"), "mail 2") &&
                 HasSubjectContaining(test::MailboxOf(s, "Bob"),
                                      "list number 1") &&
                 HasSubjectContaining(test::MailboxOf(s, "Cal"),
                                      "find results");
        },
        90);
    program.app().End();
  });

  EXPECT_TRUE(served) << last_state.dump(1);
  EXPECT_TRUE(prompts.empty()) << prompts.front();
  // Only what each asked for, nothing to the others of it.
  EXPECT_FALSE(HasForwardOf(test::MailboxOf(last_state, "Bob"), "mail 2"));
  EXPECT_FALSE(HasForwardOf(test::MailboxOf(last_state, "Cal"), "mail 2"));
  // The room heard the program come on and how to ask.
  EXPECT_EQ(test::Heard(last_state, "quorvex mail server <B><U>on</B></U>"), 1)
      << last_state["heard"].dump(1);
  EXPECT_GT(test::Heard(last_state, "type /<B>srv send <U>x"), 0);
}

}  // namespace
}  // namespace quorvex
