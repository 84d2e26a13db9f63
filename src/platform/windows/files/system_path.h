#pragma once

#include <string>
#include <string_view>

namespace quarnel {

// The path as the system's file functions take it: absolute and behind the prefix \\?\, with which
// no length, no device name and no blank or point at a name's end hides a file. "." and ".." are
// resolved in the text and never lead out of the drive or share; a path without a drive starts at
// the program's folder. Raises kBadFileName for a text that cannot be a path.
std::wstring SystemPath(std::string_view path);

// The same place for shell and loader, which know no prefix: without it wherever the path then
// still means the same.
std::wstring PlainPath(std::string_view path);

// Whether a path of SystemPath is the root of a drive or share.
bool IsRoot(const std::wstring& systemPath);

// A path of the system without the prefix that it may have.
std::wstring WithoutPrefix(std::wstring_view path);

// The full path of the running program, without a prefix.
const std::wstring& ExecutablePath();

}  // namespace quarnel
