#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/date_time.h"
#include "base/text.h"

// The text forms in which settings hold their values. A form says what its reader gets (`Value`)
// and what its writer hands over (`Written`). The forms of truth are not interchangeable.
namespace quarnel::setting {

// The state of a check box, "0" or "1", read through Val: other text is 0.
struct CheckState {
  using Value = int32_t;
  using Written = int32_t;
  static Value Read(std::string_view text) { return ValLong(text); }
  static std::string Write(Written value) { return std::to_string(value); }
};

// The same, converted straight: text that is no number is an error.
struct StraightCheckState : CheckState {
  static Value Read(std::string_view text) { return ToInteger(text); }
};

// "Yes" or "No"; only "Yes" is yes.
struct YesNo {
  using Value = bool;
  using Written = bool;
  static Value Read(std::string_view text) { return text == "Yes"; }
  static std::string Write(Written value) { return value ? "Yes" : "No"; }
};

// "True" or "False", read as a boolean, so that numbers do as well. What is neither reads as false.
struct TrueFalse {
  using Value = bool;
  using Written = bool;
  static Value Read(std::string_view text) { return ToBooleanOr(text, false); }
  static std::string Write(Written value) { return std::string(BooleanText(value)); }
};

// The same where a torn text must not switch anything off.
struct TrueUnlessFalse : TrueFalse {
  static Value Read(std::string_view text) { return ToBooleanOr(text, true); }
};

// "TRUE" or "FALSE", compared as text.
struct UpperTrueFalse {
  using Value = bool;
  using Written = bool;
  static Value Read(std::string_view text) { return text == "TRUE"; }
  static std::string Write(Written value) { return value ? "TRUE" : "FALSE"; }
};

struct Number {
  using Value = int32_t;
  using Written = int32_t;
  static Value Read(std::string_view text) { return ValLong(text); }
  static std::string Write(Written value) { return std::to_string(value); }
};

struct Text {
  using Value = std::string;
  using Written = std::string_view;
  static Value Read(std::string_view text) { return std::string(text); }
  static std::string Write(Written value) { return std::string(value); }
};

// A date, a time, or both, in the text form that the system gave it. Readers get the text, for it
// may be the reader's word for "never", or what another system took for a date.
struct Date {
  using Value = std::string;
  using Written = DateTime;
  static Value Read(std::string_view text) { return std::string(text); }
  static std::string Write(Written value) { return GeneralDateText(value); }
};

}  // namespace quarnel::setting
