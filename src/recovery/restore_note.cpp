#include "recovery/restore_note.h"

#include <set>

#include "base/runtime_error.h"
#include "base/text.h"
#include "core/own_files.h"
#include "recovery/archive.h"
#include "recovery/manifest.h"
#include "recovery/restore_point.h"
#include "recovery/safe_path.h"

namespace quarnel {
namespace {

std::string NotePath(Machine& machine) { return BackupFolder(machine) + "\\Restoring.txt"; }

// Where a restore may have been about to put files: strictly to their own places, else below the
// root of the program's drive.
std::set<std::string> TargetsOf(Files& files, Machine& machine, std::string_view stem) {
  std::set<std::string> targets;
  const auto addEntry = [&](const std::string& entry) {
    if (!IsSideEntry(entry)) targets.insert(PlaceBelowRoot(machine, entry));
  };
  IgnoringErrors([&] {
    const std::string path = RestorePointFile(files, machine, stem, restore_point::kManifest);
    for (const FileItem& item : ReadManifest(ReadWholeFile(files, path), stem).manifest.files) {
      targets.insert(item.path);
      addEntry(item.entry);
    }
  });
  if (!targets.empty()) return targets;
  for (const std::string_view ending : {restore_point::kFiles, restore_point::kCookies}) {
    IgnoringErrors([&] {
      ReadArchive(files, RestorePointFile(files, machine, stem, ending),
                  [&](ArchiveEntry& entry) { addEntry(entry.Name()); });
    });
  }
  return targets;
}

}  // namespace

RestoreNote::RestoreNote(Files& files, Machine& machine, std::string_view stem)
    : files_(files), machine_(machine) {
  IgnoringErrors([&] { ReplaceOwnFile(files_, machine_, NotePath(machine_), stem); });
}

RestoreNote::~RestoreNote() {
  IgnoringErrors([&] { DeleteOwnFile(files_, machine_, NotePath(machine_)); });
}

void ClearLeftovers(Files& files, Machine& machine) {
  for (const std::string& folder : BackupFolders(machine)) {
    IgnoringErrors([&] {
      for (const DirectoryEntry& entry : files.List(folder)) {
        if (!IsTemporaryName(entry.name)) continue;
        IgnoringErrors([&] { files.Delete(folder + "\\" + entry.name); });
      }
    });
  }
  const std::string note = OwnFileToRead(files, machine, NotePath(machine));
  if (!files.Stat(note)) return;
  IgnoringErrors([&] {
    for (const std::string& target : TargetsOf(files, machine, ReadWholeFile(files, note))) {
      if (!WhyUnsafe(target).empty()) continue;
      IgnoringErrors([&] { files.WithoutLinks().Delete(TemporaryName(target)); });
    }
    DeleteOwnFile(files, machine, NotePath(machine));
  });
}

}  // namespace quarnel
