#include "ui/wizard/wizard_page.h"

#include "base/text.h"
#include "core/paths.h"
#include "core/startup.h"
#include "ui/dialogs/frm_spyware_definitions.h"

namespace quarnel {

WizardPage::WizardPage(const WizardUses& uses, std::string name, std::string_view title,
                       std::string_view text)
    : Form(uses.services.host, std::move(name)),
      Label1(*this, "Label1", title),
      Label2(*this, "Label2", text),
      u_(uses) {
  cmdNext.Click = [this] {
    Save();
    Leave(wizard_action::kNext);
  };
  cmdBack.Click = [this] { Leave(wizard_action::kBack); };
  cmdSkip.Click = [this] { Leave(wizard_action::kSkip); };
  cmdExit.Click = [this] { Leave(wizard_action::kExit); };
}

void WizardPage::Form_Load() {
  SetCaption(WizardCaption(settings()));
  Label2.SetCaption(Replace(Label2.Caption(), "<appname>", settings().ApplicationName()));
}

void WizardPage::Leave(std::string_view action) {
  u_.state.mWizardAction = action;
  Close(UnloadMode::kCode);
}

void WizardPage::Learn(std::string_view page) {
  u_.state.helpPage =
      GetPathWithSlash(services().platform.machine().ProgramFolder()) + std::string(page);
  // A page that is open already shows the new one.
  u_.help.Unload();
  u_.help.Touch().Show();
}

WizardQuestion::WizardQuestion(const WizardUses& uses, std::string name, const Texts& texts)
    : WizardPage(uses, std::move(name), texts.title, texts.text),
      optYesNo0(*this, "optYesNo(0)", answers, texts.yes),
      optYesNo1(*this, "optYesNo(1)", answers, texts.no),
      lblLearnMore(*this, "lblLearnMore", texts.learnMore) {
  answers.Choose(0);
  lblLearnMore.Click = [this, page = std::string(texts.helpPage)] { Learn(page); };
}

}  // namespace quarnel
