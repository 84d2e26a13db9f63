#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <thread>
#include <vector>

#include "scan_rig.h"

// The parts of a deep scan that bench/run measures as whole processes:
//
//   deep-scan-bench scan MACHINE DRIVE [LEVEL]   scans a drive such as "D:\", hashing at a level:
//                                                portable, sse2, avx2, avx512; prints the paths
//                                                found, and the seconds of both steps on errors
//   deep-scan-bench load MACHINE                 loads the signatures and does nothing with them
//   deep-scan-bench read FOLDER                  lists a host folder and reads all files in it
//                                                with two threads: what a scan cannot do without
namespace quarnel {
namespace {

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

std::optional<Md5Level> LevelOf(std::string_view name) {
  if (name == "portable") return Md5Level::kPortable;
  if (name == "sse2") return Md5Level::kSse2;
  if (name == "avx2") return Md5Level::kAvx2;
  if (name == "avx512") return Md5Level::kAvx512;
  return std::nullopt;
}

int Scan(const std::string& machine, const std::string& drive, Md5Level level) {
  ScanRig rig(machine);
  HashPool pool(std::max(1U, std::thread::hardware_concurrency()), level);
  DeepScan scan = rig.Deep(&pool);
  const auto start = Clock::now();
  if (!scan.LoadSignatureHashText()) throw std::runtime_error("no signatures");
  const double load = SecondsSince(start);
  scan.ScanDrive(drive);
  std::cerr << load << ' ' << SecondsSince(start) - load << '\n';
  for (const ListRow& row : rig.resultsPage.lvwFilesToBeDeleted.Rows()) {
    std::cout << row.text << '\n';
  }
  return rig.unread.Count() == 0 ? 0 : 1;
}

int Load(const std::string& machine) {
  ScanRig rig(machine);
  return rig.Deep(nullptr).LoadSignatureHashText() ? 0 : 1;
}

int Read(const std::string& folder) {
  std::vector<std::string> paths;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file() && !entry.is_symlink()) paths.push_back(entry.path());
  }
  std::atomic<size_t> next = 0;
  std::atomic<uint64_t> bytes = 0;
  const auto work = [&] {
    std::vector<char> buffer(size_t{64} << 10);
    uint64_t sum = 0;
    for (size_t i = next++; i < paths.size(); i = next++) {
      const int fd = open(paths[i].c_str(), O_RDONLY | O_CLOEXEC);
      if (fd < 0) continue;
      ssize_t count = 0;
      while ((count = read(fd, buffer.data(), buffer.size())) > 0) {
        sum += static_cast<uint64_t>(count);
      }
      close(fd);
    }
    bytes += sum;
  };
  {
    std::jthread other(work);
    work();
  }
  std::cout << paths.size() << " files, " << bytes << " bytes\n";
  return 0;
}

int Run(const std::vector<std::string>& arguments) {
  const size_t count = arguments.size();
  const std::string verb = count > 0 ? arguments[0] : std::string();
  if (verb == "load" && count == 2) return Load(arguments[1]);
  if (verb == "read" && count == 2) return Read(arguments[1]);
  if (verb == "scan" && (count == 3 || count == 4)) {
    const auto level = count == 4 ? LevelOf(arguments[3]) : BestMd5Level();
    if (level) return Scan(arguments[1], arguments[2], *level);
  }
  std::cerr << "usage: deep-scan-bench scan MACHINE DRIVE [LEVEL] | load MACHINE | read FOLDER\n";
  return 2;
}

}  // namespace
}  // namespace quarnel

int main(int argc, char** argv) {
  try {
    return quarnel::Run({argv + 1, argv + argc});
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
