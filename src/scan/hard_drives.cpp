#include "scan/hard_drives.h"

#include <array>

#include "base/text.h"

namespace quarnel {
namespace {

constexpr std::array<std::string_view, 6> kDriveTypes = {
    "Unknown", "Removable Drive", "Fixed Disk", "Remote Disk", "CDROM Drive", "RAM Disk"};

}  // namespace

void GetAllHardDrives(ScanPage& page, const ScanFlags& flags, Machine& machine, ErrorLog& log) {
  Reporting(log, "GetAllHardDrives in frmMain", [&] {
    for (const Drive& drive : machine.Drives()) {
      if (flags.scanStopRequested) return;
      if (drive.type != DriveType::kFixed || !drive.ready) continue;
      const std::string letter(1, drive.letter);
      page.lvwHardDrives.Add({.text = "Drive " + letter + ": " +
                                      std::string(kDriveTypes[static_cast<size_t>(drive.type)]),
                              .key = letter});
    }
  });
}

void lvwHardDrives_ItemCheck(const ScanPage& page, Settings& settings) {
  for (const ListRow& row : page.lvwHardDrives.Rows()) {
    settings.Save(setting::kDrive.Named(row.text), row.checked);
  }
}

void LoadDriveTicks(ScanPage& page, const Settings& settings) {
  for (size_t i = 0; i < page.lvwHardDrives.Count(); ++i) {
    const ListRow& row = page.lvwHardDrives.At(i);
    const bool stored = settings.Get(setting::kDrive.Named(row.text));
    const bool absent =
        settings.Get(setting::kDriveMark.Named(row.text)) == setting::kDriveMark.fallback;
    const bool isSystemDrive = EqualText(row.key, "C");
    page.lvwHardDrives.SetChecked(i, stored || (absent && isSystemDrive));
  }
}

}  // namespace quarnel
