#pragma once

#include <cstddef>
#include <cstdint>

// The inner loops of MD5. The wide ones are compiled with the flags of their own files, so nothing
// here may be an inline function with linkage: the linker would keep one copy of it, perhaps the
// one that only newer processors can run.
namespace quarnel {

// Runs `count` blocks of 64 bytes through one state of four words.
void Md5BlocksPortable(uint32_t* state, const char* blocks, size_t count);

}  // namespace quarnel
