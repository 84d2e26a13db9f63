#pragma once

#include <utility>

#include "platform/windows/win32.h"

namespace quarnel {

// The one owner of something that the system counts, which is closed with it. `Close` is a function
// object that takes the handle; its kInvalid is what the system returns instead of a handle when
// there is none, beside the null handle.
template <typename Handle, typename Close>
class UniqueHandle {
 public:
  UniqueHandle() = default;
  explicit UniqueHandle(Handle handle) : handle_(handle) {}
  UniqueHandle(UniqueHandle&& other) noexcept : handle_(other.Release()) {}
  UniqueHandle& operator=(UniqueHandle&& other) noexcept {
    if (this != &other) Reset(other.Release());
    return *this;
  }
  ~UniqueHandle() { Reset(); }

  Handle Get() const { return handle_; }
  bool Valid() const { return handle_ != Handle() && handle_ != Close::Invalid(); }
  Handle Release() { return std::exchange(handle_, Handle()); }
  void Reset(Handle handle = Handle()) {
    if (Valid()) Close()(handle_);
    handle_ = handle;
  }
  // For functions that give a handle through a pointer; what was held is closed first.
  Handle* Receive() {
    Reset();
    return &handle_;
  }

 private:
  Handle handle_ = Handle();
};

struct CloseKernelObject {
  static HANDLE Invalid() { return INVALID_HANDLE_VALUE; }
  void operator()(HANDLE handle) const { CloseHandle(handle); }
};
struct CloseSearch {
  static HANDLE Invalid() { return INVALID_HANDLE_VALUE; }
  void operator()(HANDLE handle) const { FindClose(handle); }
};
struct CloseKey {
  static HKEY Invalid() { return nullptr; }
  void operator()(HKEY key) const { RegCloseKey(key); }
};
struct UnloadLibrary {
  static HMODULE Invalid() { return nullptr; }
  void operator()(HMODULE library) const { FreeLibrary(library); }
};

using KernelHandle = UniqueHandle<HANDLE, CloseKernelObject>;
using SearchHandle = UniqueHandle<HANDLE, CloseSearch>;
using KeyHandle = UniqueHandle<HKEY, CloseKey>;
using LibraryHandle = UniqueHandle<HMODULE, UnloadLibrary>;

}  // namespace quarnel
