#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "controls/control.h"
#include "controls/look.h"

namespace quarnel {

// A part of the window that only shows or hides what stands on it.
class Panel : public Control {
 public:
  using Control::Control;
  std::string_view Type() const override { return "Panel"; }
};

// A control that can be clicked, whatever it looks like.
class Clickable : public Control {
 public:
  using Control::Control;
  void ClickByUser() override {
    if (Click) Click();
  }
  Handler Click;
};

// A control with a caption.
class Captioned : public Clickable {
 public:
  using Clickable::Clickable;
  const std::string& Caption() const { return caption_; }
  void SetCaption(std::string_view caption) { Assign(caption_, caption); }
  // Adds to the end, at the cost of what is added.
  void AppendCaption(std::string_view text) {
    if (text.empty()) return;
    caption_ += text;
    Changed();
  }
  std::string ValueText() const override { return caption_; }
  std::optional<std::string> Property(std::string_view name) const override;

 private:
  std::string caption_;
};

// A control that a letter of its caption reaches by keyboard. "&" marks the letter for a front; as
// a text the caption goes without it.
class Keyed : public Captioned {
 public:
  using Captioned::Captioned;
  std::string ValueText() const override;
  std::optional<std::string> Property(std::string_view name) const override;
};

// A picture. Its caption is not drawn: it names the picture for those who cannot see it.
class Image : public Keyed {
 public:
  Image(Form& form, std::string name, std::string_view caption = {})
      : Keyed(form, std::move(name)) {
    SetCaption(caption);
  }
  std::string_view Type() const override { return "Image"; }
  // The number of the picture in its image list, from 1; 0 for the control's own one.
  int Picture() const { return picture_; }
  void SetPicture(int number) { Assign(picture_, number); }
  std::optional<std::string> Property(std::string_view name) const override;

 private:
  int picture_ = 0;
};

class Label : public Captioned {
 public:
  Label(Form& form, std::string name, std::string_view caption = {})
      : Captioned(form, std::move(name)) {
    SetCaption(caption);
  }
  std::string_view Type() const override { return "Label"; }
  Colour ForeColour() const { return foreColour_; }
  void SetForeColour(Colour colour) { Assign(foreColour_, colour); }
  bool Bold() const { return bold_; }
  void SetBold(bool bold) { Assign(bold_, bold); }
  std::optional<std::string> Property(std::string_view name) const override;

 private:
  Colour foreColour_ = Colour::kBlack;
  bool bold_ = false;
};

class Button : public Keyed {
 public:
  Button(Form& form, std::string name, std::string_view caption = {})
      : Keyed(form, std::move(name)) {
    SetCaption(caption);
  }
  std::string_view Type() const override { return "Button"; }
};

class MenuItem : public Captioned {
 public:
  MenuItem(Form& form, std::string name, std::string_view caption = {})
      : Captioned(form, std::move(name)) {
    SetCaption(caption);
  }
  std::string_view Type() const override { return "MenuItem"; }
  bool Checked() const { return checked_; }
  void SetChecked(bool checked) { Assign(checked_, checked); }
  bool Highlighted() const { return highlighted_; }
  void SetHighlighted(bool highlighted) { Assign(highlighted_, highlighted); }
  std::optional<std::string> Property(std::string_view name) const override;

 private:
  bool checked_ = false;
  bool highlighted_ = false;
};

// A check box. Its click handler runs whenever its value changes, by a user or in code.
class CheckBox : public Keyed {
 public:
  CheckBox(Form& form, std::string name, std::string_view caption = {})
      : Keyed(form, std::move(name)) {
    SetCaption(caption);
  }
  std::string_view Type() const override { return "CheckBox"; }

  // 0 is unchecked, 1 checked, 2 undecided (grey); kInvalidPropertyValue for any other number.
  int Value() const { return value_; }
  void SetValue(int value);
  bool Checked() const { return value_ == 1; }

  std::string ValueText() const override { return std::to_string(value_); }
  std::optional<std::string> Property(std::string_view name) const override;
  void SetByUser(std::string_view text) override;
  void ClickByUser() override { SetValue(value_ == 1 ? 0 : 1); }

 private:
  int value_ = 0;
};

class OptionButton;

// Option buttons of which one is chosen.
class OptionGroup {
 public:
  // The index of the chosen button; -1 when none is.
  int Chosen() const;

  // Chooses in code: no click handler runs. An index outside the group chooses none.
  void Choose(int index);

 private:
  friend class OptionButton;
  std::vector<OptionButton*> buttons_;
};

class OptionButton : public Keyed {
 public:
  OptionButton(Form& form, std::string name, OptionGroup& group, std::string_view caption = {});
  std::string_view Type() const override { return "OptionButton"; }

  bool Value() const { return value_; }
  std::string ValueText() const override { return FlagText(value_); }
  std::optional<std::string> Property(std::string_view name) const override;
  void SetByUser(std::string_view text) override;
  // Chooses this button and runs its click handler, as a user's click does.
  void ClickByUser() override;

 private:
  friend class OptionGroup;
  OptionGroup& group_;
  bool value_ = false;
};

class TextBox : public Control {
 public:
  using Control::Control;
  std::string_view Type() const override { return "TextBox"; }
  const std::string& Text() const { return text_; }
  void SetText(std::string_view text) { Assign(text_, text); }
  std::string ValueText() const override { return text_; }
  std::optional<std::string> Property(std::string_view name) const override;
  void SetByUser(std::string_view text) override;
  Handler Change;

 private:
  std::string text_;
};

// A drop-down list; its click handler runs when a user chooses.
class ComboBox : public Control {
 public:
  using Control::Control;
  std::string_view Type() const override { return "ComboBox"; }

  const std::vector<std::string>& Items() const { return items_; }
  void SetItems(std::vector<std::string> items);
  // -1 when nothing is chosen; kInvalidPropertyValue for an index outside the list.
  int ListIndex() const { return listIndex_; }
  void SetListIndex(int index);
  std::string Text() const;

  std::string ValueText() const override { return Text(); }
  std::optional<std::string> Property(std::string_view name) const override;
  // Takes an item's text, or its index from 0.
  void SetByUser(std::string_view text) override;
  Handler Click;

 private:
  std::vector<std::string> items_;
  int listIndex_ = -1;
};

// A bar between Min and Max. A strict one refuses a value outside them with kInvalidPropertyValue;
// the other takes any value and shows it at the nearer end.
class ProgressBar : public Control {
 public:
  enum class Range { kStrict, kLoose };
  ProgressBar(Form& form, std::string name, Range range = Range::kStrict)
      : Control(form, std::move(name)), range_(range) {}
  std::string_view Type() const override { return "ProgressBar"; }
  double Min() const { return min_; }
  double Max() const { return max_; }
  double Value() const { return value_; }
  // A strict bar refuses a minimum above the maximum and the other way round.
  void SetMin(double min);
  void SetMax(double max);
  void SetValue(double value);
  std::string ValueText() const override;
  std::optional<std::string> Property(std::string_view name) const override;

 private:
  Range range_;
  double min_ = 0;
  double max_ = 100;
  double value_ = 0;
};

// A page shown without scripts from a file, by its path on the machine. Of a location that is an
// address of the network a front shows the local page, with a link to the address; a click on any
// link to the network goes to LinkClick.
class Browser : public Control {
 public:
  using Control::Control;
  std::string_view Type() const override { return "Browser"; }
  const std::string& Location() const { return location_; }
  void Navigate(std::string_view location);
  // The file that was last navigated to; empty when there was none.
  const std::string& LocalPage() const { return localPage_; }
  std::string ValueText() const override { return location_; }
  std::optional<std::string> Property(std::string_view name) const override;

  std::function<void(std::string_view address)> LinkClick;

 private:
  std::string location_;
  std::string localPage_;
};

// Whether a location is an address of the network, and no path.
bool IsNetworkAddress(std::string_view location);

}  // namespace quarnel
