#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "controls/host.h"

namespace quarnel {

// A front that shows nothing and has no events of its own.
struct IdleHost : Host {
  using Host::Host;
  Answer MsgBox(const MessageBox&) override { return Answer::kOk; }
  std::optional<std::string> InputBox(std::string_view, std::string_view,
                                      std::string_view) override {
    return std::nullopt;
  }
  void RunModal(Form&) override {}
  void SetClipboardText(std::string_view) override {}
};

}  // namespace quarnel
