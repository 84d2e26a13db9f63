#include "platform/posix/files/at_path.h"

#include <fcntl.h>

#include <climits>
#include <string_view>

namespace quarnel {

AtPath::AtPath(const std::string& host) : name_(host.c_str()) {
  std::string_view rest = host;
  while (rest.size() >= PATH_MAX) {
    const size_t slash = rest.rfind('/', PATH_MAX - 1);
    if (slash == std::string_view::npos || slash == 0) break;
    const std::string front(rest.substr(0, slash));
    UniqueFd next(openat(Folder(), front.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!next.Valid()) {
      name_ = "";
      return;
    }
    folder_ = std::move(next);
    rest.remove_prefix(slash + 1);
    name_ = rest.data();
  }
}

int AtPath::Folder() const { return folder_.Valid() ? folder_.Get() : AT_FDCWD; }

std::string AtPath::ProcPath() const {
  if (!folder_.Valid()) return name_;
  return "/proc/self/fd/" + std::to_string(folder_.Get()) + "/" + name_;
}

}  // namespace quarnel
