#pragma once

// The system's headers, without the macros that would rename functions and types of the program.

#ifndef NOMINMAX
#define NOMINMAX
#endif
// It stands before the system's own, which would bring an older one.
#include <winsock2.h>
// This one first.
#include <windows.h>
// All others need that one.
#include <psapi.h>
#include <shellapi.h>
#include <shlobj.h>
#include <tlhelp32.h>

#undef FindExecutable
#undef FindWindow
#undef GetFileVersionInfo
#undef MessageBox
#undef ReplaceFile
