#pragma once

#include <cstddef>
#include <cstdint>

// The inner loops of MD5. The wide ones are compiled with the flags of their own files, so nothing
// here may be an inline function with linkage: the linker would keep one copy of it, perhaps the
// one that only newer processors can run.
namespace quarnel {

// Runs `count` blocks of 64 bytes through one state of four words.
void Md5BlocksPortable(uint32_t* state, const char* blocks, size_t count);

// Run `count` blocks of each of `lanes` lanes: lane i reads from blocks[i] on, and has its four
// words at state[i], state[i + lanes], ... `lanes` is a multiple of the width; with fewer of them
// each is faster. `state` is aligned to 64 bytes.
void Md5LanesSse2(uint32_t* state, const char* const* blocks, size_t count, size_t lanes);
void Md5LanesAvx2(uint32_t* state, const char* const* blocks, size_t count, size_t lanes);
void Md5LanesAvx512(uint32_t* state, const char* const* blocks, size_t count, size_t lanes);

// How many lanes one vector has, and how many each of them takes at most: several vectors go at a
// time, so that some work while others wait for their chains of results. More of them gain little;
// with 32-bit code even these do not fit into the registers.
inline constexpr size_t kMd5WidthSse2 = 4;
inline constexpr size_t kMd5WidthAvx2 = 8;
inline constexpr size_t kMd5WidthAvx512 = 16;
inline constexpr size_t kMd5LanesSse2 = (sizeof(void*) == 8 ? 4 : 2) * kMd5WidthSse2;
inline constexpr size_t kMd5LanesAvx2 = 4 * kMd5WidthAvx2;
inline constexpr size_t kMd5LanesAvx512 = 3 * kMd5WidthAvx512;
inline constexpr size_t kMostMd5Lanes = 48;

}  // namespace quarnel
