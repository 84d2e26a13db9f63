#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <functional>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/text.h"
#include "idle_host.h"
#include "platform/platform.h"
#include "recovery/backup.h"
#include "recovery/restore.h"
#include "recovery/restore_point.h"
#include "temporary_machine.h"

// restore-points-bench [ROUNDS]
//
// Backup, deletion and restore of 10,000 files of 4 KiB against zip, rm and unzip on the same files
// in the same round; prints the medians of three rounds, or of as many as are asked for. zip packs
// by its default, and stores like a restore point in a second line. The last line is unzip followed
// by sync, since a restored file is on the disk when it gets its name.
namespace quarnel {
namespace {

using Clock = std::chrono::steady_clock;

constexpr size_t kFolders = 100;
constexpr size_t kFilesEach = 100;
constexpr size_t kSize = 4096;

class Table {
 public:
  void Measure(const std::string& name, const std::function<void()>& action) {
    const auto start = Clock::now();
    action();
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    const auto known = std::find_if(lines_.begin(), lines_.end(),
                                    [&](const Line& line) { return line.name == name; });
    (known == lines_.end() ? lines_.emplace_back(Line{name, {}}) : *known)
        .seconds.push_back(seconds);
  }
  void Print() {
    for (Line& line : lines_) {
      std::sort(line.seconds.begin(), line.seconds.end());
      std::printf("%-34s %8.3f s\n", line.name.c_str(), line.seconds[line.seconds.size() / 2]);
    }
  }

 private:
  struct Line {
    std::string name;
    std::vector<double> seconds;
  };
  std::vector<Line> lines_;
};

void Shell(const std::string& command) {
  // The peers are shell commands.
  if (std::system(command.c_str()) != 0)  // NOLINT(cert-env33-c)
    throw std::runtime_error(command);
}

void Expect(bool holds, const char* what) {
  if (!holds) throw std::runtime_error(what);
}

struct Rig {
  explicit Rig(const std::string& folder) : platform(OpenPlatform(folder)) {}

  std::unique_ptr<Platform> platform;
  RealClock clock;
  IdleHost host{clock};
  Form form{host, "frmMain"};
  BackupPage page{form};
  ResultsPage results{form};
  ErrorLog log{platform->files(), platform->machine(), host, "Quarnel"};
  Settings settings{platform->registry(), "Quarnel"};
  Backup backup{
      {page, results, platform->files(), platform->registry(), platform->machine(), host, log}};
  Restore restore{
      {page, platform->files(), platform->registry(), platform->machine(), settings, host, log}};
};

// Bytes that no packer makes smaller.
std::string RandomBytes(uint64_t& state) {
  std::string bytes(kSize, '\0');
  for (char& byte : bytes) {
    state = state * 6364136223846793005U + 1442695040888963407U;
    byte = static_cast<char>(state >> 56);
  }
  return bytes;
}

void MakeFiles(Rig& rig) {
  uint64_t state = 20080614;
  for (size_t folder = 0; folder < kFolders; ++folder) {
    const std::string path = "C:\\files\\folder" + std::to_string(folder);
    CreateFolders(rig.platform->files(), path);
    for (size_t file = 0; file < kFilesEach; ++file) {
      const std::string name = path + "\\file" + std::to_string(file) + ".bin";
      WriteWholeFile(rig.platform->files(), name, RandomBytes(state));
      rig.results.lvwFilesToBeDeleted.Add({.text = name, .subItems = {"Type", "Threat"}});
    }
  }
}

void Round(Table& table) {
  const TemporaryMachine machine;
  Rig rig(machine.Folder());
  Files& files = rig.platform->files();
  MakeFiles(rig);
  const std::string tree = machine.Host("C:\\files");
  const std::string drive = tree.substr(0, tree.rfind('/'));
  const std::string zip = machine.Folder() + "/peer.zip";
  // The one file system: others may have much to write for other programs.
  const std::string sync = "sync -f '" + machine.Folder() + "'";
  Shell(sync);

  BackupReport report;
  table.Measure("backup", [&] { report = rig.backup.BackupSpyware(); });
  Expect(report.Complete() && report.files == kFolders * kFilesEach, "the backup is not whole");
  const auto removeAll = [&] {
    for (const ListRow& row : rig.results.lvwFilesToBeDeleted.Rows()) files.Delete(row.text);
  };
  table.Measure("deletion", removeAll);
  const auto restore = [&](int strict) {
    rig.settings.Save(setting::kStrict, strict);
    const RestoreReport restored = rig.restore.RestoreSpyware(report.stem);
    Expect(restored.failures.empty() && restored.files == kFolders * kFilesEach,
           "the restore is not whole");
  };
  table.Measure("restore", [&] { restore(0); });
  removeAll();
  table.Measure("strict restore", [&] { restore(1); });

  Shell(sync);
  table.Measure("zip -q -r", [&] { Shell("cd '" + drive + "' && zip -q -r '" + zip + "' files"); });
  std::filesystem::remove(zip);
  table.Measure("zip -0 -q -r",
                [&] { Shell("cd '" + drive + "' && zip -0 -q -r '" + zip + "' files"); });
  table.Measure("rm -r", [&] { Shell("rm -r '" + tree + "'"); });
  table.Measure("unzip -q", [&] { Shell("cd '" + drive + "' && unzip -q '" + zip + "'"); });
  Shell("rm -r '" + tree + "' && " + sync);
  table.Measure("unzip -q, sync",
                [&] { Shell("cd '" + drive + "' && unzip -q '" + zip + "' && " + sync); });
}

}  // namespace
}  // namespace quarnel

int main(int argc, char** argv) {
  try {
    quarnel::Table table;
    const long rounds = argc > 1 ? std::max(1L, std::strtol(argv[1], nullptr, 10)) : 3;
    for (long round = 0; round < rounds; ++round) quarnel::Round(table);
    table.Print();
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "restore-points-bench: " << error.what() << '\n';
    return 1;
  }
}
