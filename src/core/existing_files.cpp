#include "core/existing_files.h"

#include "base/runtime_error.h"
#include "controls/host.h"
#include "platform/names.h"

namespace quarnel {
namespace {

// What stands behind the last backslash, or all of a name without one.
std::string_view LastComponent(std::string_view path) { return path.substr(path.rfind('\\') + 1); }

}  // namespace

std::string Dir(Files& files, std::string_view path, Search search) {
  if (LastComponent(path).find_first_of("*?") != std::string_view::npos) return {};
  const auto entry = files.Stat(path);
  if (!entry || entry->IsFolder()) return {};
  const uint32_t unseen =
      file_attribute::kSystem | (search == Search::kPlain ? file_attribute::kHidden : 0);
  return (entry->attributes & unseen) != 0 ? std::string() : entry->name;
}

bool FileExists(Files& files, std::string_view path) {
  const std::string_view name = LastComponent(path);
  return !name.empty() && EqualNames(Dir(files, path), name);
}

bool DeleteFileRetry(Files& files, Host& host, std::string_view path) {
  constexpr int kAttempts = 8;
  if (path.find('\\') == std::string_view::npos || !FileExists(files, path)) return false;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    const bool deleted = IgnoringErrors([&] { files.Delete(path); });
    host.DoEvents();
    if (deleted) return true;
  }
  return false;
}

}  // namespace quarnel
