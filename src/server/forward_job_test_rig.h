// What the forwarding, list and find tests share: a client launched with
// its mailbox read into lstMails, Timer2 running the error sweep as the
// serving loop runs it, and the status texts shown.
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "client/mailbox.h"
#include "server/error_sweep.h"
#include "server/server_test_fixture.h"

namespace quorvex {

class ForwardJobRig : public ServerTest {
 protected:
  ForwardJobRig() {
    frm.status.Subscribe(
        [this](const StatusStrip& s) { statuses.push_back(s.text()); });
  }

  // `mails` mails "mail 1"..., the mailbox read, Timer2 sweeping.
  void Launch(int mails) {
    AddMails(mails);
    sim.Launch();
    LoadMailbox(c, frm.lstMails, true, frm.status);
    frm.Timer2 = host.CreateTimer([this] { ForwardErrorSweep(frm, c); });
    frm.Timer2->SetInterval(1000);
    frm.Timer2->SetEnabled(true);
    statuses.clear();
  }

  void Queue(std::initializer_list<const char*> lines) {
    for (const char* line : lines) frm.pending.Append(line);
    frm.pending.RefreshLabel(frm.lblPending);
  }
  std::vector<std::string> Pending() const { return frm.lstPending().Items(); }

  // The titles forwarded to a person, in order.
  std::vector<std::string> Forwarded(const std::string& name) const {
    std::vector<std::string> titles;
    const SimPerson* p = world.FindPerson(name);
    if (p)
      for (const ReceivedMail& m : p->mailbox) titles.push_back(m.forward_of);
    return titles;
  }
  // How many mails a person received.
  std::size_t Received(const std::string& name) const {
    const SimPerson* p = world.FindPerson(name);
    return p ? p->mailbox.size() : 0;
  }

  std::vector<std::string> statuses;
};

}  // namespace quorvex
