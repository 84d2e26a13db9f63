#pragma once

#include <exception>
#include <string>
#include <string_view>

namespace quarnel {

// The error numbers that the program's procedures meet, as the error log prints them.
enum class ErrorNumber {
  kInvalidCall = 5,
  kOverflow = 6,
  kSubscriptOutOfRange = 9,
  kTypeMismatch = 13,
  kBadFileName = 52,
  kFileNotFound = 53,
  kDeviceError = 57,
  kFileExists = 58,
  kDiskFull = 61,
  kInputPastEnd = 62,
  kPermissionDenied = 70,
  kPathFileAccess = 75,
  kPathNotFound = 76,
  kInvalidPattern = 93,
  kInvalidPropertyValue = 380,
  kIndexOutOfBounds = 35600,
  kElementNotFound = 35601,
  kKeyNotUnique = 35602,
};

// The standing description of an error number, such as "Subscript out of range".
std::string_view DescriptionOf(ErrorNumber number);

// A failure inside a procedure. It ends the procedure or the statement, whichever the procedure's
// error mode says, and never leaves the subsystem.
class RuntimeError : public std::exception {
 public:
  explicit RuntimeError(ErrorNumber number);
  // `detail` is put behind the description; `systemCode` is the operating system's own code, kept
  // for the log (0 when there is none).
  RuntimeError(ErrorNumber number, std::string_view detail, long systemCode = 0);

  ErrorNumber Number() const { return number_; }
  const std::string& Description() const { return description_; }
  long SystemCode() const { return systemCode_; }
  const char* what() const noexcept override { return description_.c_str(); }

 private:
  ErrorNumber number_;
  std::string description_;
  long systemCode_ = 0;
};

// Runs one statement with errors ignored; true when it ran without one.
template <typename Statement>
bool IgnoringErrors(Statement&& statement) {
  try {
    statement();
    return true;
  } catch (const RuntimeError&) {
    return false;
  }
}

}  // namespace quarnel
