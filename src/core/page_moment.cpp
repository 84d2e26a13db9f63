#include "core/page_moment.h"

#include "base/date_time.h"

namespace quarnel {

std::string PageMoment(std::string_view stored) {
  const auto moment = ParseDate(stored);
  return moment ? FormatDate(*moment, "mmm dd, yyyy at hh:nn:ss AMPM") : std::string(stored);
}

}  // namespace quarnel
