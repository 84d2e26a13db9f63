#pragma once

#include <string>
#include <vector>

#include "platform/platform.h"

namespace quarnel {

enum class PlantedKind { kFile, kRegistry, kCookie, kProgram };

// "file", "registry", "cookie", "program".
std::string_view PlantedKindName(PlantedKind kind);

// One trace of an invented threat, as a scan shows it. A program is found only while it runs.
struct PlantedTrace {
  std::string threat;
  PlantedKind kind = PlantedKind::kFile;
  std::string trace;
};

struct PlantedSample {
  std::vector<PlantedTrace> traces;
  std::vector<std::string> cleanFiles;  // look-alikes that a scan must pass over
  std::string programPath;              // the program to be run as a running threat
};

// Plants harmless threats of every kind that a scan can find, the signature set that finds them,
// the program's help pages, and changed settings of a browser that has no home page yet. Only
// sample files and keys are written; what stands already as wanted is left alone, so planting again
// changes nothing. A trace whose folder the machine does not have, or whose key needs the user's
// identifier on a machine that does not tell it, is left out. Raises RuntimeError.
PlantedSample PlantSample(Platform& platform);

}  // namespace quarnel
