#include <algorithm>
#include <string>
#include <vector>

#include "ui/console/command_error.h"
#include "ui/console/commands.h"
#include "ui/console/display_text.h"

// The commands about message boxes, time, and what happens inside event processing.
namespace quarnel::command {
namespace {

// A name that stands for a control now may stand for nothing after the next event.
bool HasValue(const ConsoleHost& host, const std::string& name, const std::string& value) {
  const std::optional<Target> target = FindTarget(host, name);
  return target && target->ValueText() == value;
}

std::string DurationText(Milliseconds duration) { return std::to_string(duration.count()) + "ms"; }

}  // namespace

void Answer(Session& session, Words& words) {
  std::vector<std::string> answers;
  do {
    answers.push_back(words.Next());
    if (!MessageDesk().Queue(answers.back())) {
      throw CommandError{"no answer: " + Quoted(answers.back()) +
                         " (yes, no, ok, cancel, text:...)"};
    }
  } while (words.More());
  for (const std::string& answer : answers) session.host.messages().Queue(answer);
}

void Messages(Session& session, Words& words) {
  words.End();
  for (ShownBox& box : session.host.messages().Take()) {
    session.records.Write({{"title", std::move(box.title)},
                           {"icon", std::move(box.icon)},
                           {"buttons", std::move(box.buttons)},
                           {"answer", std::move(box.answer)},
                           {"text", std::move(box.text)}});
  }
}

void During(Session& session, Words& words) {
  const Target target = TakeControl(session.host, words);
  const std::string& word = words.Next();
  const std::optional<size_t> count = ParseCount(word);
  if (!count) throw CommandError{"no count: " + Quoted(word)};
  std::string command = words.Rest();
  // A misspelt command is told now, and not in the middle of a scan.
  Words nested(command);
  if (const std::string& name = nested.Next(); !FindCommand(name)) {
    throw CommandError{"unknown command: " + Quoted(name)};
  }
  session.host.Add({target, *count, std::move(command)});
}

void Clock(Session& session, Words& words) {
  const DateTime moment = ParseMoment(words.Next());
  words.End();
  session.host.SetVirtualTime(moment);
}

void Advance(Session& session, Words& words) {
  const Milliseconds duration = ParseDuration(words.Next());
  words.End();
  if (!session.host.HasVirtualClock()) {
    throw CommandError{"the clock is the real one: it takes the command clock, or wait"};
  }
  session.host.Advance(duration);
}

void Wait(Session& session, Words& words) {
  const Milliseconds duration = ParseDuration(words.Next());
  words.End();
  session.host.Advance(duration);
}

void WaitFor(Session& session, Words& words) {
  const std::string name = TakeTarget(session.host, words).Name();
  const std::string value = words.Next();
  const Milliseconds timeout =
      words.More() ? ParseDuration(words.Next()) : Milliseconds(std::chrono::seconds(10));
  words.End();
  const auto now = [&] { return session.host.clock().Ticks(); };
  const Milliseconds end = now() + timeout;
  while (!HasValue(session.host, name, value)) {
    if (now() >= end) {
      const std::optional<Target> target = FindTarget(session.host, name);
      throw CommandError{name + " is " + (target ? Quoted(target->ValueText()) : "gone") +
                         ", not " + Quoted(value) + ", after " + DurationText(timeout)};
    }
    session.host.Step(end - now());
  }
}

}  // namespace quarnel::command
