// The fixture of the serving engine's tests: the main window's state on a
// simulated client (signed on, in its room) and a simulated machine in a
// temporary folder, in virtual time that ends after two hours so that a
// wait that never ends fails the test instead of hanging it. The jobs get
// their contexts as the program makes them.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "app/frm_main.h"
#include "client/client_context.h"
#include "client/mailbox.h"
#include "ports/memory_registry.h"
#include "ports/scripted_prompter.h"
#include "ports/virtual_host.h"
#include "server/error_sweep.h"
#include "sim/folder_machine.h"
#include "sim/ini_profile_file.h"
#include "sim/sim_client.h"
#include "sim/sim_world.h"
#include "testing/sim_recorder.h"
#include "testing/temp_folder.h"

namespace quorvex {

class ServerTest : public ::testing::Test {
 protected:
  static constexpr const char* kUser = "Host User";
  static constexpr const char* kFontTag =
      "<font color=#003377 face=\"tahoma\">";

  ServerTest() {
    host.SetEnd(7200);
    sim.SetObserver(&seen);
    sim.SetUserName(kUser);
    sim.SetRoomName("Lobby");
    frm.settings.Handle = "srv";
    frm.settings.LAscii = "";
    frm.settings.RAscii = "";
    frm.settings.MailResize = false;
    frm.controls.status.Subscribe(
        [this](const StatusStrip& s) { statuses.push_back(s.text()); });
  }
  void AddMails(int n) {
    for (int i = 1; i <= n; ++i) sim.AddMail("mail " + std::to_string(i));
  }
  void Run(double seconds) { host.RunUntil(host.Elapsed() + seconds); }

  // `mails` mails "mail 1"..., the client up, its mailbox read, and Timer2
  // sweeping the forward errors every second, as serving has it.
  void LaunchSweeping(int mails) {
    AddMails(mails);
    sim.Launch();
    LoadMailbox(c, frm.lists.lstMails, true, frm.controls.status);
    frm.serving.Timer2 = host.CreateTimer(
        [this] { ForwardErrorSweep(MailJobs(), c, under_way); });
    frm.serving.Timer2->SetInterval(1000);
    frm.serving.Timer2->SetEnabled(true);
  }

  MailJobContext MailJobs() { return MakeMailJobContext(frm); }
  ReplyContext Replies() { return MakeReplyContext(frm); }
  RestartContext Restart() { return MakeRestartContext(frm); }
  // The main window of the program that starts next on the same machine.
  std::unique_ptr<FrmMain> NextProgram() {
    return std::make_unique<FrmMain>(frm.ports);
  }

  // What the user said in the room, without the chat mark-up.
  std::vector<std::string> Said() const {
    std::vector<std::string> out;
    for (const SimChat& chat : seen.chats) {
      if (chat.sn != kUser) continue;
      std::string text = chat.text;
      if (text.rfind(kFontTag, 0) == 0)
        text.erase(0, std::string(kFontTag).size());
      out.push_back(text);
    }
    return out;
  }
  // The lines said since `from` lines had been said.
  std::vector<std::string> SaidSince(size_t from) const {
    std::vector<std::string> all = Said();
    if (from >= all.size()) return {};
    return {all.begin() + static_cast<long>(from), all.end()};
  }

  const TempFolder root{"qv_server_test_"};
  VirtualHost host{CivilTime{2004, 5, 1, 12, 0, 0, 0}};
  SimWorld world;
  SimClient sim{host, world};
  SimRecorder seen;
  MemoryRegistry registry;
  IniProfileFile profiles;
  FolderMachine machine{root};
  ScriptedPrompter prompter;
  FrmMain frm{Ports{host, sim, registry, profiles, prompter, machine, 1}};
  ClientContext c{sim, host, frm.settings, nullptr};
  std::vector<std::string> statuses;  // the status strip's texts, in order
  ForwardUnderWay under_way;          // the forward the sweep looks at
};

}  // namespace quorvex
