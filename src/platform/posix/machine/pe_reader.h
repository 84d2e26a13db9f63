#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/version_info.h"

// Reader of the version resource of executables, PE32 and PE32+. Sources: Microsoft, "PE Format"
// (https://learn.microsoft.com/windows/win32/debug/pe-format), sections "The .rsrc Section" and
// "Optional Header", and "VS_VERSIONINFO structure" (same site, .../win32/menurc/vs-versioninfo).
namespace quarnel {

// Up to `size` bytes of a file from an offset; fewer, or none, where the file ends.
using ReadBytes = std::function<std::string(uint64_t offset, size_t size)>;

// The bytes of a program's version resource: the entry with the identifier 1 when there is one,
// else the first, in the neutral language, else in its first. Nothing when the file is no program,
// has none, or is damaged on the way there. The file is not trusted: a resource tree is followed
// exactly three levels down whatever it says, and less than 6 MB are asked for in all.
std::optional<std::string> FindVersionResource(const ReadBytes& read);

// The fixed part of a version resource; nothing when it is damaged.
std::optional<FixedVersionRecord> FixedFromVersionResource(std::string_view resource);

// Both together, for a file whose bytes are at hand.
std::optional<FixedVersionRecord> ReadFixedVersion(std::string_view file);

}  // namespace quarnel
