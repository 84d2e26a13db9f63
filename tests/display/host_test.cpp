#include <algorithm>
#include <deque>
#include <utility>

#include "display/robot.h"
#include "support/host_suite.h"
#include "ui/wx/wx_host.h"

namespace quarnel {
namespace {

// The front with windows. Its user looks some times a second at what has come up last, presses the
// button of a box, or plays in a modal form.
class WxUnderTest : public HostUnderTest, private wxTimer {
 public:
  WxUnderTest() { Look(); }
  ~WxUnderTest() override { Stop(); }

  Host& host() override { return host_; }
  void AnswerNext(Answer answer) override { answers_.push_back(answer); }
  void PlayNext(const std::string& form, std::function<void(Form&)> user) override {
    users_.emplace_back(form, std::move(user));
  }
  void LetPass(Milliseconds duration) override {
    wxGUIEventLoop loop;
    wxTimer end;
    end.Bind(wxEVT_TIMER, [&](wxTimerEvent&) { loop.ScheduleExit(); });
    end.StartOnce(static_cast<int>(duration.count()));
    // In the program whatever sets a timer off is an action itself.
    host_.Act([] {});
    loop.Run();
  }

 private:
  struct ShownBox {
    wxWindow* window;
    Answer answer;
    int looks = 0;
  };

  void Look() {
    constexpr int kPause = 20;
    StartOnce(kPause);
  }
  void Notify() override {
    // What is done now may hold this look's caller for long, and needs looks meanwhile.
    Look();
    NoteBoxes();
    if (boxes_.empty()) {
      Play();
    } else {
      PressLast();
    }
  }
  void NoteBoxes() {
    for (wxWindow* window : wxTopLevelWindows) {
      const bool known = std::any_of(boxes_.begin(), boxes_.end(),
                                     [&](const ShownBox& box) { return box.window == window; });
      if (known || window->GetName() != "MessageBox" || !window->IsShown()) continue;
      if (answers_.empty()) continue;
      boxes_.push_back({window, answers_.front()});
      answers_.pop_front();
    }
  }
  // A user takes a moment, in which another box may come up on top.
  void PressLast() {
    constexpr int kMoment = 8;
    if (++boxes_.back().looks < kMoment) return;
    const ShownBox box = boxes_.back();
    boxes_.pop_back();
    const char* name = box.answer == Answer::kYes ? "Yes" : "No";
    wxWindow* button = wxWindow::FindWindowByName(name, box.window);
    ASSERT_NE(button, nullptr);
    wxCommandEvent press(wxEVT_BUTTON, button->GetId());
    button->ProcessWindowEvent(press);
  }
  void Play() {
    for (Form* form : host_.LoadedForms()) {
      const auto user = std::find_if(users_.begin(), users_.end(), [&](const auto& entry) {
        return entry.first == form->Name();
      });
      const FormWindow* window = host_.WindowOf(*form);
      if (user == users_.end() || window == nullptr || !window->Window()->IsShown()) continue;
      const std::function<void(Form&)> play = std::move(user->second);
      users_.erase(user);
      host_.Act([&] { play(*form); });
      return;
    }
  }

  std::deque<Answer> answers_;
  std::vector<ShownBox> boxes_;
  std::vector<std::pair<std::string, std::function<void(Form&)>>> users_;
  WxHost host_{[](const std::string&) { return std::string(); }};
};

INSTANTIATE_TYPED_TEST_SUITE_P(WxHost, HostSuite, WxUnderTest);

}  // namespace
}  // namespace quarnel
