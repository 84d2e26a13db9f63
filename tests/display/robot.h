#pragma once

#include <deque>
#include <functional>
#include <string>

#include "ui/wx/wx.h"

namespace quarnel {

// A user: does one thing after the other by real mouse and keyboard events, each as soon as its
// moment has come. It works inside whatever message loop runs, also inside a scan.
class Robot : private wxEventFilter {
 public:
  using Find = std::function<wxWindow*()>;
  // A place on the screen, in pixels; wxDefaultPosition as long as there is none.
  using Place = std::function<wxPoint(wxWindow&)>;

  Robot();
  ~Robot() override;

  // Does `act` as soon as `when` holds.
  void Then(std::string what, std::function<bool()> when, std::function<void()> act);
  void Until(std::string what, std::function<bool()> when);
  // Clicks the widget that `find` gives, as soon as it can be clicked and is at rest.
  void Click(std::string what, Find find, Place place = MiddleOf,
             wxMouseButton button = wxMOUSE_BTN_LEFT);
  // Presses a key as soon as the window that `find` gives can take it.
  void Press(std::string what, const Find& find, int key, int modifiers);
  // Chooses the first entry of the menu that is open, or opens next.
  void ChooseFromMenu();
  // Clicks a button of the message box that shows.
  void AnswerBox(const std::string& button);

  // Runs a message loop until all is done; false, with what was waited for in Waiting(), when that
  // takes more than `seconds`.
  bool Run(int seconds);
  std::string Waiting() const { return steps_.empty() ? std::string() : steps_.front().what; }

  // Called, perhaps often, when the time is up.
  std::function<void()> onLate;

  static wxPoint MiddleOf(const wxWindow& widget);
  // The window on the screen with this name; null when there is none.
  static wxWindow* Shown(const wxString& name);

 private:
  struct Step {
    std::string what;
    std::function<bool()> done;  // asked once a turn
  };
  void Turn();
  int FilterEvent(wxEvent& event) override;

  wxTimer timer_;
  std::deque<Step> steps_;
  wxEventLoopBase* loop_ = nullptr;
  wxLongLong deadline_;
  bool inTurn_ = false;
  bool menuIsOpen_ = false;
};

}  // namespace quarnel
