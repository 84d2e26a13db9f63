#pragma once

#include <string>
#include <vector>

#include "controls/host.h"
#include "core/error_log.h"
#include "platform/registry.h"
#include "recovery/removal_page.h"
#include "scan/results.h"

namespace quarnel {

// The registry's part of a removal: deletes what the ticked rows of lvwRegistryEntriesFound name.
class RegistryCleaning {
 public:
  struct Uses {
    RemovalPage& page;
    ResultsPage& results;
    Registry& registry;
    Host& host;
    ErrorLog& log;
  };
  explicit RegistryCleaning(const Uses& uses) : u_(uses) {}

  // Deletes the value, or the whole key, of every ticked row that is not on the safe list, and
  // takes the row out of the list whether or not the deletion went well. The walk starts over after
  // each. What the registry refused to delete is told.
  struct Refusal {
    std::string trace;  // as its row names it
    RegistryStatus status;
  };
  std::vector<Refusal> CleanRegistryEntries();

 private:
  // The first ticked row that is not exempt, with the bar moved along; nothing when there is none.
  std::optional<size_t> NextRow(std::string_view& hiveName);
  RegistryStatus DeleteTrace(const ListRow& row);

  Uses u_;
};

}  // namespace quarnel
