#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/files.h"
#include "recovery/manifest.h"

namespace quarnel {

// Reads the copies in an archive from where the manifest says that they lie, so that a damaged
// directory or a cut end costs no copy that is still whole.
class StoredCopies {
 public:
  StoredCopies(Files& files, std::string archivePath);

  // Hands an item's bytes over in pieces. Raises RuntimeError, maybe after some pieces, when they
  // are not those of the item.
  void Read(const FileItem& item, const std::function<void(std::string_view piece)>& take);

 private:
  Files& files_;
  std::string path_;
  std::unique_ptr<File> archive_;  // open from the first read on
  std::string buffer_;
};

}  // namespace quarnel
