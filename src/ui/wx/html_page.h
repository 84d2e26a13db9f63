#pragma once

#include <functional>
#include <string>

#include "ui/wx/wx.h"

namespace quarnel {

// A page of local HTML. It runs no script, loads nothing from a network, and hands links to the
// user's browser.
class HtmlPage : public wxHtmlWindow {
 public:
  // `read` gives the content of a local page, or raises RuntimeError.
  using Reader = std::function<std::string(const std::string& location)>;
  // Is told the address of a link that the user clicks.
  using LinkHandler = std::function<void(const std::string& address)>;
  HtmlPage(wxWindow* parent, Reader read, LinkHandler follow);
  // Shows the file. An address on a network is not fetched: a link to it shows, above the page
  // `localPage` when there is one.
  void Open(const std::string& location, const std::string& localPage);
  const std::string& Location() const { return location_; }

  void OnLinkClicked(const wxHtmlLinkInfo& link) override;
  wxHtmlOpeningStatus OnOpeningURL(wxHtmlURLType type, const wxString& url,
                                   wxString* redirect) const override;

 private:
  void Paint(const wxString& body);
  // The content of the file, or that it cannot be shown.
  wxString BodyOf(const std::string& path) const;

  Reader read_;
  LinkHandler follow_;
  std::string location_;
};

}  // namespace quarnel
