#pragma once

#include "controls/form.h"
#include "controls/simple_controls.h"
#include "core/services.h"

namespace quarnel {

// Asks what closing the window means. The answer goes to the settings `Button` and
// `chkSkipMessages`; a user who closes it without an answer has cancelled.
class frmClose : public Form {
 public:
  explicit frmClose(Services services);

  Label lblMessage{*this, "lblMessage"};
  CheckBox chkSkipMessages{*this, "chkSkipMessages", "Do not ask again"};
  Button cmdYes{*this, "cmdYes", "&Yes"};
  Button cmdNo{*this, "cmdNo", "&No"};
  Button cmdCancel{*this, "cmdCancel", "&Cancel"};

 protected:
  void Form_Load() override;
  void Form_QueryUnload(bool& cancel, UnloadMode mode) override;

 private:
  void SaveAnswer(Answer answer, bool withBox);

  Services s_;
};

}  // namespace quarnel
