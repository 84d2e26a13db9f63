#pragma once

#include "core/services.h"
#include "ui/main/news_page.h"

namespace quarnel {

// The news page at work. Its links open in the user's own browser.
class News {
 public:
  News(const Services& services, NewsPage& page);

  // Shows the file of the news, which is made when there is none.
  void ShowFile();
  // Shows the maker's page for reporting a threat.
  void ShowReportPage();

 private:
  Services s_;
  NewsPage& page_;
};

}  // namespace quarnel
