// How the simulated client behaves where the real one varies: its
// slowness, its faults and the platform it reports.
#pragma once

#include <cstddef>

#include "ports/window_api.h"

namespace quorvex {

struct SimKnobs {
  // Seconds the client takes to open a window it was asked for.
  double latency = 0.05;
  // Seconds the client stays busy after an action, and the chance that a
  // click landing while it is busy is lost.
  double busy = 0.2;
  double lost_click_chance = 0;
  // Lines the chat display keeps.
  int display_lines = 100;
  // A mail body longer than this is refused as too long; 0: no limit.
  std::size_t max_body_chars = 0;
  // Seconds the "Status" window stays while a mail goes out.
  double send_time = 0.3;
  // Seconds from WM_CLOSE to the frame being gone; with close_needs_two
  // the first WM_CLOSE is ignored.
  double close_time = 1.0;
  bool close_needs_two = false;
  // Seconds from Start() to the "Sign On" window.
  double start_time = 2.0;
  // Seconds each of the three sign-on steps takes.
  double signon_step = 1.0;
  // The next sign-ons that end in the error modal.
  int signon_failures = 0;
  // Seconds after a refused entry into a room at capacity until one of
  // its people leaves, so that a place frees up; 0: nobody leaves.
  double full_room_leave_time = 0;
  // The chat room also carries the style combo and font combo.
  bool room_style_controls = false;
  // Sent mails the online mailbox lists per `latency` as it fills.
  int sent_fill_step = 25;
  // What GetVersionExA reports.
  OsVersion os;
  // The screen in pixels; ScreenSize() reports it in twips.
  int screen_width = 1024;
  int screen_height = 768;
};

}  // namespace quorvex
