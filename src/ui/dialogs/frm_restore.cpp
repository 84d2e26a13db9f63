#include "ui/dialogs/frm_restore.h"

#include <algorithm>

#include "base/date_time.h"
#include "base/text.h"
#include "core/existing_files.h"
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

// The digits of the date and time in a stem.
std::string_view DigitsOf(std::string_view stem) {
  const size_t mark = stem.find('_');
  return mark == std::string_view::npos ? std::string_view() : stem.substr(mark + 1);
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

frmRestore::frmRestore(const Services& services) : Form(services.host, "frmRestore"), s_(services) {
  SetCaption("Restore Points - Restore Removed Spyware Threats");
  lblExplanation.SetCaption(kExplanation);
  cmdOK.Click = [this] { cmdOK_Click(); };
  cmdDeleteBackup.Click = [this] { cmdDeleteBackup_Click(); };
  lvwBackups.ItemClick = [this](size_t) { EnableButtons(); };
  cmdcancel.Click = [this] { Close(UnloadMode::kCode); };
}

std::string frmRestore::Choose() {
  ShowModal();
  return chosenStem_;
}

void frmRestore::Form_Load() {
  // Nothing of a list that is still growing is acted on.
  for (Button* button : {&cmdOK, &cmdDeleteBackup}) button->SetEnabled(false);
  Reporting(s_.log, "Form_Load of frmRestore", [&] { ListRestorePoints(); });
  SelectNewest();
  EnableButtons();
}

void frmRestore::ListRestorePoints() {
  for (const std::string& folder : BackupFolders(s_.platform.machine())) {
    if (s_.platform.files().Stat(folder)) ListRestorePoints(folder);
  }
}

void frmRestore::ListRestorePoints(const std::string& folder) {
  for (const DirectoryEntry& entry : s_.platform.files().List(folder)) {
    s_.host.DoEvents();
    const bool listed = FindText(entry.name, restore_point::kFiles) != std::string::npos;
    if (!listed || entry.IsFolder()) continue;
    const std::string stem = Without(entry.name, restore_point::kFiles);
    const size_t row = lvwBackups.Add({.text = stem});
    lvwBackups.SetSubItem(row, 1, RestorePointDate(DigitsOf(stem)));
  }
}

void frmRestore::SelectNewest() {
  const std::vector<ListRow>& rows = lvwBackups.Rows();
  if (rows.empty()) return;
  const auto newest =
      std::max_element(rows.begin(), rows.end(), [](const ListRow& left, const ListRow& right) {
        return DigitsOf(left.text) < DigitsOf(right.text);
      });
  lvwBackups.Select(static_cast<size_t>(newest - rows.begin()));
}

// With rows and none of them selected there is nothing to act on. An empty list is told by a click.
void frmRestore::EnableButtons() {
  const bool on = lvwBackups.Empty() || lvwBackups.SelectedRow();
  cmdOK.SetEnabled(on);
  cmdDeleteBackup.SetEnabled(on);
}

bool frmRestore::HasRestorePoints() {
  if (!lvwBackups.Empty()) return true;
  messages_.Inform("Restore Point not found on your PC.");
  return false;
}

size_t frmRestore::SelectedRow() const {
  const auto row = lvwBackups.SelectedRow();
  if (!row) throw RuntimeError(ErrorNumber::kElementNotFound);
  return *row;
}

void frmRestore::cmdOK_Click() {
  Reporting(s_.log, "cmdOK_Click", [&] {
    if (!HasRestorePoints()) return;
    if (!messages_.Ask(
            "This action will restore all the Spyware/Adware on your pc from this Restore Point. "
            "Do you want to proceed?",
            MessageIcon::kInformation)) {
      return;
    }
    chosenStem_ = lvwBackups.At(SelectedRow()).text;
    Close(UnloadMode::kCode);
  });
}

void frmRestore::cmdDeleteBackup_Click() {
  Reporting(s_.log, "cmdDeleteBackup_Click", [&] {
    if (!HasRestorePoints()) return;
    if (!messages_.Ask(
            "This action will delete the selected backup file from your PC permanently. Are you "
            "sure?")) {
      return;
    }
    const size_t row = SelectedRow();
    const std::string stem = lvwBackups.At(row).text;
    Files& files = s_.platform.files();
    for (const std::string_view ending : {restore_point::kFiles, restore_point::kRegistry,
                                          restore_point::kFileDetails, restore_point::kManifest}) {
      const std::string path = RestorePointFile(files, s_.platform.machine(), stem, ending);
      if (FileExists(files, path)) files.Delete(path);
    }
    lvwBackups.Remove(row);
    if (!lvwBackups.Empty()) lvwBackups.Select(std::min(row, lvwBackups.Count() - 1));
    EnableButtons();
  });
}

}  // namespace quarnel
