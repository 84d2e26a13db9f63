#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

// Ordinary files of the system that the program runs on, by their paths in UTF-8: what a command
// line names. The files of a machine are reached through platform/files.h.
namespace quarnel {

// A path has a form of its own on some systems.
std::filesystem::path HostPath(std::string_view text);
std::string HostText(const std::filesystem::path& path);

// The whole content. Raises kFileNotFound, kPathFileAccess for what is no plain file (a pipe may
// never end), kOverflow for more than `limit` bytes, kDeviceError when reading fails.
std::string ReadHostFile(const std::string& path, uint64_t limit = uint64_t{1} << 30);

// Makes or replaces a file. Raises kPathFileAccess when it cannot be opened, kDeviceError when
// writing fails.
void WriteHostFile(const std::string& path, std::string_view bytes);

}  // namespace quarnel
