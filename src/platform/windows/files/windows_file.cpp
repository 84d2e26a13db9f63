#include "platform/windows/files/windows_file.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "platform/windows/files/held_way.h"
#include "platform/windows/system_error.h"
#include "platform/windows/unique_handle.h"

namespace quarnel {
namespace {

// The most that one call is asked to move; shares of some systems refuse more than 64 MB.
constexpr size_t kMostAtOnce = size_t{16} << 20;

class WindowsFile : public File {
 public:
  WindowsFile(KernelHandle handle, std::string_view about)
      : handle_(std::move(handle)), about_(about) {}

  size_t Read(std::span<char> buffer) override {
    const auto size = static_cast<DWORD>(std::min(buffer.size(), kMostAtOnce));
    DWORD count = 0;
    if (!ReadFile(handle_.Get(), buffer.data(), size, &count, nullptr)) Raise();
    return count;
  }

  void Write(std::string_view bytes) override {
    while (!bytes.empty()) {
      const auto size = static_cast<DWORD>(std::min(bytes.size(), kMostAtOnce));
      DWORD count = 0;
      if (!WriteFile(handle_.Get(), bytes.data(), size, &count, nullptr)) Raise();
      bytes.remove_prefix(count);
    }
  }

  void Seek(uint64_t position) override {
    if (position > static_cast<uint64_t>(std::numeric_limits<LONGLONG>::max())) {
      throw RuntimeError(ErrorNumber::kInvalidCall, about_);
    }
    LARGE_INTEGER distance;
    distance.QuadPart = static_cast<LONGLONG>(position);
    if (!SetFilePointerEx(handle_.Get(), distance, nullptr, FILE_BEGIN)) Raise();
  }

  uint64_t Size() override {
    LARGE_INTEGER size;
    if (!GetFileSizeEx(handle_.Get(), &size)) Raise();
    return static_cast<uint64_t>(size.QuadPart);
  }

  void Flush() override {
    if (!FlushFileBuffers(handle_.Get())) Raise();
  }

  // Cuts the file off at its beginning.
  void Empty() {
    if (!SetEndOfFile(handle_.Get())) Raise();
  }

 private:
  [[noreturn]] void Raise() const { RaiseSystemError(GetLastError(), about_); }

  KernelHandle handle_;
  std::string about_;
};

struct Opening {
  OpenMode mode;
  DWORD access;
  DWORD disposition;
  DWORD flags;
};

// A file is emptied after it was opened and not by opening it, which a hidden one would refuse.
constexpr Opening kOpenings[] = {
    {OpenMode::kRead, GENERIC_READ, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN},
    {OpenMode::kReadWrite, GENERIC_READ | GENERIC_WRITE, OPEN_ALWAYS, 0},
    {OpenMode::kCreate, GENERIC_READ | GENERIC_WRITE, OPEN_ALWAYS, 0},
    // Without the right to write elsewhere the system puts every write at the end.
    {OpenMode::kAppend, FILE_APPEND_DATA | FILE_READ_ATTRIBUTES | SYNCHRONIZE, OPEN_ALWAYS, 0},
};

}  // namespace

DWORD AttributesAt(const std::wstring& path) {
  WIN32_FILE_ATTRIBUTE_DATA data;
  return GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data) ? data.dwFileAttributes
                                                                          : INVALID_FILE_ATTRIBUTES;
}

bool IsFolderAt(const std::wstring& path) {
  const DWORD attributes = AttributesAt(path);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

DWORD RefuseReadOnly(const std::wstring& path, std::string_view about) {
  const DWORD attributes = AttributesAt(path);
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0) {
    throw RuntimeError(ErrorNumber::kPermissionDenied, about, ERROR_ACCESS_DENIED);
  }
  return attributes;
}

void RaiseAt(const std::wstring& path, DWORD code, std::string_view about) {
  if (code == ERROR_ACCESS_DENIED && IsFolderAt(path)) {
    throw RuntimeError(ErrorNumber::kPathFileAccess, about, static_cast<long>(code));
  }
  RaiseSystemError(code, about);
}

std::unique_ptr<File> OpenWindowsFile(const std::wstring& path, std::string_view about,
                                      OpenMode mode, bool refuseLinks) {
  const auto* opening = std::find_if(std::begin(kOpenings), std::end(kOpenings),
                                     [&](const Opening& entry) { return entry.mode == mode; });
  if (mode != OpenMode::kRead) RefuseReadOnly(path, about);
  const DWORD flags =
      FILE_ATTRIBUTE_NORMAL | opening->flags | (refuseLinks ? FILE_FLAG_OPEN_REPARSE_POINT : 0);
  KernelHandle handle(CreateFileW(path.c_str(), opening->access, kShareAll, nullptr,
                                  opening->disposition, flags, nullptr));
  if (!handle.Valid()) RaiseAt(path, GetLastError(), about);
  // The link itself was opened then, and nothing has been done to it.
  BY_HANDLE_FILE_INFORMATION facts;
  if (refuseLinks && GetFileInformationByHandle(handle.Get(), &facts) &&
      (facts.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 && IsLinkAt(path)) {
    throw RuntimeError(ErrorNumber::kPermissionDenied, about, ERROR_ACCESS_DENIED);
  }
  auto file = std::make_unique<WindowsFile>(std::move(handle), about);
  if (mode == OpenMode::kCreate) file->Empty();
  return file;
}

void SyncFile(const std::wstring& path, std::string_view about) {
  const KernelHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, kShareAll, nullptr,
                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file.Valid()) RaiseAt(path, GetLastError(), about);
  if (!FlushFileBuffers(file.Get())) RaiseSystemError(GetLastError(), about);
}

}  // namespace quarnel
