#pragma once

#include <cstddef>
#include <cstdint>

// The inner loops of MD5. The wide ones are compiled with the flags of their own files, so nothing
// here may be an inline function with linkage: the linker would keep one copy of it, perhaps the
// one that only newer processors can run.
namespace quarnel {

// Runs `count` blocks of 64 bytes through one state of four words.
void Md5BlocksPortable(uint32_t* state, const char* blocks, size_t count);

// Run `count` blocks of each lane: lane i reads from blocks[i] on, and has its four words at
// state[i], state[i + lanes], ... `state` is aligned to 64 bytes.
void Md5LanesSse2(uint32_t* state, const char* const* blocks, size_t count);
void Md5LanesAvx2(uint32_t* state, const char* const* blocks, size_t count);
void Md5LanesAvx512(uint32_t* state, const char* const* blocks, size_t count);

// How many lanes each of them has: several vectors go at a time, so that some work while others
// wait for their chains of results. More of them gain little; with 32-bit code even these do not
// fit into the registers.
inline constexpr size_t kMd5LanesSse2 = sizeof(void*) == 8 ? 16 : 8;
inline constexpr size_t kMd5LanesAvx2 = 32;
inline constexpr size_t kMd5LanesAvx512 = 48;
inline constexpr size_t kMostMd5Lanes = 48;

}  // namespace quarnel
