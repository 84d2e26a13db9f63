#include <map>
#include <sstream>
#include <utility>

#include "support/host_suite.h"
#include "ui/console/console_host.h"

namespace quarnel {
namespace {

// A script for the host: at each command that a modal form asks for, it plays the user of the form
// that opened last.
class ConsoleUnderTest : public HostUnderTest, private CommandPlayer {
 public:
  ConsoleUnderTest() {
    host_.SetVirtualTime(DateTime(std::chrono::hours(24)));
    host_.Play(*this);
  }

  Host& host() override { return host_; }
  void AnswerNext(Answer answer) override {
    host_.messages().Queue(answer == Answer::kYes ? "yes" : "no");
  }
  void PlayNext(const std::string& form, std::function<void(Form&)> user) override {
    users_[form] = std::move(user);
  }

 private:
  bool RunNext(std::string_view /*prompt*/) override {
    const std::vector<Form*> forms = host_.LoadedForms();
    for (auto form = forms.rbegin(); form != forms.rend(); ++form) {
      const auto user = users_.find((*form)->Name());
      if (!(*form)->Visible() || user == users_.end()) continue;
      const std::function<void(Form&)> play = std::move(user->second);
      users_.erase(user);
      play(**form);
      return true;
    }
    return false;
  }
  void RunCommand(std::string_view /*command*/, size_t /*line*/) override {}

  std::ostringstream err_;
  ConsoleHost host_{err_, {}};
  std::map<std::string, std::function<void(Form&)>> users_;
};

INSTANTIATE_TYPED_TEST_SUITE_P(ConsoleHost, HostSuite, ConsoleUnderTest);

}  // namespace
}  // namespace quarnel
