#include "ui/forms.h"

namespace quarnel {
namespace {

template <typename FormType>
typename FormSlot<FormType>::Factory Made(const Services& services) {
  return [services] { return std::make_unique<FormType>(services); };
}

}  // namespace

Forms::Forms(const Services& services, StartOptions options)
    : splash(Made<frmSplash>(services)),
      close(Made<frmClose>(services)),
      closeIE([this, services] { return std::make_unique<frmCloseIE>(services, main_->options); }),
      reBootMachine([services] {
        return std::make_unique<frmReBootMachine>(services, services.platform.power());
      }),
      ingnoredSpywares([this, services] {
        return std::make_unique<frmIngnoredSpywares>(services, main_->results);
      }),
      ingnoredProcesses(Made<frmIngnoredProcesses>(services)),
      restore(Made<frmRestore>(services)),
      immunize(Made<frmImmunize>(services)),
      deImmunize(
          [this, services] { return std::make_unique<frmDeImmunize>(services, main_->options); }),
      menuPopUp([this, services] {
        return std::make_unique<frmMenuPopUp>(services, *main_, main_->engine(), *main_);
      }),
      bhr([this, services] {
        return std::make_unique<frmBHR>(services, main_->engine().browserSettings(),
                                        main_->timers.tmrPreventChangeHomePage);
      }),
      starUpAlert([this, services] {
        return std::make_unique<frmStarUpAlert>(services, main_->engine().startups(),
                                                main_->timers.tmrPreventChangeHomePage);
      }),
      wizard1(Page<frmWizard1>(services)),
      wizard2(Page<frmWizard2>(services)),
      wizard3(Page<frmWizard3>(services)),
      wizard7(Page<frmWizard7>(services)),
      wizard4(Page<frmWizard4>(services)),
      spywareDefinitions(
          [this, services] { return std::make_unique<frmSpywareDefinitions>(services, wizard); }),
      internetConnection([this, services] {
        return std::make_unique<frmInternetConnection>(services, main_->engine().update(), *main_);
      }),
      spywareFoundAlert([this, services] {
        return std::make_unique<frmSpywareFoundAlert>(services, main_->engine().memoryShield(),
                                                      main_->options,
                                                      main_->timers.tmrMemoryInspected);
      }),
      approveAllStartup(Made<frmApproveAllStartup>(services)),
      homePageChangedAlert(Made<frmHomePageChangedAlert>(services)),
      main_(std::make_unique<frmMain>(services, *this, options)) {
  all_.push_back({"frmMain", [this]() -> Form& {
                    main_->Load();
                    return *main_;
                  }});
  List("frmSplash", splash);
  List("frmClose", close);
  List("frmCloseIE", closeIE);
  List("frmReBootMachine", reBootMachine);
  List("frmIngnoredSpywares", ingnoredSpywares);
  List("frmIngnoredProcesses", ingnoredProcesses);
  List("frmRestore", restore);
  List("frmImmunize", immunize);
  List("frmDeImmunize", deImmunize);
  List("frmMenuPopUp", menuPopUp);
  List("frmBHR", bhr);
  List("frmStarUpAlert", starUpAlert);
  List("frmWizard1", wizard1);
  List("frmWizard2", wizard2);
  List("frmWizard3", wizard3);
  List("frmWizard7", wizard7);
  List("frmWizard4", wizard4);
  List("frmSpywareDefinitions", spywareDefinitions);
  List("frmInternetConnection", internetConnection);
  List("frmSpywareFoundAlert", spywareFoundAlert);
  List("frmApproveAllStartup", approveAllStartup);
  List("frmHomePageChangedAlert", homePageChangedAlert);
}

template <typename PageType>
typename FormSlot<PageType>::Factory Forms::Page(const Services& services) {
  return [this, services] {
    return std::make_unique<PageType>(WizardUses{services, wizard, spywareDefinitions});
  };
}

Forms::~Forms() = default;

}  // namespace quarnel
