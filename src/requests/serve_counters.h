// The counters a take from the pending queue advances: the total since
// installation (kept in the registry) and the session counters, with the
// labels that show them.
#pragma once

#include <cstdint>

#include "model/label.h"
#include "ports/registry.h"
#include "settings/settings.h"

namespace quorvex {

// Mails counted this session and since the last client restart, machine
// restart and sent-mail deletion. They saturate at the largest 32-bit
// value instead of overflowing.
struct ServeCounters {
  std::int32_t session = 0;
  std::int32_t AOLCount = 0;
  std::int32_t CPUCount = 0;
  std::int32_t SentCount = 0;
};

// Everything an advance touches.
struct CounterView {
  ServeCounters& counters;
  Registry& registry;
  Settings& settings;
  Label& lblSent;
  Label& lblSession;
};

// Counts `n` mails as sent: "TotalSent" is read again from the registry
// (another copy of the program may share it), advanced, written back at
// once and shown in lblSent; the session counters advance and lblSession
// shows the session count. Nothing happens for n <= 0.
void AdvanceServeCounters(const CounterView& view, std::int64_t n);

// a + n, held within the 32-bit range.
std::int32_t SaturatingAdd(std::int32_t a, std::int64_t n);

}  // namespace quorvex
