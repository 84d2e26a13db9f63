#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

namespace quarnel {

// The terminal on which the standard streams may stand. What is meant for a person and not for
// another program asks here first.
class Terminal {
 public:
  virtual ~Terminal() = default;
  virtual bool InputIsTerminal() = 0;
  virtual bool OutputIsTerminal() = 0;
  // Whether standard output is a terminal that shows colour sequences and the user wants them: the
  // variable NO_COLOR switches them off (https://no-color.org).
  virtual bool ShowsColours() = 0;
  // Columns of the terminal on standard output, asked anew each time; 80 when it does not tell.
  virtual size_t Width() = 0;
  // The next line from the terminal on standard input, as UTF-8 and without its line end; nothing
  // at the end of input.
  virtual std::optional<std::string> ReadLine() = 0;
};

// The terminal of this process. Where a console has to be switched to colours, this happens when
// they are first asked for, and the object puts the console back as it was.
std::unique_ptr<Terminal> OpenTerminal();

// The columns that a printable character takes on a terminal: 2 for a wide one, 0 for one that is
// drawn into the character before it.
size_t ColumnsOf(char32_t character);

}  // namespace quarnel
