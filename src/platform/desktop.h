#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace quarnel {

// An identifier of a top-level window.
using WindowId = uint64_t;

// The windows of all programs on the user's desktop.
class Desktop {
 public:
  virtual ~Desktop() = default;
  // Calls `visit` with each top-level window and its class name, until it returns false.
  virtual void EnumWindows(
      const std::function<bool(WindowId window, std::string_view className)>& visit) = 0;
  // Whether windows of this class are those of a browser or a file manager, which hold components
  // open.
  virtual bool IsBrowserClass(std::string_view className) const;
  // Asks a window to close and does not wait for it.
  virtual void PostClose(WindowId window) = 0;
  // The window of this class with exactly this caption; nothing when there is none.
  virtual std::optional<WindowId> FindWindow(std::string_view className,
                                             std::string_view caption) = 0;
  // Restores a window and puts it in front.
  virtual void BringForward(WindowId window) = 0;
  // Makes this process findable under a class name and a caption, for a second instance; an empty
  // caption takes it back.
  virtual void Announce(std::string_view className, std::string_view caption) = 0;
  // Whether another process asked since the last call that this one's announced window come forward
  // and the window itself has to see to it. Where the system does it by itself this stays false.
  virtual bool TakeForwardRequest() { return false; }
};

// Whether windows of this class are browser or folder windows ("ExploreWClass", "IEFrame",
// "CabinetWClass", letter case folded).
bool IsBrowserWindowClass(std::string_view className);

// Asks every browser and folder window to close.
void CloseBrowserWindows(Desktop& desktop);

}  // namespace quarnel
