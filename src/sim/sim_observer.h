// What the simulated client lets its owner see as it happens: the lines
// of the room, the mails and instant messages it sends, and the changes
// of its session.
#pragma once

#include <string>

namespace quorvex {

class SimObserver {
 public:
  virtual ~SimObserver() = default;
  // A line appeared in the room's display (the user's own included).
  virtual void OnChat(const std::string& /*sn*/, const std::string& /*text*/) {}
  // The client accepted a mail for sending; `to` is the recipients field
  // as filled in; `send_now` false for Send Later.
  virtual void OnMail(const std::string& /*from*/, const std::string& /*to*/,
                      const std::string& /*subject*/,
                      const std::string& /*body*/, bool /*send_now*/) {}
  virtual void OnIm(const std::string& /*to*/, const std::string& /*text*/) {}
  // One of the kClient... texts of sim_client.h.
  virtual void OnClient(const std::string& /*what*/) {}
};

}  // namespace quorvex
