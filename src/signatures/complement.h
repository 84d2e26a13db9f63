#pragma once

#include <string>
#include <string_view>

#include "controls/controls_fwd.h"
#include "core/error_log.h"
#include "platform/files.h"

// The whole-file transform of small data files: every byte is complemented. It is its own inverse
// for files without the bytes 0 and 255, which is what such files are made of.
namespace quarnel {

// The complement of each byte. A byte 0 is never written: it leaves a 0 where later bytes follow
// and is cut off at the end.
std::string ComplementBytes(std::string_view source);

// What ComplementFile works with.
struct ComplementTools {
  Files& files;
  Host& host;
  ErrorLog& log;
  std::string_view title;  // of its message boxes
};

// Writes the complement of a file over another, which is made when absent and not truncated: what
// stands there at the place of a source byte 0, or behind the source's end, stays. Tells the user
// when the source does not exist or no target is named; other failures are logged as
// "DecompressFile". True when the target was written to its end.
bool ComplementFile(const ComplementTools& tools, std::string_view sSource,
                    std::string_view sTarget);

}  // namespace quarnel
