#include "ui/frm_restore.h"

#include "base/date_time.h"
#include "base/text.h"
#include "core/paths.h"
#include "recovery/restore_point.h"

namespace quarnel {
namespace {

constexpr std::string_view kExplanation =
    "Below is a list of Restore Points ceated by Quarnel. Each restore point contains the "
    "information that was removed by Quarnel during the spyware removal process. In the unlikely "
    "event that you would like to restore some of these spyware threats, simply selected the "
    "desired Restore Point below and click \"Restore Removed Item.\" You may also delete the "
    "Restore Point at your discretion.";

std::string MonthName(std::string_view digits) {
  const int32_t month = ToLong(digits);
  if (month < 1 || month > 12) throw RuntimeError(ErrorNumber::kInvalidCall);
  const auto first = std::chrono::year(2000) / month / 1;
  return FormatDate(std::chrono::local_days(first), "mmmm");
}

std::string_view Piece(std::string_view digits, size_t first, size_t length) {
  return digits.substr(std::min(first - 1, digits.size()), length);
}

// The name without every occurrence of `ending`, letter case folded.
std::string Without(std::string name, std::string_view ending) {
  for (size_t at = FindText(name, ending); at != std::string::npos; at = FindText(name, ending)) {
    name.erase(at, ending.size());
  }
  return name;
}

}  // namespace

std::string RestorePointDate(std::string_view digits) {
  const std::string year(Piece(digits, 1, 4));
  const std::string month = MonthName(Piece(digits, 5, 2));
  return Join({year, " ", month, ", ", std::string(Piece(digits, 7, 2)), " ", year, " ", month,
               " at ", std::string(Piece(digits, 9, 2)), ":", std::string(Piece(digits, 11, 2)),
               ":", std::string(Piece(digits, 13, 2)), " "},
              "");
}

frmRestore::frmRestore(Services services, std::string& chosenStem)
    : Form(services.host, "frmRestore"), s_(services), chosenStem_(chosenStem) {
  SetCaption("Restore Points - Restore Removed Spyware Threats");
  lblExplanation.SetCaption(kExplanation);
  cmdOK.Click = [this] { cmdOK_Click(); };
  cmdDeleteBackup.Click = [this] { cmdDeleteBackup_Click(); };
  cmdcancel.Click = [this] { Close(UnloadMode::kCode); };
}

void frmRestore::Form_Load() {
  chosenStem_.clear();
  Reporting(s_.log, "Form_Load of frmRestore", [&] { ListRestorePoints(); });
}

void frmRestore::ListRestorePoints() {
  const std::string folder = BackupFolder(s_.platform.machine());
  if (!s_.platform.files().Stat(folder)) return;
  for (const DirectoryEntry& entry : s_.platform.files().List(folder)) {
    s_.host.DoEvents();
    const bool listed = FindText(entry.name, restore_point::kFiles) != std::string::npos;
    if (!listed || entry.IsFolder()) continue;
    const std::string stem = Without(entry.name, restore_point::kFiles);
    const size_t row = lvwBackups.Add({.text = stem});
    const size_t digits = stem.find('_');
    lvwBackups.SetSubItem(
        row, 1,
        RestorePointDate(digits == std::string::npos ? std::string() : stem.substr(digits + 1)));
  }
}

bool frmRestore::HasRestorePoints() {
  if (!lvwBackups.Empty()) return true;
  s_.host.MsgBox({.text = "Restore Point not found on your PC.",
                  .title = s_.settings.ApplicationName(),
                  .icon = MessageIcon::kInformation});
  return false;
}

Answer frmRestore::Ask(std::string_view text, MessageIcon icon) {
  return s_.host.MsgBox({.text = std::string(text),
                         .title = s_.settings.ApplicationName(),
                         .icon = icon,
                         .buttons = MessageButtons::kYesNo});
}

size_t frmRestore::SelectedRow() const {
  const auto row = lvwBackups.SelectedRow();
  if (!row) throw RuntimeError(ErrorNumber::kElementNotFound);
  return *row;
}

void frmRestore::cmdOK_Click() {
  Reporting(s_.log, "cmdOK_Click", [&] {
    if (!HasRestorePoints()) return;
    if (Ask("This action will restore all the Spyware/Adware on your pc from this Restore Point. "
            "Do you want to proceed?",
            MessageIcon::kInformation) != Answer::kYes) {
      return;
    }
    chosenStem_ = lvwBackups.At(SelectedRow()).text;
    Close(UnloadMode::kCode);
  });
}

void frmRestore::cmdDeleteBackup_Click() {
  Reporting(s_.log, "cmdDeleteBackup_Click", [&] {
    if (!HasRestorePoints()) return;
    if (Ask("This action will delete the selected backup file from your PC permanently. Are you "
            "sure?",
            MessageIcon::kQuestion) != Answer::kYes) {
      return;
    }
    const size_t row = SelectedRow();
    const std::string stem = lvwBackups.At(row).text;
    for (const std::string_view ending : {restore_point::kFiles, restore_point::kRegistry,
                                          restore_point::kFileDetails, restore_point::kManifest}) {
      const std::string path = RestorePointFile(s_.platform.machine(), stem, ending);
      if (FileExists(s_.platform.files(), path)) s_.platform.files().Delete(path);
    }
    lvwBackups.Remove(row);
  });
}

}  // namespace quarnel
