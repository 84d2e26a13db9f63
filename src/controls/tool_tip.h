#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "controls/clock.h"
#include "controls/simple_controls.h"

namespace quarnel {

// How a tool tip looks and what it says.
struct ToolTipLook {
  enum class Style { kPlain = 0, kBalloon = 1 };
  enum class Icon { kNone = 0, kInformation = 1, kWarning = 2, kError = 3 };

  Style style = Style::kPlain;
  Icon icon = Icon::kNone;
  bool centered = false;  // below the middle of its control instead of at the mouse
  // Nothing stands for the system's own colours.
  std::optional<Colour> foreColour;
  std::optional<Colour> backColour;
  std::string title;
  std::string tipText;
  Milliseconds visibleTime{5000};
  Milliseconds delayTime{500};  // how long the mouse must rest

  bool operator==(const ToolTipLook&) const = default;
};

// A tool tip that covers the whole of one control. While it is attached, a change of its look is a
// change of its control.
class CToolTip {
 public:
  CToolTip() = default;
  ~CToolTip() { Destroy(); }
  CToolTip(const CToolTip&) = delete;
  CToolTip& operator=(const CToolTip&) = delete;

  // Attaches the tip to `parent`, which must outlive it, in place of any other tip there.
  void Create(Control& parent);
  void Destroy();

  const ToolTipLook& Look() const { return look_; }
  void SetLook(ToolTipLook look);
  const std::string& TipText() const { return look_.tipText; }
  void SetTipText(std::string_view text);

 private:
  friend class Control;
  Control* parent_ = nullptr;
  ToolTipLook look_;
};

}  // namespace quarnel
