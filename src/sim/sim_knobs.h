// How the simulated client behaves where the real one varies: its
// slowness, its faults and the platform it reports.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

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
  // The chat room carries its style combo and font combo, as the real
  // client's does; off, a plainer room.
  bool room_style_controls = true;
  // Sent mails the online mailbox lists per `latency` as it fills.
  int sent_fill_step = 25;
  // What GetVersionExA reports.
  OsVersion os;
  // The screen in pixels; ScreenSize() reports it in twips.
  int screen_width = 1024;
  int screen_height = 768;
};

// Sets the knob called `name` (the member's name above: "latency",
// "lost_click_chance", "room_style_controls", ...) from its text: seconds
// and chances as decimals, counts as whole numbers, switches as 0/1 or
// false/true. Returns what is wrong with the name or the value, "" when it
// was set. With `knobs` null it only checks.
std::string SetKnob(SimKnobs* knobs, std::string_view name,
                    std::string_view value);
// The knob's value as SetKnob reads it back ("" for an unknown name).
std::string KnobValue(const SimKnobs& knobs, std::string_view name);
// The knobs' names, in the order above.
std::vector<std::string> KnobNames();

}  // namespace quorvex
