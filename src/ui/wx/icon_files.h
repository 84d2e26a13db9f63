#pragma once

#include <span>
#include <string_view>

namespace quarnel {

struct IconFile {
  std::string_view name;
  std::string_view svg;
};

// The files of icons/, as the build found them.
std::span<const IconFile> IconFiles();

}  // namespace quarnel
