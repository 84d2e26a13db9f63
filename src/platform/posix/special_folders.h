#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quarnel {

inline constexpr std::string_view kProgramFolder = "C:\\Program Files\\Quarnel";
inline constexpr std::string_view kSystemFolder = "C:\\WINDOWS\\system32";

// The Windows path of a special folder (CSIDL) of this user; nothing for an unknown number.
std::optional<std::string> SpecialFolderPath(int csidl, std::string_view userName);

std::string TempFolderPath(std::string_view userName);

// Every folder that a new machine has, with those above it left to be made as needed.
std::vector<std::string> FoldersOfNewMachine(std::string_view userName);

}  // namespace quarnel
