// The one function newer than Windows XP that the compiler's own thread library links:
// GetTickCount64, for waits with a time limit. On XP a program that imports it does not start.
// This file, linked into each program, stands in for the import: the linker takes the pointer
// below for the system's. Where the system has the function it is called; elsewhere the 32-bit
// count, which starts anew after 49.7 days, is continued to 64 bits.

#include <windows.h>

typedef ULONGLONG(WINAPI *TickCount64)(void);

static ULONGLONG WINAPI continuedTickCount(void) {
  static ULONGLONG lastSeen;
  ULONGLONG last = __atomic_load_n(&lastSeen, __ATOMIC_ACQUIRE);
  for (;;) {
    ULONGLONG now = (last & ~0xFFFFFFFFULL) | GetTickCount();
    if (now < last) {
      // Another thread may have been a little faster; only a great step back is a new round.
      if (last - now < 0x80000000ULL) {
        return last;
      }
      now += 0x100000000ULL;
    }
    if (__atomic_compare_exchange_n(&lastSeen, &last, now, 0, __ATOMIC_ACQ_REL,
                                    __ATOMIC_ACQUIRE)) {
      return now;
    }
  }
}

static ULONGLONG WINAPI tickCount64(void) {
  static TickCount64 function;
  TickCount64 chosen = __atomic_load_n(&function, __ATOMIC_ACQUIRE);
  if (!chosen) {
    chosen = (TickCount64)(void (*)(void))GetProcAddress(GetModuleHandleW(L"kernel32.dll"),
                                                         "GetTickCount64");
    if (!chosen) {
      chosen = continuedTickCount;
    }
    __atomic_store_n(&function, chosen, __ATOMIC_RELEASE);
  }
  return chosen();
}

#ifdef _WIN64
extern const TickCount64 importedTickCount64 __asm__("__imp_GetTickCount64");
#else
extern const TickCount64 importedTickCount64 __asm__("__imp__GetTickCount64@0");
#endif
const TickCount64 importedTickCount64 = tickCount64;
