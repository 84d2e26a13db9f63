#include "machine/sample.h"

#include <algorithm>
#include <map>
#include <set>

#include "core/lines.h"
#include "machine/embedded.h"
#include "signatures/compiler.h"
#include "signatures/md5.h"
#include "signatures/signature_files.h"
#include "signatures/taxonomy.h"
#include "support/platform_fixture.h"
#include "support/victim.h"

namespace quarnel {
namespace {

class SampleTest : public PlatformTest {
 protected:
  // Whether what a trace names stands on the machine.
  bool Stands(const PlantedTrace& trace) {
    if (trace.kind != PlantedKind::kRegistry) return files().Stat(trace.trace).has_value();
    constexpr std::string_view kMark = " -> Value Name: ";
    const size_t keyBegin = trace.trace.find('\\') + 1;
    const size_t mark = trace.trace.find(kMark);
    const std::string key = trace.trace.substr(keyBegin, mark - keyBegin);
    const std::string value = trace.trace.substr(mark + kMark.size());
    for (const Hive& hive : Hives()) {
      if (hive.name != trace.trace.substr(0, keyBegin - 1)) continue;
      std::unique_ptr<RegistryKey> open;
      RegistryValue content;
      return registry().Open(hive.handle, key, registry_access::kReadWrite, open) ==
                 RegistryStatus::kSuccess &&
             (value.empty() || QueryValueEx(*open, value, content));
    }
    return false;
  }

  // The lines of a compiled signature file, as its source would have them.
  std::string Shown(std::string_view name) {
    const std::string path = SignaturePath(machine(), name);
    return ShowSignatureFile(name, ReadWholeFile(files(), path)).value_or("");
  }

  static std::vector<std::string> FieldsOf(std::string_view line, std::string_view separator) {
    std::string text(line);
    text += '#';  // so that an empty last field counts
    return Split(text, separator);
  }
};

TEST_F(SampleTest, PlantsEveryKindAndSaysWhere) {
  const PlantedSample sample = PlantSample(platform());
  std::map<PlantedKind, int> kinds;
  std::set<std::string> traces;
  for (const PlantedTrace& trace : sample.traces) {
    EXPECT_TRUE(Stands(trace)) << trace.trace;
    EXPECT_TRUE(traces.insert(trace.trace).second) << trace.trace;
    ++kinds[trace.kind];
  }
  EXPECT_EQ(kinds[PlantedKind::kFile], 14);
  EXPECT_EQ(kinds[PlantedKind::kCookie], 4);
  EXPECT_EQ(kinds[PlantedKind::kProgram], 1);
  EXPECT_GE(kinds[PlantedKind::kRegistry], 16);  // and two where the user's identifier is known
  for (const std::string& path : sample.cleanFiles) EXPECT_TRUE(files().Stat(path)) << path;

  bool allPresent = false;
  AllSignatureArePresent(files(), machine(), allPresent);
  EXPECT_TRUE(allPresent);
}

TEST_F(SampleTest, ChangesNothingWhenPlantedAgain) {
  const PlantedSample first = PlantSample(platform());
  std::map<std::string, FileTime> times;
  for (const PlantedTrace& trace : first.traces) {
    if (const auto entry = files().Stat(trace.trace)) times[trace.trace] = entry->modified;
  }
  // A program that runs cannot be written, so it must not be tried.
  ASSERT_TRUE(platform().shell().Run(first.programPath, "60"));
  const auto running = [&] { return RunningCopies(platform().processes(), first.programPath); };
  ASSERT_TRUE(Eventually([&] { return !running().empty(); }));

  const PlantedSample second = PlantSample(platform());
  for (const uint32_t id : running()) {
    platform().processes().Terminate(id, 0);
    platform().processes().WaitForEnd(id, std::chrono::seconds(10));
  }
  ASSERT_EQ(second.traces.size(), first.traces.size());
  for (const auto& [path, time] : times) EXPECT_EQ(files().Stat(path)->modified, time) << path;
}

TEST_F(SampleTest, MendsWhatWasDamaged) {
  const PlantedSample sample = PlantSample(platform());
  const std::string& path = sample.traces.front().trace;
  const std::string hash = HashFile(files(), path);
  AppendToFile(files(), path, "damage");
  PlantSample(platform());
  EXPECT_EQ(HashFile(files(), path), hash);
}

TEST_F(SampleTest, CompilesSignaturesThatNameWhatWasPlanted) {
  const PlantedSample sample = PlantSample(platform());
  std::set<std::string> planted;
  for (const PlantedTrace& trace : sample.traces) planted.insert(trace.threat);
  planted.erase("Tracking Object");  // named by the scan itself
  planted.erase("Unknown");          // and this one where a name is empty
  planted.insert("Sample Absent");

  std::set<std::string> named;
  const auto take = [&](std::string_view file, std::string_view separator, size_t field) {
    const std::string text = Shown(file);
    LineReader lines(text);
    size_t count = 0;
    while (const auto line = lines.Next()) {
      const auto fields = FieldsOf(*line, separator);
      EXPECT_GT(fields.size(), field) << *line;
      if (!fields[field].empty()) named.insert(std::string(Trim(Replace(fields[field], "#", ""))));
      ++count;
    }
    EXPECT_EQ(GetSignatureCount(files(), machine(), file), static_cast<int32_t>(count)) << file;
    EXPECT_EQ(text.find('{' + std::string("md5")), std::string::npos) << file;
  };
  take(signature_file::kRegistry, ",", 1);
  take(signature_file::kFiles, ",", 1);
  take(signature_file::kPrograms, "^", 2);
  EXPECT_EQ(named, planted);

  EXPECT_NE(Shown(signature_file::kPrograms).find(HashFile(files(), sample.programPath)),
            std::string::npos);
  EXPECT_NE(Shown(signature_file::kBlockedCookies).find("*.tracker.example"), std::string::npos);
  EXPECT_NE(Shown(signature_file::kActiveX).find("Sample Toolbar Control,{"), std::string::npos);
  EXPECT_NE(Shown(signature_file::kLevels).find("samplekeywatch=5"), std::string::npos);
}

TEST_F(SampleTest, LeavesOutWhatTheMachineHasNoPlaceFor) {
  // Without the key that tells the user's identifier.
  DeleteKeyTree(registry(), hive::kCurrentUser,
                "Software\\Microsoft\\Protected Storage System Provider", nullptr);
  const PlantedSample sample = PlantSample(platform());
  for (const PlantedTrace& trace : sample.traces) {
    EXPECT_FALSE(trace.trace.starts_with("HKEY_USERS")) << trace.trace;
    EXPECT_TRUE(Stands(trace)) << trace.trace;
  }
}

}  // namespace
}  // namespace quarnel
