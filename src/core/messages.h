#pragma once

#include <string>
#include <string_view>

#include "controls/host.h"
#include "core/settings.h"

namespace quarnel {

// Message boxes under the product's name.
class Messages {
 public:
  Messages(Host& host, const Settings& settings)
      : host_(host), title_(settings.ApplicationName()) {}

  void Tell(std::string_view text) const { Show(text, MessageIcon::kNone, MessageButtons::kOk); }
  void Inform(std::string_view text) const {
    Show(text, MessageIcon::kInformation, MessageButtons::kOk);
  }
  // The same under a title of its own.
  void Inform(std::string_view text, std::string_view title) const {
    host_.MsgBox({.text = std::string(text),
                  .title = std::string(title),
                  .icon = MessageIcon::kInformation});
  }
  void Warn(std::string_view text) const {
    Show(text, MessageIcon::kExclamation, MessageButtons::kOk);
  }
  // Whether the answer is yes.
  bool Ask(std::string_view text, MessageIcon icon = MessageIcon::kQuestion) const {
    return Show(text, icon, MessageButtons::kYesNo) == Answer::kYes;
  }

 private:
  Answer Show(std::string_view text, MessageIcon icon, MessageButtons buttons) const {
    return host_.MsgBox(
        {.text = std::string(text), .title = title_, .icon = icon, .buttons = buttons});
  }

  Host& host_;
  const std::string& title_;
};

}  // namespace quarnel
