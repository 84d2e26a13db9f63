#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"
#include "platform/machine.h"

// The signature files: their names, the tests for them, and their readers. All of them lie in
// DataFolder; a name below is the bare file name.
namespace quarnel {

namespace signature_file {
inline constexpr std::string_view kRegistry = "QNLRSig.dll";
inline constexpr std::string_view kFiles = "QNLFSig.dll";
inline constexpr std::string_view kPrograms = "QNLESig.dll";
inline constexpr std::string_view kBlockedCookies = "QNLBlkCoo.dll";
inline constexpr std::string_view kActiveX = "QNLImmData.dll";
inline constexpr std::string_view kList = "QNLList.dll";
inline constexpr std::string_view kCriticalProcesses = "QNLCritProc.dll";
inline constexpr std::string_view kLevels = "QNLSigLevel.dll";
inline constexpr std::string_view kDeclined = "ENoSignature.dll";
inline constexpr std::string_view kIgnoredCookies = "ignorList";
}  // namespace signature_file

// How the bytes of a signature file become its text.
enum class SignatureEncoding {
  kCountedCipher,  // line 1 is a plain count, every further line is enciphered
  kCipher,         // every line is enciphered
  kComplement,     // the whole file is complemented
  kPlain,
};

struct SignatureFile {
  std::string_view name;
  SignatureEncoding encoding;
  bool inPresenceTest = false;
};
// All of them. The test for the whole set asks for its files in this order; the files with a count
// are counted in it.
std::span<const SignatureFile> SignatureFiles();
// The entry of a name, letter case ignored; null when there is none.
const SignatureFile* FindSignatureFile(std::string_view name);

// The full path of a signature file.
std::string SignaturePath(Machine& machine, std::string_view name);

// True when the file is there. Each reader's caller asks this first.
bool SignaturePresent(Files& files, Machine& machine, std::string_view name);

// "QNLRSig.dll, line 7": how a place in a signature file is told to the user.
std::string LineOf(std::string_view name, size_t line);

// Why no phase can use a signature file: it is missing, empty, unreadable, or holds none of the
// signatures that its first line counts. Empty when it can be used.
std::string WhyUnusable(Files& files, Machine& machine, std::string_view name);

// Sets `result` to whether all seven files of the set are there; looks no further than the first
// one that is missing.
void AllSignatureArePresent(Files& files, Machine& machine, bool& result);

// The number that the first line states, which nobody checks against the lines; 1 for an empty
// file. Raises when the file cannot be read, and kOverflow for a first line over kLongestLine.
int32_t GetSignatureCount(Files& files, Machine& machine, std::string_view name);

// Reads a file line by line in pieces, so that memory stays bounded whatever the file holds. Lines
// end at CR LF, CR or LF. A line longer than kLongestLine raises kOverflow.
class LineFile {
 public:
  explicit LineFile(std::unique_ptr<File> file);

  // The next line without its end, valid until the next call; nothing behind the last one.
  std::optional<std::string_view> Next();
  // Passes over one line of any length.
  void Skip();
  uint64_t Size() { return file_->Size(); }

 private:
  std::string_view Unread() const { return {buffer_.data() + begin_, end_ - begin_}; }
  bool Refill();
  void PassLineFeed();
  std::string_view Take(size_t length);

  std::unique_ptr<File> file_;
  std::vector<char> buffer_;
  size_t begin_ = 0;  // the unread bytes of the buffer
  size_t end_ = 0;
  bool afterReturn_ = false;  // the last line ended at a CR, whose LF may follow
};

// The deciphered lines of a counted signature file, without its first line. Nothing is copied more
// than once and no plain text reaches the disk.
class SignatureLines {
 public:
  // Raises when the file cannot be opened.
  SignatureLines(Files& files, Machine& machine, std::string_view name);

  // The next line, valid until the next call; nothing behind the last one. Raises kOverflow at a
  // line longer than kLongestLine.
  std::optional<std::string_view> Next();

 private:
  LineFile lines_;
  std::string plain_;
};

// More than any signature set needs, and little enough for a 32-bit process.
inline constexpr uint64_t kLargestSignatureText = uint64_t{512} << 20;

// The text of a whole enciphered file: every line deciphered and ended by CR LF. The counting line
// is deciphered too, and gives a first line without meaning. `onLine` runs before each line is
// deciphered. Raises kOverflow for a line over kLongestLine and for a larger text.
std::string LoadSignatures(Files& files, Machine& machine, std::string_view sFileName,
                           const std::function<void()>& onLine = {});

// Reads QNLList.dll to its end when it is there, calling `onLines` after every few lines, and keeps
// nothing.
void LoadSpywareList(Files& files, Machine& machine, const std::function<void()>& onLines);

// The fields of one line of a seven-field file, cut at each separator; nothing is trimmed and
// nothing copied. A field that the line does not have raises kSubscriptOutOfRange when it is asked
// for, which is what ends a phase at a short line. Fields behind the seventh are dropped.
class SignatureFields {
 public:
  static constexpr size_t kCount = 7;

  explicit SignatureFields(std::string_view line, char separator = ',');

  std::string_view operator[](size_t index) const;
  size_t size() const { return size_; }

 private:
  std::string_view fields_[kCount];
  size_t size_ = 0;
};

// A longer pattern of a cookie's domain is refused wherever one is read.
inline constexpr size_t kLongestCookiePattern = 4096;

// The patterns of QNLBlkCoo.dll from its text (complemented back already).
std::vector<std::string> ParseCookiePatterns(std::string_view text);

}  // namespace quarnel
