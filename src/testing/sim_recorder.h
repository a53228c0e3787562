// A SimObserver that keeps what it hears, in order, for tests and for
// anyone who wants to look afterwards.
#pragma once

#include <string>
#include <vector>

#include "sim/sim_observer.h"

namespace quorvex {

struct SimChat {
  std::string sn, text;
};
struct SimMail {
  std::string from, to, subject, body;
  bool send_now = true;
};
struct SimIm {
  std::string to, text;
};

class SimRecorder : public SimObserver {
 public:
  void OnChat(const std::string& sn, const std::string& text) override {
    chats.push_back({sn, text});
  }
  void OnMail(const std::string& from, const std::string& to,
              const std::string& subject, const std::string& body,
              bool send_now) override {
    mails.push_back({from, to, subject, body, send_now});
  }
  void OnIm(const std::string& to, const std::string& text) override {
    ims.push_back({to, text});
  }
  void OnClient(const std::string& what) override { client.push_back(what); }

  std::vector<SimChat> chats;
  std::vector<SimMail> mails;
  std::vector<SimIm> ims;
  std::vector<std::string> client;
};

}  // namespace quorvex
