#pragma once

#include <string>

#include "platform/posix/unique_fd.h"

namespace quarnel {

// A host path as the system's "at" calls take it. Windows paths may be longer than the system takes
// in one call; the folders in front are then opened first, so that no depth hides a file.
class AtPath {
 public:
  // `host` must outlive this.
  explicit AtPath(const std::string& host);

  int Folder() const;
  // Empty, which no call finds, when a folder on the way cannot be entered.
  const char* Name() const { return name_; }
  // The same place for calls that have no "at" form.
  std::string ProcPath() const;

 private:
  UniqueFd folder_;
  const char* name_;
};

}  // namespace quarnel
