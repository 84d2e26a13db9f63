#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "controls/form.h"
#include "ui/wx/bindings/binding.h"
#include "ui/wx/layout.h"
#include "ui/wx/menu_bar.h"
#include "ui/wx/wx.h"

namespace quarnel {

class GapBox;

// The window of one form, for as long as the form shows. It is made from the form's layout and
// brought up to the form by Sync; what the user does goes to the form and its controls.
class FormWindow {
 public:
  FormWindow(Form& form, const FormLayout& layout, wxWindow* parent, const Front& front);
  ~FormWindow();
  FormWindow(const FormWindow&) = delete;
  FormWindow& operator=(const FormWindow&) = delete;

  // Null once the form has gone.
  Form* form() const { return form_; }
  wxTopLevelWindow* Window() const { return window_; }
  WindowKind Kind() const { return layout_.kind; }

  // Shows the form's present state.
  void Sync();
  // The form has gone or is no longer shown: the window leaves the screen and forgets the form.
  void Release();

  const std::vector<std::unique_ptr<Binding>>& Bindings() const { return bindings_; }
  // The binding of this control; null when the window does not show it.
  const Binding* Find(std::string_view control) const;
  // Whether the layout names the control, or says that it stays behind.
  bool Places(const Control& control) const;

 private:
  // A box that is there while each of the controls is visible or not, as it says.
  struct Condition {
    wxWindow* box;
    std::vector<std::pair<const Control*, bool>> controls;

    bool Holds() const;
  };
  // A binding with a caption that shows.
  struct Keyed {
    Binding* binding;
    std::string caption;
    bool operator==(const Keyed&) const = default;
  };

  void MakeWindow(wxWindow* parent);
  void BindWindow();
  void FitWindow();
  wxWindow* BuildBox(wxWindow* parent, const Layout& layout);
  void Build(wxWindow* parent, GapBox& box, const Layout& layout, bool vertical);
  void Fill(wxWindow* parent, wxSizer& outer, const Layout& layout);
  void FillGrid(wxWindow* parent, wxSizer& outer, const Layout& layout);
  void AddRest(wxWindow* parent, GapBox& box);
  wxWindow* BuildLeaf(wxWindow* parent, const Layout& layout);
  // The button that this key stands for; empty when it stands for none.
  std::string_view ButtonFor(int key) const;
  // Whether the leaf uses any room that it gets.
  bool IsField(const Layout& layout) const;
  void SyncContent();
  void SyncWindow();
  void ShareKeys();
  void PassKeyboard();
  bool SyncConditions();
  void SyncState();
  // By how much the window is larger than its form knows.
  wxPoint Overgrown() const;
  void BindDrag(Control& control, wxWindow& widget);

  Form* form_;
  const FormLayout& layout_;
  Front front_;
  std::vector<std::string> named_;
  wxTopLevelWindow* window_ = nullptr;
  wxPanel* page_ = nullptr;
  std::vector<std::unique_ptr<Binding>> bindings_;
  std::vector<Condition> conditions_;
  // What a screen reader says behind the name of a widget.
  std::vector<std::pair<Binding*, const Control*>> states_;
  std::unique_ptr<MenuBar> menuBar_;
  std::vector<Keyed> keyed_;
  // The one on the screen of those that take the keyboard.
  const Binding* keyboardPlace_ = nullptr;
  // Of the form as the window shows it.
  uint64_t revision_ = ~uint64_t{0};
  WindowState state_ = WindowState::kNormal;
  uint64_t frontRequests_ = 0;
  wxPoint dragFrom_;
  bool shown_ = false;
  bool syncing_ = false;
};

}  // namespace quarnel
