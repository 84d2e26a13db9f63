#pragma once

#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "base/text.h"
#include "core/paths.h"
#include "scan_rig.h"
#include "signatures/cipher.h"
#include "signatures/complement.h"
#include "signatures/md5.h"
#include "signatures/signature_files.h"
#include "temporary_machine.h"

// Machines and signatures on which the phases of a scan are measured. What is random comes from a
// seed, so that two runs measure the same.
namespace quarnel {

constexpr int kPhaseSignatures = 100'000;
constexpr int kPhaseFinds = kPhaseSignatures / 1000;

inline std::string HexNumber(uint64_t number) {
  char digits[17];
  (void)std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(number));
  return digits;
}

inline void WriteSignatures(ScanRig& rig, std::string_view file,
                            const std::vector<std::string>& lines) {
  std::string bytes = std::to_string(lines.size()) + "\r\n";
  for (const std::string& line : lines) bytes += Encrypt(line) + "\r\n";
  WriteWholeFile(rig.files(), SignaturePath(rig.machine(), file), bytes);
}

// The file phase: a system folder of 3,000 files, 400 folders of programs, and signatures of names
// in them and in folders that nobody has. The names that are missing differ from seed to seed, so
// that no cache, the system's own included, has seen them before.
struct FilePhaseData {
  TemporaryMachine machine;
  std::vector<std::string> lines;
  std::vector<std::string> hostPaths;  // of the same signatures, in the letter case of the disk

  FilePhaseData() {
    ScanRig rig(machine.Folder());
    system_ = DataFolder(rig.machine());
    programs_ = GetPathWithSlash(GetPath(rig.machine(), csidl::kProgramFiles));
    for (int i = 0; i < 3000; ++i) WriteWholeFile(rig.files(), Library(i), Library(i));
    for (int i = 0; i < 400; ++i) {
      CreateFolders(rig.files(), programs_ + "Vendor " + std::to_string(i));
      for (int j = 0; j < 20; ++j) {
        WriteWholeFile(
            rig.files(),
            programs_ + "Vendor " + std::to_string(i) + "\\part" + std::to_string(j) + ".dll", "x");
      }
    }
    systemHost_ = machine.Host(system_.substr(0, system_.size() - 1)) + "/";
    programsHost_ = machine.Host(programs_.substr(0, programs_.size() - 1)) + "/";
  }

  // New names; the files that exist stay the same.
  void Renew(ScanRig& rig, uint64_t seed) {
    std::mt19937_64 random(seed);
    lines.clear();
    hostPaths.clear();
    for (int i = 0; i < kPhaseSignatures; ++i) {
      const std::string rest =
          "," + HexNumber(random()) + HexNumber(random()) + ",ID" + std::to_string(i);
      const std::string front = "Unknown,Some threat " + std::to_string(i) + ",11,";
      if (i % 1000 == 0) {
        const int number = i / 1000;
        const std::string name = "lib" + std::to_string(number) + ".dll";
        lines.push_back(
            Join({front, "42,", name, ",", HexText(Md5Of(Library(number))), ",ID"}, ""));
        hostPaths.push_back(systemHost_ + name);
      } else if (i % 2 == 0) {
        const std::string name = "t" + HexNumber(random()) + ".exe";
        lines.push_back(Join({front, "42,", name, rest}, ""));
        hostPaths.push_back(systemHost_ + name);
      } else {
        const std::string folder = "Vendor " + std::to_string(random() % 2000);
        const std::string name = "t" + HexNumber(random()) + ".exe";
        lines.push_back(Join({front, "31,", folder, "\\", name, rest}, ""));
        hostPaths.push_back(Join({programsHost_, folder, "/", name}, ""));
      }
    }
    WriteSignatures(rig, signature_file::kFiles, lines);
  }

 private:
  std::string Library(int number) const {
    return system_ + "lib" + std::to_string(number) + ".dll";
  }

  std::string system_, programs_, systemHost_, programsHost_;
};

// The registry phase: 20,000 keys, and signatures of whole keys and of values of which one in a
// thousand exists.
struct RegistryPhaseData {
  TemporaryMachine machine;
  std::vector<std::string> storePaths;  // of the keys, as the store knows them

  RegistryPhaseData() {
    ScanRig rig(machine.Folder());
    Registry& registry = rig.platform().registry();
    for (int i = 0; i < 20'000; ++i) {
      RegCreateKeyValue(registry, hive::kLocalMachine, Key(i), "Version", std::string("1.0"));
    }
    std::mt19937_64 random(1);
    std::vector<std::string> lines;
    for (int i = 0; i < kPhaseSignatures; ++i) {
      const bool exists = i % 1000 == 0;
      std::string key = exists ? Key(i / 10)
                               : "Software\\Vendor " + std::to_string(i % 7000) + "\\Threat " +
                                     HexNumber(random());
      if (!exists && i % 3 == 0) key = "Software\\Classes\\CLSID\\{" + HexNumber(random()) + "}";
      lines.push_back("Some company,Some threat " + std::to_string(i) + ",11,2," + key + "," +
                      (i % 2 == 0 ? "Version" : "") + ",");
      storePaths.push_back("HKEY_LOCAL_MACHINE\\" + ToUpper(key));
    }
    WriteSignatures(rig, signature_file::kRegistry, lines);
  }

 private:
  static std::string Key(int number) {
    return "Software\\Vendor " + std::to_string(number % 500) + "\\Product " +
           std::to_string(number);
  }
};

// The cookie phase: 1,000 cookies and 10,000 patterns.
struct CookiePhaseData {
  TemporaryMachine machine;
  std::vector<std::string> patterns;
  std::vector<std::string> domains;
  std::string folder;  // on the host

  CookiePhaseData() {
    ScanRig rig(machine.Folder());
    std::mt19937_64 random(1);
    constexpr const char* kForms[] = {"", "*.", "ads?.", "*track*.", "[a-f]*."};
    for (int i = 0; i < 10'000; ++i) {
      patterns.push_back(kForms[i % 10 < 5   ? 0
                                : i % 10 < 8 ? 1
                                             : 2 + i % 3] +
                         std::string("site") + HexNumber(random()).substr(8) + ".example");
    }
    const std::string cookies = GetPathWithSlash(GetPath(rig.machine(), csidl::kCookies));
    CreateFolders(rig.files(), cookies);
    folder = machine.Host(cookies.substr(0, cookies.size() - 1));
    for (int i = 0; i < 1000; ++i) {
      // One in fifty is blocked.
      std::string domain = i % 50 == 0 ? patterns[static_cast<size_t>(i) * 10]
                                       : "www" + HexNumber(random()).substr(4) + ".example";
      domain = Replace(Replace(Replace(domain, "*", "a"), "?", "b"), "[a-f]", "c");
      domains.push_back(domain);
      WriteWholeFile(rig.files(), Join({cookies, "user@", domain, "[1].txt"}, ""),
                     Join({"id\nvalue\n", domain, "/\n1024\n123456\n*\n"}, ""));
    }
    std::string text;
    for (const std::string& pattern : patterns) text.append(pattern).append(",");
    text.pop_back();
    WriteWholeFile(rig.files(), SignaturePath(rig.machine(), signature_file::kBlockedCookies),
                   ComplementBytes(text));
  }
};

}  // namespace quarnel
