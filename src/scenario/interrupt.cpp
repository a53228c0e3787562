#include "scenario/interrupt.h"

#include <csignal>
#include <cstdlib>

namespace quorvex::scenario {
namespace {

volatile std::sig_atomic_t g_signal = 0;

extern "C" void NoteSignal(int signal) { g_signal = signal; }

}  // namespace

void InstallInterruptHandlers() {
  std::signal(SIGINT, NoteSignal);
  std::signal(SIGTERM, NoteSignal);
}

void ThrowIfInterrupted() {
  if (g_signal != 0) throw RunInterrupted(g_signal);
}

void ClearInterrupt() { g_signal = 0; }

void EndBySignal(int signal) {
  std::signal(signal, SIG_DFL);
  std::raise(signal);
  std::_Exit(128 + signal);
}

}  // namespace quorvex::scenario
