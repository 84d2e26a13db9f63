// Whether the layouts and the forms that they are for agree.

#include "ui/wx/layout.h"

#include <gmock/gmock.h>

#include <map>

#include "base/runtime_error.h"
#include "support/platform_fixture.h"
#include "support/test_host.h"
#include "ui/application.h"
#include "ui/wx/bindings/list_model.h"
#include "ui/wx/form_window.h"
#include "ui/wx/sys_image_list.h"

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

constexpr int kEdge = 16;

bool IsBlank(const wxBitmap& picture, const wxColour& ground) {
  const wxImage image = picture.ConvertToImage();
  for (int x = 0; x < image.GetWidth(); ++x) {
    for (int y = 0; y < image.GetHeight(); ++y) {
      if (wxColour(image.GetRed(x, y), image.GetGreen(x, y), image.GetBlue(x, y)) != ground) {
        return false;
      }
    }
  }
  return true;
}

TEST(SysImageList, FilesOfATypeShareAPicture) {
  cVBALSysImageList pictures;
  EXPECT_EQ(pictures.ItemIndex("C:\\a.exe"), cVBALSysImageList::kNone);
  pictures.Create(kEdge);
  EXPECT_EQ(pictures.ItemIndex("C:\\a.exe"), 0);
  EXPECT_EQ(pictures.ItemIndex("C:\\folder.txt\\B.EXE"), 0);
  EXPECT_EQ(pictures.ItemIndex("c.txt"), 1);
  EXPECT_EQ(pictures.ItemIndex("C:\\folder.txt\\without"), 2);
  EXPECT_EQ(pictures.ItemIndex("of no known.type that a system has"), 3);
  EXPECT_EQ(pictures.ItemIndex(""), cVBALSysImageList::kNone);
  EXPECT_EQ(pictures.hIml().size(), 4U);

  EXPECT_EQ(pictures.IconSizeX(), kEdge);
  EXPECT_EQ(pictures.IconSizeY(), kEdge);
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(pictures.ItemPicture(i).GetSize(), wxSize(kEdge, kEdge));
    EXPECT_TRUE(pictures.ItemCopyOfIcon(i).IsOk());
    wxBitmap canvas(kEdge * 2, kEdge * 2);
    wxMemoryDC target(canvas);
    target.SetBackground(*wxWHITE_BRUSH);
    target.Clear();
    pictures.DrawImage(i, target, {kEdge, kEdge});
    target.SelectObject(wxNullBitmap);
    EXPECT_TRUE(IsBlank(canvas.GetSubBitmap({0, 0, kEdge, kEdge}), *wxWHITE));
    EXPECT_FALSE(IsBlank(canvas.GetSubBitmap({kEdge, kEdge, kEdge, kEdge}), *wxWHITE));
  }

  pictures.Clear();
  EXPECT_EQ(pictures.ItemIndex("c.txt"), 0);
  pictures.Destroy();
  EXPECT_EQ(pictures.ItemIndex("c.txt"), cVBALSysImageList::kNone);
}

TEST_F(LayoutTest, WordsSayWhatARowsLookTells) {
  Form form(host, "frmOne");
  ListView list(form, "lvwOne", {"Name"});
  list.Add({.text = "red", .look = {.colour = Colour::kRed}});
  list.Add({.text = "bold", .look = {.bold = true}});
  const ListModel model(list, Put("lvwOne").States({{{.colour = Colour::kRed}, "Blocked"}}));
  EXPECT_EQ(model.TextAt(0, 0), "red");
  EXPECT_EQ(model.TextAt(0, 1), "Blocked");
  EXPECT_EQ(model.TextAt(1, 1), "");
}

}  // namespace
}  // namespace quarnel
