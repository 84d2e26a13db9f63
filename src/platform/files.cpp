#include "platform/files.h"

#include <algorithm>

#include "base/hex.h"
#include "base/text.h"
#include "platform/held_folders.h"
#include "platform/names.h"

namespace quarnel {
namespace {

class FolderByPath : public ListedFolder {
 public:
  FolderByPath(Files& files, std::string_view folder) : files_(files), folder_(folder) {}
  std::unique_ptr<File> Open(std::string_view name) override {
    return files_.Open(folder_ + std::string(name), OpenMode::kRead);
  }

 private:
  Files& files_;
  std::string folder_;
};

}  // namespace

std::unique_ptr<ListedFolder> Files::OpenFolder(std::string_view folder) {
  return std::make_unique<FolderByPath>(*this, folder);
}

std::optional<DirectoryEntry> Files::Stat(std::string_view path) {
  std::optional<DirectoryEntry> entry;
  IgnoringErrors([&] { entry = Look(path); });
  return entry;
}

bool TellsAbsence(const RuntimeError& error) {
  const ErrorNumber number = error.Number();
  return number == ErrorNumber::kFileNotFound || number == ErrorNumber::kPathNotFound ||
         number == ErrorNumber::kBadFileName;
}

void SortByName(std::vector<DirectoryEntry>& entries) {
  std::sort(entries.begin(), entries.end(), [less = LessText()](const auto& a, const auto& b) {
    return less(a.name, b.name) || (!less(b.name, a.name) && a.name < b.name);
  });
}

std::string ReadWholeFile(Files& files, std::string_view path, uint64_t limit) {
  const std::unique_ptr<File> file = files.Open(path, OpenMode::kRead);
  const uint64_t size = file->Size();
  if (size > limit) throw RuntimeError(ErrorNumber::kOverflow, path);
  // The size is a hint: the file may grow or shrink meanwhile. One byte more than it shows the end
  // without another round.
  std::string bytes(static_cast<size_t>(size) + 1, '\0');
  size_t length = 0;
  while (const size_t count = file->Read({bytes.data() + length, bytes.size() - length})) {
    length += count;
    if (length > limit) throw RuntimeError(ErrorNumber::kOverflow, path);
    if (length == bytes.size()) bytes.resize(bytes.size() * 2);
  }
  bytes.resize(length);
  return bytes;
}

std::string TemporaryName(std::string_view path) {
  const size_t slash = path.find_last_of("\\/");
  const size_t begin = slash == std::string_view::npos ? 0 : slash + 1;
  // FNV-1a: short enough for any folder, and told apart well enough within one.
  uint32_t hash = 0x811C9DC5;
  for (const char c : FoldName(path.substr(begin))) {
    hash = (hash ^ static_cast<unsigned char>(c)) * 0x01000193;
  }
  return std::string(path.substr(0, begin)) + "~" + ToLower(HexNumber(hash, 8)) + ".tmp";
}

bool IsTemporaryName(std::string_view name) {
  constexpr std::string_view kForm = "~00000000.tmp";
  return name.size() == kForm.size() && name.front() == '~' && name.ends_with(".tmp") &&
         name.substr(1, 8).find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

RuntimeError ToldOfTarget(const RuntimeError& error, std::string_view path) {
  if (!error.Description().ends_with(TemporaryName(path))) return error;
  return {error.Number(), path, error.SystemCode()};
}

void ReplaceWholeFile(Files& files, std::string_view path, std::string_view bytes) {
  const auto present = files.Stat(path);
  if (present && (present->attributes & file_attribute::kReadOnly) != 0) {
    throw RuntimeError(ErrorNumber::kPermissionDenied, path);
  }
  const std::string temporary = TemporaryName(path);
  const auto discard = [&] { files.Delete(temporary); };
  // Whatever stands there, a link too, must not be written through.
  IgnoringErrors(discard);
  try {
    files.Open(temporary, OpenMode::kCreate)->Write(bytes);
    files.ReplaceFile(temporary, path);
  } catch (const RuntimeError& error) {
    IgnoringErrors(discard);
    throw ToldOfTarget(error, path);
  }
}

void ReplaceWholeFiles(Files& files, std::span<const WholeFile> wanted) {
  struct Place {
    HeldFolder* folder;
    std::string temporary;
    std::string name;
  };
  const auto folders = files.HoldFolders();
  std::vector<Place> places;
  size_t placed = 0;
  try {
    for (const WholeFile& file : wanted) {
      const PathParts parts = PartsOf(file.path);
      HeldFolder* const folder = folders->Find(parts.folder);
      if (folder == nullptr) throw RuntimeError(ErrorNumber::kPathNotFound, file.path);
      places.push_back({folder, TemporaryName(parts.name), parts.name});
      folder->Create(places.back().temporary)->Write(file.bytes);
    }
    folders->Flush();
    for (; placed < places.size(); ++placed) {
      const Place& place = places[placed];
      place.folder->PutInPlace(place.temporary, place.name);
    }
  } catch (RuntimeError& error) {
    for (; placed < places.size(); ++placed) {
      IgnoringErrors([&] { places[placed].folder->Delete(places[placed].temporary); });
    }
    for (const WholeFile& file : wanted) error = ToldOfTarget(error, file.path);
    throw;
  }
}

void WriteWholeFile(Files& files, std::string_view path, std::string_view bytes) {
  files.Open(path, OpenMode::kCreate)->Write(bytes);
}

void AppendToFile(Files& files, std::string_view path, std::string_view bytes) {
  files.Open(path, OpenMode::kAppend)->Write(bytes);
}

void CreateFolders(Files& files, std::string_view path) {
  while (!path.empty() && (path.back() == '\\' || path.back() == '/')) path.remove_suffix(1);
  // From the top down; each slash ends the name of a folder.
  size_t end = 0;
  do {
    end = std::min(path.find_first_of("\\/", end + 1), path.size());
    const std::string_view folder = path.substr(0, end);
    if (folder.ends_with(':') || folder.empty()) continue;
    const auto entry = files.Stat(folder);
    if (entry && entry->IsFolder()) continue;
    try {
      files.CreateFolder(folder);
    } catch (const RuntimeError& error) {
      // Another program may have made it in between.
      const auto made = files.Stat(folder);
      if (error.Number() != ErrorNumber::kFileExists || !made || !made->IsFolder()) throw;
    }
  } while (end < path.size());
}

}  // namespace quarnel
