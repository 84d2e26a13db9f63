#include "platform/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>
#include <utf8proc.h>

#include <cstdlib>
#include <iostream>
#include <string_view>

namespace quarnel {
namespace {

class PosixTerminal : public Terminal {
 public:
  bool InputIsTerminal() override { return isatty(STDIN_FILENO) == 1; }
  bool OutputIsTerminal() override { return isatty(STDOUT_FILENO) == 1; }

  bool ShowsColours() override {
    // The program runs on one thread and never changes its environment.
    const char* unwanted = std::getenv("NO_COLOR");  // NOLINT(concurrency-mt-unsafe)
    const char* kind = std::getenv("TERM");          // NOLINT(concurrency-mt-unsafe)
    if (unwanted && *unwanted != '\0') return false;
    return OutputIsTerminal() && kind && std::string_view(kind) != "dumb";
  }

  size_t Width() override {
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return 80;
    return size.ws_col;
  }

  std::optional<std::string> ReadLine() override {
    std::string line;
    if (!std::getline(std::cin, line)) return std::nullopt;
    return line;
  }
};

}  // namespace

std::unique_ptr<Terminal> OpenTerminal() { return std::make_unique<PosixTerminal>(); }

size_t ColumnsOf(char32_t character) {
  return static_cast<size_t>(utf8proc_charwidth(static_cast<utf8proc_int32_t>(character)));
}

}  // namespace quarnel
