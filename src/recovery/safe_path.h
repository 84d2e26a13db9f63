#pragma once

#include <string_view>

// Paths that come from a list, an archive or a manifest are not to be trusted: what deletes, moves
// or extracts by them asks here first, and then works through Files::WithoutLinks(), which enters
// no folder by way of a link. So nothing outside of the folder that a path names is ever touched,
// also when a folder was swapped for a link in between.
namespace quarnel {

// Why nothing may be done at this path; empty when it may. Only a whole path with a drive is taken
// ("C:\folder\name"): no device or share, no "." or ".." or empty part, no stream, no name that the
// system keeps for a device ("NUL", "com1.txt"), no character that a name cannot hold.
std::string_view WhyUnsafe(std::string_view path);

// The same for a path that is to lie below a folder, which is trusted.
std::string_view WhyUnsafeBelow(std::string_view folder, std::string_view path);

// Raises kBadFileName with the reason; the caller's log then tells it.
void RequireSafePath(std::string_view path);

}  // namespace quarnel
