// The fixture of the client tests: a simulated client, signed on and in
// its room, behind a recording window port, on a virtual host whose run
// ends after an hour, so that a wait that never ends fails the test
// instead of hanging it.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "client/client_context.h"
#include "client/client_menus.h"
#include "client/client_tree.h"
#include "client/mailbox.h"
#include "client/wait.h"
#include "client/window_ops.h"
#include "ports/client_windows.h"
#include "ports/virtual_host.h"
#include "settings/settings.h"
#include "sim/sim_client.h"
#include "sim/sim_world.h"
#include "testing/recording_api.h"

namespace quorvex {

struct MailSeen {
  std::string to, subject, body;
  bool now;
  bool operator==(const MailSeen&) const = default;
  friend std::ostream& operator<<(std::ostream& os, const MailSeen& m) {
    return os << m.to << " | " << m.subject << " | " << m.body << " | "
              << (m.now ? "now" : "later");
  }
};

class ClientTest : public ::testing::Test, public SimObserver {
 protected:
  ClientTest() {
    host.SetEnd(3600);
    api.SetObserver(this);
    sim.SetUserName("Joe Smith");
    sim.SetRoomName("Lobby");
  }

  void Launch() { sim.Launch(); }
  void AddMails(int n, const std::string& prefix = "mail ") {
    for (int i = 0; i < n; ++i) sim.AddMail(prefix + std::to_string(i));
  }
  // Lets the client catch up: yields for `seconds` of virtual time.
  void Run(double seconds) { host.RunUntil(host.Elapsed() + seconds); }

  // Opens mail `position` of the offline mailbox and clicks its Forward
  // icon; returns the forward window once it is there.
  Hwnd OpenForwardWindow(int position) {
    OpenOfflineMailbox(c);
    Run(1);
    OpenMail(c, position);
    WaitUntil(host, [&] { return FindOpenMail(api) != 0; });
    ClickIcon(api, FindNthChild(api, FindOpenMail(api), aol::kIconClass,
                                aol::kOpenMailForwardIcon));
    WaitUntil(host, [&] { return FindComposeWindow(api) != 0; });
    return FindComposeWindow(api);
  }
  // Looks every `every` virtual seconds until `met` holds, then does
  // `act` once: a fault struck at a chosen moment of a running step.
  void When(std::function<bool()> met, std::function<void()> act,
            double every = 0.05) {
    auto look = std::make_shared<std::function<void()>>();
    *look = [this, met = std::move(met), act = std::move(act), every,
             look = std::weak_ptr(look)] {
      if (met()) return act();
      if (auto again = look.lock()) host.Schedule(every, *again);
    };
    host.Schedule(every, *look);
    lookouts.push_back(look);
  }
  // Messages of one kind sent or posted so far.
  int Count(unsigned msg) const {
    int n = 0;
    for (const RecordedMessage& m : api.messages) n += m.msg == msg;
    return n;
  }

  void OnChat(const std::string&, const std::string& text) override {
    chats.push_back(text);
  }
  void OnMail(const std::string&, const std::string& to,
              const std::string& subject, const std::string& body,
              bool now) override {
    mails.push_back({to, subject, body, now});
  }
  void OnIm(const std::string& to, const std::string& text) override {
    ims.push_back(to + ": " + text);
  }

  VirtualHost host{CivilTime{2004, 5, 1, 12, 0, 0, 0}};
  SimWorld world;
  SimClient sim{host, world};
  RecordingApi api{sim};
  Settings settings;
  ClientContext c{api, host, settings, nullptr};
  std::vector<MailSeen> mails;
  std::vector<std::string> ims, chats;
  std::vector<std::shared_ptr<std::function<void()>>> lookouts;
};

}  // namespace quorvex
