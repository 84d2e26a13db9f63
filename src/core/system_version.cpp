#include "core/system_version.h"

#include <string>

#include "controls/host.h"

namespace quarnel {

int GetOSVersionInfo(Machine& machine, Host& host, std::string_view title) {
  if (const auto family = machine.Family()) return static_cast<int>(*family);
  host.MsgBox({.text = "Error Getting Version Information", .title = std::string(title)});
  return 0;
}

}  // namespace quarnel
