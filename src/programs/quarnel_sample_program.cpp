// The running threat of the sample machine. It waits and ends; it does nothing else.
//
//   quarnel-sample-program [SECONDS]     at most and by default 600

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <thread>

int main(int argc, char** argv) {
  constexpr long kLongest = 600;
  const long wanted = argc > 1 ? std::strtol(argv[1], nullptr, 10) : kLongest;
  std::this_thread::sleep_for(std::chrono::seconds(std::clamp(wanted, 0L, kLongest)));
  return 0;
}
