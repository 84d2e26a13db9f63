#pragma once

#include <string>

#include "controls/form.h"
#include "controls/list_view.h"
#include "controls/simple_controls.h"
#include "core/messages.h"
#include "core/services.h"

namespace quarnel {

// Lists the restore points, deletes one, or chooses one. It restores nothing itself.
class frmRestore : public Form {
 public:
  explicit frmRestore(const Services& services);

  // Shows the form until it is closed; the stem of the point that was chosen, or nothing.
  std::string Choose();

  // The stem, and in a column without a title a date text built from it.
  ListView lvwBackups{*this, "lvwBackups", {"Backup Name", ""}};
  Label lblExplanation{*this, "lblExplanation"};
  Button cmdOK{*this, "cmdOK", "Restore Removed Items"};
  Button cmdDeleteBackup{*this, "cmdDeleteBackup", "Delete Restore Point"};
  Button cmdcancel{*this, "cmdcancel", "Cancel"};

 protected:
  void Form_Load() override;

 private:
  void ListRestorePoints();
  void ListRestorePoints(const std::string& folder);
  void SelectNewest();
  void EnableButtons();
  void cmdOK_Click();
  void cmdDeleteBackup_Click();
  // False, after a message, when the list is empty.
  bool HasRestorePoints();
  // Raises kElementNotFound when no row is selected.
  size_t SelectedRow() const;

  Services s_;
  Messages messages_{s_.host, s_.settings};
  std::string chosenStem_;
};

// "2008 June, 14 2008 June at 10:25:16 " for the digits of a stem. Raises kTypeMismatch or
// kInvalidCall when a month's number does not stand in its place.
std::string RestorePointDate(std::string_view digits);

}  // namespace quarnel
