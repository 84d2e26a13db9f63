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
      main_(std::make_unique<frmMain>(services, *this, options)) {
  all_.push_back({"frmMain", [this]() -> Form& {
                    main_->Load();
                    return *main_;
                  }});
  List("frmSplash", splash);
  List("frmClose", close);
}

Forms::~Forms() = default;

}  // namespace quarnel
