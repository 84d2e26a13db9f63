#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "controls/host.h"
#include "ui/console/words.h"

// How scripts name forms and controls: "form.control", or the control alone when only one loaded
// form has it, in any letter case (between names that differ in nothing else, the one as written).
// A member of a control array is NAME(INDEX).
namespace quarnel {

struct Target {
  Form* form = nullptr;
  Control* control = nullptr;  // nothing when the form itself is meant

  std::string Name() const;       // "form.control", or the form's
  std::string ValueText() const;  // a form's value is its caption
  // By lower-case name; nothing when there is none of that name.
  std::optional<std::string> Property(std::string_view name) const;
};

// What the name stands for among the loaded forms; nothing when there is no such thing.
// CommandError when it is ambiguous.
std::optional<Target> FindTarget(const Host& host, std::string_view name);

// Takes a name from the words, and the index behind it where the name alone is that of a control
// array. CommandError when there is no such form or control.
Target TakeTarget(const Host& host, Words& words);

// The same where only a control will do.
Target TakeControl(const Host& host, Words& words);

// The same where only a control of one kind will do; `kind` is its name in the error line.
template <typename Kind>
struct KindTarget {
  Target target;
  Kind& control;
};

[[noreturn]] void ThrowWrongKind(const Target& target, std::string_view kind);

template <typename Kind>
KindTarget<Kind> TakeKind(const Host& host, Words& words, std::string_view kind) {
  const Target target = TakeControl(host, words);
  if (auto* control = dynamic_cast<Kind*>(target.control)) return {target, *control};
  ThrowWrongKind(target, kind);
}

// The form of this name; CommandError when none is loaded.
Form& FindForm(const Host& host, std::string_view name);

}  // namespace quarnel
