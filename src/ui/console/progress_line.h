#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>

#include "controls/clock.h"
#include "controls/control.h"
#include "controls/simple_controls.h"
#include "platform/terminal.h"

namespace quarnel {

// The controls that tell how far a job is. Any of them may be missing.
struct ProgressControls {
  const ProgressBar* bar = nullptr;
  const Control* percentage = nullptr;
  const Control* status = nullptr;
};

// One line of a terminal, redrawn in place, that shows a running job. It reads the controls when
// their revisions have changed and at most some 30 times a second, so the job is not slowed by it.
// The line is wiped when the object ends.
class ProgressLine {
 public:
  // `clock` gives the time between two repaints; it is not the program's own, which a script may
  // have stopped.
  ProgressLine(std::ostream& out, Terminal& terminal, Clock& clock, ProgressControls controls)
      : out_(out), terminal_(terminal), clock_(clock), controls_(controls) {}
  ~ProgressLine() { Wipe(); }
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  // Redraws when there is something new to show and it is time.
  void Update();
  // Takes the line away until the next redraw, so that something else can be printed.
  void Wipe();

 private:
  uint64_t Revisions() const;
  std::string Text(size_t columns) const;

  std::ostream& out_;
  Terminal& terminal_;
  Clock& clock_;
  ProgressControls controls_;
  std::optional<uint64_t> drawn_;  // the revisions that the line shows
  Milliseconds nextDraw_{0};
  size_t width_ = 0;  // columns that the drawn line takes
};

}  // namespace quarnel
