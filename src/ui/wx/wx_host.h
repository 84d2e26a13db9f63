#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "controls/host.h"
#include "ui/wx/form_window.h"
#include "ui/wx/tray.h"
#include "ui/wx/wx.h"

namespace quarnel {

// The front with windows. It makes a window for each form that shows, keeps the windows up to their
// forms, and is the user's way to them. Everything that a user does, and every timer, runs through
// Act, also while another handler processes events.
class WxHost : public Host {
 public:
  // `readPage` gives the content of a local HTML page.
  explicit WxHost(std::function<std::string(const std::string&)> readPage);
  ~WxHost() override;

  Answer MsgBox(const MessageBox& box) override;
  std::optional<std::string> InputBox(std::string_view prompt, std::string_view title,
                                      std::string_view initial) override;
  void RunModal(Form& form) override;
  void WaitForEvent() override;
  bool WaitUntil(const std::function<bool()>& condition) override;
  void SetClipboardText(std::string_view text) override;
  ScreenFacts Screen() const override;
  bool HasTray() const override { return Tray::Available(); }
  // Unwinds every handler and ends the message loops.
  [[noreturn]] void EndProcess() override;
  bool HasEnded() const { return ended_; }

  // Runs what a user or a timer sets off; nothing is thrown out of it. A failure that no handler
  // took is shown.
  void Act(const Handler& action);
  // Closes all forms, as at the end of the user's session.
  void EndSession();
  // Brings all windows up to their forms now.
  void Sync();
  // The window of a form that shows; null when there is none.
  FormWindow* WindowOf(const Form& form) const;

  // What the front itself looks after, such as whether another instance asked for this one. Runs
  // some times a second.
  Handler watch;

 protected:
  void ProcessFrontEvents(Milliseconds now) override;
  void FormForgotten(Form& form) override;

 private:
  // Counts how deep the program is in its own handlers.
  class Depth;
  // A handler waits in a loop of the toolkit's, in which windows show as at rest.
  class ModalWait;

  void Settle();
  void Pump();
  void SyncIfDue();
  // How long windows stand still inside a working handler.
  Milliseconds StillPause() const;
  void OnTimer();
  void Arm();
  void ShowPointer();
  void SyncTrays();
  void LeaveLoops();
  void LeaveWaits();
  void DropGone();
  void EnableBehind(const Form& form);
  wxWindow* ActiveWindow() const;
  wxWindow* ParentOfBox();
  Milliseconds Now() { return realClock_.Ticks(); }

  RealClock realClock_;
  Front front_;
  wxTimer timer_;
  std::vector<std::unique_ptr<FormWindow>> windows_;
  // Of forms that are gone, until no handler is left that may have come from them.
  std::vector<std::unique_ptr<FormWindow>> gone_;
  std::vector<std::unique_ptr<Tray>> trays_;
  struct ModalLoop {
    const Form* form;
    wxEventLoopBase* loop;
    // Keeps the windows behind it from the user.
    std::unique_ptr<wxWindowDisabler> others;
  };
  std::vector<ModalLoop> modal_;
  // Handlers that wait, each in a loop.
  struct Waiting {
    const std::function<bool()>* condition;
    wxEventLoopBase* loop;
  };
  std::vector<Waiting> waits_;
  Milliseconds nextPump_{0};
  Milliseconds nextShow_{0};
  // A handler may have changed what shows since the last Sync.
  bool stale_ = true;
  // Since when the windows stand still inside the working handler.
  Milliseconds stillSince_{0};
  // Of showing changes the last time, with the painting that followed; at first that of a page.
  Milliseconds showCost_{25};
  Milliseconds lastWatch_{0};
  int depth_ = 0;
  bool syncing_ = false;
  bool busy_ = false;
  bool ended_ = false;
  std::shared_ptr<void> eventWatch_;
};

}  // namespace quarnel
