#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "platform/machine_folder.h"
#include "platform/platform.h"
#include "signatures/cipher.h"
#include "signatures/hash_index.h"
#include "signatures/md5_batch.h"
#include "signatures/signature_files.h"

namespace quarnel {
namespace {

// A signature line of usual length, as the file phase reads it.
std::string FileLine(std::mt19937& random) {
  std::string hash;
  for (int i = 0; i < 32; ++i) hash += "0123456789ABCDEF"[random() % 16];
  return "Company " + std::to_string(random() % 10000) + ",Some threat " +
         std::to_string(random() % 100000) + ",11,37,folder\\program" + std::to_string(random()) +
         ".exe," + hash + ",ID" + std::to_string(random());
}

const std::string& Enciphered100Megabytes() {
  static const std::string kText = [] {
    std::mt19937 random(1);
    std::string text;
    while (text.size() < 100'000'000) text += Encrypt(FileLine(random)) + "\r\n";
    return text;
  }();
  return kText;
}

const std::vector<std::string>& MillionLines() {
  static const std::vector<std::string> kLines = [] {
    std::mt19937 random(2);
    std::vector<std::string> lines;
    lines.reserve(1'000'000);
    for (int i = 0; i < 1'000'000; ++i) lines.push_back(FileLine(random));
    return lines;
  }();
  return kLines;
}

void DecipherBaseline(benchmark::State& state) {
  const std::string& text = Enciphered100Megabytes();
  std::string copy(text.size(), '\0');
  for ([[maybe_unused]] auto round : state) {
    std::memcpy(copy.data(), text.data(), text.size());
    benchmark::DoNotOptimize(copy.data());
    benchmark::ClobberMemory();
  }
}

// The argument is the level.
void Decipher(benchmark::State& state) {
  const auto level = static_cast<CipherLevel>(state.range(0));
  const std::string& text = Enciphered100Megabytes();
  std::string plain(text.size(), '\0');
  for ([[maybe_unused]] auto round : state) {
    if (DecryptLines(text, plain.data(), level) != text.size()) state.SkipWithError("cut short");
    benchmark::DoNotOptimize(plain.data());
    benchmark::ClobberMemory();
  }
}

// Looks at each character once and keeps where the fields are.
void FieldsBaseline(benchmark::State& state) {
  const auto& lines = MillionLines();
  for ([[maybe_unused]] auto round : state) {
    for (const std::string& line : lines) {
      std::string_view fields[7];
      size_t count = 0, begin = 0;
      for (size_t i = 0; i < line.size() && count < 6; ++i) {
        if (line[i] != ',') continue;
        fields[count++] = std::string_view(line).substr(begin, i - begin);
        begin = i + 1;
      }
      fields[count] = std::string_view(line).substr(begin);
      benchmark::DoNotOptimize(fields);
    }
  }
}

void Fields(benchmark::State& state) {
  const auto& lines = MillionLines();
  for ([[maybe_unused]] auto round : state) {
    for (const std::string& line : lines) {
      const SignatureFields fields(line);
      benchmark::DoNotOptimize(fields);
    }
  }
}

// Messages of one size, 20 MB in all, in memory that stays in the cache as the buffers of a scan
// do. The arguments are the size and the level.
void Md5Messages(benchmark::State& state) {
  const auto size = static_cast<size_t>(state.range(0));
  const auto level = static_cast<Md5Level>(state.range(1));
  const std::string text(800'000, 'x');
  std::vector<std::string_view> messages;
  for (size_t total = 0, at = 0; total < 20'000'000; total += size, at += size) {
    if (at + size > text.size()) at = 0;
    messages.push_back(std::string_view(text).substr(at, size));
  }
  std::vector<Md5Digest> digests(messages.size());
  for ([[maybe_unused]] auto round : state) {
    HashMessages(messages, digests, level);
    benchmark::DoNotOptimize(digests.data());
  }
  state.SetBytesProcessed(static_cast<int64_t>(messages.size() * size) * state.iterations());
}

// A machine folder of its own whose QNLESig.dll has a million hashes, in some 60 MB.
class MillionHashes {
 public:
  MillionHashes() : folder_(NewFolder()) {
    CreateMachine(folder_, {});
    platform_ = OpenPlatform(folder_);
    std::mt19937_64 random(3);
    std::string bytes = "1000000\r\n";
    for (int i = 0; i < 1'000'000; ++i) {
      Md5Digest digest;
      for (uint8_t& byte : digest) byte = static_cast<uint8_t>(random());
      if (i % 100 == 0) known_.push_back(HexText(digest));
      const std::string name = "Some.Threat.Of.Kind-" + std::to_string(random() % 1'000'000);
      bytes += Encrypt(HexText(digest) + "^11^" + name) + "\r\n";
    }
    WriteWholeFile(files(), SignaturePath(machine(), signature_file::kPrograms), bytes);
  }
  ~MillionHashes() {
    platform_.reset();
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  MillionHashes(const MillionHashes&) = delete;
  MillionHashes& operator=(const MillionHashes&) = delete;

  Files& files() { return platform_->files(); }
  Machine& machine() { return platform_->machine(); }
  // Hashes that the file has.
  const std::vector<std::string>& known() const { return known_; }

  static MillionHashes& Instance() {
    static MillionHashes instance;
    return instance;
  }

 private:
  static std::string NewFolder() {
    std::string path = (std::filesystem::temp_directory_path() / "quarnel-bench-XXXXXX").string();
    if (mkdtemp(path.data()) == nullptr) throw std::runtime_error("no folder for the benchmark");
    return path;
  }

  std::string folder_;
  std::unique_ptr<Platform> platform_;
  std::vector<std::string> known_;
};

void LoadBaseline(benchmark::State& state) {
  MillionHashes& hashes = MillionHashes::Instance();
  const std::string path = SignaturePath(hashes.machine(), signature_file::kPrograms);
  for ([[maybe_unused]] auto round : state) {
    benchmark::DoNotOptimize(ReadWholeFile(hashes.files(), path));
  }
}

void LoadText(benchmark::State& state) {
  MillionHashes& hashes = MillionHashes::Instance();
  for ([[maybe_unused]] auto round : state) {
    benchmark::DoNotOptimize(
        LoadSignatures(hashes.files(), hashes.machine(), signature_file::kPrograms));
  }
}

// The argument is the number of threads.
void LoadIndex(benchmark::State& state) {
  const auto workers = static_cast<size_t>(state.range(0));
  MillionHashes& hashes = MillionHashes::Instance();
  for ([[maybe_unused]] auto round : state) {
    const HashIndex index =
        HashIndex::Load(hashes.files(), hashes.machine(), signature_file::kPrograms, workers);
    if (!index.Find(hashes.known().back())) state.SkipWithError("a hash is missing");
  }
}

// Ten thousand hashes that are there and as many that are not.
void Find(benchmark::State& state) {
  MillionHashes& hashes = MillionHashes::Instance();
  const HashIndex index =
      HashIndex::Load(hashes.files(), hashes.machine(), signature_file::kPrograms);
  for ([[maybe_unused]] auto round : state) {
    for (const std::string& hash : hashes.known()) {
      benchmark::DoNotOptimize(index.Find(hash));
      benchmark::DoNotOptimize(index.Find(hash.substr(16) + hash.substr(0, 16)));
    }
  }
}

void Add(const std::string& name, void (*function)(benchmark::State&),
         const std::vector<int64_t>& arguments = {}) {
  benchmark::RegisterBenchmark(name.c_str(), function)
      ->Args(arguments)
      ->Unit(benchmark::kMillisecond)
      ->UseRealTime();
}

template <typename Level>
int64_t Argument(Level level) {
  return static_cast<int64_t>(level);
}

const bool kRegistered = [] {
  Add("decipher_100_MB/baseline", DecipherBaseline);
  Add("decipher_100_MB/portable", Decipher, {Argument(CipherLevel::kPortable)});
  Add("decipher_100_MB/ssse3", Decipher, {Argument(CipherLevel::kSsse3)});
  Add("decipher_100_MB/avx2", Decipher, {Argument(CipherLevel::kAvx2)});
  Add("fields_of_1M_lines/baseline", FieldsBaseline);
  Add("fields_of_1M_lines/ours", Fields);
  for (const int64_t size : {16'500, 4'100}) {
    const std::string group = "md5_of_" + std::to_string(size) + "_bytes";
    Add(group + "/baseline", Md5Messages, {size, Argument(Md5Level::kPortable)});
    Add(group + "/sse2", Md5Messages, {size, Argument(Md5Level::kSse2)});
    Add(group + "/avx2", Md5Messages, {size, Argument(Md5Level::kAvx2)});
    Add(group + "/avx512", Md5Messages, {size, Argument(Md5Level::kAvx512)});
  }
  Add("load_1M_hashes/baseline", LoadBaseline);
  Add("load_1M_hashes/text", LoadText);
  Add("load_1M_hashes/index_1_thread", LoadIndex, {1});
  Add("load_1M_hashes/index_2_threads", LoadIndex, {2});
  Add("find_20k_hashes", Find);
  return true;
}();

}  // namespace
}  // namespace quarnel
