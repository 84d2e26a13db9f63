#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/date_time.h"

namespace quarnel {

// One line of a folder's listing. What a line does not tell, or tells as no number or date, stays
// empty or 0; the day that stands for no date is 12/30/1899.
struct CFtpFile {
  bool IsDirectory = false;
  int32_t FileSize = 0;
  DateTime LastWriteTime = std::chrono::local_days(std::chrono::year(1899) / 12 / 30);
  std::string FileName;
  std::string FilePath;  // where a symbolic link leads
  std::string Permissions;
  std::string Owner;
  std::string Group;
};

// Files by name, letter case folded, in the order of their entry. Items are counted from 1.
class CFtpFiles {
 public:
  // Raises kKeyNotUnique for a key that stands already.
  void Add(CFtpFile file, std::string_view key);
  // Raise kSubscriptOutOfRange outside 1 to Count().
  const CFtpFile& Item(size_t index) const;
  void Remove(size_t index);
  // Raises kInvalidCall for a key that does not stand.
  const CFtpFile& Item(std::string_view key) const;
  size_t Count() const { return entries_.size(); }

 private:
  struct Entry {
    std::string key;
    CFtpFile file;
  };
  std::vector<Entry> entries_;
};

// Where the date of a line in the UNIX form begins, from 1: a month between blanks, with a digit
// before it and in the place of the time or year. 0 when there is none.
size_t GetDateStartPosition(std::string_view line);

// What a LIST reply names, in the form of UNIX or of DOS; any other line is misread as one of the
// two. The first empty line ends it, as does a name that has been there. `now` gives the year of
// dates that tell none.
CFtpFiles GetFileListX(std::string_view reply, DateTime now);

}  // namespace quarnel
