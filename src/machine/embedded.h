#pragma once

#include <span>
#include <string_view>

namespace quarnel {

// A file that the build put into the program byte for byte, so that it needs no other file to make
// a sample: the sources of samples/signatures and the pages of help by their names, and
// "quarnel-sample-program".
struct EmbeddedFile {
  std::string_view name;
  std::string_view bytes;
};

std::span<const EmbeddedFile> EmbeddedFiles();

// The bytes of one of them; empty for an unknown name.
inline std::string_view EmbeddedBytes(std::string_view name) {
  for (const EmbeddedFile& file : EmbeddedFiles()) {
    if (file.name == name) return file.bytes;
  }
  return {};
}

}  // namespace quarnel
