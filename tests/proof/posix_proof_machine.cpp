#include "proof/posix_proof_machine.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <random>

#include "base/text.h"
#include "core/error_log.h"
#include "core/existing_files.h"
#include "core/paths.h"
#include "core/settings.h"
#include "machine/registry_transfer.h"
#include "platform/machine_folder.h"
#include "recovery/manifest.h"
#include "recovery/removal_report.h"
#include "recovery/restore_point.h"
#include "scan/safe_list.h"
#include "signatures/sha256.h"
#include "signatures/signature_files.h"
#include "signatures/taxonomy.h"
#include "support/signature_set.h"
#include "support/test_host.h"

namespace quarnel {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kTitle = "Quarnel";
constexpr std::string_view kKeys = "Software\\Proof Threat";
constexpr std::string_view kFolders[] = {"C:\\Proof Threat", "D:\\Proof Threat"};
constexpr int kKeyTraces = 8;
constexpr int kValueTraces = 12;
constexpr int kCookies = 10;

struct ProofFile {
  std::string name;  // below one of the folders
  size_t drive;
  uint32_t attributes = file_attribute::kNormal;
  size_t size = 100;
};

// Same names in different folders and on both drives, every road of the removal, and what may be
// lost with a name, an attribute or a size.
std::vector<ProofFile> ProofFiles() {
  using namespace file_attribute;
  std::vector<ProofFile> files;
  for (const size_t drive : {size_t{0}, size_t{1}}) {
    for (const char* name : {"a\\same.exe", "b\\same.exe", "b\\deep\\er\\same.exe", "a\\same.dll",
                             "b\\same.dll", "a\\same.txt", "b\\same.txt", "none", "link.ocx"}) {
      files.push_back({.name = name, .drive = drive});
    }
    files.push_back({"read only.txt", drive, kReadOnly});
    files.push_back({"read only.exe", drive, kReadOnly | kArchive});
    files.push_back({"temporary.dat", drive, kTemporary | kArchive});
    files.push_back({"\xC3\xA4\xE2\x82\xAC 50%.exe", drive});
    files.push_back({"empty.bin", drive, kArchive, 0});
  }
  files.push_back({std::string(200, 'l') + ".long", 0, kReadOnly});
  files.push_back({"large.bin", 1, kNormal, 300'000});
  return files;
}

std::string PathOf(const ProofFile& file) {
  return std::string(kFolders[file.drive]) + "\\" + file.name;
}

void SetValue(Registry& registry, const std::string& path, std::string_view name,
              const RawValue& value) {
  std::unique_ptr<RegistryKey> key;
  registry.Create(hive::kCurrentUser, path, key);
  if (key->Set(name, value) != RegistryStatus::kSuccess) throw RuntimeError(ErrorNumber::kDiskFull);
}

std::string KeyTrace(int number) { return std::string(kKeys) + "\\Key " + std::to_string(number); }

std::string ValueName(int number) { return "Value " + std::to_string(number); }

// Each key has a quarter of the types.
void PlantRegistry(Registry& registry) {
  for (int number = 0; number < kKeyTraces; ++number) {
    const std::string path = KeyTrace(number);
    SetValue(registry, path, "", RawFromValue("default " + std::to_string(number)));
    constexpr uint32_t kLink = 6;  // no value like others
    for (auto type = static_cast<uint32_t>(number % 4); type <= 11; type += 4) {
      if (type == kLink) continue;
      const std::string name = "Type " + std::to_string(type);
      SetValue(registry, path, name,
               {static_cast<ValueType>(type), std::string("o\0d\xFF\r\n%", 7) + path});
      SetValue(registry, path + "\\Below", name + " empty", {static_cast<ValueType>(type), {}});
    }
    CreateNewKey(registry, hive::kCurrentUser, path + "\\Empty\\Deeper");
  }
  SetValue(registry, std::string(kKeys), "Stays", RawFromValue(std::string("untouched")));
  for (int number = 0; number < kValueTraces; ++number) {
    const RegistryValue value =
        number % 2 == 0 ? RegistryValue(std::string("\xE2\x82\xAC text"))
                        : RegistryValue(uint32_t{0xFFFFFFF0} + static_cast<uint32_t>(number));
    SetValue(registry, std::string(kKeys), ValueName(number), RawFromValue(value));
  }
}

void PlantFile(Files& files, const std::string& path, const std::string& bytes,
               uint32_t attributes) {
  CreateFolders(files, path.substr(0, path.rfind('\\')));
  WriteWholeFile(files, path, bytes);
  const auto now =
      std::chrono::time_point_cast<std::chrono::seconds>(std::chrono::system_clock::now());
  files.SetModified(path, FileTime(now - std::chrono::hours(10'000)) + FileTime::duration(1234567));
  files.SetAttributes(path, attributes);
}

void PlantSignatures(Platform& platform) {
  SignatureSources sources;
  for (int number = 0; number < kKeyTraces; ++number) {
    sources.registry += "Proof Labs,Proof Threat,4,1,KEY:" + KeyTrace(number) + ",,\n";
  }
  for (int number = 0; number < kValueTraces; ++number) {
    sources.registry += "Proof Labs,Proof Threat,4,1,KEY:" + std::string(kKeys) +
                        ",KVN:" + ValueName(number) + ",\n";
  }
  for (const std::string_view folder : kFolders) {
    sources.files += "Proof Labs,Proof Threat,4,0," + std::string(folder) + "\\[[FOLDER]],,3001\n";
  }
  sources.programs = "00000000000000000000000000000000^11^Absent\n";
  sources.blockedCookies = "*.example\n";
  const CompiledSet set = CompileSet(sources);
  InstallSet(platform.files(), platform.machine(), set);
}

std::string CookiePath(Machine& machine, int number) {
  return GetSpecialFolderPath(machine, csidl::kCookies) + "visitor@site" + std::to_string(number) +
         ".example[1].txt";
}

std::string WhatFileIs(Files& files, const std::string& path) {
  const auto entry = files.Stat(path);
  if (!entry) return {};
  const auto modified = files.Times(path).modified.time_since_epoch().count();
  return Join({entry->name, std::to_string(entry->attributes), std::to_string(modified),
               ReadWholeFile(files, path)},
              "|");
}

std::string WhatValueIs(RegistryKey& key, const std::string& name) {
  RawValue value;
  if (key.Query(name, value) != RegistryStatus::kSuccess) return {};
  return ValueLine(name, value);
}

std::string WhatKeyIs(Registry& registry, const std::string& path) {
  std::vector<RegStep> steps;
  if (CollectSteps(registry, {hive::kCurrentUser, path}, steps) != RegistryStatus::kSuccess) {
    return {};
  }
  std::vector<std::string> lines;
  lines.reserve(steps.size());
  for (const RegStep& step : steps) {
    lines.push_back(Join({KeyPathText(step.key), ValueLine(step.name, step.value)}, " "));
  }
  std::sort(lines.begin(), lines.end());
  return Join(lines, "\n");
}

std::string_view Environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string_view() : std::string_view(value);
}

constexpr std::string_view kKindNames[] = {"undisturbed", "killed", "torn", "failing",
                                           "failing on from"};

unsigned Seed() {
  static const unsigned seed = [] {
    const std::string_view given = Environment("QUARNEL_PROOF_SEED");
    const unsigned chosen =
        given.empty() ? std::random_device()() % 1'000'000 : static_cast<unsigned>(ValLong(given));
    std::cout << "QUARNEL_PROOF_SEED=" << chosen << std::endl;
    return chosen;
  }();
  return seed;
}

std::vector<Intervention> Interventions(Intervention::Kind kind, int error, size_t calls,
                                        size_t sample) {
  const bool all = Environment("QUARNEL_PROOF") == "all";
  const size_t points = all ? calls : std::min(sample, calls);
  std::mt19937 random(Seed() + static_cast<unsigned>(kind) * 1000 + static_cast<unsigned>(error));
  std::cout << kKindNames[static_cast<size_t>(kind)] << ", error " << error << ": " << points
            << " of " << calls << " calls\n";
  std::vector<Intervention> interventions;
  for (size_t i = 0; i < points; ++i) {
    const size_t begin = calls * i / points;
    const size_t end = calls * (i + 1) / points;
    interventions.push_back(
        {.kind = kind, .at = 1 + begin + random() % (end - begin), .error = error});
  }
  return interventions;
}

// What was done, for the message of a failed check.
std::string Describe(const Intervention& intervention, const TracedRun& run) {
  return std::string(kKindNames[static_cast<size_t>(intervention.kind)]) + " at call " +
         std::to_string(intervention.at) + ", error " + std::to_string(intervention.error) + ": " +
         run.place;
}

}  // namespace

ProofFolder::ProofFolder() {
  // No power is cut in a test, so that its disk may be memory.
  const bool hasMemory = fs::is_directory("/dev/shm");
  path_ = (hasMemory ? fs::path("/dev/shm") : fs::temp_directory_path()) / "quarnel-proof-XXXXXX";
  if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no folder for the test");
}

ProofFolder::~ProofFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

void PlantProof(const std::string& folder) {
  CreateMachine(folder, {});
  fs::create_directory(folder + "/drive_d");
  const auto platform = OpenPlatform(folder);
  for (const ProofFile& file : ProofFiles()) {
    std::string bytes = PathOf(file);
    bytes.resize(file.size, '\xE4');
    PlantFile(platform->files(), PathOf(file), bytes, file.attributes);
  }
  for (int number = 0; number < kCookies; ++number) {
    PlantFile(platform->files(), CookiePath(platform->machine(), number),
              "visitor\n7f\nsite" + std::to_string(number) + ".example/\n1024\n*\n",
              file_attribute::kNormal);
  }
  PlantRegistry(platform->registry());
  PlantSignatures(*platform);
  Settings(platform->registry(), std::string(kTitle)).Save(setting::kStrict, 1);
}

Traces TracesOf(const std::string& folder) {
  const auto platform = OpenPlatform(folder);
  Traces traces;
  for (const ProofFile& file : ProofFiles()) {
    traces[PathOf(file)] = WhatFileIs(platform->files(), PathOf(file));
  }
  for (int number = 0; number < kCookies; ++number) {
    const std::string path = CookiePath(platform->machine(), number);
    traces[path] = WhatFileIs(platform->files(), path);
  }
  Registry& registry = platform->registry();
  const auto name = [](const std::string& key, const std::string& value) {
    return RegistryTraceText(HiveName(hive::kCurrentUser), key, value);
  };
  for (int number = 0; number < kKeyTraces; ++number) {
    traces[name(KeyTrace(number), "")] = WhatKeyIs(registry, KeyTrace(number));
  }
  const std::string keys(kKeys);
  std::unique_ptr<RegistryKey> key;
  registry.Open(hive::kCurrentUser, keys, registry_access::kRead, key);
  for (int number = 0; number < kValueTraces; ++number) {
    traces[name(keys, ValueName(number))] = key ? WhatValueIs(*key, ValueName(number)) : "";
  }
  if (!key || WhatValueIs(*key, "Stays").empty()) ADD_FAILURE() << "a stranger's value is gone";
  return traces;
}

std::vector<std::string> Changed(const Traces& before, const Traces& now) {
  std::vector<std::string> changed;
  for (const auto& [name, content] : before) {
    if (now.at(name) != content) changed.push_back(name);
  }
  return changed;
}

std::vector<std::string> RestorePoints(Platform& platform) {
  std::vector<std::string> stems;
  for (const std::string& folder : BackupFolders(platform.machine())) {
    if (!platform.files().Stat(folder)) continue;
    for (const DirectoryEntry& entry : platform.files().List(folder)) {
      if (!entry.name.ends_with(restore_point::kManifest)) continue;
      stems.push_back(entry.name.substr(0, entry.name.size() - restore_point::kManifest.size()));
    }
  }
  return stems;
}

RestoreReport RestoreStrictly(Platform& platform, const std::string& stem) {
  TestHost host;
  Form form(host, "frmMain");
  BackupPage page{form};
  Settings settings(platform.registry(), std::string(kTitle));
  ErrorLog log(platform.files(), platform.machine(), host, std::string(kTitle));
  Restore restore({.page = page,
                   .files = platform.files(),
                   .registry = platform.registry(),
                   .machine = platform.machine(),
                   .settings = settings,
                   .host = host,
                   .log = log});
  return restore.RestoreSpyware(stem);
}

std::vector<std::string> Leftovers(const std::string& folder) {
  std::vector<std::string> found;
  const std::string own = HostPathOf(folder, OpenPlatform(folder)->machine().ProgramFolder());
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    const std::string path = entry.path().string();
    const std::string name = entry.path().filename().string();
    if (name.starts_with('~') && name.ends_with(".tmp") && !path.starts_with(own)) {
      found.push_back(path);
    }
  }
  return found;
}

std::string TornStateFiles(Platform& platform) {
  std::string torn;
  Files& files = platform.files();
  const std::string report = RemovalReportPath(platform.machine());
  if (FileExists(files, report) && !LoadRemovalReport(files, platform.machine())) torn += report;
  for (const std::string& stem : RestorePoints(platform)) {
    const std::string path =
        RestorePointFile(files, platform.machine(), stem, restore_point::kManifest);
    for (const std::string& damage : ReadManifest(ReadWholeFile(files, path), stem).damage) {
      torn.append(" ").append(path).append(": ").append(damage);
    }
  }
  return torn;
}

int ScanAndRemove(const std::string& folder) {
  return BecomeProgram({QUARNEL_CONSOLE, "--machine", folder, "-"},
                       "clock 2024-03-05T14:30:00\n"
                       "set frmMain.chkCreateRestore 1\n"
                       "scan\n"
                       "set frmMain.chkSelectAllDetectedSpywares 1\n"
                       "remove\n");
}

void ProofTest::SetUp() {
  if (const std::string reason = WhyNoTracing(); !reason.empty()) GTEST_SKIP() << reason;
}

TracedRun ProofTest::Run(const Program& program, const Intervention& intervention,
                         std::string_view from) {
  CopyFolder(original.Path(), machine.Path());
  return RunTraced(program, intervention, from);
}

void ProofTest::Prove(const Program& program, const Disturbance& disturbance,
                      const std::function<void(const TracedRun&)>& check) {
  const size_t calls = Run(program, {.ofLooks = disturbance.ofLooks}, disturbance.from).calls;
  ASSERT_GT(calls, 10U);
  for (const Kind kind : disturbance.kinds) {
    for (const int error : disturbance.errors) {
      for (Intervention intervention : Interventions(kind, error, calls, disturbance.sample)) {
        intervention.ofLooks = disturbance.ofLooks;
        const TracedRun run = Run(program, intervention, disturbance.from);
        SCOPED_TRACE(Describe(intervention, run));
        const bool kills = kind == Kind::kKill || kind == Kind::kTear;
        EXPECT_EQ(run.Crashed(), kills) << run.signal << run.output;
        check(run);
      }
    }
  }
}

}  // namespace quarnel
