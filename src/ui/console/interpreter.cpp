#include "ui/console/interpreter.h"

#include "base/runtime_error.h"
#include "ui/console/command_error.h"
#include "ui/console/display_text.h"

namespace quarnel {
namespace {

constexpr size_t kLongestLine = size_t{1} << 20;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// Each level holds the frames of the handlers that a command runs in, so a script that nests
// without end must not use up the stack.
constexpr int kDeepestNesting = 64;

// The line whose command runs, for messages; afterwards the one around it again.
class LineScope {
 public:
  LineScope(ConsoleHost& host, size_t line) : host_(host), outer_(host.Line()) {
    host_.SetLine(line);
  }
  ~LineScope() { host_.SetLine(outer_); }
  LineScope(const LineScope&) = delete;
  LineScope& operator=(const LineScope&) = delete;

 private:
  ConsoleHost& host_;
  size_t outer_;
};

class DepthScope {
 public:
  explicit DepthScope(int& depth) : depth_(depth) { ++depth_; }
  ~DepthScope() { --depth_; }
  DepthScope(const DepthScope&) = delete;
  DepthScope& operator=(const DepthScope&) = delete;

 private:
  int& depth_;
};

void RunFound(const Command& found, Session& session, Words& words) {
  try {
    found.run(session, words);
  } catch (const UsageError&) {
    std::string usage = "usage: " + std::string(found.name);
    if (!found.usage.empty()) usage += ' ' + std::string(found.usage);
    throw CommandError{std::move(usage)};
  }
}

}  // namespace

std::optional<InputLine> ScriptLines::Next(std::string_view) {
  constexpr int kEnd = std::istream::traits_type::eof();
  if (in_.peek() == kEnd) return std::nullopt;
  InputLine line{.number = ++number_};
  for (int c = in_.get(); c != kEnd && c != '\n'; c = in_.get()) {
    if (line.text.size() < kLongestLine) {
      line.text += static_cast<char>(c);
    } else {
      line.tooLong = true;
    }
  }
  if (!line.text.empty() && line.text.back() == '\r') line.text.pop_back();
  if (number_ == 1 && line.text.starts_with(kByteOrderMark)) {
    line.text.erase(0, kByteOrderMark.size());
  }
  return line;
}

std::optional<InputLine> TypedLines::Next(std::string_view prompt) {
  err_ << prompt;
  err_.flush();
  std::optional<std::string> text = terminal_.ReadLine();
  if (!text) {
    err_ << '\n';
    return std::nullopt;
  }
  return InputLine{.text = std::move(*text)};
}

bool Interpreter::RunNext(std::string_view prompt) {
  const std::optional<InputLine> line = lines_.Next(prompt);
  if (!line) return false;
  if (line->tooLong) {
    const LineScope scope(session_.host, line->number);
    Report("the line is longer than " + std::to_string(kLongestLine) + " bytes");
  } else {
    RunCommand(line->text, line->number);
  }
  return true;
}

void Interpreter::RunCommand(std::string_view command, size_t line) {
  const LineScope scope(session_.host, line);
  std::string error;
  try {
    Run(command);
  } catch (const CommandError& failure) {
    error = failure.text;
  } catch (const RuntimeError& failure) {
    error = Printable(failure.Description());
  }
  session_.records.out().flush();
  if (!error.empty()) Report(error);
}

void Interpreter::Report(std::string_view error) {
  if (onError_ == OnError::kEndScript) session_.host.Fail(error);
  session_.host.Notice(error);
}

void Interpreter::Run(std::string_view command) {
  const DepthScope scope(depth_);
  if (depth_ > kDeepestNesting) throw CommandError{"commands are nested too deeply"};
  Words words(command);
  if (!words.More()) return;
  const std::string& name = words.Next();
  const Command* found = FindCommand(name);
  if (!found) throw CommandError{"unknown command: " + Quoted(name)};
  RunFound(*found, session_, words);
}

}  // namespace quarnel
