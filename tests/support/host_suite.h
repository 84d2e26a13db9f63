#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "controls/host.h"
#include "controls/simple_controls.h"
#include "controls/timer.h"

// What every front must do alike: modal forms, message boxes, timers, handlers inside handlers, and
// closing. A front's tests instantiate the suite with a class of their own:
//
//   INSTANTIATE_TYPED_TEST_SUITE_P(Console, HostSuite, ConsoleUnderTest);
namespace quarnel {

// The front under test, and the user in front of it.
class HostUnderTest {
 public:
  virtual ~HostUnderTest() = default;
  virtual Host& host() = 0;
  // Answers the next message box that nobody has an answer for yet.
  virtual void AnswerNext(Answer answer) = 0;
  // Plays the user, once, in the next modal form of this name.
  virtual void PlayNext(const std::string& form, std::function<void(Form&)> user) = 0;
  // Lets time go by, real or virtual, in which events are processed.
  virtual void LetPass(Milliseconds duration) { host().Advance(duration); }
};

// A form that notes what happens to it.
class NotingForm : public Form {
 public:
  NotingForm(Host& host, std::string name, std::string& notes)
      : Form(host, std::move(name)), notes_(notes) {}

  void Note(const std::string& text) { notes_ += text + " "; }
  Answer Ask() {
    return host().MsgBox({.text = "Sure?",
                          .title = "Test",
                          .icon = MessageIcon::kQuestion,
                          .buttons = MessageButtons::kYesNo});
  }

  Button cmdOne{*this, "cmdOne"};
  Timer tmrOne{*this, "tmrOne", Milliseconds(10), false};
  Timer tmrTwo{*this, "tmrTwo", Milliseconds(10), false};

 protected:
  void Form_Load() override { Note("load"); }
  void Form_QueryUnload(bool&, UnloadMode) override { Note("query"); }
  void Form_Unload() override { Note("unload"); }

 private:
  std::string& notes_;
};

template <typename Front>
class HostSuite : public ::testing::Test {
 protected:
  Host& host() { return front.host(); }
  std::unique_ptr<NotingForm> Make(const std::string& name) {
    return std::make_unique<NotingForm>(host(), name, notes);
  }
  std::string Taken() { return std::exchange(notes, {}); }
  bool IsLoaded(const Form& form) {
    const auto& loaded = host().LoadedForms();
    return std::find(loaded.begin(), loaded.end(), &form) != loaded.end();
  }
  // A real clock may be late, but never stands still for long.
  void Until(const std::function<bool()>& condition) {
    for (int turn = 0; turn < 500 && !condition(); ++turn) front.LetPass(Milliseconds(10));
    EXPECT_TRUE(condition());
  }

  Front front;
  std::string notes;
};

TYPED_TEST_SUITE_P(HostSuite);

TYPED_TEST_P(HostSuite, BoxGivesTheUsersAnswer) {
  auto form = this->Make("frmOne");
  form->Show();
  this->front.AnswerNext(Answer::kYes);
  this->front.AnswerNext(Answer::kNo);
  EXPECT_EQ(form->Ask(), Answer::kYes);
  EXPECT_EQ(form->Ask(), Answer::kNo);
}

// The timer's box lies on top: it was shown later, and takes the later answer.
TYPED_TEST_P(HostSuite, TimersTickBehindABox) {
  auto form = this->Make("frmOne");
  form->Show();
  form->tmrOne.Tick = [&] {
    form->tmrOne.SetEnabled(false);
    form->Note(form->Ask() == Answer::kNo ? "inner-no" : "inner-yes");
  };
  form->tmrOne.SetEnabled(true);
  this->host().clock().Pass(Milliseconds(20));
  this->front.AnswerNext(Answer::kYes);
  this->front.AnswerNext(Answer::kNo);
  EXPECT_EQ(form->Ask(), Answer::kYes);
  this->Until([&] { return !form->tmrOne.Enabled(); });
  EXPECT_EQ(this->Taken(), "load inner-no ");
}

TYPED_TEST_P(HostSuite, ModalFormHoldsItsCaller) {
  auto form = this->Make("frmOne");
  this->front.PlayNext("frmOne", [](Form& shown) { shown.Find("cmdOne")->ClickByUser(); });
  form->cmdOne.Click = [&] { form->Close(UnloadMode::kCode); };
  form->ShowModal();
  EXPECT_EQ(this->Taken(), "load query unload ");
  EXPECT_FALSE(this->IsLoaded(*form));
  // A hidden one stays loaded.
  auto hidden = this->Make("frmTwo");
  this->front.PlayNext("frmTwo", [](Form& shown) { shown.Hide(); });
  hidden->ShowModal();
  EXPECT_TRUE(this->IsLoaded(*hidden));
  EXPECT_FALSE(hidden->Visible());
}

TYPED_TEST_P(HostSuite, ModalFormsNest) {
  auto outer = this->Make("frmOuter");
  auto inner = this->Make("frmInner");
  this->front.PlayNext("frmOuter", [&](Form& shown) {
    this->front.PlayNext("frmInner", [&](Form& deeper) {
      EXPECT_TRUE(outer->Visible());
      deeper.Close(UnloadMode::kUser);
    });
    inner->ShowModal();
    outer->Note("back");
    shown.Close(UnloadMode::kUser);
  });
  outer->ShowModal();
  EXPECT_EQ(this->Taken(), "load load query unload back query unload ");
}

TYPED_TEST_P(HostSuite, TimerIsNeverInsideItself) {
  auto form = this->Make("frmOne");
  form->Load();
  int depth = 0;
  int deepest = 0;
  bool other = false;
  form->tmrTwo.Tick = [&] { other = other || depth == 1; };
  form->tmrOne.Tick = [&] {
    deepest = std::max(deepest, ++depth);
    this->host().clock().Pass(Milliseconds(30));
    this->host().DoEvents();
    --depth;
  };
  form->tmrOne.SetEnabled(true);
  form->tmrTwo.SetEnabled(true);
  this->Until([&] { return other; });
  EXPECT_EQ(deepest, 1);
}

// A long job processes events, in which a handler may stop it.
TYPED_TEST_P(HostSuite, HandlersRunInsideALongJob) {
  auto form = this->Make("frmOne");
  form->Show();
  bool stop = false;
  form->cmdOne.Click = [&] { stop = true; };
  form->tmrOne.Tick = [&] { form->cmdOne.ClickByUser(); };
  form->tmrOne.SetEnabled(true);
  int steps = 0;
  while (!stop && steps < 1000) {
    this->host().clock().Pass(Milliseconds(1));
    this->host().DoEvents();
    ++steps;
  }
  EXPECT_TRUE(stop);
  EXPECT_GT(steps, 1);
}

TYPED_TEST_P(HostSuite, FormEndsInItsOwnHandlers) {
  FormSlot<NotingForm> slot([this] { return this->Make("frmOne"); });
  NotingForm& form = slot.Touch();
  form.Show();
  form.tmrOne.Tick = [&] {
    form.Close(UnloadMode::kCode);
    slot->Note("anew");
    form.Note("still");  // the one that ended can be read to the handler's end
  };
  form.tmrTwo.Tick = [&] { form.Note("never"); };
  form.tmrOne.SetEnabled(true);
  this->Until([&] { return !form.IsLoaded(); });
  form.tmrTwo.SetEnabled(true);
  this->front.LetPass(Milliseconds(50));
  EXPECT_EQ(this->Taken(), "load query unload load anew still ");
}

TYPED_TEST_P(HostSuite, EndOfTheProcessLeavesEverything) {
  auto form = this->Make("frmOne");
  this->front.PlayNext("frmOne", [](Form& shown) { shown.host().EndProcess(); });
  EXPECT_THROW(form->ShowModal(), ProcessEnded);
  EXPECT_EQ(this->Taken(), "load ");
}

TYPED_TEST_P(HostSuite, HandlerWaitsForTheUser) {
  auto form = this->Make("frmOne");
  form->Show();
  bool answered = false;
  form->cmdOne.Click = [&] { answered = true; };
  this->front.PlayNext("frmOne", [](Form& shown) { shown.Find("cmdOne")->ClickByUser(); });
  EXPECT_TRUE(this->host().WaitUntil([&] { return answered; }));
  EXPECT_TRUE(answered);
}

// One event is under way in another thread, one comes by a handler, and in between the thread
// sleeps: neither a timer nor a pause of its own has it look for them.
TYPED_TEST_P(HostSuite, SleepsUntilAnEventComes) {
  auto form = this->Make("frmOne");
  form->Load();
  form->tmrOne.SetInterval(std::chrono::hours(1));
  form->tmrOne.SetEnabled(true);
  const Host::UnderWay underWay(this->host());
  EventWait& events = this->host().events();
  std::thread other([&] {
    std::this_thread::sleep_for(Milliseconds(50));
    events.Post([&] {
      form->Note("came");
      bool inner = false;
      events.Post([&] { inner = true; });
      const auto innerCame = [&] { return inner; };
      while (!innerCame()) this->host().WaitForEvent();
      form->Note("inner");
    });
  });
  const auto came = [&] { return this->notes.find("inner") != std::string::npos; };
  int rounds = 0;
  for (; !came() && rounds < 100; ++rounds) this->host().WaitForEvent();
  other.join();
  EXPECT_EQ(this->Taken(), "load came inner ");
  EXPECT_LE(rounds, 5);
}

TYPED_TEST_P(HostSuite, EventsComeWhileTimePassesAndInsideALongJob) {
  auto form = this->Make("frmOne");
  form->Load();
  const Host::UnderWay underWay(this->host());
  this->host().events().Post([&] { form->Note("posted"); });
  this->Until([&] { return this->notes.find("posted") != std::string::npos; });
  bool came = false;
  this->host().events().Post([&] { came = true; });
  for (int turn = 0; turn < 1000 && !came; ++turn) {
    std::this_thread::sleep_for(Milliseconds(1));
    this->host().DoEvents();
  }
  EXPECT_TRUE(came);
}

REGISTER_TYPED_TEST_SUITE_P(HostSuite, BoxGivesTheUsersAnswer, TimersTickBehindABox,
                            ModalFormHoldsItsCaller, ModalFormsNest, TimerIsNeverInsideItself,
                            HandlersRunInsideALongJob, FormEndsInItsOwnHandlers,
                            EndOfTheProcessLeavesEverything, HandlerWaitsForTheUser,
                            SleepsUntilAnEventComes, EventsComeWhileTimePassesAndInsideALongJob);

}  // namespace quarnel
