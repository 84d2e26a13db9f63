#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "platform/files.h"

namespace quarnel {

// Puts files back. No folder is entered by way of a link, and a file appears under its name only
// when it is complete and on the disk. All operations raise RuntimeError.
class FileRestorer {
 public:
  explicit FileRestorer(Files& files) : files_(files.WithoutLinks()) {}

  using Pieces = std::function<void(std::string_view piece)>;
  // Hands a file's bytes to its argument, piece by piece; what it raises leaves nothing behind.
  using Source = std::function<void(const Pieces& take)>;

  // Makes or replaces a file, with all folders on the way. `finish` may give the new file its times
  // and attributes before it gets its name.
  void Put(const std::string& path, const Source& source,
           const std::function<void(const std::string& temporary)>& finish = nullptr);

  Files& files() { return files_; }

 private:
  Files& files_;
};

// Raises kBadFileName for a path that may not be restored to: one that does not lie below `root`,
// or that names a device, a stream, or another folder by "..".
void RequireBelow(std::string_view root, std::string_view path);

}  // namespace quarnel
