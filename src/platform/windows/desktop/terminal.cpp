#include "platform/terminal.h"

#include "platform/windows/win32.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

#include "base/unicode.h"

namespace quarnel {
namespace {

struct Range {
  char32_t first;
  char32_t last;
};

// The ranges that matter for names of files and threats, from the Unicode properties
// Grapheme_Extend and East_Asian_Width (https://www.unicode.org/reports/tr11/).
constexpr std::array kNoColumn{
    Range{0x0300, 0x036F}, Range{0x0483, 0x0489}, Range{0x0591, 0x05BD},   Range{0x0610, 0x061A},
    Range{0x064B, 0x065F}, Range{0x0900, 0x0902}, Range{0x0E31, 0x0E31},   Range{0x0E34, 0x0E3A},
    Range{0x0E47, 0x0E4E}, Range{0x1AB0, 0x1AFF}, Range{0x1DC0, 0x1DFF},   Range{0x200B, 0x200D},
    Range{0x20D0, 0x20FF}, Range{0x302A, 0x302D}, Range{0x3099, 0x309A},   Range{0xFE00, 0xFE0F},
    Range{0xFE20, 0xFE2F}, Range{0xFEFF, 0xFEFF}, Range{0xE0100, 0xE01EF},
};
constexpr std::array kTwoColumns{
    Range{0x1100, 0x115F},   Range{0x2E80, 0x3029},   Range{0x302E, 0x303E},
    Range{0x3041, 0x3098},   Range{0x309B, 0x33FF},   Range{0x3400, 0x4DBF},
    Range{0x4E00, 0x9FFF},   Range{0xA000, 0xA4CF},   Range{0xAC00, 0xD7A3},
    Range{0xF900, 0xFAFF},   Range{0xFE30, 0xFE6F},   Range{0xFF00, 0xFF60},
    Range{0xFFE0, 0xFFE6},   Range{0x1F300, 0x1F64F}, Range{0x1F680, 0x1F6FF},
    Range{0x1F900, 0x1F9FF}, Range{0x20000, 0x3FFFD},
};

bool Contains(std::span<const Range> ranges, char32_t code) {
  return std::any_of(ranges.begin(), ranges.end(),
                     [&](Range range) { return code >= range.first && code <= range.last; });
}

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

// The system's own tables leave out most of what is drawn into the letter before or twice as wide.
size_t ColumnsOf(char32_t character) {
  constexpr char32_t kFirstDrawnInto = 0x300;
  if (character < kFirstDrawnInto || Contains(kTwoColumns, character)) {
    return character < kFirstDrawnInto ? 1 : 2;
  }
  return Contains(kNoColumn, character) ? 0 : 1;
}

}  // namespace quarnel
