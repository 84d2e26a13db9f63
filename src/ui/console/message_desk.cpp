#include "ui/console/message_desk.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/text.h"

namespace quarnel {
namespace {

constexpr std::array<std::pair<std::string_view, Answer>, 4> kAnswers{{
    {"ok", Answer::kOk},
    {"cancel", Answer::kCancel},
    {"yes", Answer::kYes},
    {"no", Answer::kNo},
}};

struct Buttons {
  MessageButtons buttons;
  std::string_view name;
  std::array<std::string_view, 3> answers;
  size_t count;
};

// The last answer is what closing the box comes to.
constexpr std::array kButtons{
    Buttons{MessageButtons::kOk, "ok", {"ok"}, 1},
    Buttons{MessageButtons::kOkCancel, "okcancel", {"ok", "cancel"}, 2},
    Buttons{MessageButtons::kYesNoCancel, "yesnocancel", {"yes", "no", "cancel"}, 3},
    Buttons{MessageButtons::kYesNo, "yesno", {"yes", "no"}, 2},
};

const Buttons& NamesOf(MessageButtons buttons) {
  const auto found = std::find_if(kButtons.begin(), kButtons.end(),
                                  [&](const Buttons& entry) { return entry.buttons == buttons; });
  return found == kButtons.end() ? kButtons.front() : *found;
}

}  // namespace

bool MessageDesk::Queue(std::string_view answer) {
  if (StartsWithText(answer, kTextAnswer)) {
    answers_.push_back(std::string(kTextAnswer).append(answer.substr(kTextAnswer.size())));
    return true;
  }
  for (const auto& [word, button] : kAnswers) {
    if (!EqualText(word, answer)) continue;
    answers_.emplace_back(word);
    return true;
  }
  return false;
}

std::string MessageDesk::TakeFront() {
  std::string answer = std::move(answers_.front());
  answers_.pop_front();
  return answer;
}

void MessageDesk::Show(ShownBox box) {
  constexpr size_t kMostKept = 10'000;
  if (shown_.size() == kMostKept) {
    shown_.pop_front();
    ++dropped_;
  }
  shown_.push_back(std::move(box));
}

void MessageDesk::Answered(size_t number, std::string_view answer) {
  if (number > dropped_ && number - dropped_ <= shown_.size()) {
    shown_[number - dropped_ - 1].answer = answer;
  }
}

std::vector<ShownBox> MessageDesk::Take() {
  std::vector<ShownBox> boxes(shown_.begin(), shown_.end());
  dropped_ += shown_.size();
  shown_.clear();
  return boxes;
}

std::string_view IconName(MessageIcon icon) {
  switch (icon) {
    case MessageIcon::kCritical:
      return "critical";
    case MessageIcon::kQuestion:
      return "question";
    case MessageIcon::kExclamation:
      return "exclamation";
    case MessageIcon::kInformation:
      return "information";
    case MessageIcon::kNone:
      break;
  }
  return "none";
}

std::string_view ButtonsName(MessageButtons buttons) { return NamesOf(buttons).name; }

std::span<const std::string_view> AnswersTo(MessageButtons buttons) {
  const Buttons& entry = NamesOf(buttons);
  return std::span(entry.answers).first(entry.count);
}

Answer AnswerOf(std::string_view word) {
  const auto found = std::find_if(kAnswers.begin(), kAnswers.end(),
                                  [&](const auto& entry) { return entry.first == word; });
  return found == kAnswers.end() ? Answer::kOk : found->second;
}

std::string_view AnswerOfClosing(MessageButtons buttons) { return AnswersTo(buttons).back(); }

}  // namespace quarnel
