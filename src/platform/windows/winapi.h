#pragma once

#include "platform/windows/win32.h"

namespace quarnel {

// What only systems newer than Windows XP have. A function that the program linked would keep it
// from starting on the older ones, so these are looked up at run time; each may be null.
struct NewerFunctions {
  BOOL(WINAPI* queryFullProcessImageName)
  (HANDLE process, DWORD flags, LPWSTR name, PDWORD size) = nullptr;  // Windows Vista

  // Whether searches may leave out short names and fetch much at once (Windows 7).
  bool fastSearches = false;
};

const NewerFunctions& Newer();

// Rights and options that headers for Windows XP do not name.
inline constexpr DWORD kProcessQueryLimitedInformation = 0x1000;
inline constexpr auto kFindExInfoBasic = static_cast<FINDEX_INFO_LEVELS>(1);
inline constexpr DWORD kFindFirstExLargeFetch = 2;

// A function as the type that the caller knows it by; null when the library has none of this name.
template <typename Function>
Function LookUp(HMODULE library, const char* name) {
  return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(GetProcAddress(library, name)));
}

}  // namespace quarnel
