#include <string>

#include "base/text.h"
#include "controls/simple_controls.h"
#include "ui/console/command_error.h"
#include "ui/console/commands.h"
#include "ui/console/display_text.h"

// The commands that look at a single control or act on it.
namespace quarnel::command {
namespace {

void WriteControls(Session& session, Form& form) {
  for (const Control* control : form.Controls()) {
    session.records.Write({{"name", form.Name() + "." + control->Name()},
                           {"type", std::string(control->Type())},
                           {"visible", control->Visible()},
                           {"enabled", control->Enabled()},
                           {"value", control->ValueText()}});
  }
}

bool IsTicked(const Control& control) {
  return dynamic_cast<const CheckBox*>(&control) != nullptr ||
         dynamic_cast<const OptionButton*>(&control) != nullptr;
}

}  // namespace

bool TakesActions(Session& session, const Target& target) {
  if (target.control->Enabled()) return true;
  session.host.Notice(target.Name() + " is disabled: nothing done");
  return false;
}

void Forms(Session& session, Words& words) {
  if (words.More()) {
    if (!EqualText(words.Next(), "all")) throw UsageError();
    words.End();
    for (const std::string& name : session.program.FormNames()) {
      session.records.Write({{"name", name}});
    }
    return;
  }
  for (const Form* form : session.host.LoadedForms()) {
    session.records.Write(
        {{"name", form->Name()}, {"visible", form->Visible()}, {"caption", form->Caption()}});
  }
}

void Load(Session& session, Words& words) {
  const std::string name = words.Next();
  words.End();
  if (!session.program.LoadForm(name)) throw CommandError{"no form " + Quoted(name)};
}

void Controls(Session& session, Words& words) {
  const bool one = words.More();
  Form* form = one ? &FindForm(session.host, words.Next()) : nullptr;
  words.End();
  if (form) return WriteControls(session, *form);
  for (Form* loaded : session.host.LoadedForms()) WriteControls(session, *loaded);
}

void Get(Session& session, Words& words) {
  const Target target = TakeTarget(session.host, words);
  if (!words.More()) {
    session.records.Write({{"value", target.ValueText()}});
    return;
  }
  const std::string name = ToLower(words.Next());
  words.End();
  const std::optional<std::string> value = target.Property(name);
  if (!value) throw CommandError{target.Name() + " has no property " + Quoted(name)};
  session.records.Write({{"value", *value}});
}

void Set(Session& session, Words& words) {
  const Target target = TakeControl(session.host, words);
  std::string value = words.Next();
  words.End();
  if (IsTicked(*target.control)) value = FlagText(ParseFlag(value));
  if (TakesActions(session, target)) target.control->SetByUser(value);
}

void Click(Session& session, Words& words) {
  const Target target = TakeControl(session.host, words);
  words.End();
  if (TakesActions(session, target)) target.control->ClickByUser();
}

void Press(Session& session, Words& words) {
  const Target target = TakeControl(session.host, words);
  words.End();
  // A copy, since the handler may unload the control's form.
  const Handler press = target.control->MouseDown;
  if (TakesActions(session, target) && press) press();
}

void RightClick(Session& session, Words& words) {
  const Target target = TakeControl(session.host, words);
  words.End();
  if (TakesActions(session, target)) target.control->RightClickByUser();
}

void Hover(Session& session, Words& words) {
  const Target target = TakeControl(session.host, words);
  words.End();
  const Handler move = target.control->MouseMove;
  if (move) move();
}

void Mouse(Session& session, Words& words) {
  const auto take = [&] {
    const std::string word = words.Next();
    const std::optional<size_t> pixels = ParseCount(word);
    constexpr size_t kLargest = 100000;
    if (!pixels || *pixels > kLargest) throw CommandError{"no place: " + Quoted(word)};
    return static_cast<int>(*pixels);
  };
  const int x = take();
  const int y = take();
  words.End();
  session.host.PlaceMouse({x, y});
}

void Expect(Session& session, Words& words) {
  const Target target = TakeTarget(session.host, words);
  const std::string expected = words.Next();
  words.End();
  const std::string value = target.ValueText();
  if (value != expected) {
    throw CommandError{target.Name() + " is " + Quoted(value) + ", not " + Quoted(expected)};
  }
}

}  // namespace quarnel::command
