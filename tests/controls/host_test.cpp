#include "support/host_suite.h"
#include "support/test_host.h"

namespace quarnel {
namespace {

class TestHostUnderTest : public HostUnderTest {
 public:
  Host& host() override { return host_; }
  void AnswerNext(Answer answer) override { host_.answers.push_back(answer); }
  void PlayNext(const std::string& form, std::function<void(Form&)> user) override {
    host_.players[form] = std::move(user);
  }

 private:
  TestHost host_;
};

INSTANTIATE_TYPED_TEST_SUITE_P(TestHost, HostSuite, TestHostUnderTest);

}  // namespace
}  // namespace quarnel
