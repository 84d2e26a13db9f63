#include "core/product.h"

namespace quarnel {

std::string VersionRecordText() {
  // The revision is the fourth number of the record; the third one is not part of the version.
  const auto& [major, minor, build, revision] = kFileVersion;
  return std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(revision);
}

}  // namespace quarnel
