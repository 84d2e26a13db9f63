#pragma once

#include "signatures/md5_kernels.h"
#include "signatures/md5_steps.h"

// The loop over blocks for vectors of any width. All is local to the file that includes it.
//
// `V` is what md5_steps.h says, and has V::kLanes words in a vector, V::Load and V::Store for
// aligned memory, and V::LoadBlock, which takes one block from each lane and turns the sixteen
// words of each lane into sixteen vectors of one word from each.
namespace quarnel {
// NOLINTBEGIN(cert-dcl59-cpp, misc-definitions-in-headers): each file needs its own copy.
namespace {

template <typename V, size_t kGroups>
inline void Md5Lanes(uint32_t* state, const char* const* blocks, size_t count) {
  constexpr size_t kAll = kGroups * V::kLanes;
  typename V::Word states[kGroups][4];
  for (size_t group = 0; group < kGroups; ++group) {
    for (size_t i = 0; i < 4; ++i) {
      states[group][i] = V::Load(state + i * kAll + group * V::kLanes);
    }
  }
  for (size_t block = 0; block < count; ++block) {
    typename V::Word words[kGroups][16];
    for (size_t group = 0; group < kGroups; ++group) {
      V::LoadBlock(blocks + group * V::kLanes, 64 * block, words[group]);
    }
    Md5Block<V, kGroups>(states, words);
  }
  for (size_t group = 0; group < kGroups; ++group) {
    for (size_t i = 0; i < 4; ++i) {
      V::Store(state + i * kAll + group * V::kLanes, states[group][i]);
    }
  }
}

// As many groups as `lanes` messages need, at most kMostGroups.
template <typename V, size_t kMostGroups>
inline void Md5SomeLanes(uint32_t* state, const char* const* blocks, size_t count, size_t lanes) {
  if constexpr (kMostGroups > 1) {
    if (lanes <= (kMostGroups - 1) * V::kLanes) {
      return Md5SomeLanes<V, kMostGroups - 1>(state, blocks, count, lanes);
    }
  }
  Md5Lanes<V, kMostGroups>(state, blocks, count);
}

}  // namespace
// NOLINTEND(cert-dcl59-cpp, misc-definitions-in-headers)
}  // namespace quarnel
