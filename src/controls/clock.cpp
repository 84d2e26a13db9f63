#include "controls/clock.h"

#include <ctime>
#include <thread>

namespace quarnel {

DateTime RealClock::Now() {
  using std::chrono::days, std::chrono::hours, std::chrono::minutes, std::chrono::seconds;
  const auto now = std::chrono::system_clock::now();
  const std::time_t whole = std::chrono::system_clock::to_time_t(now);
  const auto sinceSecond = now - std::chrono::system_clock::from_time_t(whole);
  // All of the program runs on one thread, so the shared result of localtime is safe here.
  const std::tm local = *std::localtime(&whole);  // NOLINT(concurrency-mt-unsafe)
  const std::chrono::local_days day = std::chrono::local_days(
      std::chrono::year(local.tm_year + 1900) / (local.tm_mon + 1) / local.tm_mday);
  return day + hours(local.tm_hour) + minutes(local.tm_min) + seconds(local.tm_sec) +
         std::chrono::duration_cast<Milliseconds>(sinceSecond);
}

Milliseconds RealClock::Ticks() {
  return std::chrono::duration_cast<Milliseconds>(
      std::chrono::steady_clock::now().time_since_epoch());
}

void RealClock::Pass(Milliseconds duration) { std::this_thread::sleep_for(duration); }

}  // namespace quarnel
