#pragma once

#include <cstdint>
#include <span>
#include <string_view>

// What stands on a sample machine, as tables. samples/signatures has the signatures that find it:
// the two must fit each other. Texts may hold words in braces, which the machine fills in: {user},
// {sid}, and the folders {windows}, {root}, {programs}, {common} and {personal} with the backslash
// at their end.
namespace quarnel {

enum class Content {
  kText,      // a line of text that names the file
  kProgram,   // a small program of the company `about`
  kShortcut,  // a link to `about`
  kWatch,     // the sample program, which can be run
};

struct SampleFile {
  std::string_view threat;  // empty for a file that must not be found
  int folder;               // its special folder
  Content content;
  std::string_view path;  // below the folder
  std::string_view about = {};
  // By this name signature sources ask for the file's hash.
  std::string_view hashName = {};
};
std::span<const SampleFile> SampleFiles();

struct SampleCookie {
  bool isTracking;
  std::string_view name;  // of the file
  std::string_view host;
};
std::span<const SampleCookie> SampleCookies();

// Which parts of a registry trace a scan shows as they are written; the others it folds to upper
// case.
enum class Shown { kUpper, kKeyAsWritten, kValueAsWritten, kAsWritten };

struct SampleEntry {
  std::string_view threat;  // empty for what is no trace of its own
  uint32_t hive;
  Shown shown;
  std::string_view key;
  std::string_view value;      // the value's name; empty when the key itself is the trace
  std::string_view data = {};  // of the value or, without a name, of the key; "dword:N" is a number
};
std::span<const SampleEntry> SampleEntries();

// A setting of the browser as it is found, of which some have changed since the program saw them
// first.
struct SampleBrowserSetting {
  uint32_t hive;
  std::string_view key;
  std::string_view value;  // empty for the key's default value
  std::string_view data;
  std::string_view baseline = {};  // its key among the program's baselines
  std::string_view before = {};    // what stands there
};
std::span<const SampleBrowserSetting> SampleBrowserSettings();

}  // namespace quarnel
