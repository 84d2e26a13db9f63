#pragma once

#include <dirent.h>

#include <string>

namespace quarnel {

// The names in a folder, one after the other, without "." and "..".
class DirectoryStream {
 public:
  explicit DirectoryStream(const std::string& hostFolder);
  ~DirectoryStream();
  DirectoryStream(const DirectoryStream&) = delete;
  DirectoryStream& operator=(const DirectoryStream&) = delete;

  // Valid until the next call; null behind the last name and after a failure.
  const char* Next();
  // What the present name stands for, as d_type of <dirent.h> has it: DT_UNKNOWN on file systems
  // that do not tell.
  unsigned char Type() const { return type_; }
  // The code of errno with which opening or reading failed, or 0.
  int Error() const { return error_; }
  // The folder's descriptor for "at" calls; only when there was no error.
  int Fd() const { return dirfd(stream_); }

 private:
  DIR* stream_ = nullptr;
  int error_ = 0;
  unsigned char type_ = DT_UNKNOWN;
};

}  // namespace quarnel
