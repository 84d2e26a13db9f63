#include "ui/dialogs/frm_ingnored_processes.h"

#include "base/text.h"
#include "core/existing_files.h"
#include "core/lines.h"
#include "core/own_files.h"
#include "signatures/cipher.h"
#include "signatures/signature_files.h"
#include "ui/dialogs/select_all_box.h"

namespace quarnel {

frmIngnoredProcesses::frmIngnoredProcesses(const Services& services)
    : Form(services.host, "frmIngnoredProcesses"), s_(services) {
  TieSelectAll(chkSelectAll, lvwIgnoredProcesses);
  ImgRemoveMouseMove.Click = [this] { ImgRemoveMouseMove_Click(); };
  cmdDone.Click = [this] { Close(UnloadMode::kCode); };
}

std::string frmIngnoredProcesses::Path() const {
  return SignaturePath(s_.platform.machine(), signature_file::kDeclined);
}

void frmIngnoredProcesses::Form_Load() {
  Reporting(s_.log, "Form_Load of frmIngnoredProcesses", [&] {
    SetCaption("Ignored Processe(s)");
    const std::string path = OwnFileToRead(s_.platform.files(), s_.platform.machine(), Path());
    if (FileExists(s_.platform.files(), path)) {
      const std::string text = ReadWholeFile(s_.platform.files(), path);
      LineReader lines(text);
      while (const auto line = lines.Next()) {
        const std::vector<std::string> fields = Split(Decrypt(*line), "^");
        if (fields.size() < 3) throw RuntimeError(ErrorNumber::kSubscriptOutOfRange);
        lvwIgnoredProcesses.Add({.text = fields[0], .subItems = {fields[1], fields[2]}});
      }
    }
    ShowCount(lblCount, lvwIgnoredProcesses);
  });
}

// The rows are written in plain, though every reader deciphers: a list that was changed here counts
// as unknown from then on.
void frmIngnoredProcesses::ImgRemoveMouseMove_Click() {
  Reporting(s_.log, "ImgRemoveMouseMove_Click of frmIngnoredProcesses", [&] {
    for (size_t i = lvwIgnoredProcesses.Count(); i-- > 0;) {
      if (lvwIgnoredProcesses.At(i).checked) lvwIgnoredProcesses.Remove(i);
    }
    SafeList(s_.platform.files(), s_.platform.machine(), s_.log)
        .Rewrite(Path(), lvwIgnoredProcesses);
    ShowCount(lblCount, lvwIgnoredProcesses);
  });
}

}  // namespace quarnel
