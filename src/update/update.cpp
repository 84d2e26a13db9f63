#include "update/update.h"

#include "core/page_moment.h"

namespace quarnel {

Update::Update(const Uses& uses) : u_(uses) {
  UpdatePage& page = u_.page;
  Show(page);
  // The transfers are not part of the program yet.
  page.cmdDownload.Click = [&page] {
    page.lblFTPStatus.SetCaption("This version of the program cannot download updates.");
    page.facts.told = true;
    Show(page);
  };
}

void Update::SetFileTransferProtocolValues() {
  u_.page.lblTransferInfo.SetVisible(false);
  const auto show = [](TextBox& box, const std::string& stored) {
    if (stored == setting::kSignaturesUpdated.fallback) return box.SetText("[NOT UPDATED YET]");
    box.SetText(" " + PageMoment(stored));
  };
  show(u_.page.txtFTPExecutableZIPFile, u_.settings.Get(setting::kUpdatePageProgramUpdated));
  show(u_.page.txtFTPSignatureZIPFile, u_.settings.Get(setting::kSignaturesUpdated));
}

void Update::lblUpdatesAvailable_Click() {
  u_.window.OpenTab(Tab::kLiveUpdate);
  if (u_.page.cmdDownload.Enabled()) u_.page.cmdDownload.ClickByUser();
}

void Update::PageChanged(bool shown) {
  u_.page.facts.cancellable = !(u_.page.cmdDownload.Enabled() && shown);
  Show(u_.page);
}

void Update::HideCancel() {
  u_.page.facts.cancellable = false;
  Show(u_.page);
}

// Counts minutes. The setting is an index into the list of hours and taken for the hours
// themselves, so the wait is an hour shorter than the list shows.
void Update::tmrLiveUpadate_Timer() {
  ++minutesSinceCheck_;
  if (minutesSinceCheck_ / 60.0 > u_.settings.Get(setting::kTimerAfterHours)) {
    minutesSinceCheck_ = 1;
  }
}

void Update::tmrIsConnectionOk_Timer() {
  if (connectionIsOk_) connectionTicks_ = 0;
  connectionIsOk_ = false;
  if (++connectionTicks_ <= 3) return;
  u_.tmrIsConnectionOk.SetEnabled(false);
  connectionTicks_ = 0;
}

bool DownloadRuns(const UpdatePage& page) {
  return !page.cmdDownload.Visible() && page.cmdFTPDownloadCancel.Visible();
}

}  // namespace quarnel
