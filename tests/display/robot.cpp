#include "display/robot.h"

#include <wx/uiaction.h>
#include <wx/utils.h>

#include <cstdlib>

#include "display/hand.h"

namespace quarnel {
namespace {

// About as fast as a quick user; a turn costs nothing.
constexpr int kTurn = 25;

// Where this program's own windows are. Other tests hide it from what they run, but the robot's
// events go through connections of their own.
const char* const kDisplay = std::getenv("DISPLAY");

// Whether a widget can be used and stands still: one that has just been opened, or has come back to
// the front, is still moved about. Asked once a turn.
class AtRest {
 public:
  AtRest(Robot::Find find, Robot::Place place) : find_(std::move(find)), place_(std::move(place)) {}

  // How many turns it has stood at place().
  int Turns() {
    wxWindow* widget = find_();
    const bool usable = widget != nullptr && widget->IsShownOnScreen() && widget->IsEnabled();
    const wxPoint place = usable ? place_(*widget) : wxDefaultPosition;
    const bool rests = place != wxDefaultPosition && place == last_;
    last_ = place;
    return turns_ = rests ? turns_ + 1 : 0;
  }
  wxPoint place() const { return last_; }
  wxWindow& widget() const { return *find_(); }
  void Anew() { turns_ = 0; }

 private:
  Robot::Find find_;
  Robot::Place place_;
  wxPoint last_ = wxDefaultPosition;
  int turns_ = 0;
};

constexpr int kTurnsAtRest = 4;

// One click. The system must have seen the mouse arrive before it knows whose click it is; where it
// gives it to another window all the same, the user tries once more.
class Clicking {
 public:
  Clicking(AtRest target, wxMouseButton button) : target_(std::move(target)), button_(button) {}

  bool Done() {
    // The system may tell the place where it last was told to be for a tenth of a second.
    constexpr int kTurnsToArrive = 5;
    constexpr int kPatience = 40;
    if (pressed_) {
      if (hand::HasClicked()) return true;
      if (++turnsPressed_ < kPatience) return false;
      pressed_ = false;
      target_.Anew();
    }
    const int turns = target_.Turns();
    if (turns == kTurnsAtRest) hand::MoveTo(target_.place());
    if (turns < kTurnsAtRest + kTurnsToArrive) return false;
    if (hand::IsOver(target_.widget(), target_.place())) {
      hand::Click(target_.widget(), target_.place(), button_);
      pressed_ = true;
      turnsPressed_ = 0;
    } else if (turns > kPatience) {
      // Something else has moved it.
      target_.Anew();
    }
    return false;
  }

 private:
  AtRest target_;
  wxMouseButton button_;
  bool pressed_ = false;
  int turnsPressed_ = 0;
};

}  // namespace

Robot::Robot() {
  if (kDisplay != nullptr) wxSetEnv("DISPLAY", wxString::FromUTF8(kDisplay));
  timer_.Bind(wxEVT_TIMER, [this](wxTimerEvent&) { Turn(); });
  wxEvtHandler::AddFilter(this);
}

Robot::~Robot() {
  wxEvtHandler::RemoveFilter(this);
  timer_.Stop();
}

void Robot::Then(std::string what, std::function<bool()> when, std::function<void()> act) {
  steps_.push_back({std::move(what), [when = std::move(when), act = std::move(act)] {
                      if (!when()) return false;
                      act();
                      return true;
                    }});
}

void Robot::Until(std::string what, std::function<bool()> when) {
  steps_.push_back({std::move(what), std::move(when)});
}

void Robot::Click(std::string what, Find find, Place place, wxMouseButton button) {
  Until(std::move(what), [click = Clicking({std::move(find), std::move(place)}, button)]() mutable {
    return click.Done();
  });
}

void Robot::Press(std::string what, const Find& find, int key, int modifiers) {
  Until(std::move(what), [rest = AtRest(find, MiddleOf), key, modifiers]() mutable {
    if (rest.Turns() < kTurnsAtRest || !hand::TypesInto(rest.widget())) return false;
    return wxUIActionSimulator().Char(key, modifiers);
  });
}

void Robot::ChooseFromMenu() {
  Then(
      "the menu's entry", [this] { return menuIsOpen_; },
      [] {
        wxUIActionSimulator user;
        user.Char(WXK_DOWN);
        user.Char(WXK_RETURN);
      });
}

void Robot::AnswerBox(const std::string& button) {
  const auto find = [button]() -> wxWindow* {
    wxWindow* box = Shown("MessageBox");
    return box == nullptr ? nullptr : wxWindow::FindWindowByName(button, box);
  };
  Click("the box's button " + button, find);
  // Until it has gone the windows behind it take no click; another one may follow at once.
  Until("the box's end", [find] { return find() == nullptr; });
}

bool Robot::Run(int seconds) {
  wxGUIEventLoop loop;
  loop_ = &loop;
  deadline_ = wxGetUTCTimeMillis() + seconds * 1000LL;
  timer_.Start(kTurn);
  loop.Run();
  // The program's end, which ends every loop, may be what the last step was for.
  Turn();
  timer_.Stop();
  loop_ = nullptr;
  return steps_.empty();
}

void Robot::Turn() {
  if (inTurn_ || loop_ == nullptr) return;
  const bool late = wxGetUTCTimeMillis() > deadline_;
  if (steps_.empty() || late) {
    // A box that nobody answers would hold the loop for ever.
    if (late) {
      if (onLate) onLate();
      if (auto* box = dynamic_cast<wxDialog*>(Shown("MessageBox"))) box->EndModal(wxID_CANCEL);
    }
    if (wxEventLoopBase::GetActive() == loop_) loop_->ScheduleExit();
    return;
  }
  inTurn_ = true;
  if (steps_.front().done()) steps_.pop_front();
  inTurn_ = false;
}

int Robot::FilterEvent(wxEvent& event) {
  if (event.GetEventType() == wxEVT_MENU_OPEN) menuIsOpen_ = true;
  if (event.GetEventType() == wxEVT_MENU_CLOSE) menuIsOpen_ = false;
  return Event_Skip;
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
