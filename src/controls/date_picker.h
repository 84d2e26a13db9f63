#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/date_time.h"
#include "controls/control.h"

namespace quarnel {

// A picker of a date or of a time of day. With a check mark it may hold no value.
class DatePicker : public Control {
 public:
  enum class Kind { kDate, kTime };
  // How the picker is used by hand: with a check mark that takes the value away, and with two
  // arrows in place of a calendar.
  struct Mode {
    bool checkBox = false;
    bool upDown = false;
    bool operator==(const Mode&) const = default;
  };

  DatePicker(Form& form, std::string name, Kind kind, std::string_view format, Mode mode)
      : Control(form, std::move(name)), kind_(kind), format_(format), mode_(mode) {}
  std::string_view Type() const override { return "DatePicker"; }

  Kind GetKind() const { return kind_; }
  // The display format, in the tokens of FormatDate.
  const std::string& Format() const { return format_; }
  Mode GetMode() const { return mode_; }
  void SetMode(Mode mode) { Assign(mode_, mode); }

  std::optional<DateTime> Value() const { return value_; }
  // kInvalidPropertyValue for a moment outside the years 1601 to 9999, and for no value where the
  // picker has no check mark.
  void SetValue(std::optional<DateTime> value);

  // The value in the display format; empty when there is none. A time comes with its half of the
  // day, as the settings keep it: the format leaves that out.
  std::string ValueText() const override;
  std::string TextOf(DateTime moment) const;
  std::optional<std::string> Property(std::string_view name) const override;
  // Takes a date or a time; an empty text takes the check mark away.
  void SetByUser(std::string_view text) override;

  // A user changed the value.
  Handler Change;
  // A user set the check mark or took it away.
  Handler Click;

 private:
  Kind kind_;
  std::string format_;
  Mode mode_;
  std::optional<DateTime> value_;
};

}  // namespace quarnel
