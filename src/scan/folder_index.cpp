#include "scan/folder_index.h"

#include <algorithm>

#include "base/runtime_error.h"
#include "base/text.h"
#include "core/existing_files.h"

namespace quarnel {
namespace {

// The bytes of a path that say nothing but themselves: printable ASCII without those that separate,
// escape or stand for others. Only the file system knows how it folds the rest.
bool IsPlainPath(std::string_view path) {
  return std::all_of(path.begin(), path.end(), [](char c) {
    return c >= ' ' && c < 0x7F && c != '/' && c != '*' && c != '?' && c != '"' && c != '<' &&
           c != '>' && c != '|';
  });
}

bool IsPlainName(std::string_view name) {
  return !name.empty() && name.find(':') == std::string_view::npos && name.back() != '.' &&
         name.back() != ' ';
}

}  // namespace

size_t FolderIndex::TextHash::operator()(std::string_view text) const {
  // FNV-1a over the upper-cased bytes.
  uint64_t hash = 0xCBF29CE484222325;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    hash = (hash ^ (byte >= 'a' && byte <= 'z' ? byte - 32U : byte)) * 0x100000001B3;
  }
  return static_cast<size_t>(hash ^ hash >> 32);
}

bool FolderIndex::TextEqual::operator()(std::string_view left, std::string_view right) const {
  return EqualText(left, right);
}

void FolderIndex::ListNames(std::string_view folder, Names& names) {
  // A folder that is missing or cannot be read holds no file that anybody could find.
  IgnoringErrors([&] {
    for (DirectoryEntry& entry : files_.ListBriefly(folder)) {
      if (!entry.IsFolder()) names.insert(std::move(entry.name));
    }
  });
}

FolderIndex::Folder& FolderIndex::FolderOf(std::string_view path) {
  if (!last_ || path != lastPath_) {
    auto found = folders_.find(path);
    if (found == folders_.end()) found = folders_.emplace(path, Folder()).first;
    last_ = &found->second;
    lastPath_ = path;
  }
  return *last_;
}

bool FolderIndex::FileExists(std::string_view path) {
  const size_t slash = path.rfind('\\');
  if (slash == std::string_view::npos || !IsPlainPath(path) ||
      !IsPlainName(path.substr(slash + 1))) {
    return quarnel::FileExists(files_, path);
  }
  Folder& folder = FolderOf(path.substr(0, slash + 1));
  if (!folder.names) {
    folder.names.emplace();
    ListNames(path.substr(0, slash + 1), *folder.names);
  }
  return folder.names->contains(path.substr(slash + 1)) && quarnel::FileExists(files_, path);
}

}  // namespace quarnel
