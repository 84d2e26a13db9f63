#pragma once

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "controls/host.h"

namespace quarnel {

// A front for tests: a virtual clock, answers given in advance, and a record of what was shown.
class TestHost : public Host {
 public:
  TestHost();

  // Answers for the coming message boxes, in order. A box without one is answered by its only
  // button, or fails the test.
  std::deque<Answer> answers;
  std::vector<MessageBox> messages;
  std::string clipboard;
  bool ended = false;
  ScreenFacts screen;
  bool hasTray = true;

  // Runs once inside every DoEvents, while set.
  Handler onEvents;
  // Plays the user in a form of this name that is modal, or shows while a handler waits. A modal
  // form without a player gets time to close by its own timers.
  std::map<std::string, std::function<void(Form&)>> players;

  // The texts of the boxes that were shown.
  std::vector<std::string> Texts() const;

  // The number of DoEvents calls so far.
  long eventTurns = 0;

  VirtualClock& virtualClock() { return clock_; }

  Answer MsgBox(const MessageBox& box) override;
  std::optional<std::string> InputBox(std::string_view, std::string_view,
                                      std::string_view) override {
    return std::nullopt;
  }
  void RunModal(Form& form) override;
  // Gives it time; one that never holds fails the test.
  bool WaitUntil(const std::function<bool()>& condition) override;
  void SetClipboardText(std::string_view text) override { clipboard = text; }
  ScreenFacts Screen() const override { return screen; }
  bool HasTray() const override { return hasTray; }
  [[noreturn]] void EndProcess() override;

 protected:
  void ProcessFrontEvents(Milliseconds now) override;

 private:
  bool GiveTimeUntil(const std::function<bool()>& condition);

  VirtualClock clock_;
  bool inEvents_ = false;
};

}  // namespace quarnel
