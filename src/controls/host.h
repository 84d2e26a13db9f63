#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/event_wait.h"
#include "controls/clock.h"
#include "controls/form.h"
#include "controls/screen.h"
#include "controls/timer.h"

namespace quarnel {

enum class MessageIcon {
  kNone = 0,
  kCritical = 16,
  kQuestion = 32,
  kExclamation = 48,
  kInformation = 64
};
enum class MessageButtons { kOk = 0, kOkCancel = 1, kYesNoCancel = 3, kYesNo = 4 };
enum class Answer { kOk = 1, kCancel = 2, kYes = 6, kNo = 7 };

struct MessageBox {
  std::string text;
  std::string title;
  MessageIcon icon = MessageIcon::kNone;
  MessageButtons buttons = MessageButtons::kOk;
};

enum class Pointer { kDefault = 0, kHourglass = 11 };

// What a front provides, and the one message loop: it knows the loaded forms and fires their
// timers. Everything happens on one thread; a handler may run inside another one's event
// processing.
class Host {
 public:
  Host(Clock& clock, std::unique_ptr<EventWait> events)
      : clock_(&clock), events_(std::move(events)) {}
  virtual ~Host() = default;
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  // Runs the handlers of all due timers, each at most once and in the order in which they fell due,
  // then those of event sources and whatever the front has pending. Costs one look at the clock
  // when there is nothing to do.
  void DoEvents();

  // Lets time go by, firing each timer when it falls due and running event sources as they come.
  void Advance(Milliseconds duration);
  // The same until one of these has happened, at most `limit`.
  void Step(std::optional<Milliseconds> limit);

  // Sleeps until an event comes or a timer falls due, and runs its handler. Under a virtual clock
  // real time passes only while something is under way in it (UnderWay).
  virtual void WaitForEvent() { Step(std::nullopt); }
  // Waits until `condition` holds, which is looked at after each event. Whoever plays the user goes
  // on meanwhile, as in a modal form; false when nobody is left who could make it hold.
  virtual bool WaitUntil(const std::function<bool()>& condition) = 0;

  // Where sources of events are entered: sockets, notices of changes, work of other threads.
  EventWait& events() { return *events_; }

  // Something happens in real time as long as this lives, such as a transfer: a virtual clock goes
  // on with the real one where it would have jumped.
  class UnderWay {
   public:
    explicit UnderWay(Host& host) : host_(host) { ++host_.underWay_; }
    ~UnderWay() { --host_.underWay_; }
    UnderWay(const UnderWay&) = delete;
    UnderWay& operator=(const UnderWay&) = delete;

   private:
    Host& host_;
  };

  // Shows a message box and returns the button that was pressed. Timers go on ticking meanwhile.
  virtual Answer MsgBox(const MessageBox& box) = 0;
  // Asks for one line of text; nothing when the user cancelled.
  virtual std::optional<std::string> InputBox(std::string_view prompt, std::string_view title,
                                              std::string_view initial) = 0;
  // Returns when the visible form `form` was hidden or unloaded.
  virtual void RunModal(Form& form) = 0;
  virtual void SetClipboardText(std::string_view text) = 0;
  // Desktop, task bar and mouse at this moment.
  virtual ScreenFacts Screen() const { return {}; }
  // Whether icons in the notification area can be seen and clicked. Where they cannot, a window
  // that would leave the screen for its icon is only minimised.
  virtual bool HasTray() const { return true; }
  // Ends the process at once. It does not return: a front that must unwind its own frames first
  // throws ProcessEnded, which nobody else catches.
  [[noreturn]] virtual void EndProcess();

  Pointer MousePointer() const { return pointer_; }
  void SetMousePointer(Pointer pointer) { pointer_ = pointer; }

  Clock& clock() const { return *clock_; }
  // All intervals begin anew, so that what a clock measures is exact from its first moment on.
  void SetClock(Clock& clock);

  // The loaded forms in the order of their loading.
  const std::vector<Form*>& LoadedForms() const { return forms_; }

 protected:
  // The front's own pending events; called in every DoEvents, with the clock's ticks since even
  // reading that takes its time, so it has to be cheap.
  virtual void ProcessFrontEvents(Milliseconds /*now*/) {}
  // Runs the handlers of all due timers, as DoEvents does.
  void FireDueTimers() { FireDue(clock_->Ticks()); }
  // The form was unloaded or has ended; nothing but its address may be used.
  virtual void FormForgotten(Form& /*form*/) {}
  // When the next timer falls due; nothing when none runs.
  std::optional<Milliseconds> NextDue();
  bool IsUnderWay() const { return underWay_ > 0; }

 private:
  friend class Form;
  friend class HostTimer;
  void Add(Form& form);
  void Forget(Form& form);
  void AddTimer(HostTimer& timer);
  void RemoveTimer(HostTimer& timer);
  void Restart(HostTimer& timer);
  void FireDue(Milliseconds now);
  void Sleep(std::optional<Milliseconds> pause);
  void RunSources(Milliseconds now);
  HostTimer* FirstDue(Milliseconds now) const;

  Clock* clock_;
  std::unique_ptr<EventWait> events_;
  int underWay_ = 0;
  // When event sources were last looked at inside a working handler.
  Milliseconds lastLook_{-1};
  std::vector<Form*> forms_;
  std::vector<HostTimer*> timers_;
  // No timer falls due before this moment.
  Milliseconds earliest_{0};
  Pointer pointer_ = Pointer::kDefault;
};

// Thrown by EndProcess to leave every handler on the stack.
struct ProcessEnded {};

}  // namespace quarnel
