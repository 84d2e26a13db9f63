#include "ui/dialogs/frm_ingnored_spywares.h"

#include "base/text.h"
#include "ui/dialogs/select_all_box.h"

namespace quarnel {

frmIngnoredSpywares::frmIngnoredSpywares(const Services& services, ResultsPage& results)
    : Form(services.host, "frmIngnoredSpywares"),
      s_(services),
      results_(results),
      safeList_(s_.platform.files(), s_.platform.machine(), s_.log) {
  TieSelectAll(chkSelectAll, lvwIgnoredSpywares);
  ImgRemoveMouseMove.Click = [this] { ImgRemoveMouseMove_Click(); };
  cmdDone.Click = [this] { Close(UnloadMode::kCode); };
}

void frmIngnoredSpywares::Form_Load() {
  // The label is that of the other dialog.
  Reporting(s_.log, "Form_Load of frmIngnoredProcesses", [&] {
    SetCaption(s_.settings.ApplicationName() + " - Safe List");
    lvwIgnoredSpywares.Clear();
    safeList_.AddIgnoredSpywaresTolvw(SafeListPath(s_.platform.machine()), "", "", "", false,
                                      lvwIgnoredSpywares);
    ShowCount(lblCount, lvwIgnoredSpywares);
  });
}

void frmIngnoredSpywares::MarkAsFound(std::string_view trace) {
  TreeView& tree = results_.vbatvwResults;
  for (const TreeNodeRef& node : tree.InOrder()) {
    if (Replace(node->text, kIgnoredPrefix, "") == trace ||
        Replace(node->text, kFoundPrefix, "") == trace) {
      tree.SetText(*node, std::string(kFoundPrefix) + WithoutPrefixes(node->text));
    }
  }
}

void frmIngnoredSpywares::ImgRemoveMouseMove_Click() {
  Reporting(s_.log, "ImgRemoveMouseMove_Click of frmIngnoredSpywares", [&] {
    const std::string path = SafeListPath(s_.platform.machine());
    for (size_t i = lvwIgnoredSpywares.Count(); i-- > 0;) {
      if (!lvwIgnoredSpywares.At(i).checked) continue;
      MarkAsFound(WithoutPrefixes(lvwIgnoredSpywares.At(i).text));
      lvwIgnoredSpywares.Remove(i);
    }
    results_.vbatvwResults.Refresh();
    safeList_.Rewrite(path, lvwIgnoredSpywares);
    ShowCount(lblCount, lvwIgnoredSpywares);
    results_.lvwIgnoredSpywares.Clear();
    safeList_.AddIgnoredSpywaresTolvw(path, "", "", "", false, results_.lvwIgnoredSpywares);
  });
}

}  // namespace quarnel
