#pragma once

#include <cstddef>
#include <cstdint>

// The deciphering loops, one file for each set of instructions. Each is compiled with the flags of
// its own, so nothing here may be an inline function with linkage: the linker would keep one copy
// of it, perhaps the one that only newer processors can run.
namespace quarnel {

void DecryptPortable(const char* cipher, size_t size, char* plain);
void DecryptSsse3(const char* cipher, size_t size, char* plain);  // size is at least 16
void DecryptAvx2(const char* cipher, size_t size, char* plain);   // size is at least 32

size_t DecryptLinesSsse3(const char* bytes, size_t size, char* text);
size_t DecryptLinesAvx2(const char* bytes, size_t size, char* text);

inline constexpr size_t kLongestCipherLine = 32767;

// NOLINTBEGIN(cert-dcl59-cpp, misc-definitions-in-headers): each file needs its own copy.
namespace {

// The repeated key, long enough for a load of 32 bytes from any of its phases. A load at position i
// of a text needs the phase i modulo 8.
constexpr char kKeyStream[] = "MELKORANMELKORANMELKORANMELKORANMELKORAN";
static_assert(sizeof(kKeyStream) > 32 + 7);

}  // namespace
// NOLINTEND(cert-dcl59-cpp, misc-definitions-in-headers)
}  // namespace quarnel
