#include "platform/posix/files/directory_stream.h"

#include <fcntl.h>

#include <cerrno>
#include <string_view>

#include "platform/posix/files/at_path.h"
#include "platform/posix/unique_fd.h"

namespace quarnel {

DirectoryStream::DirectoryStream(const std::string& hostFolder) {
  const AtPath at(hostFolder);
  UniqueFd fd(openat(at.Folder(), at.Name(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (fd.Valid()) stream_ = fdopendir(fd.Get());
  if (stream_ == nullptr) {
    error_ = errno;
  } else {
    fd.Release();  // the stream closes it
  }
}

DirectoryStream::~DirectoryStream() {
  if (stream_ != nullptr) closedir(stream_);
}

const char* DirectoryStream::Next() {
  if (stream_ == nullptr) return nullptr;
  for (;;) {
    errno = 0;
    const dirent* entry = readdir(stream_);
    if (entry == nullptr) {
      error_ = errno;
      return nullptr;
    }
    const std::string_view name = static_cast<const char*>(entry->d_name);
    if (name == "." || name == "..") continue;
    type_ = entry->d_type;
    return static_cast<const char*>(entry->d_name);
  }
}

}  // namespace quarnel
