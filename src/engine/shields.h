#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace quarnel {

// How a guard stands, for those who ask.
struct ShieldState {
  struct Count {
    std::string_view what;  // "alerts"
    size_t number = 0;
  };
  std::string_view name;
  bool chosen = false;    // the user wants it
  bool watching = false;  // its next tick looks, or what it has set is in force
  std::vector<Count> did;
};

}  // namespace quarnel
