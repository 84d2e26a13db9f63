#pragma once

#include <string_view>

#include "platform/files.h"
#include "platform/machine.h"

// A program that is killed leaves files under temporary names behind. Most are found again when the
// same file is written next; these are not.
namespace quarnel {

// Notes on the disk, as long as it lives, that a restore point is being restored. Without room for
// the note the restore goes on.
class RestoreNote {
 public:
  RestoreNote(Files& files, Machine& machine, std::string_view stem);
  ~RestoreNote();
  RestoreNote(const RestoreNote&) = delete;
  RestoreNote& operator=(const RestoreNote&) = delete;

 private:
  Files& files_;
  Machine& machine_;
};

// Deletes what a killed backup or restore left under temporary names: at the start of the program,
// when nothing is being restored. Errors are ignored.
void ClearLeftovers(Files& files, Machine& machine);

}  // namespace quarnel
