#include "recovery/restore_point.h"

#include "base/text.h"
#include "core/own_files.h"
#include "core/paths.h"

namespace quarnel {

std::string BackupFolder(Machine& machine) {
  return GetPathWithSlash(machine.ProgramFolder()) + "Backup";
}

std::vector<std::string> BackupFolders(Machine& machine) {
  return OwnFolders(machine, BackupFolder(machine));
}

std::string StemOf(DateTime moment) {
  return SingleText(static_cast<float>(SecondsOfDay(moment))) + "_" +
         FormatDate(moment, "yyyymmddhhnnss");
}

std::string RestorePointFile(Machine& machine, std::string_view stem, std::string_view ending) {
  return Join({BackupFolder(machine), "\\", std::string(stem), std::string(ending)}, "");
}

std::string RestorePointFile(Files& files, Machine& machine, std::string_view stem,
                             std::string_view ending) {
  for (const std::string& folder : BackupFolders(machine)) {
    std::string path = Join({folder, "\\", std::string(stem), std::string(ending)}, "");
    if (files.Stat(path)) return path;
  }
  return RestorePointFile(machine, stem, ending);
}

std::string RestoreRoot(Machine& machine) { return machine.ProgramFolder().substr(0, 3); }

std::string PlaceBelowRoot(Machine& machine, std::string_view entry) {
  return RestoreRoot(machine) + Replace(entry, "/", "\\");
}

}  // namespace quarnel
