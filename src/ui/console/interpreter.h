#pragma once

#include <cstddef>
#include <istream>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "platform/terminal.h"
#include "ui/console/commands.h"

namespace quarnel {

// A line of input. Its number is counted from 1; 0 where lines are not counted.
struct InputLine {
  std::string text;
  size_t number = 0;
  bool tooLong = false;  // only the front of the line is in the text
};

class LineSource {
 public:
  virtual ~LineSource() = default;
  // The next line; nothing at the end of input. A person is asked by `prompt`.
  virtual std::optional<InputLine> Next(std::string_view prompt) = 0;
};

// The lines of a script, of which none takes more than a megabyte of memory.
class ScriptLines : public LineSource {
 public:
  explicit ScriptLines(std::istream& in) : in_(in) {}
  std::optional<InputLine> Next(std::string_view prompt) override;

 private:
  std::istream& in_;
  size_t number_ = 0;
};

// The lines that a person types; the prompts go to `err`, so that standard output holds records
// alone.
class TypedLines : public LineSource {
 public:
  TypedLines(Terminal& terminal, std::ostream& err) : terminal_(terminal), err_(err) {}
  std::optional<InputLine> Next(std::string_view prompt) override;

 private:
  Terminal& terminal_;
  std::ostream& err_;
};

// What an error in a command comes to.
enum class OnError { kEndScript, kGoOn };

// Runs commands one after the other. A command may open a modal form, which takes the next ones,
// and event processing may run one inside another.
class Interpreter : public CommandPlayer {
 public:
  Interpreter(Session& session, LineSource& lines, OnError onError)
      : session_(session), lines_(lines), onError_(onError) {}

  bool RunNext(std::string_view prompt) override;
  void RunCommand(std::string_view command, size_t line) override;

 private:
  void Run(std::string_view command);
  void Report(std::string_view error);

  Session& session_;
  LineSource& lines_;
  OnError onError_;
  int depth_ = 0;
};

}  // namespace quarnel
