#include "ui/update_page.h"

#include "base/date_time.h"

namespace quarnel {
namespace {

constexpr std::string_view kUpdateMoment = "mmm dd, yyyy at hh:nn:ss AMPM";

}  // namespace

UpdatePage::UpdatePage(Form& owner) : form(owner) {
  lblFTPStatus.SetVisible(false);
  pgbFTP.SetVisible(false);
  // The transfers are not part of the program yet.
  cmdDownload.Click = [this] {
    lblFTPStatus.SetCaption("This version of the program cannot download updates.");
    lblFTPStatus.SetVisible(true);
  };
}

bool DownloadRuns(const UpdatePage& page) {
  return !page.cmdDownload.Visible() && page.cmdFTPDownloadCancel.Visible();
}

void SetFileTransferProtocolValues(UpdatePage& page, const Settings& settings) {
  page.lblTransferInfo.SetVisible(false);
  const auto show = [](TextBox& box, const std::string& stored) {
    if (stored == setting::kSignaturesUpdated.fallback) return box.SetText("[NOT UPDATED YET]");
    const auto moment = ParseDate(stored);
    // What is no date is shown as it stands.
    box.SetText(" " + (moment ? FormatDate(*moment, kUpdateMoment) : stored));
  };
  show(page.txtFTPExecutableZIPFile, settings.GetOther(setting::kProgramUpdated));
  show(page.txtFTPSignatureZIPFile, settings.Get(setting::kSignaturesUpdated));
}

}  // namespace quarnel
