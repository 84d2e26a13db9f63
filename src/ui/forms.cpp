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
      restore(
          [this, services] { return std::make_unique<frmRestore>(services, chosenRestorePoint); }),
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
}

Forms::~Forms() = default;

}  // namespace quarnel
