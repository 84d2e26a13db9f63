#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "controls/control.h"
#include "controls/screen.h"

namespace quarnel {

class Host;

enum class WindowState { kNormal = 0, kMinimised = 1, kMaximised = 2 };

// Why a form is asked to close.
enum class UnloadMode { kUser = 0, kCode = 1, kSessionEnd = 2 };

// What a window has around it: a frame by which a user sizes it, the frame of a dialog, or nothing.
enum class BorderStyle { kSizable, kDialog, kNone };

// A form: a set of named controls with the life of a window. Load runs Form_Load once; Show loads,
// becomes visible, and runs Form_Resize and Form_Activate; Close asks Form_QueryUnload and then
// runs Form_Unload. After Form_Unload the form is dead; a FormSlot makes a new one when it is
// touched.
class Form {
 public:
  Form(Host& host, std::string name);
  virtual ~Form();
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;

  const std::string& Name() const { return name_; }
  Host& host() const { return host_; }

  const std::string& Caption() const { return caption_; }
  void SetCaption(std::string_view caption);
  const std::string& Tag() const { return tag_; }
  void SetTag(std::string_view tag);
  bool Visible() const { return visible_; }
  bool IsLoaded() const { return state_ == State::kLoaded; }
  WindowState StateOfWindow() const { return windowState_; }
  void SetWindowState(WindowState state);
  // Where the window stands while it is neither minimised nor maximised.
  const ScreenArea& Place() const { return place_; }
  void SetPlace(const ScreenArea& place);
  // Whether the window has an entry in the task bar.
  bool ShowInTaskbar() const { return showInTaskbar_; }
  void SetShowInTaskbar(bool show);
  BorderStyle Border() const { return border_; }
  // Whether the window stays above those of all programs.
  bool TopMost() const { return topMost_; }
  void SetTopMost(bool topMost);
  // Puts the window in front of the others; a front looks whether the number of requests has grown.
  void ZOrder();
  uint64_t FrontRequests() const { return frontRequests_; }
  uint64_t Revision() const { return revision_; }

  void Load();
  void Show();
  // Shows the form and returns when it was hidden or unloaded.
  void ShowModal();
  void Hide();
  // Asks the form; false when it declined. A form that is not loaded, or is just unloading, counts
  // as closed.
  bool Close(UnloadMode mode);
  // The window became the active one.
  void Activate();
  // Asks the front to repaint now.
  void Refresh() { ++revision_; }

  const std::vector<Control*>& Controls() const { return controls_; }
  // The control of this name, letter case folded; null when there is none.
  Control* Find(std::string_view name) const;

 protected:
  void SetBorder(BorderStyle border) { border_ = border; }
  virtual void Form_Load() {}
  virtual void Form_Activate() {}
  virtual void Form_Resize() {}
  // Sets `cancel` to stay open.
  virtual void Form_QueryUnload(bool& cancel, UnloadMode mode);
  virtual void Form_Unload() {}

 private:
  friend class Control;
  enum class State { kNew, kLoaded, kUnloaded };
  void Register(Control& control) { controls_.push_back(&control); }
  void Unregister(Control& control);

  Host& host_;
  std::string name_;
  std::string caption_;
  std::string tag_;
  std::vector<Control*> controls_;
  uint64_t revision_ = 0;
  State state_ = State::kNew;
  WindowState windowState_ = WindowState::kNormal;
  ScreenArea place_;
  uint64_t frontRequests_ = 0;
  BorderStyle border_ = BorderStyle::kDialog;
  bool topMost_ = false;
  bool visible_ = false;
  bool unloading_ = false;
  bool showInTaskbar_ = true;
};

// Keeps a window above those of all programs, or no longer.
void SetTopMostWindow(Form& form, bool topMost);

// The place of a form in the program. Touching it gives the loaded form, made anew when it was
// never loaded or has been unloaded since: its controls then stand as designed.
template <typename FormType>
class FormSlot {
 public:
  using Factory = std::function<std::unique_ptr<FormType>()>;
  explicit FormSlot(Factory factory) : factory_(std::move(factory)) {}

  FormType& Touch() {
    if (!form_ || !form_->IsLoaded()) {
      // The old instance may still be inside one of its handlers further up the stack.
      if (form_) retired_.push_back(std::move(form_));
      if (retired_.size() > kRetired) retired_.pop_front();
      form_ = factory_();
      form_->Load();
    }
    return *form_;
  }
  FormType* operator->() { return &Touch(); }

  bool IsLoaded() const { return form_ && form_->IsLoaded(); }
  // Unloads the form if it is loaded.
  void Unload() {
    if (IsLoaded()) form_->Close(UnloadMode::kCode);
  }

 private:
  Factory factory_;
  std::unique_ptr<FormType> form_;
  // More instances of one form than this are never on the stack at once.
  static constexpr size_t kRetired = 8;
  std::deque<std::unique_ptr<FormType>> retired_;
};

}  // namespace quarnel
