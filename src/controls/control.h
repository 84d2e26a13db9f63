#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace quarnel {

class CToolTip;
class Form;

using Handler = std::function<void()>;

// What every control of a form has. A control is a plain value holder: the engine writes it, a
// front shows it and compares revisions to learn what to repaint.
class Control {
 public:
  // The control belongs to `form` for as long as both live, and is found there by its name. The
  // name of a member of a control array carries its index: "imgMainTab(0)".
  Control(Form& form, std::string name);
  virtual ~Control();
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;

  const std::string& Name() const { return name_; }
  virtual std::string_view Type() const = 0;

  bool Visible() const { return visible_; }
  void SetVisible(bool visible) { Assign(visible_, visible); }
  bool Enabled() const { return enabled_; }
  virtual void SetEnabled(bool enabled) { Assign(enabled_, enabled); }
  const std::string& Tag() const { return tag_; }
  void SetTag(std::string_view tag) { Assign(tag_, tag); }
  const std::string& ToolTip() const { return toolTip_; }
  void SetToolTip(std::string_view text) { Assign(toolTip_, text); }

  // Grows with every change of what the control shows or holds.
  uint64_t Revision() const { return revision_; }

  // The value as one text: a caption, a check state, a bar's value, a list's row count.
  virtual std::string ValueText() const { return {}; }

  // A property by its lower-case name; nothing when the control has none of that name. Every
  // control has visible, enabled, tag, tooltip and revision.
  virtual std::optional<std::string> Property(std::string_view name) const;

  // What a user does. A disabled control takes none of it: the front must ask Enabled() first.
  // SetByUser types, ticks or chooses and raises kTypeMismatch where the text is no such value;
  // both raise kInvalidCall on a control that has no such action.
  virtual void SetByUser(std::string_view text);
  virtual void ClickByUser();
  virtual void RightClickByUser();

  // The press of a mouse button that comes before a click.
  Handler MouseDown;
  // The mouse moves over the control. It runs before the balloon is shown.
  Handler MouseMove;

  // The tool tip that shows while the mouse rests on the control; null when it has none.
  const CToolTip* Balloon() const { return balloon_; }

  // Whether the mouse, pressed on the control and moved, takes the whole window along.
  bool DragsWindow() const { return dragsWindow_; }
  void SetDragsWindow(bool drags) { Assign(dragsWindow_, drags); }

 protected:
  void Changed() { ++revision_; }

  template <typename Member, typename Value>
  void Assign(Member& member, const Value& value) {
    if (member == value) return;
    member = value;
    Changed();
  }

 private:
  friend class CToolTip;
  void AttachBalloon(CToolTip* balloon);

  Form& form_;
  std::string name_;
  std::string tag_;
  std::string toolTip_;
  CToolTip* balloon_ = nullptr;
  uint64_t revision_ = 0;
  bool visible_ = true;
  bool enabled_ = true;
  bool dragsWindow_ = false;
};

// "1" and "0", the text of a flag in every property.
std::string FlagText(bool flag);

}  // namespace quarnel
