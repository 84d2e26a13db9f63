// Whether the layouts and the forms that they are for agree.

#include "ui/wx/layout.h"

#include <gmock/gmock.h>

#include <map>

#include "base/runtime_error.h"
#include "support/platform_fixture.h"
#include "support/test_host.h"
#include "ui/application.h"
#include "ui/wx/form_window.h"

namespace quarnel {
namespace {

using ::testing::IsEmpty;

class LayoutTest : public PlatformTest {
 protected:
  TestHost host;
  Application application{platform(), host, {.showSplash = false, .runWizard = false}};
};

TEST_F(LayoutTest, EachNamesControlsOfAForm) {
  std::map<std::string_view, Form*> forms;
  for (const auto& entry : application.forms().All()) forms[entry.name] = &entry.touch();
  for (const FormLayout& layout : WrittenLayouts()) {
    ASSERT_TRUE(forms.contains(layout.form)) << layout.form;
    std::vector<std::string> unknown = NamesIn(layout);
    std::erase_if(unknown, [&](const auto& name) { return forms[layout.form]->Find(name); });
    EXPECT_THAT(unknown, IsEmpty()) << layout.form;
  }
}

TEST_F(LayoutTest, WithAnUnknownNameMakesNoWindow) {
  Form& form = application.forms().All().front().touch();
  const FormLayout wrong = {.form = form.Name(), .content = Column({Row({Put("cmdNowhere")})})};
  EXPECT_THROW(FormWindow(form, wrong, nullptr, Front()), RuntimeError);
}

}  // namespace
}  // namespace quarnel
