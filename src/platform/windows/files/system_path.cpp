#include "platform/windows/files/system_path.h"

#include <algorithm>

#include "base/runtime_error.h"
#include "platform/windows/wide_text.h"
#include "platform/windows/win32.h"

namespace quarnel {
namespace {

constexpr std::wstring_view kPrefix = LR"(\\?\)";
constexpr std::wstring_view kSharePrefix = LR"(\\?\UNC)";
constexpr size_t kLongestPath = 32767;
constexpr size_t kLongestName = 255;

bool IsSlash(wchar_t c) { return c == L'\\' || c == L'/'; }

bool IsLetter(wchar_t c) { return (c | 0x20) >= L'a' && (c | 0x20) <= L'z'; }

bool HasDrive(std::wstring_view path) {
  return path.size() >= 2 && IsLetter(path[0]) && path[1] == L':';
}

bool IsName(std::wstring_view name) {
  return name.size() <= kLongestName && name.find_first_of(L":*?\"<>|") == std::wstring_view::npos;
}

// Adds the parts of `rest` to a root; false when one of them cannot be a name. The first `fixed`
// parts, server and share, belong to the root.
bool AppendParts(std::wstring_view rest, size_t fixed, std::wstring& path) {
  size_t depth = 0;
  while (!rest.empty()) {
    const auto* slash = std::find_if(rest.begin(), rest.end(), IsSlash);
    const auto length = static_cast<size_t>(slash - rest.begin());
    const std::wstring_view name = rest.substr(0, length);
    rest.remove_prefix(std::min(length + 1, rest.size()));
    if (name.empty() || name == L".") continue;
    if (name == L"..") {
      if (depth <= fixed) continue;
      path.resize(path.rfind(L'\\'));
      --depth;
      continue;
    }
    if (!IsName(name)) return false;
    path.append(L"\\").append(name);
    ++depth;
  }
  if (depth == fixed) path += L'\\';
  return depth >= fixed && path.size() <= kLongestPath;
}

std::wstring FolderOf(const std::wstring& path) { return path.substr(0, path.rfind(L'\\')); }

// Takes what stands in front of the parts off `rest` and turns it into a system path's beginning;
// false when it is none.
bool TakeRoot(std::wstring_view& rest, size_t& fixed, std::wstring& path) {
  const bool prefixed = rest.starts_with(kPrefix);
  const bool isShare = prefixed ? rest.starts_with(std::wstring(kSharePrefix) + L'\\')
                                : rest.size() >= 2 && IsSlash(rest[0]) && IsSlash(rest[1]);
  if (isShare) {
    rest.remove_prefix(prefixed ? kSharePrefix.size() + 1 : 2);
    path = kSharePrefix;
    fixed = 2;
    // \\.\ leads to devices.
    return !rest.starts_with(L'.') && !rest.starts_with(L'?');
  }
  if (prefixed) rest.remove_prefix(kPrefix.size());
  if (!HasDrive(rest)) return false;
  path.append(kPrefix).append(1, static_cast<wchar_t>(rest[0] & ~0x20)).append(L":");
  rest.remove_prefix(2);
  return true;
}

}  // namespace

std::wstring SystemPath(std::string_view path) {
  // A character takes three bytes at most.
  const bool canBe =
      !path.empty() && path.size() <= kLongestPath * 3 && path.find('\0') == std::string_view::npos;
  std::wstring wide = canBe ? Wide(path) : std::wstring();
  const bool isAbsolute = HasDrive(wide) || wide.starts_with(L"\\\\") || wide.starts_with(L"//") ||
                          wide.starts_with(L"\\/") || wide.starts_with(L"/\\");
  if (!wide.empty() && !isAbsolute && wide.find(L':') == std::wstring::npos) {
    const std::wstring& program = ExecutablePath();
    if (!IsSlash(wide[0])) {
      wide = FolderOf(program) + L'\\' + wide;
    } else {
      wide = (HasDrive(program) ? program.substr(0, 2) : L"C:") + wide;
    }
  }
  std::wstring_view rest = wide;
  std::wstring result;
  size_t fixed = 0;
  if (wide.empty() || !TakeRoot(rest, fixed, result) || !AppendParts(rest, fixed, result)) {
    throw RuntimeError(ErrorNumber::kBadFileName,
                       path.substr(0, std::min<size_t>(path.find('\0'), MAX_PATH)));
  }
  return result;
}

bool IsRoot(const std::wstring& systemPath) { return systemPath.ends_with(L'\\'); }

std::wstring WithoutPrefix(std::wstring_view path) {
  if (path.starts_with(kSharePrefix)) {
    return L"\\" + std::wstring(path.substr(kSharePrefix.size()));
  }
  if (path.starts_with(kPrefix)) path.remove_prefix(kPrefix.size());
  return std::wstring(path);
}

std::wstring PlainPath(std::string_view path) {
  std::wstring system = SystemPath(path);
  std::wstring plain = WithoutPrefix(system);
  // The system would cut these off, and take no longer path.
  const auto loses = [&](const wchar_t* end) { return plain.find(end) != std::wstring::npos; };
  const bool means = plain.size() < MAX_PATH && !loses(L".\\") && !loses(L" \\") &&
                     !plain.ends_with(L'.') && !plain.ends_with(L' ');
  return means ? plain : system;
}

const std::wstring& ExecutablePath() {
  static const std::wstring path = [] {
    std::wstring buffer(kLongestPath + 1, L'\0');
    buffer.resize(GetModuleFileNameW(nullptr, buffer.data(), static_cast<DWORD>(buffer.size())));
    return WithoutPrefix(buffer);
  }();
  return path;
}

}  // namespace quarnel
