#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/runtime_error.h"

namespace quarnel {

// File attribute bits, as the system numbers them.
namespace file_attribute {
inline constexpr uint32_t kReadOnly = 0x1;
inline constexpr uint32_t kHidden = 0x2;
inline constexpr uint32_t kSystem = 0x4;
inline constexpr uint32_t kDirectory = 0x10;
inline constexpr uint32_t kArchive = 0x20;
inline constexpr uint32_t kNormal = 0x80;
inline constexpr uint32_t kTemporary = 0x100;
inline constexpr uint32_t kReparsePoint = 0x400;
}  // namespace file_attribute

// A moment of the file system, in UTC, to 100 nanoseconds.
using FileTime = std::chrono::sys_time<std::chrono::duration<int64_t, std::ratio<1, 10000000>>>;

// The moments that a file system keeps of a file. FileTime() stands for one that is not known.
struct FileTimes {
  FileTime created;
  FileTime accessed;
  FileTime modified;

  bool operator==(const FileTimes&) const = default;
};

struct DirectoryEntry {
  std::string name;  // in the letter case in which the file system keeps it
  uint32_t attributes = 0;
  uint64_t size = 0;  // bytes; 0 for a folder
  FileTime modified;

  // It is named by its folder, and the rest is not known: it could not be looked at.
  bool unseen = false;

  bool IsFolder() const { return (attributes & file_attribute::kDirectory) != 0; }
  bool IsLink() const { return (attributes & file_attribute::kReparsePoint) != 0; }
};

enum class OpenMode {
  kRead,       // must exist
  kReadWrite,  // made when absent, kept as it is when present
  kCreate,     // made when absent, emptied when present
  kAppend,     // made when absent, every write goes to the end
};

// An open file; closing happens when it is destroyed. All operations raise RuntimeError.
class File {
 public:
  virtual ~File() = default;
  // Reads up to buffer.size() bytes at the current position; 0 at the end of the file.
  virtual size_t Read(std::span<char> buffer) = 0;
  virtual void Write(std::string_view bytes) = 0;
  // Moves the position, in bytes from the start; it may lie behind the end.
  virtual void Seek(uint64_t position) = 0;
  virtual uint64_t Size() = 0;
  // Returns when all that was written is on the disk.
  virtual void Flush() = 0;
};

// A folder whose listed files are opened for reading, one thread's own.
class ListedFolder {
 public:
  virtual ~ListedFolder() = default;
  // A file by the name that List gave. Raises RuntimeError; one that is not there any more is
  // kFileNotFound.
  virtual std::unique_ptr<File> Open(std::string_view name) = 0;
};

class HeldFolders;

// The file system, by Windows paths: "C:\WINDOWS\system32". A path is taken in any letter case and
// with either slash; one without a drive is relative to the program's folder. Operations that
// change something or open a file raise RuntimeError with the kind of the failure: kFileNotFound,
// kPathNotFound (a folder on the way is missing), kPermissionDenied, kFileExists, kPathFileAccess
// (a folder where a file is meant, or a folder that is not empty), kBadFileName, kDiskFull,
// kDeviceError. Links are followed when a file is opened; they are never followed by deletion.
class Files {
 public:
  virtual ~Files() = default;

  // The same file system for paths that are not to be trusted. What is used through it enters no
  // folder by way of a link, even when one is put in a folder's place during the call, and opens no
  // link: such a path is kPermissionDenied, or nothing stands there. Deletion and moves take a link
  // at the path's end for itself. A drive's root may lead anywhere. Belongs to this object.
  virtual Files& WithoutLinks() = 0;

  // What stands under this path; nothing when there is none or it cannot be reached.
  std::optional<DirectoryEntry> Stat(std::string_view path);

  // As Stat, for those who must know the difference: nothing only when the system says that nothing
  // stands there. Raises when it could not tell.
  virtual std::optional<DirectoryEntry> Look(std::string_view path) = 0;

  // The entries of a folder without "." and "..", in the order of their names with letter case
  // folded, as they stand at this moment. Raises when the folder cannot be read.
  virtual std::vector<DirectoryEntry> List(std::string_view folder) = 0;

  // As List, with nothing that would need a look at each entry: sizes and times may be missing, and
  // of the attributes only these are sure: whether it is a folder or a link. An entry without any
  // other has kNormal.
  virtual std::vector<DirectoryEntry> ListBriefly(std::string_view folder) { return List(folder); }

  virtual std::unique_ptr<File> Open(std::string_view path, OpenMode mode) = 0;

  // For reading many files of a folder, whose path ends in a backslash. Any number of threads may
  // call this at a time and use what they got, whatever the one thread does with the rest
  // meanwhile. A folder or file that is not named as the file system keeps it may be missed.
  virtual std::unique_ptr<ListedFolder> OpenFolder(std::string_view folder);

  // For making and replacing many files.
  virtual std::unique_ptr<HeldFolders> HoldFolders() = 0;

  virtual void Delete(std::string_view path) = 0;        // a file; a read-only one is refused
  virtual void DeleteFolder(std::string_view path) = 0;  // an empty folder
  virtual void CreateFolder(std::string_view path) = 0;  // its parent must exist
  // Moves a file or folder, also to another drive (files only); an existing target is refused.
  virtual void Move(std::string_view from, std::string_view to) = 0;
  // Puts `from` in the place of `to`, in one step that a crash cannot tear; same folder.
  virtual void ReplaceFile(std::string_view from, std::string_view to) = 0;
  virtual void Copy(std::string_view from, std::string_view to) = 0;  // replaces the target
  virtual void SetAttributes(std::string_view path, uint32_t attributes) = 0;
  // Of a file. Where the system does not let the moment of its making be set, that is not known.
  virtual FileTimes Times(std::string_view path) = 0;
  // Leaves alone what is not known.
  virtual void SetTimes(std::string_view path, const FileTimes& times) = 0;
  void SetModified(std::string_view path, FileTime time) { SetTimes(path, {.modified = time}); }
};

// Whether a failure says that nothing stands under a path, and not that nobody could look.
bool TellsAbsence(const RuntimeError& error);

// Puts entries into the order that List gives them in.
void SortByName(std::vector<DirectoryEntry>& entries);

// The whole content of a file; raises as Files::Open does. `limit` is the most it may hold, in
// bytes: a larger file is kOverflow.
std::string ReadWholeFile(Files& files, std::string_view path, uint64_t limit = uint64_t{1} << 31);

// A name in the folder of `path` for what is to take its place; the same at every call, so that
// what a killed program left behind is found again.
std::string TemporaryName(std::string_view path);
// Whether a name is such a one.
bool IsTemporaryName(std::string_view name);
// A failure at the temporary name of `path`, told of the file that it stands for.
RuntimeError ToldOfTarget(const RuntimeError& error, std::string_view path);

// Makes or replaces a file in one step: whoever reads it, also after a crash, finds all of the old
// content or all of the new. A file that is read-only is refused.
void ReplaceWholeFile(Files& files, std::string_view path, std::string_view bytes);

// A file that is to have this content.
struct WholeFile {
  std::string path;
  std::string bytes;
};

// The same for several files, each in one step of its own and in this order. They wait for the disk
// together, and only until a crash can tear none of them: after one the old content may be back.
void ReplaceWholeFiles(Files& files, std::span<const WholeFile> wanted);

// Makes or replaces a file with this content. Not atomic.
void WriteWholeFile(Files& files, std::string_view path, std::string_view bytes);

// Adds bytes to the end of a file, which is made when absent.
void AppendToFile(Files& files, std::string_view path, std::string_view bytes);

// Makes a folder and all folders above it; one that stands already is no error.
void CreateFolders(Files& files, std::string_view path);

}  // namespace quarnel
