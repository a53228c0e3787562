#include "win32/tick_count.h"

#include <atomic>

namespace quorvex::win32 {

namespace {

// Looked up once; a race looks up the same function twice, no harm.
std::atomic<ULONGLONG(WINAPI*)()> system_tick{nullptr};
std::atomic<bool> looked_up{false};
std::atomic<LONGLONG> frequency{0};

}  // namespace

ULONGLONG CounterMilliseconds() {
  LONGLONG f = frequency.load(std::memory_order_relaxed);
  if (f == 0) {
    LARGE_INTEGER li;
    ::QueryPerformanceFrequency(&li);
    f = li.QuadPart > 0 ? li.QuadPart : 1;
    frequency.store(f, std::memory_order_relaxed);
  }
  LARGE_INTEGER now;
  ::QueryPerformanceCounter(&now);
  // Whole seconds and the rest apart: no overflow at any frequency.
  return static_cast<ULONGLONG>(now.QuadPart / f * 1000 +
                                now.QuadPart % f * 1000 / f);
}

ULONGLONG WINAPI TickCount64() {
  if (!looked_up.load(std::memory_order_acquire)) {
    HMODULE kernel = ::GetModuleHandleW(L"kernel32.dll");
    system_tick.store(
        reinterpret_cast<ULONGLONG(WINAPI*)()>(reinterpret_cast<void*>(
            ::GetProcAddress(kernel, "GetTickCount64"))),
        std::memory_order_relaxed);
    looked_up.store(true, std::memory_order_release);
  }
  if (auto f = system_tick.load(std::memory_order_relaxed)) return f();
  return CounterMilliseconds();
}

}  // namespace quorvex::win32

// The thread library (winpthreads, linked into the program) calls
// GetTickCount64 through its import pointer. Defined here, the pointer
// leads to TickCount64, and the linker no longer takes the function from
// kernel32: the program starts on XP.
using TickCountFn = ULONGLONG(WINAPI*)();
extern "C" {
#if defined(_WIN64)
TickCountFn qv_imp_GetTickCount64 __asm__("__imp_GetTickCount64") =
    &quorvex::win32::TickCount64;
#else
TickCountFn qv_imp_GetTickCount64 __asm__("__imp__GetTickCount64@0") =
    &quorvex::win32::TickCount64;
#endif
}
