#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "controls/host.h"
#include "platform/event_wait.h"

namespace quarnel {

// A front that shows nothing and has no events of its own.
struct IdleHost : Host {
  explicit IdleHost(Clock& clock) : Host(clock, MakeEventWait()) {}
  Answer MsgBox(const MessageBox&) override { return Answer::kOk; }
  std::optional<std::string> InputBox(std::string_view, std::string_view,
                                      std::string_view) override {
    return std::nullopt;
  }
  void RunModal(Form&) override {}
  bool WaitUntil(const std::function<bool()>& condition) override { return condition(); }
  void SetClipboardText(std::string_view) override {}
};

}  // namespace quarnel
