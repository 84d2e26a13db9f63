#include "recovery/removal_report.h"

#include <algorithm>

namespace quarnel {

size_t RemovalReport::Count(Fate fate) const {
  return static_cast<size_t>(
      std::count_if(traces.begin(), traces.end(),
                    [fate](const ReportedTrace& trace) { return trace.fate == fate; }));
}

std::string_view NameOf(TraceKind kind) {
  switch (kind) {
    case TraceKind::kFile:
      return "file";
    case TraceKind::kRegistry:
      return "registry";
    case TraceKind::kCookie:
      return "cookie";
  }
  return {};
}

std::string_view NameOf(Fate fate) {
  switch (fate) {
    case Fate::kRemoved:
      return "removed";
    case Fate::kQuarantined:
      return "quarantined";
    case Fate::kGone:
      return "gone";
    case Fate::kKept:
      return "kept";
    case Fate::kFailed:
      return "failed";
  }
  return {};
}

}  // namespace quarnel
