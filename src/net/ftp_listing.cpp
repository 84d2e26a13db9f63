#include "net/ftp_listing.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <limits>
#include <optional>

#include "base/runtime_error.h"
#include "base/text.h"

// Positions count from 1 here, as in the forms that they describe.
namespace quarnel {
namespace {

constexpr std::array<std::string_view, 12> kMonths = {"jan", "feb", "mar", "apr", "may", "jun",
                                                      "jul", "aug", "sep", "oct", "nov", "dec"};
constexpr size_t kDateLength = 12;
constexpr size_t kDosName = 40;
constexpr size_t kDosSize = 18;
constexpr size_t kDosDateLength = 17;
constexpr size_t kDosFieldsLength = 38;
// A line of UNIX has rights, links and owner before its date.
constexpr size_t kLeastUnixDate = 11;

// The text from a position on; empty behind its end.
std::string_view Mid(std::string_view text, size_t from, size_t length = std::string_view::npos) {
  if (from < 1 || from > text.size()) return {};
  return text.substr(from - 1, length);
}

bool IsDigitAt(std::string_view text, size_t position) {
  const std::string_view digit = Mid(text, position, 1);
  return !digit.empty() && digit.front() >= '0' && digit.front() <= '9';
}

int32_t SizeFrom(std::string_view text) {
  const double size = Val(Trim(text));
  constexpr auto kMost = std::numeric_limits<int32_t>::max();
  if (!(size > 0)) return 0;
  return size >= kMost ? kMost : static_cast<int32_t>(size);
}

void SetDate(CFtpFile& file, std::string_view text) {
  if (const auto moment = ParseDate(text)) file.LastWriteTime = *moment;
}

// "Jan 12 15:04" of this year, or "Jan 12  2004".
std::string GetDateX(std::string_view date, DateTime now) {
  const std::string text = Replace(date, "  ", " ");
  const std::string month = ToLower(Mid(text, 1, 3));
  const auto found = std::find(kMonths.begin(), kMonths.end(), month);
  const auto number = found == kMonths.end() ? 0 : found - kMonths.begin() + 1;
  const std::string_view last = Trim(Mid(text, text.size() < 5 ? 1 : text.size() - 4));
  const bool hasTime = last.find(':') != std::string_view::npos;
  const std::string year = hasTime ? FormatDate(now, "yyyy") : std::string(last);
  return std::to_string(number) + "-" + std::string(Trim(Mid(text, 5, 2))) + "-" + year + " " +
         (hasTime ? std::string(last) : "00:00");
}

// Each returns what is left of the line; a line of which nothing is left tells of no file.

std::string ReadDosLine(std::string_view line, CFtpFile& file) {
  file.FileName = Mid(line, kDosName);
  SetDate(file, Trim(Replace(Mid(line, 1, kDosDateLength), "  ", " ")));
  std::string rest(Mid(line, 1, kDosFieldsLength));
  file.IsDirectory = rest.find("<DIR>") != std::string::npos;
  if (!file.IsDirectory) file.FileSize = SizeFrom(Mid(rest, kDosSize));
  return rest;
}

void ReadName(std::string_view line, size_t nameStart, CFtpFile& file) {
  constexpr std::string_view kArrow = " -> ";
  const std::string_view name = Mid(line, nameStart);
  const size_t arrow = line.front() == 'l' ? name.find(kArrow) : std::string_view::npos;
  file.FileName = name.substr(0, arrow);
  if (arrow != std::string_view::npos) file.FilePath = name.substr(arrow + kArrow.size());
}

std::string ReadUnixLine(std::string_view line, size_t date, DateTime now, CFtpFile& file) {
  file.IsDirectory = line.starts_with('d');
  SetDate(file, GetDateX(Mid(line, date, kDateLength), now));
  ReadName(line, date + kDateLength + 1, file);
  // The last blank before the size's last digit.
  const size_t blank = line.rfind(' ', date - 3) + 1;
  file.FileSize = SizeFrom(Mid(line, blank + 1, date - blank - 1));
  std::string rest(line.substr(0, blank));
  for (size_t run = 15; run >= 2; --run) rest = Replace(rest, std::string(run, ' '), " ");
  if (rest.empty()) return rest;
  const std::vector<std::string> fields = Split(rest, " ");
  file.Permissions = fields.front();
  if (fields.size() > 2) file.Owner = fields[2];
  if (fields.size() == 5) file.Group = fields[3];
  return rest;
}

}  // namespace

void CFtpFiles::Add(CFtpFile file, std::string_view key) {
  for (const Entry& entry : entries_) {
    if (EqualText(entry.key, key)) throw RuntimeError(ErrorNumber::kKeyNotUnique);
  }
  entries_.push_back({std::string(key), std::move(file)});
}

const CFtpFile& CFtpFiles::Item(size_t index) const {
  if (index < 1 || index > entries_.size()) throw RuntimeError(ErrorNumber::kSubscriptOutOfRange);
  return entries_[index - 1].file;
}

const CFtpFile& CFtpFiles::Item(std::string_view key) const {
  for (const Entry& entry : entries_) {
    if (EqualText(entry.key, key)) return entry.file;
  }
  throw RuntimeError(ErrorNumber::kInvalidCall);
}

void CFtpFiles::Remove(size_t index) {
  Item(index);
  entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(index) - 1);
}

size_t GetDateStartPosition(std::string_view line) {
  const std::string folded = ToLower(line);
  for (const std::string_view month : kMonths) {
    const size_t found = folded.find(' ' + std::string(month) + ' ');
    if (found == std::string::npos) continue;
    const size_t position = found + 1;
    if (IsDigitAt(folded, position - 1) && IsDigitAt(folded, position + 9)) return position + 1;
  }
  return 0;
}

CFtpFiles GetFileListX(std::string_view reply, DateTime now) {
  CFtpFiles files;
  if (EqualText(reply.substr(0, 5), "total")) {
    const size_t end = reply.find('\n');
    if (end != std::string_view::npos) reply.remove_prefix(end + 1);
  }
  while (!reply.empty()) {
    const size_t end = reply.find('\n');
    const std::string_view whole = reply.substr(0, end);
    reply.remove_prefix(end == std::string_view::npos ? reply.size() : end + 1);
    if (whole.empty()) break;
    const size_t date = GetDateStartPosition(whole);
    const std::string line = Replace(whole, "\r", "");
    if (line.empty()) continue;
    CFtpFile file;
    const std::string rest =
        date < kLeastUnixDate ? ReadDosLine(line, file) : ReadUnixLine(line, date, now, file);
    if (rest.empty()) continue;
    const std::string key = file.FileName;
    if (!IgnoringErrors([&] { files.Add(std::move(file), key); })) break;
  }
  return files;
}

}  // namespace quarnel
