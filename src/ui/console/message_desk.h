#pragma once

#include <deque>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "controls/host.h"

namespace quarnel {

// What begins the answer to a prompt; the text follows.
inline constexpr std::string_view kTextAnswer = "text:";

// A message box or prompt that was shown, as `messages` prints it.
struct ShownBox {
  std::string title;
  std::string icon;
  std::string buttons;
  std::string answer;
  std::string text;
};

// The answers that wait for coming boxes, and the boxes that were shown.
class MessageDesk {
 public:
  // "yes", "no", "ok", "cancel" or "text:...", the words in any letter case; false for any other.
  bool Queue(std::string_view answer);
  // The next answer, without taking it; nothing when none waits.
  const std::string* Front() const { return answers_.empty() ? nullptr : &answers_.front(); }
  std::string TakeFront();

  // Enters a box that comes up now; its answer follows. Only the newest 10,000 are kept.
  void Show(ShownBox box);
  // The answer of the box that was shown as the `number`th, counted from 1.
  void Answered(size_t number, std::string_view answer);
  size_t Count() const { return dropped_ + shown_.size(); }
  // The boxes shown since the last call.
  std::vector<ShownBox> Take();

 private:
  std::deque<std::string> answers_;
  std::deque<ShownBox> shown_;
  size_t dropped_ = 0;
};

std::string_view IconName(MessageIcon icon);
std::string_view ButtonsName(MessageButtons buttons);

// The words that answer a box with these buttons, in the order of the buttons.
std::span<const std::string_view> AnswersTo(MessageButtons buttons);

// The button of a word that AnswersTo gave.
Answer AnswerOf(std::string_view word);

// What closing the box without choosing a button comes to.
std::string_view AnswerOfClosing(MessageButtons buttons);

}  // namespace quarnel
