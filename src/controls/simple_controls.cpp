#include "controls/simple_controls.h"

#include <array>
#include <charconv>
#include <cmath>

#include "base/hex.h"
#include "base/runtime_error.h"
#include "base/text.h"
#include "controls/mnemonic.h"

namespace quarnel {
namespace {

std::string NumberText(double value) {
  std::array<char, 32> buffer{};
  const auto result =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed);
  return result.ec == std::errc() ? std::string(buffer.data(), result.ptr) : std::string("0");
}

std::string ColourText(Colour colour) { return HexNumber(static_cast<uint32_t>(colour), 6); }

}  // namespace

std::optional<std::string> Captioned::Property(std::string_view name) const {
  if (name == "caption") return caption_;
  return Control::Property(name);
}

std::string Keyed::ValueText() const { return ReadCaption(Caption()).text; }

std::optional<std::string> Keyed::Property(std::string_view name) const {
  if (name == "caption") return ReadCaption(Caption()).text;
  return Captioned::Property(name);
}

std::optional<std::string> Image::Property(std::string_view name) const {
  if (name == "picture") return std::to_string(picture_);
  return Keyed::Property(name);
}

std::optional<std::string> Label::Property(std::string_view name) const {
  if (name == "forecolor") return ColourText(foreColour_);
  if (name == "bold") return FlagText(bold_);
  return Captioned::Property(name);
}

std::optional<std::string> MenuItem::Property(std::string_view name) const {
  if (name == "checked") return FlagText(checked_);
  if (name == "highlighted") return FlagText(highlighted_);
  return Captioned::Property(name);
}

void CheckBox::SetValue(int value) {
  if (value < 0 || value > 2) throw RuntimeError(ErrorNumber::kInvalidPropertyValue);
  if (value == value_) return;
  value_ = value;
  Changed();
  if (Click) Click();
}

std::optional<std::string> CheckBox::Property(std::string_view name) const {
  if (name == "checked" || name == "value") return std::to_string(value_);
  return Keyed::Property(name);
}

void CheckBox::SetByUser(std::string_view text) { SetValue(ToBoolean(text) ? 1 : 0); }

int OptionGroup::Chosen() const {
  for (size_t i = 0; i < buttons_.size(); ++i) {
    if (buttons_[i]->value_) return static_cast<int>(i);
  }
  return -1;
}

void OptionGroup::Choose(int index) {
  for (size_t i = 0; i < buttons_.size(); ++i) {
    OptionButton& button = *buttons_[i];
    button.Assign(button.value_, static_cast<int>(i) == index);
  }
}

OptionButton::OptionButton(Form& form, std::string name, OptionGroup& group,
                           std::string_view caption)
    : Keyed(form, std::move(name)), group_(group) {
  SetCaption(caption);
  group_.buttons_.push_back(this);
}

std::optional<std::string> OptionButton::Property(std::string_view name) const {
  if (name == "checked" || name == "value") return FlagText(value_);
  return Keyed::Property(name);
}

void OptionButton::SetByUser(std::string_view text) {
  // A user cannot take a choice back, only choose another button.
  if (!ToBoolean(text)) throw RuntimeError(ErrorNumber::kInvalidPropertyValue);
  ClickByUser();
}

void OptionButton::ClickByUser() {
  for (OptionButton* button : group_.buttons_) button->Assign(button->value_, button == this);
  if (Click) Click();
}

std::optional<std::string> TextBox::Property(std::string_view name) const {
  if (name == "text") return text_;
  return Control::Property(name);
}

void TextBox::SetByUser(std::string_view text) {
  if (text == text_) return;
  SetText(text);
  if (Change) Change();
}

void ComboBox::SetItems(std::vector<std::string> items) {
  items_ = std::move(items);
  listIndex_ = -1;
  Changed();
}

void ComboBox::SetListIndex(int index) {
  if (index < -1 || index >= static_cast<int>(items_.size())) {
    throw RuntimeError(ErrorNumber::kInvalidPropertyValue);
  }
  Assign(listIndex_, index);
}

std::string ComboBox::Text() const {
  return listIndex_ < 0 ? std::string() : items_[static_cast<size_t>(listIndex_)];
}

std::optional<std::string> ComboBox::Property(std::string_view name) const {
  if (name == "text") return Text();
  if (name == "listindex") return std::to_string(listIndex_);
  if (name == "count") return std::to_string(items_.size());
  return Control::Property(name);
}

void ComboBox::SetByUser(std::string_view text) {
  int index = -1;
  for (size_t i = 0; i < items_.size() && index < 0; ++i) {
    if (items_[i] == text) index = static_cast<int>(i);
  }
  SetListIndex(index >= 0 ? index : ToLong(text));
  if (Click) Click();
}

void ProgressBar::SetMin(double min) {
  if (range_ == Range::kStrict && min > max_) {
    throw RuntimeError(ErrorNumber::kInvalidPropertyValue);
  }
  Assign(min_, min);
  if (range_ == Range::kStrict && value_ < min_) Assign(value_, min_);
}

void ProgressBar::SetMax(double max) {
  if (range_ == Range::kStrict && max < min_) {
    throw RuntimeError(ErrorNumber::kInvalidPropertyValue);
  }
  Assign(max_, max);
  if (range_ == Range::kStrict && value_ > max_) Assign(value_, max_);
}

void ProgressBar::SetValue(double value) {
  if (range_ == Range::kStrict && !(value >= min_ && value <= max_)) {
    throw RuntimeError(ErrorNumber::kInvalidPropertyValue);
  }
  Assign(value_, value);
}

std::string ProgressBar::ValueText() const { return NumberText(value_); }

std::optional<std::string> ProgressBar::Property(std::string_view name) const {
  if (name == "min") return NumberText(min_);
  if (name == "max") return NumberText(max_);
  if (name == "value") return NumberText(value_);
  return Control::Property(name);
}

bool IsNetworkAddress(std::string_view location) {
  return StartsWithText(location, "http://") || StartsWithText(location, "https://");
}

void Browser::Navigate(std::string_view location) {
  Assign(location_, location);
  if (!IsNetworkAddress(location)) Assign(localPage_, location);
}

std::optional<std::string> Browser::Property(std::string_view name) const {
  if (name == "location") return location_;
  if (name == "localpage") return localPage_;
  return Control::Property(name);
}

}  // namespace quarnel
