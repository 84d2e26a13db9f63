#pragma once

#include <functional>
#include <memory>
#include <string>

#include "controls/control.h"
#include "controls/mnemonic.h"
#include "ui/wx/layout.h"
#include "ui/wx/wx.h"

namespace quarnel {

// What a binding needs of the front.
struct Front {
  // Runs what a user's action sets off. Nothing is thrown out of it.
  std::function<void(const Handler& action)> run;
  // The content of a local page. Raises RuntimeError when it cannot be read.
  std::function<std::string(const std::string& location)> readPage;
};

// One widget that shows one control and hands on what the user does to it. The widget is owned by
// its parent window; control, binding and widget end together with their form's window.
class Binding {
 public:
  Binding(Control& control, const Front& front) : control_(control), front_(front) {}
  virtual ~Binding() = default;
  Binding(const Binding&) = delete;
  Binding& operator=(const Binding&) = delete;

  Control& control() const { return control_; }
  wxWindow* Widget() const { return widget_; }

  // Brings the widget up to the control's revision; true when its place in the layout must be
  // found anew.
  bool Sync();
  // Lets the next Sync look at everything, as after a change of the system's colours.
  void Forget() { known_ = false; }

  // The control goes before the widget does, which may still be painted.
  virtual void Release() { widget_->SetEvtHandlerEnabled(false); }

  // The caption with the letter that reaches the widget by keyboard; empty where none does.
  virtual std::string_view KeyCaption() const { return {}; }
  // Gives the caption another letter: its position, or CaptionText::kNone.
  void SetKey(size_t key);

  // Where a menu opens that the keyboard asks for, within the widget.
  virtual wxPoint MenuPlace() const { return wxPoint() + widget_->GetClientSize() / 2; }

  // Lets a screen reader say this behind the caption.
  void SpeakState(const std::string& state);
  // What a screen reader says for the widget.
  std::string AccessibleName() const;
  // What the widget shows, read back from it, in the form of the control's ValueText.
  virtual std::string Shown() const = 0;

 protected:
  // Makes `widget`, which is named after the control, the one that shows it. Its accessible name is
  // `accessibleName`, or what it shows itself.
  void Attach(wxWindow* widget, const std::string& accessibleName = {});
  // Shows the control's present state; true when the widget's size no longer fits.
  virtual bool Update() = 0;
  virtual bool ShownInLayout() const { return control_.Visible(); }
  // This caption with the letter that it was given.
  wxString WithKey(std::string_view caption) const;
  // A user's action on the control. The widget may already look as if it had worked, so it is
  // brought up to the control afterwards whatever came of it.
  void Act(const Handler& action);
  // Does `fit` after each change of the widget's size.
  void OnResize(wxWindow& widget, const Handler& fit);
  // Gives the widget at least this room, and all that stands around it its place anew.
  static void TakeRoom(wxWindow& widget, const wxSize& room);
  // Hands on the mouse's moves over the widget, where the control waits for them.
  void WatchMouse(wxWindow& widget);

 private:
  void ShowToolTip();

  Control& control_;
  const Front& front_;
  wxWindow* widget_ = nullptr;
  std::string accessibleName_;  // of a widget without a caption
  uint64_t revision_ = 0;
  bool known_ = false;
  size_t key_ = CaptionText::kNone;
  wxString toolTip_;
};

// The binding for a control of this kind; null for one that no widget shows by itself (timers,
// menu entries).
std::unique_ptr<Binding> Bind(wxWindow* parent, Control& control, const Layout& layout,
                              const Front& front);

// The kinds, each in the file of its group.
std::unique_ptr<Binding> BindText(wxWindow* parent, Control& control, const Layout& layout,
                                  const Front& front);
std::unique_ptr<Binding> BindButton(wxWindow* parent, Control& control, const Layout& layout,
                                    const Front& front);
std::unique_ptr<Binding> BindField(wxWindow* parent, Control& control, const Layout& layout,
                                   const Front& front);
std::unique_ptr<Binding> BindDate(wxWindow* parent, Control& control, const Layout& layout,
                                  const Front& front);
std::unique_ptr<Binding> BindList(wxWindow* parent, Control& control, const Layout& layout,
                                  const Front& front);
std::unique_ptr<Binding> BindTree(wxWindow* parent, Control& control, const Layout& layout,
                                  const Front& front);

// What a screen reader says for a field without a caption: the layout's text, or the control's
// name in words ("lvwHardDrives" is "Hard Drives").
std::string NameInWords(const Control& control, const Layout& layout);

// Opens the context menu that the layout gives the binding: each entry clicks a control of the
// form.
void BindContextMenu(const Binding& binding, const Form& form, const Layout& layout,
                     const Front& front);

}  // namespace quarnel
