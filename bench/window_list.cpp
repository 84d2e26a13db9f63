// What a list of 50,000 rows, or as many as given, costs the window: to show it, to follow a row
// that changes and rows that are added, to sort it, and to turn its pages by keyboard.
//
//   tools/with-display build/release/bin/window-list-bench [ROWS]

#include <wx/uiaction.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "controls/list_view.h"
#include "ui/wx/wx_host.h"

namespace quarnel {
namespace {

constexpr int kRows = 50000;
constexpr int kPages = 100;
constexpr int kChanges = 20;

struct ListForm : Form {
  explicit ListForm(Host& host) : Form(host, "frmList") {
    lvwList.ItemCheck = [](size_t) {};
    lvwList.ItemClick = [](size_t) {};
  }
  ListView lvwList{*this, "lvwList", {"Path", "Type", "Threat"}};
};

ListRow RowOf(int number) {
  const std::string name = std::to_string(number * 7919 % 100003);
  return {
      .text = "C:\\Documents and Settings\\user\\Application Data\\Vendor\\File" + name + ".dll",
      .subItems = {"Adware", "Threat " + std::to_string(number % 977)}};
}

void Paint(wxWindow& window) {
  window.Update();
  while (wxEventLoopBase::GetActive()->Pending()) wxEventLoopBase::GetActive()->Dispatch();
  wxEventLoopBase::GetActive()->YieldFor(wxEVT_CATEGORY_ALL);
}

// Prints what one of `times` turns of `action` takes of the processor, which other programs' work
// does not add to.
template <typename Action>
void Measure(const char* what, int times, wxWindow& window, const Action& action) {
  const std::clock_t start = std::clock();
  for (int i = 0; i < times; ++i) {
    action(i);
    Paint(window);
  }
  const double took = 1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
  std::printf("%-24s %9.2f ms\n", what, took / times);
}

void MeasureList(int rows) {
  WxHost host([](const std::string&) { return std::string(); });
  ListForm form(host);
  host.Act([&] { form.Show(); });
  host.WindowOf(form)->Window()->SetClientSize(900, 600);
  wxWindow& widget = *host.WindowOf(form)->Find("lvwList")->Widget();
  Paint(widget);
  for (int i = 0; i < rows; ++i) form.lvwList.Add(RowOf(i));
  Measure("fill", 1, widget, [&](int) { host.Sync(); });
  Measure("change of a row", kChanges, widget, [&](int i) {
    form.lvwList.SetChecked(static_cast<size_t>(i), true);
    host.Sync();
  });
  Measure("added row", kChanges, widget, [&](int i) {
    form.lvwList.Add(RowOf(rows + i));
    host.Sync();
  });
  Measure("all ticked", 2, widget, [&](int i) {
    for (size_t row = 0; row < form.lvwList.Count(); ++row) form.lvwList.SetChecked(row, i == 0);
    host.Sync();
  });
  // The window manager gives it the keyboard in its own time.
  wxTopLevelWindow& window = *host.WindowOf(form)->Window();
  window.Raise();
  while (!window.IsActive()) Paint(window);
  widget.SetFocus();
  wxUIActionSimulator user;
  Measure("page turned", kPages, widget, [&](int) {
    const auto before = form.lvwList.SelectedRow();
    user.Char(WXK_PAGEDOWN);
    while (form.lvwList.SelectedRow() == before) Paint(widget);
  });
  Measure("removed row", kChanges, widget, [&](int) {
    form.lvwList.Remove(form.lvwList.Count() / 2);
    host.Sync();
  });
  host.Act([&] { form.Close(UnloadMode::kCode); });
}

}  // namespace
}  // namespace quarnel

int main(int argc, char** argv) {
  const int given = argc > 1 ? static_cast<int>(std::strtol(argv[1], nullptr, 10)) : 0;
  wxApp::SetInstance(new wxApp);
  int own = 1;
  if (!wxEntryStart(own, argv)) return 1;
  wxTheApp->SetExitOnFrameDelete(false);
  wxGUIEventLoop loop;
  wxTheApp->CallAfter([&] {
    quarnel::MeasureList(given > 0 ? given : quarnel::kRows);
    loop.ScheduleExit();
  });
  loop.Run();
  wxEntryCleanup();
  return 0;
}
