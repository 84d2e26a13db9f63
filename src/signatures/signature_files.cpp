#include "signatures/signature_files.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/runtime_error.h"
#include "base/text.h"
#include "core/existing_files.h"
#include "core/lines.h"
#include "core/paths.h"
#include "signatures/cipher.h"
#include "signatures/line_end.h"

namespace quarnel {
namespace {

namespace name = signature_file;
using enum SignatureEncoding;

constexpr std::array<SignatureFile, 10> kAllFiles = {{
    {name::kBlockedCookies, kComplement, true},
    {name::kFiles, kCountedCipher, true},
    {name::kActiveX, kComplement, true},
    {name::kPrograms, kCountedCipher, true},
    {name::kRegistry, kCountedCipher, true},
    {name::kList, kPlain, true},
    {name::kCriticalProcesses, kPlain, true},
    {name::kLevels, kPlain},
    {name::kDeclined, kCipher},
    {name::kIgnoredCookies, kComplement},
}};

}  // namespace

std::span<const SignatureFile> SignatureFiles() { return kAllFiles; }

const SignatureFile* FindSignatureFile(std::string_view name) {
  const auto* found =
      std::find_if(kAllFiles.begin(), kAllFiles.end(),
                   [&](const SignatureFile& file) { return EqualText(file.name, name); });
  return found != kAllFiles.end() ? found : nullptr;
}

std::string SignaturePath(Machine& machine, std::string_view name) {
  return DataFolder(machine).append(name);
}

bool SignaturePresent(Files& files, Machine& machine, std::string_view name) {
  return FileExists(files, SignaturePath(machine, name));
}

std::string LineOf(std::string_view name, size_t line) {
  return std::string(name) + ", line " + std::to_string(line);
}

std::string WhyUnusable(Files& files, Machine& machine, std::string_view name) {
  const std::string file(name);
  if (!SignaturePresent(files, machine, name)) return file + " is missing";
  try {
    LineFile lines(files.Open(SignaturePath(machine, name), OpenMode::kRead));
    if (lines.Size() == 0) return file + " is empty";
    if (FindSignatureFile(name)->encoding != SignatureEncoding::kCountedCipher) return {};
    const auto first = lines.Next();
    const bool isCounted = first && ValLong(*first) > 0;
    if (isCounted && !lines.Next()) return file + " holds none of its signatures";
  } catch (const RuntimeError& error) {
    return file + ": " + error.Description();
  }
  return {};
}

void AllSignatureArePresent(Files& files, Machine& machine, bool& result) {
  result = std::all_of(kAllFiles.begin(), kAllFiles.end(), [&](const SignatureFile& file) {
    return !file.inPresenceTest || SignaturePresent(files, machine, file.name);
  });
}

int32_t GetSignatureCount(Files& files, Machine& machine, std::string_view name) {
  LineFile lines(files.Open(SignaturePath(machine, name), OpenMode::kRead));
  const auto line = lines.Next();
  return line ? ValLong(*line) : 1;
}

LineFile::LineFile(std::unique_ptr<File> file)
    : file_(std::move(file)), buffer_(size_t{4} * (kLongestLine + 1)) {}

// Reads on behind the unread bytes. They are at most a line, so moving them to the front of a full
// buffer always makes room.
bool LineFile::Refill() {
  if (end_ == buffer_.size()) {
    std::copy(buffer_.begin() + static_cast<std::ptrdiff_t>(begin_), buffer_.end(),
              buffer_.begin());
    end_ -= begin_;
    begin_ = 0;
  }
  const size_t count = file_->Read(std::span(buffer_).subspan(end_));
  end_ += count;
  return count > 0;
}

// CR and LF together are one end, also where a piece of the file is cut between them.
void LineFile::PassLineFeed() {
  if (!std::exchange(afterReturn_, false)) return;
  if ((begin_ < end_ || Refill()) && buffer_[begin_] == '\n') ++begin_;
}

// Gives the first unread bytes out and passes over the end behind them.
std::string_view LineFile::Take(size_t length) {
  const std::string_view line = Unread().substr(0, length);
  begin_ += length;
  if (begin_ < end_) afterReturn_ = buffer_[begin_++] == '\r';
  return line;
}

std::optional<std::string_view> LineFile::Next() {
  PassLineFeed();
  size_t length = 0;
  for (;;) {
    length = FindLineEnd(Unread(), length);
    if (length > kLongestLine) throw RuntimeError(ErrorNumber::kOverflow);
    if (length < Unread().size()) return Take(length);
    if (!Refill()) break;
  }
  if (length == 0) return std::nullopt;
  return Take(length);
}

void LineFile::Skip() {
  PassLineFeed();
  for (;;) {
    const size_t length = FindLineEnd(Unread());
    const bool ended = length < Unread().size();
    Take(length);
    if (ended || !Refill()) return;
  }
}

SignatureLines::SignatureLines(Files& files, Machine& machine, std::string_view name)
    : lines_(files.Open(SignaturePath(machine, name), OpenMode::kRead)) {
  lines_.Skip();
}

std::optional<std::string_view> SignatureLines::Next() {
  const auto cipher = lines_.Next();
  if (!cipher) return std::nullopt;
  DecryptInto(*cipher, plain_);
  return plain_;
}

std::string LoadSignatures(Files& files, Machine& machine, std::string_view sFileName,
                           const std::function<void()>& onLine) {
  LineFile lines(files.Open(SignaturePath(machine, sFileName), OpenMode::kRead));
  std::string text;
  text.reserve(static_cast<size_t>(std::min(lines.Size(), kLargestSignatureText)) + 2);
  for (size_t number = 1;; ++number) {
    std::optional<std::string_view> cipher;
    try {
      cipher = lines.Next();
    } catch (const RuntimeError& error) {
      throw RuntimeError(error.Number(), "line " + std::to_string(number), error.SystemCode());
    }
    if (!cipher) break;
    if (text.size() > kLargestSignatureText) throw RuntimeError(ErrorNumber::kOverflow);
    if (onLine) onLine();
    const size_t begin = text.size();
    text.resize(begin + cipher->size());
    DecryptTo(*cipher, text.data() + begin);
    text += "\r\n";
  }
  return text;
}

// Nothing looks at the lines, so where they end is not looked for.
void LoadSpywareList(Files& files, Machine& machine, const std::function<void()>& onLines) {
  if (!SignaturePresent(files, machine, signature_file::kList)) return;
  const auto file = files.Open(SignaturePath(machine, signature_file::kList), OpenMode::kRead);
  std::vector<char> buffer(size_t{32} * 1024);
  while (file->Read(buffer) > 0) onLines();
}

SignatureFields::SignatureFields(std::string_view line, char separator) {
  if (line.empty()) return;
  size_t begin = 0;
  while (size_ < kCount) {
    const size_t end = line.find(separator, begin);
    fields_[size_++] = line.substr(begin, end - begin);
    if (end == std::string_view::npos) return;
    begin = end + 1;
  }
}

std::string_view SignatureFields::operator[](size_t index) const {
  if (index >= size_) throw RuntimeError(ErrorNumber::kSubscriptOutOfRange);
  return fields_[index];
}

std::vector<std::string> ParseCookiePatterns(std::string_view text) {
  std::vector<std::string> patterns;
  FieldReader fields(text);
  while (auto pattern = fields.Next()) patterns.push_back(std::move(*pattern));
  return patterns;
}

}  // namespace quarnel
