#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/files.h"
#include "platform/machine.h"
#include "platform/registry.h"
#include "platform/shell.h"

// Where the system finds the programs that it starts, and how one is taken out or put back.
namespace quarnel {

// A program that starts with the system. A section is the label of a location.
struct StartupEntry {
  std::string name;  // of the value, or of the file with its ending
  std::string path;  // cleaned
  std::string section;

  bool operator==(const StartupEntry&) const = default;
};

namespace startup {

inline constexpr std::string_view kFolder = "All Users Startup Folder";

struct Place {
  uint32_t hive;
  std::string_view key;
};

// A location by its label. What is walked, where blocking deletes a value, and below which hive
// allowing writes one; the folder is no place of the registry.
struct Location {
  std::string_view label;
  std::optional<Place> walked = std::nullopt;
  std::optional<Place> blocked = std::nullopt;
  std::optional<uint32_t> allowed = std::nullopt;
};

// All locations, those that are walked first and in the order of the walk.
inline constexpr size_t kWalked = 7;
std::span<const Location> Locations();

// What of the system the locations are reached by.
struct Reach {
  Files& files;
  Registry& registry;
  Machine& machine;
  Shell& shell;
};

// What is met at a location; false ends the walk.
using Visit = std::function<bool(const std::string& name, const std::string& path)>;

// Walks one of the first locations. A visit may change what is walked: an entry behind a value that
// it deletes is met next time. A location that is not there is passed over.
void Walk(const Reach& reach, const Location& location, const Visit& visit);

// Ends at a name or data that the fixed buffers of 255 characters do not hold.
void EnumerateRegKeyValues(Registry& registry, const Place& place, const Visit& visit);

// The text of a value as it stands, up to its first NUL; empty for what is no text.
std::string GetSubKeyValue(const RawValue& value);

// The path of a program in the value of an entry: without quotation marks, arguments behind " /" or
// " -", and commas.
std::string CleanStartupPath(std::string_view text);

// Takes an entry out of its location. Not each location's row points at its own key, so that some
// entries stay. Raises when a file in the folder cannot be deleted.
void BlockStartup(const Reach& reach, const StartupEntry& entry);

// Writes an entry back to the registry; one of the folder is not.
void AllowStartup(const Reach& reach, const StartupEntry& entry);

}  // namespace startup
}  // namespace quarnel
