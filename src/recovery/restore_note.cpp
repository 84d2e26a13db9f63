#include "recovery/restore_note.h"

#include <set>

#include "base/runtime_error.h"
#include "base/text.h"
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
    const std::string path = RestorePointFile(machine, stem, restore_point::kManifest);
    for (const FileItem& item : ReadManifest(ReadWholeFile(files, path), stem).manifest.files) {
      targets.insert(item.path);
      addEntry(item.entry);
    }
  });
  if (!targets.empty()) return targets;
  for (const std::string_view ending : {restore_point::kFiles, restore_point::kCookies}) {
    IgnoringErrors([&] {
      ReadArchive(files, RestorePointFile(machine, stem, ending),
                  [&](ArchiveEntry& entry) { addEntry(entry.Name()); });
    });
  }
  return targets;
}

}  // namespace

RestoreNote::RestoreNote(Files& files, Machine& machine, std::string_view stem)
    : files_(files), path_(NotePath(machine)) {
  IgnoringErrors([&] { ReplaceWholeFile(files_, path_, stem); });
}

RestoreNote::~RestoreNote() {
  IgnoringErrors([&] { files_.Delete(path_); });
}

void ClearLeftovers(Files& files, Machine& machine) {
  IgnoringErrors([&] {
    for (const DirectoryEntry& entry : files.List(BackupFolder(machine))) {
      if (!IsTemporaryName(entry.name)) continue;
      IgnoringErrors([&] { files.Delete(BackupFolder(machine) + "\\" + entry.name); });
    }
  });
  const std::string note = NotePath(machine);
  if (!files.Stat(note)) return;
  IgnoringErrors([&] {
    for (const std::string& target : TargetsOf(files, machine, ReadWholeFile(files, note))) {
      if (!WhyUnsafe(target).empty()) continue;
      IgnoringErrors([&] { files.WithoutLinks().Delete(TemporaryName(target)); });
    }
    files.Delete(note);
  });
}

}  // namespace quarnel
