#include "ui/wx/html_page.h"

#include "base/host_files.h"
#include "ui/wx/text.h"
#include "ui/wx/theme.h"

namespace quarnel {

HtmlPage::HtmlPage(wxWindow* parent, Reader read)
    : wxHtmlWindow(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize,
                   wxHW_SCROLLBAR_AUTO | wxBORDER_NONE),
      read_(std::move(read)) {
  SetBorders(FromDIP(8));
  SetStandardFonts(parent->GetFont().GetPointSize());
}

void HtmlPage::Paint(const wxString& body) {
  const auto hex = [](const wxColour& colour) { return colour.GetAsString(wxC2S_HTML_SYNTAX); };
  SetPage("<html><body bgcolor=\"" + hex(theme::Surface()) + "\" text=\"" + hex(theme::Text()) +
          "\" link=\"" + hex(theme::Accent()) + "\">" + body + "</body></html>");
}

void HtmlPage::Open(const std::string& location) {
  location_ = location;
  Paint(ToWx(location));
}

void HtmlPage::OnLinkClicked(const wxHtmlLinkInfo& link) {
  const wxString& address = link.GetHref();
  if (address.StartsWith("http://") || address.StartsWith("https://")) {
    wxLaunchDefaultBrowser(address);
  }
}

wxHtmlOpeningStatus HtmlPage::OnOpeningURL(wxHtmlURLType, const wxString&, wxString*) const {
  return wxHTML_BLOCK;
}

}  // namespace quarnel
