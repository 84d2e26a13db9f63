#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/files.h"
#include "platform/processes.h"
#include "platform/registry.h"
#include "recovery/file_removal.h"
#include "recovery/removal_report.h"
#include "scan/results.h"

namespace quarnel {

// Follows one removal and tells in the end what became of every trace. What counts is what the
// machine shows then: a trace that still exists was not removed, whatever any call said.
class RemovalRecord {
 public:
  struct Uses {
    const ResultsPage& results;
    Files& files;
    Registry& registry;
    Processes& processes;
  };
  // Takes the traces as they stand, once the ticks have reached their rows.
  RemovalRecord(const Uses& uses, std::string time);

  void NoteBackup(BackupReport backup) { report_.backup = std::move(backup); }
  void NoteFile(std::string_view path, FileOutcome outcome);
  // The report as of now; `problem` is why the removal ended early.
  RemovalReport Conclude(std::string_view problem);

 private:
  struct Entry {
    ReportedTrace trace;
    bool ticked = false;
    bool exempt = false;   // on the safe list
    bool existed = false;  // when the removal began
    // A registry trace's place.
    uint32_t hive = 0;
    std::string key;
    std::string valueName;
    std::optional<FileOutcome> outcome;
  };

  void Take(Entry entry, bool ticked);
  void TakeIgnoredNodes();
  bool Exists(const Entry& entry);
  bool ValueExists(const Entry& entry);
  bool WasReached(const Entry& entry) const;
  void Decide(Entry& entry);
  // Whether a program still runs; one that was ended just now gets a moment for it.
  bool Runs(std::string_view path);

  Uses u_;
  RemovalReport report_;
  std::vector<Entry> entries_;
  // By kind and text; two rows of one text are one thing.
  std::unordered_map<std::string, size_t> places_;
  std::vector<ProcessRecord> running_;  // in the end
};

}  // namespace quarnel
