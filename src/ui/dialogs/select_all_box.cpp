#include "ui/dialogs/select_all_box.h"

#include <algorithm>
#include <string>

namespace quarnel {

void TieSelectAll(CheckBox& box, ListView& list) {
  const auto allTicked = [&list] {
    return std::all_of(list.Rows().begin(), list.Rows().end(),
                       [](const ListRow& row) { return row.checked; });
  };
  box.Click = [&box, &list, allTicked] {
    if (!box.Checked() && !allTicked()) return;
    for (size_t i = 0; i < list.Count(); ++i) list.SetChecked(i, box.Checked());
  };
  list.ItemCheck = [&box, allTicked](size_t) { box.SetValue(allTicked() ? 1 : 0); };
}

void ShowCount(Label& label, const ListView& list) {
  label.SetCaption("Total no of items : " + std::to_string(list.Count()));
}

}  // namespace quarnel
