#pragma once

#include <string>
#include <string_view>

#include "controls/list_view.h"
#include "core/error_log.h"
#include "platform/files.h"
#include "platform/machine.h"
#include "scan/results.h"

namespace quarnel {

inline constexpr std::string_view kSafeListFile = "IgnoredSpywares.txt";

// The file of exempt traces: in the program's folder, one line an entry, three fields with "^"
// between them.
std::string SafeListPath(Machine& machine);

// What the user exempts from detection. The list view is the lookup for the whole run; the file
// keeps it from one run to the next; it is one of the program's own, see core/own_files.h.
class SafeList {
 public:
  SafeList(Files& files, Machine& machine, ErrorLog& log)
      : files_(files), machine_(machine), log_(log) {}

  // With `addNew` false, adds a row for each line of the file at `path`; a line with fewer than
  // three fields ends that. The list is not cleared first. With `addNew` true, adds `text` without
  // its prefix as one row and appends it to the file, unless the list has it already. False when it
  // did not come to its end.
  bool AddIgnoredSpywaresTolvw(std::string_view path, std::string_view field1,
                               std::string_view text, std::string_view field2, bool addNew,
                               ListView& list);

  // Makes the file at `path` hold the rows of `list`, in one step; without any row there is no file
  // afterwards. Raises when it cannot be read or written, which leaves it as it was.
  void Rewrite(std::string_view path, const ListView& list);

  // Moves every ticked trace of the results tree to the safe list and marks it so in the tree.
  // True when there was one.
  bool AddTickedTraces(std::string_view path, ResultsPage& page);

 private:
  std::string TextAt(std::string_view path);
  void Load(std::string_view path, ListView& list);

  Files& files_;
  Machine& machine_;
  ErrorLog& log_;
};

}  // namespace quarnel
