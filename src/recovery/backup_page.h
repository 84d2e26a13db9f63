#pragma once

#include "controls/list_view.h"
#include "controls/simple_controls.h"

namespace quarnel {

// The way to the restore points, and the progress of a backup or restore with its scratch list.
struct BackupPage {
  Form& form;
  Button cmdRestore{form, "cmdRestore", "&Restore..."};
  Panel picBackupProgress{form, "picBackupProgress"};
  Label lblBackupProgress{form, "lblBackupProgress"};
  ProgressBar pgbBackup{form, "pgbBackup", ProgressBar::Range::kLoose};
  // One registry value a row: the threat's name, then what SetKeyValue needs.
  ListView lvwRegBackup{
      form, "lvwRegBackup", {"Spyware Name", "Main Key", "Key", "Value Name", "Data", "Type"}};
};

}  // namespace quarnel
