// What the program keeps for itself is old or new, wherever it is killed and whatever fails.

#include <algorithm>
#include <cerrno>
#include <functional>
#include <iostream>

#include "base/text.h"
#include "core/paths.h"
#include "core/settings.h"
#include "platform/machine_folder.h"
#include "proof/posix_proof_machine.h"
#include "scan/safe_list.h"
#include "support/test_host.h"

namespace quarnel {
namespace {

constexpr int kSettings = 12;

class StateProof : public ProofTest {
 protected:
  void SetUp() override {
    ProofTest::SetUp();
    CreateMachine(original.Path(), {});
  }

  void ProveWork(const std::function<void(Platform&)>& work,
                 const std::function<void(const TracedRun&)>& check) {
    const auto program = [&] {
      work(*OpenPlatform(machine.Path()));
      return 0;
    };
    const auto checked = [&](const TracedRun& run) {
      EXPECT_TRUE(run.Crashed() || run.exitCode == 0 || run.output.starts_with("uncaught: "))
          << run.exitCode;
      check(run);
    };
    Prove(program,
          {.kinds = {Kind::kKill, Kind::kTear, Kind::kFail, Kind::kFailFromThen},
           .errors = {ENOSPC},
           .sample = 15},
          checked);
  }
};

std::string KeyOf(int number) { return "Key " + std::to_string(number); }

TEST_F(StateProof, EachSettingIsOldOrNew) {
  const std::string old(3000, 'o');
  const std::string fresh(5000, 'n');
  {
    const auto platform = OpenPlatform(original.Path());
    Settings settings(platform->registry(), "Quarnel");
    for (int i = 0; i < kSettings; ++i) settings.SaveSetting("Proof", KeyOf(i), old);
  }
  const auto save = [&](Platform& platform) {
    Settings settings(platform.registry(), "Quarnel");
    for (int i = 0; i < kSettings; ++i) {
      const bool saved = IgnoringErrors([&] { settings.SaveSetting("Proof", KeyOf(i), fresh); });
      std::cout << (saved ? "saved\n" : "failed\n") << std::flush;
    }
  };
  ProveWork(save, [&](const TracedRun& run) {
    const std::vector<std::string> told = Split(run.output, "\n");
    const auto platform = OpenPlatform(machine.Path());
    const Settings settings(platform->registry(), "Quarnel");
    for (size_t i = 0; i < kSettings; ++i) {
      const std::string value = settings.GetSetting("Proof", KeyOf(static_cast<int>(i)), "none");
      EXPECT_TRUE(value == old || value == fresh) << i << ": " << value;
      const std::string answer = i < told.size() ? told[i] : std::string();
      if (answer.empty()) continue;
      EXPECT_EQ(value, answer == "saved" ? fresh : old) << i;
    }
  });
}

TEST_F(StateProof, TheSafeListIsOldOrNew) {
  const std::string program = OpenPlatform(original.Path())->machine().ProgramFolder();
  const std::string path = GetPathWithSlash(program) + std::string(kSafeListFile);
  std::vector<std::string> states = {"C:\\old one^Threat^Threat\r\nC:\\old two^Threat^Threat\r\n"};
  WriteWholeFile(OpenPlatform(original.Path())->files(), path, states.front());
  for (const char* trace : {"C:\\a", "C:\\b", "C:\\c"}) {
    states.push_back(states.back() + trace + "^New^New\r\n");
  }
  states.push_back("C:\\old two^Threat^Threat\r\n");
  const auto change = [&](Platform& platform) {
    TestHost host;
    Form form(host, "frmMain");
    ListView list(form, "lvwIgnoredSpywares", {"Trace", "Threat", "Company"});
    ErrorLog log(platform.files(), platform.machine(), host, "Quarnel");
    SafeList safe(platform.files(), platform.machine(), log);
    for (const char* trace : {"C:\\a", "C:\\b", "C:\\c"}) {
      safe.AddIgnoredSpywaresTolvw(path, "New", trace, "New", true, list);
    }
    list.Clear();
    list.Add({.text = "C:\\old two", .subItems = {"Threat", "Threat"}});
    safe.Rewrite(path, list);
  };
  ProveWork(change, [&](const TracedRun& run) {
    const std::string text = ReadWholeFile(OpenPlatform(machine.Path())->files(), path);
    if (run.Crashed()) {
      EXPECT_NE(std::find(states.begin(), states.end(), text), states.end()) << text;
    }
    // Where an addition failed the later ones follow what stood before it.
    for (const std::string& line : Split(text, "\r\n")) {
      EXPECT_TRUE(line.empty() || Split(line, "^").size() == 3) << text;
    }
    EXPECT_TRUE(text.ends_with("\r\n") && text.find("C:\\old two^Threat^Threat\r\n") != text.npos)
        << text;
  });
}

TEST_F(StateProof, AttributesAreStoredOrTheFailureIsTold) {
  using namespace file_attribute;
  const std::string path = "C:\\file";
  WriteWholeFile(OpenPlatform(original.Path())->files(), path, "x");
  const auto change = [&](Platform& platform) {
    for (const uint32_t attributes : {kHidden, kNormal, kSystem | kReadOnly, kArchive}) {
      if (!IgnoringErrors([&] { platform.files().SetAttributes(path, attributes); })) return;
      std::cout << attributes << ' ' << platform.files().Stat(path)->attributes << std::endl;
    }
  };
  ProveWork(change, [&](const TracedRun& run) {
    if (run.output.starts_with("uncaught: ")) return;  // the machine could not be opened
    for (const std::string& line : Split(run.output, "\n")) {
      const std::vector<std::string> words = Split(line, " ");
      EXPECT_TRUE(words.size() < 2 || words[0] == words[1]) << "set, and found: " << line;
    }
  });
}

}  // namespace
}  // namespace quarnel
