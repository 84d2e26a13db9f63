#pragma once

#include <deque>
#include <functional>
#include <string>

#include "ui/wx/wx.h"

namespace quarnel {

// A user: does one thing after the other by real mouse and keyboard events, each as soon as its
// moment has come. It works inside whatever message loop runs, also inside a scan.
class Robot {
 public:
  Robot();
  ~Robot();

  // Does `act` as soon as `when` holds.
  void Then(std::string what, std::function<bool()> when, std::function<void()> act);
  // Clicks the widget that `find` gives, as soon as it can be clicked.
  void Click(std::string what, const std::function<wxWindow*()>& find);
  // Clicks a place on the screen, in pixels, as soon as `when` holds. `pressing` is called right
  // before.
  void ClickAt(std::string what, std::function<bool()> when, std::function<wxPoint()> place,
               std::function<void()> pressing = {});
  // Presses a key as soon as the window that `find` gives can take it.
  void Press(std::string what, const std::function<wxWindow*()>& find, int key, int modifiers);
  // Clicks a button of the message box that shows.
  void AnswerBox(const std::string& button);

  // Runs a message loop until all is done; false, with what was waited for in Waiting(), when that
  // takes more than `seconds`.
  bool Run(int seconds);
  std::string Waiting() const { return steps_.empty() ? std::string() : steps_.front().what; }

  // Called, perhaps often, when the time is up.
  std::function<void()> onLate;

  // Whether the widget that `find` gives can be clicked, and its window is at rest and in front.
  // Asked once a turn.
  static std::function<bool()> Ready(const std::function<wxWindow*()>& find);
  // A click at once, where the mouse is already over the window.
  static void ClickAt(wxPoint place);
  static wxPoint MiddleOf(const wxWindow& widget);
  // The window on the screen with this name; null when there is none.
  static wxWindow* Shown(const wxString& name);

 private:
  struct Step {
    std::string what;
    std::function<bool()> when;
    std::function<void()> act;
  };
  void Turn();

  wxTimer timer_;
  std::deque<Step> steps_;
  wxEventLoopBase* loop_ = nullptr;
  long deadline_ = 0;
  bool inTurn_ = false;
};

}  // namespace quarnel
