#include "platform/shell.h"

#include <memory>
#include <string>

#include "base/runtime_error.h"
#include "platform/shortcut.h"
#include "platform/windows/backends.h"
#include "platform/windows/files/system_path.h"
#include "platform/windows/unique_handle.h"
#include "platform/windows/wide_text.h"
#include "platform/windows/winapi.h"

namespace quarnel {
namespace {

// Links are some hundred bytes; what is larger is none.
constexpr uint64_t kLargestShortcut = 1 << 20;

// The thread's use of COM, for one call.
class ComSession {
 public:
  ComSession() = default;
  ~ComSession() {
    if (SUCCEEDED(result_)) CoUninitialize();
  }
  ComSession(const ComSession&) = delete;
  ComSession& operator=(const ComSession&) = delete;

 private:
  // A thread that uses COM in another way already may go on doing so.
  HRESULT result_ = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE);
};

struct ReleaseObject {
  void operator()(IUnknown* object) const { object->Release(); }
};
template <typename Interface>
using ComObject = std::unique_ptr<Interface, ReleaseObject>;

// Whether letters were lost in a code page: no name holds the mark that stands for them.
bool IsWhole(std::wstring_view path) {
  return !path.empty() && path.find(L'?') == std::wstring_view::npos;
}

// The path in a link's list of shell items, whose names are always Unicode.
std::wstring PathOfItems(IShellLinkW& link) {
  LPITEMIDLIST items = nullptr;
  wchar_t path[MAX_PATH] = {};
  if (link.GetIDList(&items) == S_OK) SHGetPathFromIDListW(items, path);
  CoTaskMemFree(items);
  return path;
}

// What the shell's own link object says; empty when it says nothing.
std::wstring TargetByShell(const std::wstring& path) {
  const ComSession session;
  void* made = nullptr;
  if (FAILED(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW,
                              &made))) {
    return {};
  }
  const ComObject<IShellLinkW> link(static_cast<IShellLinkW*>(made));
  if (FAILED(link->QueryInterface(IID_IPersistFile, &made))) return {};
  const ComObject<IPersistFile> file(static_cast<IPersistFile*>(made));
  wchar_t target[MAX_PATH] = {};
  if (FAILED(file->Load(path.c_str(), STGM_READ)) ||
      link->GetPath(target, MAX_PATH, nullptr, 0) != S_OK) {
    return {};
  }
  return IsWhole(target) ? target : PathOfItems(*link);
}

bool IsPlainFile(const std::wstring& path) {
  const DWORD attributes = GetFileAttributesW(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

class WindowsShell : public Shell {
 public:
  explicit WindowsShell(Files& files) : files_(files) {}

  std::optional<std::string> FindExecutable(std::string_view path) override {
    const auto place = FileAt(path);
    if (!place) return std::nullopt;
    wchar_t program[MAX_PATH] = {};
    const auto result =
        reinterpret_cast<INT_PTR>(FindExecutableW(place->c_str(), nullptr, program));
    if (result <= 32 || program[0] == 0) return std::nullopt;
    return Narrow(program);
  }

  bool Run(std::string_view program, std::string_view argument) override {
    const auto place = FileAt(program);
    // Of a folder the shell would show the content.
    if (!place) return false;
    const ComSession session;
    const std::wstring parameters = Wide(argument);
    SHELLEXECUTEINFOW info = {};
    info.cbSize = sizeof info;
    // A failure is told to the caller, not to the user.
    info.fMask = SEE_MASK_FLAG_NO_UI | SEE_MASK_FLAG_DDEWAIT;
    info.lpVerb = L"open";
    info.lpFile = place->c_str();
    info.lpParameters = parameters.c_str();
    info.nShow = SW_SHOWNORMAL;
    return ShellExecuteExW(&info) != 0;
  }

  std::optional<std::string> ShortcutTarget(std::string_view path) override {
    const auto place = FileAt(path);
    if (!place) return std::nullopt;
    const std::wstring shown = TargetByShell(*place);
    if (IsWhole(shown)) return Narrow(shown);
    std::optional<std::string> read;
    IgnoringErrors(
        [&] { read = ReadShortcutTarget(ReadWholeFile(files_, path, kLargestShortcut)); });
    return read;
  }

  bool CallRegistrationEntry(std::string_view path, std::string_view entry) override {
    const auto place = FileAt(path);
    if (!place) return false;
    const ComSession session;
    // A component finds its companions in its own folder.
    const LibraryHandle library(
        LoadLibraryExW(place->c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
    if (!library.Valid()) return false;
    const auto function =
        LookUp<HRESULT(STDAPICALLTYPE*)()>(library.Get(), std::string(entry).c_str());
    return function != nullptr && function() == S_OK;
  }

 private:
  // The path of an existing file as shell and loader take it.
  static std::optional<std::wstring> FileAt(std::string_view path) {
    std::wstring place;
    if (!IgnoringErrors([&] { place = PlainPath(path); }) || !IsPlainFile(place)) {
      return std::nullopt;
    }
    return place;
  }

  Files& files_;
};

}  // namespace

std::unique_ptr<Shell> MakeShell(Files& files) { return std::make_unique<WindowsShell>(files); }

}  // namespace quarnel
