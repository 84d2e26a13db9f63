#include "ui/main/tray.h"

#include <cstddef>

namespace quarnel {
namespace {

constexpr size_t kLongestTip = 64;

// The front of a text, without half a character at its end.
std::string_view Front(std::string_view text) {
  if (text.size() <= kLongestTip) return text;
  size_t end = kLongestTip;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
  return text.substr(0, end);
}

}  // namespace

void clsTray::ShowIcon(const Form& form) {
  icon_.SetTip(Front(form.Caption()));
  icon_.SetPicture("");
  icon_.SetVisible(true);
  bRunningInTray_ = true;
}

void clsTray::RemoveIcon() {
  icon_.SetVisible(false);
  bRunningInTray_ = false;
}

void clsTray::ChangeIcon(const Image& image) {
  if (bRunningInTray_) icon_.SetPicture(image.Name());
}

void clsTray::ChangeToolTip(std::string_view text) {
  if (bRunningInTray_) icon_.SetTip(Front(text));
}

}  // namespace quarnel
