#pragma once

#include <optional>
#include <string>
#include <string_view>

// Shell links (.lnk). Source: Microsoft, "[MS-SHLLINK]: Shell Link (.LNK) Binary File Format".
namespace quarnel {

// The path to which a link leads, read from its LinkInfo: the local base path or the network share,
// and the common suffix behind it, in their Unicode forms when the link holds them. The list of
// shell items is skipped; the relative path and the extra data blocks are not looked at. Nothing
// when the bytes are no link, are damaged there, or name no target.
std::optional<std::string> ReadShortcutTarget(std::string_view link);

// The bytes of a small valid link to a file on a local disk.
std::string MakeShortcut(std::string_view target);

}  // namespace quarnel
