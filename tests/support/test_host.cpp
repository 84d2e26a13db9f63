#include "support/test_host.h"

#include <gtest/gtest.h>

#include "platform/event_wait.h"

namespace quarnel {
namespace {

DateTime Start() {
  using namespace std::chrono;
  return local_days(2024y / March / 5) + hours(14) + minutes(30);
}

}  // namespace

// The base class only keeps the address of the clock, which is made after it.
TestHost::TestHost() : Host(clock_, MakeEventWait()), clock_(Start()) {}

std::vector<std::string> TestHost::Texts() const {
  std::vector<std::string> texts;
  for (const MessageBox& box : messages) texts.push_back(box.text);
  return texts;
}

Answer TestHost::MsgBox(const MessageBox& box) {
  messages.push_back(box);
  // A box that a timer shows on top of this one takes the next answer.
  std::optional<Answer> answer;
  if (!answers.empty()) {
    answer = answers.front();
    answers.pop_front();
  }
  DoEvents();
  if (answer) return *answer;
  if (box.buttons != MessageButtons::kOk) ADD_FAILURE() << "no answer for: " << box.text;
  return box.buttons == MessageButtons::kOk ? Answer::kOk : Answer::kCancel;
}

void TestHost::RunModal(Form& form) {
  if (const auto player = players.find(form.Name()); player != players.end()) {
    player->second(form);
  }
  if (!GiveTimeUntil([&] { return !form.IsLoaded() || !form.Visible(); })) {
    ADD_FAILURE() << "modal form " << form.Name() << " stays open";
    form.Hide();
  }
}

bool TestHost::WaitUntil(const std::function<bool()>& condition) {
  const std::vector<Form*> forms = LoadedForms();
  for (Form* form : forms) {
    const auto player = players.find(form->Name());
    if (form->Visible() && player != players.end() && !condition()) player->second(*form);
  }
  const bool holds = GiveTimeUntil(condition);
  EXPECT_TRUE(holds) << "what is waited for does not come";
  return holds;
}

bool TestHost::GiveTimeUntil(const std::function<bool()>& condition) {
  for (int turn = 0; turn < 1000; ++turn) {
    if (condition()) return true;
    Step(NextDue() || IsUnderWay() ? std::nullopt : std::optional(Milliseconds(10)));
  }
  return condition();
}

[[noreturn]] void TestHost::EndProcess() {
  ended = true;
  throw ProcessEnded();
}

void TestHost::ProcessFrontEvents(Milliseconds /*now*/) {
  ++eventTurns;
  if (!onEvents || inEvents_) return;
  inEvents_ = true;
  const Handler handler = onEvents;  // it may take itself away
  handler();
  inEvents_ = false;
}

}  // namespace quarnel
