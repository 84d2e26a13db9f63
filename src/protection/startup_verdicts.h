#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/inifile.h"
#include "protection/startup_locations.h"

namespace quarnel {

// What ends a verdict, behind the path of the entry.
namespace verdict {
inline constexpr std::string_view kAllowed = "[ALLOWED]";
inline constexpr std::string_view kBlocked = "[BLOCKED]";
}  // namespace verdict

// The path in a verdict.
std::string PathOfVerdict(std::string_view text);

// The file of the user's verdicts on what starts with the system: a section for each location, and
// in it a line for each entry.
class StartupVerdicts {
 public:
  StartupVerdicts(Files& files, Machine& machine, std::string_view applicationName);

  // Reads the file; what is asked is about this text, until something is set.
  void Open();

  // The verdict on an entry, with its path; a text that is none when there is none.
  std::string Of(std::string_view section, std::string_view name);
  // Writes where it is another one. A name that the file cannot hold gets none.
  void Set(std::string_view section, std::string_view name, std::string_view text);

  // All of the file; the path of each is its whole verdict.
  std::vector<StartupEntry> All();

 private:
  cInifile& Held();
  cInifile File() const;

  Files& files_;
  Machine& machine_;
  std::string path_;
  std::optional<cInifile> held_;
};

}  // namespace quarnel
