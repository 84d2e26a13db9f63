#include "net/ftp_support.h"

#include <random>

#include "base/text.h"

namespace quarnel {

int32_t FtpSupport::GetFreePort() {
  constexpr int32_t kLargestPort = 65'535;
  if (freePort_ > 0 && freePort_ < kLargestPort) return ++freePort_;
  constexpr double kLeast = 20'000;
  constexpr double kRange = 20'001;
  std::random_device seed;
  std::mt19937 generator(seed());
  std::uniform_real_distribution<double> fraction;
  return freePort_ = ToLong(fraction(generator) * kRange + kLeast);
}

}  // namespace quarnel
