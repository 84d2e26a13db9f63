#include "controls/form.h"

#include <gtest/gtest.h>

#include "controls/simple_controls.h"
#include "support/test_host.h"

namespace quarnel {
namespace {

class LoggedForm : public Form {
 public:
  LoggedForm(Host& host, std::string& log) : Form(host, "frmLogged"), log_(log) {}

  CheckBox chkOne{*this, "chkOne"};
  bool refuses = false;

 protected:
  void Form_Load() override { log_ += "load "; }
  void Form_Activate() override { log_ += "activate "; }
  void Form_Resize() override { log_ += "resize "; }
  void Form_QueryUnload(bool& cancel, UnloadMode mode) override {
    log_ += "query" + std::to_string(static_cast<int>(mode)) + " ";
    cancel = refuses;
  }
  void Form_Unload() override {
    log_ += "unload ";
    Close(UnloadMode::kCode);  // asked for once more while it goes: nothing more happens
  }

 private:
  std::string& log_;
};

class Forms : public ::testing::Test {
 protected:
  std::string Taken() { return std::exchange(log, {}); }
  TestHost host;
  std::string log;
};

TEST_F(Forms, LiveAsWindowsDo) {
  LoggedForm form(host, log);
  form.Show();
  form.Show();
  EXPECT_EQ(Taken(), "load resize activate ");
  EXPECT_EQ(host.LoadedForms().size(), 1u);
  form.SetWindowState(WindowState::kMinimised);
  form.Hide();
  form.SetWindowState(WindowState::kNormal);
  form.Show();
  EXPECT_EQ(Taken(), "resize resize activate ");
  form.refuses = true;
  EXPECT_FALSE(form.Close(UnloadMode::kUser));
  EXPECT_TRUE(form.IsLoaded() && form.Visible());
  form.refuses = false;
  EXPECT_TRUE(form.Close(UnloadMode::kSessionEnd));
  EXPECT_TRUE(form.Close(UnloadMode::kUser));
  EXPECT_EQ(Taken(), "query0 query2 unload ");
  EXPECT_FALSE(form.Visible());
  EXPECT_TRUE(host.LoadedForms().empty());
}

// A button that closes its form and opens it again, twice over, still stands in its own handler.
TEST_F(Forms, StayReadableInsideTheirOwnHandlers) {
  FormSlot<LoggedForm> slot([this] { return std::make_unique<LoggedForm>(host, log); });
  LoggedForm& first = slot.Touch();
  first.chkOne.Click = [&slot, &first] {
    for (int i = 0; i < 2; ++i) {
      slot.Unload();
      slot->chkOne.SetCaption("new");
    }
    EXPECT_EQ(first.chkOne.Value(), 1);
    EXPECT_NE(&slot.Touch(), &first);
  };
  first.chkOne.ClickByUser();
}

}  // namespace
}  // namespace quarnel
