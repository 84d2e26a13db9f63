#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"
#include "scan/results.h"

namespace quarnel {

enum class TraceKind { kFile, kRegistry, kCookie };

// A trace that stands in the results, in the lists or in the tree alone.
struct FoundTrace {
  TraceKind kind = TraceKind::kFile;
  std::string text;  // as the tree, the safe list and reports name it
  std::string threat;
  std::string typeName;
  bool exempt = false;      // on the safe list
  bool listed = false;      // it has a row, and so a removal can reach it
  bool ticked = false;      // its row
  bool nodeTicked = false;  // its node in the tree, whether or not the tick has reached a row
  // A registry trace's place.
  uint32_t hive = 0;
  std::string key;
  std::string valueName;
};

// Each trace once, whatever the tree shows of it: those with rows first, files, registry and
// cookies in the order of their lists. Rows that name one thing in different letter case are one
// trace; where files may differ in letter case alone, they are two.
std::vector<FoundTrace> FoundTraces(const ResultsPage& page, Files& files);

// Whether two paths that differ in letter case at most lead to one file, as the names on the way
// show.
bool LeadToOneFile(Files& files, std::string_view left, std::string_view right);

}  // namespace quarnel
