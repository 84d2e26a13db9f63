#pragma once

#include <string>
#include <string_view>

#include "controls/form.h"
#include "controls/simple_controls.h"
#include "core/services.h"

namespace quarnel {

class frmSpywareDefinitions;

// What the pages of the set-up wizard share with its driver and with the window of the help pages.
struct WizardState {
  std::string mWizardAction;  // the answer of the page that closed last, one of wizard_action
  std::string helpPage;       // the path of the help page that was asked for last
};

namespace wizard_action {
inline constexpr std::string_view kNext = "Next";
inline constexpr std::string_view kBack = "Back";
inline constexpr std::string_view kSkip = "Skip";
inline constexpr std::string_view kExit = "Exit";
inline constexpr std::string_view kStart = "Start";
}  // namespace wizard_action

// What a page needs.
struct WizardUses {
  Services services;
  WizardState& state;
  FormSlot<frmSpywareDefinitions>& help;
};

// One modal page of the wizard. Only Next writes settings; each button leaves its name as the
// answer and unloads the page.
class WizardPage : public Form {
 public:
  Label Label1;  // the title
  Label Label2;  // the text; "<appname>" stands for the product's name
  Button cmdNext{*this, "cmdNext", "&Next"};
  Button cmdBack{*this, "cmdBack", "&Back"};
  Button cmdSkip{*this, "cmdSkip", "&Skip"};
  Button cmdExit{*this, "cmdExit", "E&xit"};

 protected:
  WizardPage(const WizardUses& uses, std::string name, std::string_view title,
             std::string_view text);

  void Form_Load() override;
  // Writes what the page asks for.
  virtual void Save() {}

  void Leave(std::string_view action);
  // Shows a page of the program's folder.
  void Learn(std::string_view page);
  const Services& services() const { return u_.services; }
  Settings& settings() const { return u_.services.settings; }

 private:
  WizardUses u_;
};

// A page with a question that is answered by yes or no. Yes is chosen at first.
class WizardQuestion : public WizardPage {
 public:
  OptionGroup answers;
  OptionButton optYesNo0;
  OptionButton optYesNo1;
  Label lblLearnMore;

 protected:
  struct Texts {
    std::string_view title;
    std::string_view text;
    std::string_view yes;
    std::string_view no;
    std::string_view learnMore;
    std::string_view helpPage;  // in the program's folder
  };
  WizardQuestion(const WizardUses& uses, std::string name, const Texts& texts);
  bool Yes() const { return optYesNo0.Value(); }
};

}  // namespace quarnel
