#include "base/runtime_error.h"

namespace quarnel {

std::string_view DescriptionOf(ErrorNumber number) {
  switch (number) {
    case ErrorNumber::kInvalidCall:
      return "Invalid procedure call or argument";
    case ErrorNumber::kOverflow:
      return "Overflow";
    case ErrorNumber::kSubscriptOutOfRange:
      return "Subscript out of range";
    case ErrorNumber::kTypeMismatch:
      return "Type mismatch";
    case ErrorNumber::kBadFileName:
      return "Bad file name or number";
    case ErrorNumber::kFileNotFound:
      return "File not found";
    case ErrorNumber::kDeviceError:
      return "Device I/O error";
    case ErrorNumber::kFileExists:
      return "File already exists";
    case ErrorNumber::kDiskFull:
      return "Disk full";
    case ErrorNumber::kInputPastEnd:
      return "Input past end of file";
    case ErrorNumber::kPermissionDenied:
      return "Permission denied";
    case ErrorNumber::kPathFileAccess:
      return "Path/File access error";
    case ErrorNumber::kPathNotFound:
      return "Path not found";
    case ErrorNumber::kInvalidPattern:
      return "Invalid pattern string";
    case ErrorNumber::kInvalidPropertyValue:
      return "Invalid property value";
    case ErrorNumber::kIndexOutOfBounds:
      return "Index out of bounds";
    case ErrorNumber::kElementNotFound:
      return "Element not found";
    case ErrorNumber::kKeyNotUnique:
      return "Key is not unique in collection";
  }
  return "Application-defined or object-defined error";
}

RuntimeError::RuntimeError(ErrorNumber number)
    : number_(number), description_(DescriptionOf(number)) {}

RuntimeError::RuntimeError(ErrorNumber number, std::string_view detail, long systemCode)
    : number_(number), description_(DescriptionOf(number)), systemCode_(systemCode) {
  if (!detail.empty()) description_.append(": ").append(detail);
}

}  // namespace quarnel
