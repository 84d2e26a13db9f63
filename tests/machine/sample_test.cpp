#include "machine/sample.h"

#include <map>

#include "signatures/md5.h"
#include "signatures/signature_files.h"
#include "support/platform_fixture.h"
#include "support/victim.h"

namespace quarnel {
namespace {

// What a scan of the sample finds is tested beside the scan.
class SampleTest : public PlatformTest {};

TEST_F(SampleTest, WritesOnlyWhatIsDifferentWhenPlantedAgain) {
  const PlantedSample first = PlantSample(platform());
  // A home page that the program has seen otherwise, or the one that the machine had.
  EXPECT_NE(QueryText(registry(), hive::kCurrentUser,
                      "Software\\Microsoft\\Internet Explorer\\Main", "Start Page"),
            "");
  std::map<std::string, FileTime> times;
  for (const PlantedTrace& trace : first.traces) {
    if (const auto entry = files().Stat(trace.trace)) times[trace.trace] = entry->modified;
  }
  const auto [damaged, damagedTime] = *times.begin();
  const std::string hash = HashFile(files(), damaged);
  AppendToFile(files(), damaged, "damage");
  // A program that runs cannot be written, so it must not be tried.
  const Victim victim(platform(), first.programPath);
  ASSERT_NE(victim.Id(), 0U);

  EXPECT_EQ(PlantSample(platform()).traces.size(), first.traces.size());
  EXPECT_EQ(HashFile(files(), damaged), hash);
  times.erase(damaged);
  times.erase(ToUpper(first.programPath));  // written by the line that ran it
  for (const auto& [path, time] : times) EXPECT_EQ(files().Stat(path)->modified, time) << path;
}

TEST_F(SampleTest, LeavesOutWhatNeedsAnUnknownIdentifier) {
  DeleteKeyTree(registry(), hive::kCurrentUser,
                "Software\\Microsoft\\Protected Storage System Provider", nullptr);
  for (const PlantedTrace& trace : PlantSample(platform()).traces) {
    EXPECT_FALSE(trace.trace.starts_with("HKEY_USERS")) << trace.trace;
  }
}

}  // namespace
}  // namespace quarnel
