#include "controls/date_picker.h"

#include "base/runtime_error.h"
#include "base/text.h"

namespace quarnel {
namespace {

using std::chrono::local_days;
using std::chrono::year;

constexpr DateTime kFirst = local_days(year(1601) / 1 / 1);
constexpr DateTime kBehindLast = local_days(year(10000) / 1 / 1);

}  // namespace

void DatePicker::SetValue(std::optional<DateTime> value) {
  if (value ? *value < kFirst || *value >= kBehindLast : !mode_.checkBox) {
    throw RuntimeError(ErrorNumber::kInvalidPropertyValue);
  }
  Assign(value_, value);
}

std::string DatePicker::ValueText() const { return value_ ? TextOf(*value_) : ""; }

std::string DatePicker::TextOf(DateTime moment) const {
  return kind_ == Kind::kTime ? TimeText(moment) : FormatDate(moment, format_);
}

std::optional<std::string> DatePicker::Property(std::string_view name) const {
  if (name == "format") return format_;
  if (name == "checkbox") return FlagText(mode_.checkBox);
  if (name == "updown") return FlagText(mode_.upDown);
  if (name == "checked") return FlagText(value_.has_value());
  return Control::Property(name);
}

void DatePicker::SetByUser(std::string_view text) {
  std::optional<DateTime> value;
  if (!Trim(text).empty()) {
    value = ParseDate(text);
    if (!value) throw RuntimeError(ErrorNumber::kTypeMismatch);
  }
  const bool markChanges = value.has_value() != value_.has_value();
  if (value == value_) return;
  SetValue(value);
  if (Change) Change();
  if (markChanges && Click) Click();
}

}  // namespace quarnel
