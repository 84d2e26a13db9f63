#include "platform/posix/machine/pe_reader.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "base/little_endian.h"
#include "platform/pe_writer.h"

namespace quarnel {
namespace {

std::string Sample(bool wide = false) {
  return MakeProgram({ApplicationRecord(3, 1, 20, 400), "Examplesoft Labs", "A sample", wide});
}

// Reads a program with the bytes that are asked for counted.
struct Reading {
  std::optional<FixedVersionRecord> record;
  uint64_t asked = 0;

  explicit Reading(const std::string& file) {
    const auto resource = FindVersionResource([&](uint64_t offset, size_t size) {
      asked += size;
      if (offset >= file.size()) return std::string();
      return file.substr(static_cast<size_t>(offset), size);
    });
    if (resource) record = FixedFromVersionResource(*resource);
  }
};

// Offsets in a file of MakeProgram: the resource section begins at 0x400 with three directories of
// one entry each, then the data entry.
constexpr size_t kResources = 0x400, kTypeEntry = kResources + 16, kNameEntry = kResources + 40,
                 kLanguageEntry = kResources + 64, kDataEntry = kResources + 72,
                 kVersion = kResources + 88;
constexpr uint32_t kIsDirectory = 0x80000000;

TEST(PeReader, TakesEntryOneAmongOthers) {
  std::string file = Sample();
  // The directory of names moves behind the file's data, with a broken entry in front.
  const size_t moved = file.size();
  std::string directory = file.substr(kResources + 24, 12);
  PutU16(directory, 0);
  PutU16(directory, 2);
  for (const uint32_t word : {7U, 0xFFFFFFFFU, 1U, U32At(file, kNameEntry + 4)}) {
    PutU32(directory, word);
  }
  file += directory;
  SetU32(file, kTypeEntry + 4, kIsDirectory | static_cast<uint32_t>(moved - kResources));
  EXPECT_TRUE(ReadFixedVersion(file));
}

TEST(PeReader, AnswersNothingToDamagedFiles) {
  const struct {
    const char* name;
    std::function<void(std::string&)> damage;
  } cases[] = {
      {"empty", [](std::string& f) { f.clear(); }},
      {"header behind the end", [](std::string& f) { SetU32(f, 60, 0xFFFFFFFF); }},
      {"other signature", [](std::string& f) { f[64] = 'N'; }},
      {"no optional header", [](std::string& f) { SetU32(f, 64 + 20, 0); }},
      {"resources outside sections", [](std::string& f) { SetU32(f, 88 + 112, 0x7FFFFFFF); }},
      {"section data behind the end",
       [](std::string& f) { SetU32(f, 88 + 224 + 40 + 20, 0xFFFFFF00); }},
      {"type is a leaf", [](std::string& f) { SetU32(f, kTypeEntry + 4, 24); }},
      {"type leads to itself", [](std::string& f) { SetU32(f, kTypeEntry + 4, kIsDirectory); }},
      {"name leads to the root", [](std::string& f) { SetU32(f, kNameEntry + 4, kIsDirectory); }},
      {"language is a directory",
       [](std::string& f) { SetU32(f, kLanguageEntry + 4, kIsDirectory | 48); }},
      {"data outside sections", [](std::string& f) { SetU32(f, kDataEntry, 0x10); }},
      {"other key", [](std::string& f) { f[kVersion + 6] = 'W'; }},
      {"all counts at their highest",
       [](std::string& f) {
         f.resize(8U << 20, '\xFF');
         SetU32(f, kResources + 12, 0xFFFFFFFF);
         SetU32(f, kTypeEntry, 3);
         f[64 + 6] = f[64 + 7] = '\xFF';
       }},
      {"other fixed signature", [](std::string& f) { SetU32(f, kVersion + 40, 0); }},
  };
  for (const auto& test : cases) {
    std::string file = Sample();
    test.damage(file);
    const Reading reading(file);
    EXPECT_FALSE(reading.record) << test.name;
    EXPECT_LT(reading.asked, 6U << 20) << test.name;
  }
}

TEST(PeReader, SurvivesEveryTruncationAndEveryFlippedByte) {
  for (const bool wide : {false, true}) {
    const std::string whole = Sample(wide);
    for (size_t size = 0; size < whole.size(); ++size) {
      const Reading reading(whole.substr(0, size));
      EXPECT_EQ(reading.record.has_value(), size >= kVersion + 92) << size;
    }
    for (size_t at = 0; at < whole.size(); ++at) {
      for (const int flip : {0xFF, 0x01, 0x80}) {
        std::string file = whole;
        file[at] = static_cast<char>(file[at] ^ flip);
        EXPECT_LT(Reading(file).asked, 6U << 20) << at;
      }
    }
  }
}

}  // namespace
}  // namespace quarnel
