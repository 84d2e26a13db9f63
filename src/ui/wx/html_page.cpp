#include "ui/wx/html_page.h"

#include "base/runtime_error.h"
#include "controls/simple_controls.h"
#include "ui/wx/text.h"
#include "ui/wx/theme.h"

namespace quarnel {
namespace {

wxString AsText(const std::string& text) {
  wxString html = ToWx(text);
  html.Replace("&", "&amp;");
  html.Replace("<", "&lt;");
  html.Replace(">", "&gt;");
  html.Replace("\"", "&quot;");
  return html;
}

}  // namespace

HtmlPage::HtmlPage(wxWindow* parent, Reader read, LinkHandler follow)
    : wxHtmlWindow(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize,
                   wxHW_SCROLLBAR_AUTO | wxBORDER_NONE),
      read_(std::move(read)),
      follow_(std::move(follow)) {
  SetBorders(FromDIP(8));
  SetStandardFonts(parent->GetFont().GetPointSize());
  Paint({});
}

void HtmlPage::Paint(const wxString& body) {
  const auto hex = [](const wxColour& colour) { return colour.GetAsString(wxC2S_HTML_SYNTAX); };
  SetPage("<html><body bgcolor=\"" + hex(theme::Surface()) + "\" text=\"" + hex(theme::Text()) +
          "\" link=\"" + hex(theme::Link()) + "\">" + body + "</body></html>");
}

void HtmlPage::Open(const std::string& location, const std::string& localPage) {
  location_ = location;
  if (!IsNetworkAddress(location)) return Paint(BodyOf(location));
  const wxString address = AsText(location);
  const wxString link = "<p><a href=\"" + address + "\">" + address + "</a></p>";
  Paint(localPage.empty()
            ? "<p>Nothing of this page is kept on this computer yet. It can be read at</p>" + link
            : link + BodyOf(localPage));
}

wxString HtmlPage::BodyOf(const std::string& path) const {
  if (path.empty()) return {};
  try {
    return ToWx(read_(path));
  } catch (const RuntimeError& error) {
    return "<p>" + AsText(path + ": " + error.Description()) + "</p>";
  }
}

void HtmlPage::OnLinkClicked(const wxHtmlLinkInfo& link) {
  const wxString& address = link.GetHref();
  if (address.StartsWith("#")) {
    ScrollToAnchor(address.Mid(1));
  } else {
    follow_(FromWx(address));
  }
}

wxHtmlOpeningStatus HtmlPage::OnOpeningURL(wxHtmlURLType, const wxString&, wxString*) const {
  return wxHTML_BLOCK;
}

}  // namespace quarnel
