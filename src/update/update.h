#pragma once

#include <utility>

#include "controls/timer.h"
#include "core/main_window.h"
#include "core/settings.h"
#include "update/update_page.h"

namespace quarnel {

// The Live Update page at work.
class Update {
 public:
  struct Uses {
    UpdatePage& page;
    const Settings& settings;
    MainWindow& window;
    Timer& tmrIsConnectionOk;
  };
  explicit Update(const Uses& uses);

  // Opens the page and starts what its button starts.
  void lblUpdatesAvailable_Click();
  // Another page came to the front, or this one did.
  void PageChanged(bool shown);
  // Nothing runs that could be cancelled.
  void HideCancel();

  void tmrLiveUpadate_Timer();
  void tmrIsConnectionOk_Timer();

  // A transfer failed for want of a connection; whoever looks next takes the word of it.
  void NoteConnectionLost() { connectionLost_ = true; }
  bool TakeConnectionLost() { return std::exchange(connectionLost_, false); }
  // The connection is there: the timer counts anew.
  void NoteConnection() { connectionIsOk_ = true; }

  // Shows when the archives were fetched.
  void SetFileTransferProtocolValues();

 private:
  Uses u_;
  bool connectionLost_ = false;
  bool connectionIsOk_ = false;
  int connectionTicks_ = 0;
  int minutesSinceCheck_ = 0;
};

// Whether a download runs: the user can then only cancel it.
bool DownloadRuns(const UpdatePage& page);

}  // namespace quarnel
