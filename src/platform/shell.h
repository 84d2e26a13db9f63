#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quarnel {

// What the desktop shell and the loader do for the program.
class Shell {
 public:
  virtual ~Shell() = default;
  // The program that opens files of this name's extension; nothing when there is none.
  virtual std::optional<std::string> FindExecutable(std::string_view path) = 0;
  // Runs a program with one argument in a normal window; false when it did not start.
  virtual bool Run(std::string_view program, std::string_view argument) = 0;
  // The target of a shortcut file (.lnk); nothing when the file is none or names no target.
  virtual std::optional<std::string> ShortcutTarget(std::string_view path) = 0;
  // Loads a component and calls its entry "DllRegisterServer" or "DllUnregisterServer"; true when
  // it returned 0. A machine that cannot load components answers false.
  virtual bool CallRegistrationEntry(std::string_view path, std::string_view entry) = 0;
};

// Registers or unregisters a component: true if its entry ran and returned 0.
bool RegisterComponent(Shell& shell, std::string_view path, bool registerIt);

}  // namespace quarnel
