#include "ui/main/news.h"

#include "core/existing_files.h"
#include "core/paths.h"
#include "ui/main/maker_pages.h"

namespace quarnel {

News::News(const Services& services, NewsPage& page) : s_(services), page_(page) {
  page_.lblReportPage.Click = [this] {
    Reporting(s_.log, "lblReportPage_Click in frmMain",
              [&] { OpenMakerPage(s_, maker_page::kReport); });
  };
  page_.wbrNewsAndReport.LinkClick = [this](std::string_view address) {
    Reporting(s_.log, "wbrNewsAndReport_LinkClick in frmMain", [&] { OpenAddress(s_, address); });
  };
}

void News::ShowFile() {
  Files& files = s_.platform.files();
  const std::string path = GetPathWithSlash(s_.platform.machine().ProgramFolder()) + "News.html";
  // Where it cannot be made the page says that there are no news.
  if (!FileExists(files, path)) IgnoringErrors([&] { files.Open(path, OpenMode::kReadWrite); });
  page_.wbrNewsAndReport.Navigate(path);
}

void News::ShowReportPage() { page_.wbrNewsAndReport.Navigate(MakerPage(maker_page::kReport)); }

}  // namespace quarnel
