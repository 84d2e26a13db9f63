#include "platform/terminal.h"

#include "platform/windows/win32.h"

#include <array>
#include <string_view>

#include "base/unicode.h"

namespace quarnel {
namespace {

// ENABLE_VIRTUAL_TERMINAL_PROCESSING; the headers of older systems do not have it, and their
// consoles refuse it.
constexpr DWORD kVirtualTerminal = 0x0004;

bool IsConsole(HANDLE handle) {
  DWORD mode = 0;
  return GetConsoleMode(handle, &mode) != 0;
}

class ConsoleTerminal : public Terminal {
 public:
  ConsoleTerminal() = default;
  ConsoleTerminal(const ConsoleTerminal&) = delete;
  ConsoleTerminal& operator=(const ConsoleTerminal&) = delete;
  ~ConsoleTerminal() override {
    if (modeBefore_) SetConsoleMode(output_, *modeBefore_);
  }

  bool InputIsTerminal() override { return IsConsole(input_); }
  bool OutputIsTerminal() override { return IsConsole(output_); }

  bool ShowsColours() override {
    std::array<wchar_t, 2> unwanted{};
    if (GetEnvironmentVariableW(L"NO_COLOR", unwanted.data(), unwanted.size()) > 0) return false;
    if (colours_) return *colours_;
    DWORD mode = 0;
    colours_ = GetConsoleMode(output_, &mode) != 0;
    if (*colours_ && (mode & kVirtualTerminal) == 0) {
      colours_ = SetConsoleMode(output_, mode | kVirtualTerminal) != 0;
      if (*colours_) modeBefore_ = mode;
    }
    return *colours_;
  }

  size_t Width() override {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (GetConsoleScreenBufferInfo(output_, &info) == 0) return 80;
    const int columns = info.srWindow.Right - info.srWindow.Left + 1;
    return columns > 0 ? static_cast<size_t>(columns) : 80;
  }

  std::optional<std::string> ReadLine() override {
    constexpr wchar_t kEndOfInput = 26;  // Ctrl+Z at the start of a line
    std::u16string line;
    std::array<wchar_t, 512> buffer{};
    while (line.empty() || line.back() != u'\n') {
      DWORD count = 0;
      if (ReadConsoleW(input_, buffer.data(), buffer.size(), &count, nullptr) == 0) {
        return std::nullopt;
      }
      // Ctrl+C interrupts the reading with nothing read; the process ends of it by itself.
      if (count == 0) return std::nullopt;
      if (line.empty() && buffer[0] == kEndOfInput) return std::nullopt;
      for (DWORD i = 0; i < count; ++i) line += static_cast<char16_t>(buffer[i]);
    }
    while (!line.empty() && (line.back() == u'\n' || line.back() == u'\r')) line.pop_back();
    return ToUtf8(line);
  }

 private:
  const HANDLE input_ = GetStdHandle(STD_INPUT_HANDLE);
  const HANDLE output_ = GetStdHandle(STD_OUTPUT_HANDLE);
  std::optional<bool> colours_;
  std::optional<DWORD> modeBefore_;
};

}  // namespace

std::unique_ptr<Terminal> OpenTerminal() { return std::make_unique<ConsoleTerminal>(); }

}  // namespace quarnel
