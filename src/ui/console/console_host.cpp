#include "ui/console/console_host.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "base/text.h"
#include "core/fields.h"
#include "platform/event_wait.h"
#include "ui/console/display_text.h"
#include "ui/console/records.h"

namespace quarnel {
namespace {

// A box's text in one line.
std::string InOneLine(std::string_view text) { return Printable(EscapeField(text)); }

bool Stands(const Host& host, const Target& target) {
  const auto& forms = host.LoadedForms();
  if (std::find(forms.begin(), forms.end(), target.form) == forms.end()) return false;
  const auto& controls = target.form->Controls();
  return std::find(controls.begin(), controls.end(), target.control) != controls.end();
}

}  // namespace

// The base class only keeps the address of the clock, which is made after it.
ConsoleHost::ConsoleHost(std::ostream& err, Options options)
    : Host(realClock_, MakeEventWait()), err_(err), options_(options) {}

void ConsoleHost::Notice(std::string_view text) {
  if (progress_) progress_->Wipe();
  if (line_ > 0) err_ << line_ << ": ";
  err_ << text << '\n';
  err_.flush();
}

void ConsoleHost::Fail(std::string_view text) {
  if (!failed_) Notice(text);
  failed_ = true;
  throw ProcessEnded();
}

Answer ConsoleHost::MsgBox(const MessageBox& box) {
  messages_.Show({.title = box.title,
                  .icon = std::string(IconName(box.icon)),
                  .buttons = std::string(ButtonsName(box.buttons)),
                  .answer = {},
                  .text = box.text});
  const size_t number = messages_.Count();
  // The answer is taken before events are processed: a box that a timer shows on top of this one
  // takes the next.
  const std::string answer = TakeAnswer(box);
  messages_.Answered(number, answer);
  DoEvents();
  return AnswerOf(answer);
}

std::string ConsoleHost::TakeAnswer(const MessageBox& box) {
  const auto buttons = AnswersTo(box.buttons);
  const bool byItself = box.buttons == MessageButtons::kOk && (Starts() || jobs_ > 0);
  // An answer to some later question must not be used up by a box that needs none.
  const bool queueIsMeant = !byItself || (messages_.Front() && *messages_.Front() == "ok");
  if (queueIsMeant) {
    const auto queued = TakeQueued(box.text, [&](std::string_view word) {
      return std::find(buttons.begin(), buttons.end(), word) != buttons.end();
    });
    if (queued) return *queued;
  }
  if (byItself) {
    if (options_.tellsBoxes) Notice(Printable(box.title) + ": " + InOneLine(box.text));
    return "ok";
  }
  if (options_.person) return AskForButton(box);
  Fail("message box without an answer: " + InOneLine(box.text));
}

std::optional<std::string> ConsoleHost::TakeQueued(
    std::string_view text, const std::function<bool(std::string_view)>& fits) {
  if (!messages_.Front()) return std::nullopt;
  std::string answer = messages_.TakeFront();
  if (fits(answer)) return answer;
  const std::string complaint =
      "the box has no button for the answer " + Quoted(answer) + ": " + InOneLine(text);
  if (!options_.person) Fail(complaint);
  Notice(complaint);
  return std::nullopt;
}

void ConsoleHost::PrintBox(const MessageBox& box) {
  if (progress_) progress_->Wipe();
  err_ << "-- " << Printable(box.title);
  if (box.icon != MessageIcon::kNone) err_ << " (" << IconName(box.icon) << ")";
  err_ << " --\n";
  for (const std::string& line : Split(Replace(box.text, "\r\n", "\n"), "\n")) {
    err_ << Printable(line) << '\n';
  }
}

std::string ConsoleHost::AskForButton(const MessageBox& box) {
  PrintBox(box);
  const auto buttons = AnswersTo(box.buttons);
  const std::string question =
      Join(std::vector<std::string>(buttons.begin(), buttons.end()), "/") + "> ";
  while (true) {
    err_ << question;
    err_.flush();
    const std::optional<std::string> line = options_.person->ReadLine();
    if (!line) return std::string(AnswerOfClosing(box.buttons));
    const std::string word = ToLower(Trim(*line));
    if (word.empty() && buttons.size() == 1) return std::string(buttons.front());
    for (const std::string_view button : buttons) {
      if (!word.empty() && (word == button || word == button.substr(0, 1))) {
        return std::string(button);
      }
    }
  }
}

std::optional<std::string> ConsoleHost::InputBox(std::string_view prompt, std::string_view title,
                                                 std::string_view initial) {
  messages_.Show({.title = std::string(title),
                  .icon = "none",
                  .buttons = "input",
                  .answer = {},
                  .text = std::string(prompt)});
  const size_t number = messages_.Count();
  std::optional<std::string> answer = TakeQueued(prompt, [](std::string_view word) {
    return word == "cancel" || word.starts_with(kTextAnswer);
  });
  if (!answer && !options_.person) {
    Fail("message box without an answer: " + InOneLine(prompt));
  }
  if (!answer) {
    PrintBox({.text = std::string(prompt), .title = std::string(title)});
    err_ << "(" << Printable(initial) << ")> ";
    err_.flush();
    const std::optional<std::string> line = options_.person->ReadLine();
    answer = line ? std::string(kTextAnswer) + (line->empty() ? std::string(initial) : *line)
                  : std::string("cancel");
  }
  messages_.Answered(number, *answer);
  DoEvents();
  if (*answer == "cancel") return std::nullopt;
  return answer->substr(kTextAnswer.size());
}

void ConsoleHost::RunModal(Form& form) {
  // The form's own object may be gone once it was unloaded.
  const auto isOpen = [&] {
    const auto& forms = LoadedForms();
    return std::find(forms.begin(), forms.end(), &form) != forms.end() && form.Visible();
  };
  const bool closes = closingJobs_ > 0;
  if (closes && options_.tellsBoxes) Notice(Printable(form.Caption()) + ": closed unanswered");
  if (!Starts() && !closes) {
    PlayUntil([&] { return !isOpen(); }, form.Name() + "> ");
  }
  if (isOpen()) form.Close(Starts() ? UnloadMode::kCode : UnloadMode::kUser);
  if (isOpen()) form.Hide();
}

bool ConsoleHost::WaitUntil(const std::function<bool()>& condition) {
  if (Starts() || closingJobs_ > 0) return condition();
  return PlayUntil(condition, "> ");
}

bool ConsoleHost::PlayUntil(const std::function<bool()>& condition, std::string_view prompt) {
  while (!condition()) {
    if (!player_->RunNext(prompt)) return condition();
  }
  return true;
}

void ConsoleHost::Add(Watch watch) {
  const uint64_t start = watch.target.control->Revision();
  watches_.push_back({std::move(watch), start, line_});
  UpdateListening();
}

void ConsoleHost::Listen() {
  if (progress_) progress_->Update();
  if (!watches_.empty()) RunDueWatches();
}

void ConsoleHost::RunDueWatches() {
  for (size_t i = 0; i < watches_.size();) {
    const PlacedWatch& placed = watches_[i];
    const Target& target = placed.watch.target;
    const bool gone = !Stands(*this, target);
    if (!gone && target.control->Revision() - placed.start < placed.watch.count) {
      ++i;
      continue;
    }
    const PlacedWatch due = std::move(watches_[i]);
    watches_.erase(watches_.begin() + static_cast<std::ptrdiff_t>(i));
    UpdateListening();
    if (gone) continue;  // its form was unloaded: it can never fall due
    if (progress_) progress_->Wipe();
    player_->RunCommand(due.watch.command, due.line);
    // The command may have processed events itself, and so have run or added others.
    i = 0;
  }
}

void ConsoleHost::SetVirtualTime(DateTime now) {
  if (virtualClock_) {
    virtualClock_->SetNow(now);
  } else {
    SetClock(virtualClock_.emplace(now));
  }
}

ConsoleHost::Progress::Progress(ConsoleHost& host, std::ostream& out, Terminal& terminal,
                                ProgressControls controls)
    : host_(host), line_(out, terminal, host.realClock_, controls), outer_(host.progress_) {
  host_.progress_ = &line_;
  host_.UpdateListening();
}

ConsoleHost::Progress::~Progress() {
  host_.progress_ = outer_;
  host_.UpdateListening();
}

}  // namespace quarnel
