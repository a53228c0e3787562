// The settings record: the values of registry section "Settings" held in
// memory for the whole run. Only the menu handlers change it (and the
// serving loop the total counter).
#pragma once

#include <cstdint>
#include <string>

namespace quorvex {

struct Settings {
  std::string Handle;
  std::string LAscii = "\xC2\xB7\xE2\x80\xA2[";  // "·•["
  std::string RAscii = "]\xE2\x80\xA2\xC2\xB7";  // "]•·"
  std::string ChatFont = "tahoma";
  bool MailNotify = true;
  bool MailResize = true;
  float MailSpeed = 0.1345f;
  bool MailMethod = true;  // true: send later
  bool ListNotify = true;
  std::int16_t ListSize = 250;
  float ListSpeed = 0.1345f;
  std::int16_t ListAdvertise = 30;
  bool FindsEnable = true;
  bool FindsXYEnable = true;
  std::int16_t FindMax = 20;
  std::int16_t FindMin = 2;
  float FindSpeed = 0.1345f;
  bool BlocksXYEnable = true;
  std::int16_t BlockMax = 100;
  std::int16_t BotScroll = 30;
  bool ScrollStatus = true;
  bool ScrollThankyou = true;
  bool ScrollMethod = true;  // true: replies by chat
  std::int16_t AOLRestart = 1000;
  std::int16_t CPURestart = 2000;
  std::int16_t SentRestart = 750;
  std::int32_t TotalSent = 0;
  // "if no requests pending" of the list-send menu: a session flag, never
  // stored.
  bool ListIfNoPending = false;
};

inline constexpr const char* kApp = "Quorvex";
// The project's version (CMakeLists.txt), which the Windows resources and
// the release's file names also read.
inline constexpr const char* kVersion = QUORVEX_VERSION;

}  // namespace quorvex
