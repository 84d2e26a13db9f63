#include "scan/hard_drives.h"

#include <array>

#include "base/text.h"

namespace quarnel {
namespace {

constexpr std::array<std::string_view, 6> kDriveTypes = {
    "Unknown", "Removable Drive", "Fixed Disk", "Remote Disk", "CDROM Drive", "RAM Disk"};

std::string RowText(const Drive& drive) {
  return std::string("Drive ") + drive.letter + ": " +
         std::string(kDriveTypes[static_cast<size_t>(drive.type)]);
}

bool IsTicked(const Settings& settings, std::string_view row, std::string_view letter) {
  if (settings.Get(setting::kDrive.Named(row))) return true;
  const bool absent = settings.Get(setting::kDriveMark.Named(row)) == setting::kDriveMark.fallback;
  return absent && EqualText(letter, "C");
}

}  // namespace

void GetAllHardDrives(ScanPage& page, const ScanFlags& flags, Machine& machine, ErrorLog& log) {
  Reporting(log, "GetAllHardDrives in frmMain", [&] {
    for (const Drive& drive : machine.Drives()) {
      if (flags.scanStopRequested) return;
      if (drive.type != DriveType::kFixed || !drive.ready) continue;
      const std::string letter(1, drive.letter);
      page.lvwHardDrives.Add({.text = RowText(drive), .key = letter});
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
    page.lvwHardDrives.SetChecked(i, IsTicked(settings, row.text, row.key));
  }
}

std::vector<std::string> MissingDrives(const ScanPage& page, const Settings& settings,
                                       Machine& machine) {
  std::vector<std::string> missing;
  for (const Drive& drive : machine.Drives()) {
    const std::string text = RowText(drive);
    const std::string letter(1, drive.letter);
    if (drive.type == DriveType::kFixed && !page.lvwHardDrives.FindText(text) &&
        IsTicked(settings, text, letter)) {
      missing.push_back(letter + ":\\");
    }
  }
  return missing;
}

}  // namespace quarnel
