#pragma once

#include <string>

namespace quarnel {

// Why a command could not be done, in one line for the user. It is thrown by commands only, and
// whoever runs them catches it.
struct CommandError {
  std::string text;
};

// A command has too few or too many words; its usage line is shown.
struct UsageError {};

}  // namespace quarnel
