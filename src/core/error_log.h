#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "base/runtime_error.h"
#include "controls/host.h"
#include "platform/files.h"
#include "platform/machine.h"

namespace quarnel {

// The one error log: a text file in the Windows system folder that is only ever appended to.
class ErrorLog {
 public:
  ErrorLog(Files& files, Machine& machine, const Host& host, std::string applicationName);

  // Appends one entry for `error` under the procedure's label. A failure of the write itself goes
  // up to the caller.
  void WriteErrorLog(std::string_view label, const RuntimeError& error);

  // The same without a failure of its own, so that a log that cannot be written, as on a full disk,
  // neither hides the error nor ends what would go on: the entry is kept, and follows as soon as
  // one can be written.
  void NoteInPassing(std::string_view label, const RuntimeError& error);

  std::string Path() const;

 private:
  Files& files_;
  Machine& machine_;
  const Host& host_;
  std::string applicationName_;
  std::string waiting_;  // entries that could not be written, as far as there is room for them
};

// A procedure in the reporting mode: at the first failure it is logged under its label and left,
// and its caller is not told. True when it ran to its end.
template <typename Procedure>
bool Reporting(ErrorLog& log, std::string_view label, Procedure&& procedure) {
  try {
    std::forward<Procedure>(procedure)();
    return true;
  } catch (const RuntimeError& error) {
    log.NoteInPassing(label, error);
    return false;
  }
}

}  // namespace quarnel
