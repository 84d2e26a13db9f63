#include "signatures/levels.h"

#include "base/text.h"
#include "core/inifile.h"
#include "signatures/signature_files.h"

namespace quarnel {

int16_t GetThreatLevel(Files& files, Machine& machine, std::string_view sThreatName) {
  constexpr int16_t kUsualLevel = 3;
  cInifile ini(files);
  ini.SetPath(SignaturePath(machine, signature_file::kLevels));
  ini.SetSection("Level");
  ini.SetKey(ToLower(Replace(sThreatName, " ", "")));
  const double level = Val(ini.Value());
  return level > 0 ? ToInteger(level) : kUsualLevel;
}

std::string_view GetThreatLevelText(int16_t /*level*/) { return {}; }

}  // namespace quarnel
