// Milliseconds since Windows started, in 64 bits, on every Windows the
// program starts on. Windows XP has no GetTickCount64 (and GetTickCount
// goes round after 49.7 days).
#pragma once

#include <windows.h>

namespace quorvex::win32 {

// GetTickCount64 where Windows has it (Vista and later); on XP the
// performance counter, which does not go round, in milliseconds. The
// runtime's thread library calls GetTickCount64 too: in a program that
// uses this function, those calls come here (tick_count.cpp), and the
// program does not import it.
ULONGLONG WINAPI TickCount64();

// The performance counter in milliseconds: TickCount64 on XP.
ULONGLONG CounterMilliseconds();

}  // namespace quorvex::win32
