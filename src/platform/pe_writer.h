#pragma once

#include <string>

#include "platform/version_info.h"

namespace quarnel {

// What a made program says of itself.
struct ProgramVersion {
  FixedVersionRecord fixed;
  std::string companyName;
  std::string fileDescription;
  bool wide = false;  // PE32+ for x86-64, else PE32 for i386
};

// The words of a plain console application of this version, such as {3, 0, 0, 4}.
FixedVersionRecord ApplicationRecord(uint16_t major, uint16_t minor, uint16_t revision,
                                     uint16_t build);

// The bytes of a small valid program which returns 0 at once and holds this version resource, for
// samples and tests. Sources as in posix/machine/pe_reader.h. The texts together must fit 64 KB.
std::string MakeProgram(const ProgramVersion& version);

}  // namespace quarnel
