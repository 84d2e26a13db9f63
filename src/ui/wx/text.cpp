#include "ui/wx/text.h"

#include <wx/textwrapper.h>

#include <algorithm>

#include "base/text.h"
#include "base/unicode.h"

namespace quarnel {

wxString ToWx(std::string_view text) {
  const bool plain = std::all_of(text.begin(), text.end(), [](char c) {
    return static_cast<unsigned char>(c) < 0x80 && c != '\r';
  });
  if (plain) return wxString::FromAscii(text.data(), text.size());
  const std::u16string units = WellFormedUtf16(Replace(text, "\r\n", "\n"));
  wxString result;
  result.reserve(units.size());
  for (size_t i = 0; i < units.size(); ++i) {
    uint32_t point = units[i];
    if (point >= 0xD800 && point < 0xDC00) {
      point = 0x10000 + ((point - 0xD800) << 10) + (units[++i] - 0xDC00U);
    }
    result += wxUniChar(point);
  }
  return result;
}

wxString ToWx(const CaptionText& caption) {
  const std::string_view text = caption.text;
  if (caption.mnemonic == CaptionText::kNone) return wxControl::EscapeMnemonics(ToWx(text));
  return wxControl::EscapeMnemonics(ToWx(text.substr(0, caption.mnemonic))) + '&' +
         wxControl::EscapeMnemonics(ToWx(text.substr(caption.mnemonic)));
}

wxString ToWxLine(std::string_view text) { return ToWx(Printable(text)); }

wxString Wrapped(wxWindow& widget, const wxString& text, int width) {
  class Lines : public wxTextWrapper {
   public:
    wxString text;

   protected:
    void OnOutputLine(const wxString& line) override { text += line; }
    void OnNewLine() override { text += '\n'; }
  };
  Lines lines;
  lines.Wrap(&widget, text, width);
  return lines.text;
}

wxString WithShortWords(const wxWindow& widget, const wxString& text, int width) {
  constexpr size_t kSurelyShort = 24;
  constexpr size_t kLongest = 300;
  wxString result;
  for (size_t begin = 0; begin < text.length();) {
    const size_t end = std::min(text.find_first_of(" \n", begin), text.length());
    wxString word = text.Mid(begin, end - begin);
    if (word.length() > kLongest) {
      word = word.Left(kLongest / 2) + wxString::FromUTF8("\u2026") + word.Right(kLongest / 2);
    }
    wxString line;
    for (const wxUniChar letter : word) {
      const bool full =
          word.length() > kSurelyShort && widget.GetTextExtent(line + letter).x > width;
      if (full && !line.empty()) {
        result << line << '\n';
        line.clear();
      }
      line << letter;
    }
    result << line << text.Mid(end, 1);
    begin = end + 1;
  }
  return result;
}

std::string FromWx(const wxString& text) {
  const wxScopedCharBuffer bytes = text.utf8_str();
  return {bytes.data(), bytes.length()};
}

}  // namespace quarnel
