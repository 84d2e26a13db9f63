#include "ui/console/names.h"

#include <algorithm>
#include <vector>

#include "base/text.h"
#include "controls/control.h"
#include "ui/console/command_error.h"
#include "ui/console/display_text.h"

namespace quarnel {
namespace {

Form* LoadedForm(const Host& host, std::string_view name) {
  const auto& forms = host.LoadedForms();
  const auto found = std::find_if(forms.begin(), forms.end(),
                                  [&](const Form* form) { return EqualText(form->Name(), name); });
  return found == forms.end() ? nullptr : *found;
}

}  // namespace

std::string Target::Name() const {
  return control ? form->Name() + "." + control->Name() : form->Name();
}

std::string Target::ValueText() const { return control ? control->ValueText() : form->Caption(); }

std::optional<std::string> Target::Property(std::string_view name) const {
  if (control) return control->Property(name);
  if (name == "caption") return form->Caption();
  if (name == "visible") return FlagText(form->Visible());
  if (name == "tag") return form->Tag();
  if (name == "windowstate") return std::to_string(static_cast<int>(form->StateOfWindow()));
  if (name == "left") return std::to_string(form->Place().left);
  if (name == "top") return std::to_string(form->Place().top);
  if (name == "topmost") return FlagText(form->TopMost());
  if (name == "showintaskbar") return FlagText(form->ShowInTaskbar());
  if (name == "type") return "Form";
  if (name == "revision") return std::to_string(form->Revision());
  return std::nullopt;
}

std::optional<Target> FindTarget(const Host& host, std::string_view name) {
  if (const size_t dot = name.find('.'); dot != std::string_view::npos) {
    Form* form = LoadedForm(host, name.substr(0, dot));
    Control* control = form ? form->Find(name.substr(dot + 1)) : nullptr;
    if (!control) return std::nullopt;
    return Target{form, control};
  }
  std::vector<Target> found;
  for (Form* form : host.LoadedForms()) {
    if (Control* control = form->Find(name)) found.push_back({form, control});
  }
  // Some names differ in letter case alone: the one that is written so is meant.
  const auto asWritten = [&](const Target& target) { return target.control->Name() == name; };
  if (std::count_if(found.begin(), found.end(), asWritten) == 1) {
    return *std::find_if(found.begin(), found.end(), asWritten);
  }
  if (found.size() > 1) {
    throw CommandError{"ambiguous name: " + Quoted(name) + " is on " + found[0].form->Name() +
                       " and " + found[1].form->Name()};
  }
  if (!found.empty()) return found.front();
  if (Form* form = LoadedForm(host, name)) return Target{form, nullptr};
  return std::nullopt;
}

Target TakeTarget(const Host& host, Words& words) {
  const std::string& name = words.Next();
  if (const auto target = FindTarget(host, name)) return *target;
  if (const std::string* index = words.Peek(); index && ParseCount(*index)) {
    if (const auto member = FindTarget(host, name + "(" + *index + ")")) {
      words.Next();
      return *member;
    }
  }
  throw CommandError{"unknown name: " + Quoted(name)};
}

Target TakeControl(const Host& host, Words& words) {
  const Target target = TakeTarget(host, words);
  if (!target.control) ThrowWrongKind(target, "control");
  return target;
}

void ThrowWrongKind(const Target& target, std::string_view kind) {
  throw CommandError{target.Name() + " is no " + std::string(kind)};
}

Form& FindForm(const Host& host, std::string_view name) {
  if (Form* form = LoadedForm(host, name)) return *form;
  throw CommandError{"unknown form: " + Quoted(name)};
}

}  // namespace quarnel
