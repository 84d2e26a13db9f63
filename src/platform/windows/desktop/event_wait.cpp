#include "platform/event_wait.h"

#include <algorithm>
#include <deque>
#include <map>
#include <mutex>
#include <utility>

#include "base/runtime_error.h"
#include "platform/windows/unique_handle.h"
#include "platform/windows/win32.h"

namespace quarnel {
namespace {

constexpr UINT kPosted = WM_APP;
constexpr const wchar_t* kClassName = L"QuarnelEventWait";

// Everything comes as a message, so that any message loop of the thread, that of a system's own box
// too, brings it. A thread of the system waits for a handle and posts its source.
class WindowsEventWait : public EventWait {
 public:
  WindowsEventWait() {
    WNDCLASSEXW windowClass = {};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = Procedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = kClassName;
    // It stays registered: a second time is a failure that changes nothing.
    RegisterClassExW(&windowClass);
    window_ = CreateWindowExW(0, kClassName, nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                              windowClass.hInstance, nullptr);
    if (window_ == nullptr) ThrowCannotWait();
    SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  }
  ~WindowsEventWait() override {
    while (!sources_.empty()) Remove(sources_.begin()->first);
    SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
    DestroyWindow(window_);
  }

  Id Add(EventToken token, EventInterest /*a handle has but one state*/, Ready ready) override {
    const auto handle = reinterpret_cast<HANDLE>(token);
    // The system takes this one for the process itself, which is not ready before its end.
    if (handle == INVALID_HANDLE_VALUE) ThrowCannotWait();
    const Id id = ++lastId_;
    Source& source = sources_[id];
    source.owner = this;
    source.id = id;
    source.handle = handle;
    source.ready = std::move(ready);
    if (!Arm(source)) {
      sources_.erase(id);
      ThrowCannotWait();
    }
    return id;
  }

  void Change(Id, EventInterest) override {}

  void Remove(Id id) override {
    const auto found = sources_.find(id);
    if (found == sources_.end()) return;
    Disarm(found->second);
    sources_.erase(found);
  }

  void Post(Ready work) override {
    {
      const std::lock_guard lock(mutex_);
      posted_.push_back(std::move(work));
    }
    PostMessageW(window_, kPosted, 0, 0);
  }

  // Sockets come as messages of their own, which only a look at the queue can tell.
  bool HasSources() const override { return true; }

  // A look at the queue costs much more than what a busy loop does between two of them.
  void Run() override {
    if (const ULONGLONG now = Now(); !ready_ && now != lastPump_) {
      lastPump_ = now;
      PumpMessages();
    }
    RunPosted();
  }

  void Wait(std::optional<std::chrono::milliseconds> limit) override {
    const ULONGLONG start = Now();
    while (true) {
      PumpMessages();
      if (RunPosted()) return;
      DWORD rest = INFINITE;
      if (limit) {
        const auto gone = static_cast<int64_t>(Now() - start);
        if (gone >= limit->count()) return;
        rest = static_cast<DWORD>(std::min<int64_t>(limit->count() - gone, 1'000'000'000));
      }
      MsgWaitForMultipleObjectsEx(0, nullptr, rest, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    }
  }

  std::optional<EventToken> LeaveWaiting(Ready ready) override {
    ready_ = std::move(ready);
    return std::nullopt;
  }

 private:
  struct Source {
    WindowsEventWait* owner = nullptr;
    Id id = 0;
    HANDLE handle = nullptr;
    HANDLE wait = nullptr;
    Ready ready;
  };

  [[noreturn]] static void ThrowCannotWait() {
    throw RuntimeError(ErrorNumber::kInvalidCall, "The system cannot wait for this.",
                       static_cast<long>(GetLastError()));
  }

  // In milliseconds.
  static ULONGLONG Now() {
    LARGE_INTEGER count;
    LARGE_INTEGER frequency;
    QueryPerformanceCounter(&count);
    QueryPerformanceFrequency(&frequency);
    return static_cast<ULONGLONG>(count.QuadPart / (frequency.QuadPart / 1000));
  }

  static bool Arm(Source& source) {
    return RegisterWaitForSingleObject(&source.wait, source.handle, Signalled, &source, INFINITE,
                                       WT_EXECUTEONLYONCE) != FALSE;
  }
  // Returns when no thread of the system is in Signalled for it.
  static void Disarm(Source& source) {
    if (source.wait != nullptr) UnregisterWaitEx(source.wait, INVALID_HANDLE_VALUE);
    source.wait = nullptr;
  }

  static void CALLBACK Signalled(void* context, BOOLEAN /*timedOut*/) {
    const Source& source = *static_cast<Source*>(context);
    WindowsEventWait* const owner = source.owner;
    owner->Post([owner, id = source.id] { owner->RunSource(id); });
  }

  void RunSource(Id id) {
    auto source = sources_.find(id);
    if (source == sources_.end()) return;
    Disarm(source->second);
    const Ready ready = source->second.ready;  // it may remove its source
    // Armed again also when it throws.
    struct Rearm {
      WindowsEventWait& wait;
      Id id;
      ~Rearm() {
        const auto found = wait.sources_.find(id);
        if (found != wait.sources_.end() && found->second.wait == nullptr) Arm(found->second);
      }
    } rearm{*this, id};
    ready();
  }

  bool RunPosted() {
    size_t turns = 0;
    {
      const std::lock_guard lock(mutex_);
      turns = posted_.size();
    }
    bool ran = false;
    for (; turns > 0; --turns) {
      Ready work;
      {
        const std::lock_guard lock(mutex_);
        if (posted_.empty()) break;
        work = std::move(posted_.front());
        posted_.pop_front();
      }
      ran = true;
      work();
    }
    return ran;
  }

  static void PumpMessages() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
      if (message.message == WM_QUIT) {
        PostQuitMessage(static_cast<int>(message.wParam));
        return;
      }
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
  }

  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wide, LPARAM data) {
    if (message != kPosted) return DefWindowProcW(window, message, wide, data);
    auto* const self =
        reinterpret_cast<WindowsEventWait*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (self != nullptr && self->ready_) self->ready_();
    return 0;
  }

  HWND window_ = nullptr;
  Ready ready_;
  ULONGLONG lastPump_ = 0;
  Id lastId_ = 0;
  std::map<Id, Source> sources_;
  std::mutex mutex_;
  std::deque<Ready> posted_;
};

}  // namespace

std::unique_ptr<EventWait> MakeEventWait() { return std::make_unique<WindowsEventWait>(); }

}  // namespace quarnel
