#pragma once

#include <functional>
#include <string>

#include "ui/wx/wx.h"

namespace quarnel {

// A page of local HTML. It runs no script, loads nothing from a network, and hands links to the
// user's browser.
class HtmlPage : public wxHtmlWindow {
 public:
  // `read` gives the content of a local page.
  using Reader = std::function<std::string(const std::string& location)>;
  HtmlPage(wxWindow* parent, Reader read);
  // Shows the file; for an address on a network, which is not fetched, a link to it.
  void Open(const std::string& location);
  const std::string& Location() const { return location_; }

  void OnLinkClicked(const wxHtmlLinkInfo& link) override;
  wxHtmlOpeningStatus OnOpeningURL(wxHtmlURLType type, const wxString& url,
                                   wxString* redirect) const override;

 private:
  void Paint(const wxString& body);

  Reader read_;
  std::string location_;
};

}  // namespace quarnel
