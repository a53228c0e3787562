// The simulated client in virtual time for the tests of its own windows:
// the user "Host" with Ann in the room "Lobby", driven with the program's
// own walks and clicks.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "testing/sim_rig.h"

namespace quorvex {

// Opens a "Write Mail" window from the tool bar, waits `seconds` for it
// and addresses it to `to`; 0 when it did not come.
inline Hwnd WriteMail(SimRig& rig, const std::string& to, double seconds = 1) {
  ClickIcon(rig.client, FindToolbarIcon(rig.client, 2));
  rig.Run(seconds);
  const Hwnd write = FindDocument(rig.client, "Write Mail");
  if (write)
    SetText(rig.client, FindNthChild(rig.client, write, "_AOL_Edit", 1), to);
  return write;
}

class SimClientTest : public ::testing::Test {
 protected:
  SimClientTest() {
    api_.SetUserName("Host");
    api_.SetRoomName("Lobby");
    api_.AddPerson("Ann");
  }
  Hwnd Icon(Hwnd window, int n) {
    return FindNthChild(api_, window, "_AOL_Icon", n);
  }

  SimRig rig_;
  SimClient& api_ = rig_.client;
};

}  // namespace quorvex
