#include "core/product.h"

namespace quarnel {

std::string VersionRecordText() {
  return std::to_string(kFileVersion[0]) + "." + std::to_string(kFileVersion[1]) + "." +
         std::to_string(kFileVersion[2]);
}

}  // namespace quarnel
