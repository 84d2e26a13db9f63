#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "controls/control.h"
#include "platform/files.h"
#include "signatures/sha256.h"

// The archives of a restore point: ZIP files whose entries are named by the files' paths without
// the drive ("folder/name.exe") and hold their bytes as they are.
namespace quarnel {

// The entry of a path: without its drive and leading slashes, with "/" between folders.
std::string EntryName(std::string_view path);

// The entry of a file whose proper entry is another file's, or which the archive must not bring
// back by itself: it begins with a character that no path holds, and only a manifest leads to it.
std::string SideEntryName(std::string_view path);
bool IsSideEntry(std::string_view entry);
// The path of such a file.
std::string SideFilePath(std::string_view entry);

// A file's copy in an archive.
struct StoredFile {
  std::string source;   // the path that it was read from
  std::string entry;    // in the archive
  uint64_t offset = 0;  // of its bytes in the archive
  uint64_t size = 0;
  Sha256Digest digest{};
};

struct UnstoredFile {
  std::string source;
  std::string reason;
};

class ArchiveWriter {
 public:
  // `pump` runs now and then while the archive is written.
  ArchiveWriter(Files& files, std::string path, Handler pump);

  // Notes a file for the archive; false when an entry of that name stands already.
  bool Add(std::string source, std::string entry, const DirectoryEntry& facts);

  struct Result {
    std::vector<StoredFile> stored;
    std::vector<UnstoredFile> unstored;  // could not be read
  };
  // Writes the archive beside its place, sees it onto the disk and gives it its name. A file that
  // cannot be read is left out. Raises RuntimeError, with nothing changed at the archive's place,
  // when the archive itself cannot be written.
  Result Finish();

 private:
  // False when a file could not be read, which is then marked.
  bool WriteAll(Result& result);
  void WriteEmpty();

  Files& files_;
  std::string path_;
  std::string temporary_;
  Handler pump_;
  struct Pending {
    std::string source;
    std::string entry;
    DirectoryEntry facts;
    std::string failure;
  };
  std::deque<Pending> pending_;
  std::set<std::string> names_;
};

// An entry of an archive as a reader meets it.
class ArchiveEntry {
 public:
  virtual ~ArchiveEntry() = default;
  virtual const std::string& Name() const = 0;
  // Hands the bytes over in pieces. Raises RuntimeError when they are damaged or cannot be read,
  // maybe after some pieces.
  virtual void Read(const std::function<void(std::string_view piece)>& take) = 0;
};

// Visits all entries of an archive in order; what the visitor raises goes up. Raises RuntimeError
// when the file is no archive.
void ReadArchive(Files& files, std::string_view path,
                 const std::function<void(ArchiveEntry& entry)>& visit);

}  // namespace quarnel
