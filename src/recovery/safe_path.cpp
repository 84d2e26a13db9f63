#include "recovery/safe_path.h"

#include <algorithm>
#include <array>
#include <string>

#include "base/runtime_error.h"
#include "base/text.h"

namespace quarnel {
namespace {

// A name is a device with any extension, and with blanks in front of that.
bool IsDeviceName(std::string_view name) {
  static constexpr std::array<std::string_view, 6> kWhole = {"CON", "PRN",    "AUX",
                                                             "NUL", "CONIN$", "CONOUT$"};
  static constexpr std::array<std::string_view, 2> kNumbered = {"COM", "LPT"};
  const std::string_view stem = Trim(name.substr(0, name.find('.')));
  const auto is = [stem](std::string_view device) { return EqualText(stem, device); };
  if (std::any_of(kWhole.begin(), kWhole.end(), is)) return true;
  // The superscript digits count as digits there.
  static constexpr std::array<std::string_view, 12> kDigits = {
      "1", "2", "3", "4", "5", "6", "7", "8", "9", "\xC2\xB9", "\xC2\xB2", "\xC2\xB3"};
  return std::any_of(kNumbered.begin(), kNumbered.end(), [stem](std::string_view device) {
    return StartsWithText(stem, device) &&
           std::find(kDigits.begin(), kDigits.end(), stem.substr(device.size())) != kDigits.end();
  });
}

std::string_view WhyUnsafeName(std::string_view name) {
  if (name.empty()) return "a part of the path has no name";
  if (name == "." || name == "..") return "the path leads through another folder";
  if (name.find(':') != std::string_view::npos) return "the path names a stream";
  const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20; };
  if (name.find_first_of("/*?\"<>|") != std::string_view::npos ||
      std::any_of(name.begin(), name.end(), isControl)) {
    return "the path holds a character that no name can hold";
  }
  if (IsDeviceName(name)) return "the path names a device";
  return {};
}

}  // namespace

std::string_view WhyUnsafe(std::string_view path) {
  const bool hasDrive = path.size() >= 2 && path[1] == ':' && ToUpper(path.substr(0, 1)) >= "A" &&
                        ToUpper(path.substr(0, 1)) <= "Z";
  if (!hasDrive || path.size() < 4 || path[2] != '\\') return "the path is not a whole one";
  path.remove_prefix(3);
  for (;;) {
    const size_t end = path.find('\\');
    if (const std::string_view reason = WhyUnsafeName(path.substr(0, end)); !reason.empty()) {
      return reason;
    }
    if (end == std::string_view::npos) return {};
    path.remove_prefix(end + 1);
  }
}

std::string_view WhyUnsafeBelow(std::string_view folder, std::string_view path) {
  if (const std::string_view reason = WhyUnsafe(path); !reason.empty()) return reason;
  while (folder.ends_with('\\')) folder.remove_suffix(1);
  if (path.size() > folder.size() + 1 && path[folder.size()] == '\\' &&
      StartsWithText(path, folder)) {
    return {};
  }
  return "the path leads out of its folder";
}

void RequireSafePath(std::string_view path) {
  if (const std::string_view reason = WhyUnsafe(path); !reason.empty()) {
    throw RuntimeError(ErrorNumber::kBadFileName, std::string(reason) + ": " + std::string(path));
  }
}

}  // namespace quarnel
