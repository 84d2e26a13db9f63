#include "signatures/hash_index.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdint>
#include <cstring>
#include <limits>
#include <span>
#include <string>
#include <vector>

#include "base/runtime_error.h"
#include "base/text.h"
#include "platform/memory.h"
#include "signatures/cipher.h"
#include "signatures/hash_places.h"
#include "signatures/line_end.h"
#include "signatures/md5.h"
#include "signatures/parallel.h"
#include "signatures/signature_files.h"

// How the index is made. A search for a hash finds something only where 32 hexadecimal digits stand
// in a row. So each worker deciphers its part of the file and looks for such rows while the text is
// still in the cache; it sorts their places by the table that their value belongs to. Then each
// worker fills one table with its places of all parts, from the first part on. That needs no lock,
// and of equal hashes the first one is entered.
namespace quarnel {
namespace {

constexpr size_t kReadAtOnce = size_t{256} * 1024;

// The first position from `position` on at which a line begins. `end` when there is none near: a
// file with such lines is not read in parts.
size_t LineBegin(File& file, size_t position, size_t end) {
  if (position == 0) return 0;
  std::vector<char> bytes(kLongestLine + 2);
  file.Seek(position - 1);
  const size_t count = file.Read(bytes);
  const size_t found = std::string_view(bytes.data(), count).find('\n');
  return found == std::string_view::npos ? end : std::min(position + found, end);
}

// One worker's part of a file: whole lines, and the last line of the file with or without its end.
struct FilePart {
  std::unique_ptr<File> file;
  size_t begin = 0;
  size_t end = 0;
};

// Whether a load goes on: the caller's thread asks, and the others see the answer.
class Progress {
 public:
  explicit Progress(const std::function<bool()>& goesOn) : goesOn_(goesOn) {}
  // Worker 0 is the caller's thread.
  bool GoesOn(size_t worker) {
    if (worker == 0 && goesOn_ && !goesOn_()) stopped_.store(true, std::memory_order_relaxed);
    return !Stopped();
  }
  bool Stopped() const { return stopped_.load(std::memory_order_relaxed); }

 private:
  const std::function<bool()>& goesOn_;
  std::atomic<bool> stopped_ = false;
};

// Leaves the reading of lines one by one.
struct LoadStopped {};

// Deciphers a part of a file to the same places of `text`, and notes where its hashes are. Returns
// where its text ends; nothing when `goesOn` answered false, or when the lines do not end at CR LF,
// so that places would differ.
template <typename GoesOn>
std::optional<size_t> DecipherPart(FilePart& part, char* text, HashPlaces& places, GoesOn goesOn) {
  const auto buffer = std::make_unique_for_overwrite<char[]>(kReadAtOnce + kLongestLine + 2);
  size_t position = part.begin;
  size_t held = 0;  // bytes in the buffer, of which the first belongs to this position
  part.file->Seek(position);
  while (position + held < part.end) {
    const size_t wanted = std::min(kReadAtOnce, part.end - position - held);
    const size_t count = part.file->Read({buffer.get() + held, wanted});
    if (count == 0) return std::nullopt;
    held += count;
    const size_t taken = DecryptLines({buffer.get(), held}, text + position);
    places.Collect(text, position, position + taken);
    position += taken;
    held -= taken;
    if (held > kLongestLine + 1) return std::nullopt;
    std::memmove(buffer.get(), buffer.get() + taken, held);
    if (!goesOn()) return std::nullopt;
  }
  if (held == 0) return position;
  const std::string_view lastLine(buffer.get(), held);
  if (held > kLongestLine || FindLineEnd(lastLine) != held) return std::nullopt;
  DecryptTo(lastLine, text + position);
  places.Collect(text, position, position + held);
  char* const lineEnd = text + position + held;
  lineEnd[0] = '\r';
  lineEnd[1] = '\n';
  return position + held + 2;
}

}  // namespace

class HashIndex::Data {
 public:
  // Room for a text of this size.
  explicit Data(size_t room) : text_(std::make_unique_for_overwrite<char[]>(room)) {
    PreferLargePages(text_.get(), room);
  }

  // False when the file is not of the usual form, or when it was stopped.
  bool Load(std::span<FilePart> parts, Progress& progress);
  void Take(std::string_view text);

  std::string_view Text() const { return {text_.get(), size_}; }
  std::optional<size_t> Find(std::string_view hash) const;

 private:
  // An open hash table. A free slot is 0; another one holds a position plus 1 in its low bits, and
  // in the others those of the hash's value, so that few hashes have to be compared with the text.
  using Slots = std::vector<uint32_t>;

  void Index(std::span<const HashPlaces> found, Progress& progress);
  void FillTable(std::span<const HashPlaces> found, size_t number, Progress& progress);
  void Enter(const HashPlaces::Place& place, Slots& table) const;
  // The position of the hash in the table, or the slot where it would be entered.
  std::optional<size_t> Lookup(const Slots& table, uint32_t value, const char* hash,
                               size_t& slot) const;

  std::unique_ptr<char[]> text_;
  size_t size_ = 0;
  uint32_t positionMask_ = 0;
  std::vector<Slots> tables_;
  std::vector<HashPlaces::LongRow> longRows_;
  std::optional<size_t> blanks_;
};

bool HashIndex::Data::Load(std::span<FilePart> parts, Progress& progress) {
  std::vector<HashPlaces> found(parts.size(), HashPlaces(parts.size()));
  std::vector<std::optional<size_t>> ends(parts.size());
  RunParallel(parts.size(), [&](size_t i) {
    for (auto& hashes : found[i].hashes) {
      // Half of what the densest text would need; what is not used costs nothing.
      hashes.reserve((parts[i].end - parts[i].begin) / (2 * kHashDigits * parts.size()));
      PreferLargePages(hashes.data(), hashes.capacity() * sizeof(HashPlaces::Place));
    }
    ends[i] = DecipherPart(parts[i], text_.get(), found[i], [&, i] { return progress.GoesOn(i); });
  });
  for (size_t i = 0; i < parts.size(); ++i) {
    const bool last = i + 1 == parts.size();
    if (!ends[i] || (!last && *ends[i] != parts[i].end)) return false;
    size_ = *ends[i];
  }
  Index(found, progress);
  return !progress.Stopped();
}

void HashIndex::Data::Take(std::string_view text) {
  if (text.size() >= std::numeric_limits<uint32_t>::max()) {
    throw RuntimeError(ErrorNumber::kOverflow);
  }
  text.copy(text_.get(), text.size());
  size_ = text.size();
  HashPlaces places(1);
  places.Collect(text_.get(), 0, size_);
  const std::function<bool()> always;
  Progress progress(always);
  Index({&places, 1}, progress);
}

void HashIndex::Data::Index(std::span<const HashPlaces> found, Progress& progress) {
  positionMask_ = static_cast<uint32_t>((uint64_t{1} << std::bit_width(size_)) - 1);
  for (const HashPlaces& places : found) {
    longRows_.insert(longRows_.end(), places.longRows.begin(), places.longRows.end());
    if (!blanks_) blanks_ = places.blanks;
  }
  tables_.resize(found.size());
  RunParallel(tables_.size(), [&](size_t number) { FillTable(found, number, progress); });
}

void HashIndex::Data::FillTable(std::span<const HashPlaces> found, size_t number,
                                Progress& progress) {
  size_t count = 0;
  for (const HashPlaces& places : found) count += places.hashes[number].size();
  const size_t slots = std::bit_ceil(2 * count + 1);
  Slots& table = tables_[number];
  table.reserve(slots);
  PreferLargePages(table.data(), slots * sizeof(Slots::value_type));
  table.resize(slots);
  for (const HashPlaces& places : found) {
    const auto& hashes = places.hashes[number];
    for (size_t i = 0; i < hashes.size(); ++i) {
      // Slots lie anywhere in memory: they are asked for before they are needed.
      constexpr size_t kAhead = 16;
      constexpr size_t kAtATime = 1 << 14;
      if (i % kAtATime == kAtATime - 1 && !progress.GoesOn(number)) return;
      if (i + kAhead < hashes.size()) {
        __builtin_prefetch(&table[hashes[i + kAhead].value & (slots - 1)], 1);
      }
      Enter(hashes[i], table);
    }
  }
}

void HashIndex::Data::Enter(const HashPlaces::Place& place, Slots& table) const {
  size_t slot = 0;
  if (Lookup(table, place.value, text_.get() + place.position, slot)) return;
  table[slot] = (place.value & ~positionMask_) | (place.position + 1);
}

std::optional<size_t> HashIndex::Data::Lookup(const Slots& table, uint32_t value, const char* hash,
                                              size_t& slot) const {
  for (slot = value & (table.size() - 1); table[slot] != 0;
       slot = (slot + 1) & (table.size() - 1)) {
    if (((table[slot] ^ value) & ~positionMask_) != 0) continue;
    const size_t position = (table[slot] & positionMask_) - 1;
    if (SameHash(text_.get() + position, hash)) return position;
  }
  return std::nullopt;
}

std::optional<size_t> HashIndex::Data::Find(std::string_view hash) const {
  if (hash == kNoHash) return blanks_;
  if (!IsHash(hash)) {
    const size_t position = FindText(Text(), hash);
    return position != std::string_view::npos ? std::optional(position) : std::nullopt;
  }
  std::optional<size_t> found;
  if (!tables_.empty()) {
    const uint32_t value = HashValue(hash.data());
    size_t slot = 0;
    found = Lookup(tables_[TableOf(value, tables_.size())], value, hash.data(), slot);
  }
  for (const HashPlaces::LongRow& row : longRows_) {
    if (found && *found < row.begin) break;
    const size_t position = FindText(Text().substr(row.begin, row.size), hash);
    if (position != std::string_view::npos) return row.begin + position;
  }
  return found;
}

size_t LineNumber(std::string_view text, size_t position) {
  return 1 + static_cast<size_t>(std::count(
                 text.begin(), text.begin() + static_cast<std::ptrdiff_t>(position), '\n'));
}

HashIndex::HashIndex() : data_(std::make_unique<Data>(0)) {}
HashIndex::HashIndex(std::string_view text) : data_(std::make_unique<Data>(text.size())) {
  data_->Take(text);
}
HashIndex::~HashIndex() = default;
HashIndex::HashIndex(HashIndex&& other) noexcept = default;
HashIndex& HashIndex::operator=(HashIndex&& other) noexcept = default;

std::string_view HashIndex::Text() const { return data_->Text(); }

std::optional<size_t> HashIndex::Find(std::string_view hash) const { return data_->Find(hash); }

HashIndex HashIndex::Load(Files& files, Machine& machine, std::string_view sFileName,
                          size_t workers, const std::function<bool()>& goesOn) {
  const std::string path = SignaturePath(machine, sFileName);
  std::vector<FilePart> parts(1);
  parts[0].file = files.Open(path, OpenMode::kRead);
  const uint64_t fileSize = parts[0].file->Size();
  if (fileSize > kLargestSignatureText) throw RuntimeError(ErrorNumber::kOverflow);
  const size_t size = static_cast<size_t>(fileSize);
  // Small files are not worth a thread.
  while (parts.size() < workers && parts.size() * 4 * kReadAtOnce < size) {
    parts.push_back({.file = files.Open(path, OpenMode::kRead)});
  }
  for (size_t i = 0; i < parts.size(); ++i) {
    parts[i].begin = LineBegin(*parts[i].file, size / parts.size() * i, size);
    parts[i].end = size;
    if (i > 0) parts[i - 1].end = parts[i].begin;
  }
  HashIndex index;
  // The last line may have to get its end.
  index.data_ = std::make_unique<Data>(size + 2);
  Progress progress(goesOn);
  if (index.data_->Load(parts, progress)) return index;
  if (progress.Stopped()) return {};
  index.data_.reset();  // before there is another text of that size
  try {
    return HashIndex(LoadSignatures(files, machine, sFileName, [&progress] {
      if (!progress.GoesOn(0)) throw LoadStopped();
    }));
  } catch (const LoadStopped&) {
    return {};
  }
}

}  // namespace quarnel
