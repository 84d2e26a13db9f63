#include "display/robot.h"

#include <wx/stopwatch.h>
#include <wx/uiaction.h>
#include <wx/utils.h>

#include <cstdlib>

namespace quarnel {
namespace {

// About as fast as a quick user; a turn costs nothing.
constexpr int kTurn = 25;

// Where this program's own windows are. Other tests hide it from what they run, but the robot's
// events go through connections of their own.
const char* const kDisplay = std::getenv("DISPLAY");

}  // namespace

Robot::Robot() {
  if (kDisplay != nullptr) wxSetEnv("DISPLAY", wxString::FromUTF8(kDisplay));
  timer_.Bind(wxEVT_TIMER, [this](wxTimerEvent&) { Turn(); });
}

Robot::~Robot() { timer_.Stop(); }

void Robot::Then(std::string what, std::function<bool()> when, std::function<void()> act) {
  steps_.push_back({std::move(what), std::move(when), std::move(act)});
}

std::function<bool()> Robot::Ready(const std::function<wxWindow*()>& find) {
  // A window that has just been opened, or has come back to the front, is still moved about.
  constexpr int kTurnsAtRest = 4;
  return [find, place = wxPoint(-1, -1), turns = 0]() mutable {
    wxWindow* widget = find();
    if (widget == nullptr || !widget->IsShownOnScreen() || !widget->IsEnabled()) return false;
    auto* window = dynamic_cast<wxTopLevelWindow*>(wxGetTopLevelParent(widget));
    const wxPoint middle = MiddleOf(*widget);
    const bool rests = middle == place && (window == nullptr || window->IsActive());
    turns = rests ? turns + 1 : 0;
    place = middle;
    return turns >= kTurnsAtRest;
  };
}

void Robot::Click(std::string what, const std::function<wxWindow*()>& find) {
  ClickAt(std::move(what), Ready(find), [find] { return MiddleOf(*find()); });
}

void Robot::ClickAt(std::string what, std::function<bool()> when, std::function<wxPoint()> place,
                    std::function<void()> pressing) {
  // The system must have seen the mouse arrive before it knows whose click it is.
  constexpr int kTurnsAtRest = 3;
  Then(what, std::move(when), [place = std::move(place)] {
    wxUIActionSimulator user;
    user.MouseMove(place());
  });
  Then(
      std::move(what), [turns = 0]() mutable { return ++turns >= kTurnsAtRest; },
      [pressing = std::move(pressing)] {
        if (pressing) pressing();
        wxUIActionSimulator user;
        user.MouseClick();
      });
}

void Robot::Press(std::string what, const std::function<wxWindow*()>& find, int key,
                  int modifiers) {
  Then(std::move(what), Ready(find), [key, modifiers] {
    wxUIActionSimulator user;
    user.Char(key, modifiers);
  });
}

void Robot::AnswerBox(const std::string& button) {
  Click("the box's button " + button, [button]() -> wxWindow* {
    wxWindow* box = Shown("MessageBox");
    return box == nullptr ? nullptr : wxWindow::FindWindowByName(button, box);
  });
  // Until it has gone the windows behind it take no click.
  Then(
      "the box's end",
      [button] {
        // Another one may follow at once.
        wxWindow* box = Shown("MessageBox");
        return box == nullptr || wxWindow::FindWindowByName(button, box) == nullptr;
      },
      [] {});
}

bool Robot::Run(int seconds) {
  wxGUIEventLoop loop;
  loop_ = &loop;
  deadline_ = static_cast<long>(wxGetUTCTimeMillis().GetValue()) + seconds * 1000L;
  timer_.Start(kTurn);
  loop.Run();
  timer_.Stop();
  loop_ = nullptr;
  return steps_.empty();
}

void Robot::Turn() {
  if (inTurn_ || loop_ == nullptr) return;
  const bool late = static_cast<long>(wxGetUTCTimeMillis().GetValue()) > deadline_;
  if (steps_.empty() || late) {
    // A box that nobody answers would hold the loop for ever.
    if (late) {
      if (onLate) onLate();
      if (auto* box = dynamic_cast<wxDialog*>(Shown("MessageBox"))) box->EndModal(wxID_CANCEL);
    }
    if (wxEventLoopBase::GetActive() == loop_) loop_->ScheduleExit();
    return;
  }
  if (!steps_.front().when()) return;
  inTurn_ = true;
  const Step step = std::move(steps_.front());
  steps_.pop_front();
  step.act();
  inTurn_ = false;
}

void Robot::ClickAt(wxPoint place) {
  wxUIActionSimulator user;
  user.MouseMove(place);
  user.MouseClick();
}

wxPoint Robot::MiddleOf(const wxWindow& widget) {
  const wxSize size = widget.GetSize();
  return widget.GetScreenPosition() + wxPoint(size.x / 2, size.y / 2);
}

wxWindow* Robot::Shown(const wxString& name) {
  for (wxWindow* window : wxTopLevelWindows) {
    if (window->GetName() == name && window->IsShown()) return window;
  }
  return nullptr;
}

}  // namespace quarnel
