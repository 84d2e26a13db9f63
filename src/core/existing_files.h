#pragma once

#include <string>
#include <string_view>

#include "controls/controls_fwd.h"
#include "platform/files.h"

// The one test of existence that the whole program uses, and the deletion that rests on it.
namespace quarnel {

// Which names a directory search gives beside plain files.
enum class Search { kPlain, kHidden };
// The name that a directory search for `path` gives: the last component as the disk has it, or
// empty. Hidden, system and folder names are not given by a plain search, and a name with a
// wildcard never is.
std::string Dir(Files& files, std::string_view path, Search search = Search::kPlain);
// The test of existence that the whole program uses: Dir gives the path's own last component,
// letter case folded.
bool FileExists(Files& files, std::string_view path);

// Deletes up to 8 times in a row, processing events after each attempt; true if a delete ran
// without failing. False without an attempt when the path has no backslash or names no existing
// file.
bool DeleteFileRetry(Files& files, Host& host, std::string_view path);

}  // namespace quarnel
