#pragma once

#include <optional>
#include <string>
#include <string_view>
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
  // What the registry answered when a trace of it was to be deleted.
  void NoteRefusal(std::string_view trace, RegistryStatus status);
  // The report as of now; `problem` is why the removal is not whole.
  RemovalReport Conclude(std::string_view problem);

 private:
  struct Entry {
    FoundTrace found;
    bool existed = false;  // when the removal began
    std::optional<FileOutcome> outcome;
    RegistryStatus refusal = RegistryStatus::kSuccess;
  };
  enum class Sight { kThere, kGone, kUnknown };

  Sight LookAt(const FoundTrace& trace);
  Sight LookAtValue(const FoundTrace& trace);
  Sight LookAtFile(const std::string& path);
  std::string_view WhyNotReached(const Entry& entry) const;
  void Decide(const Entry& entry, ReportedTrace& trace);
  void DecideGone(const Entry& entry, ReportedTrace& trace);
  // Whether a program still runs; one that was ended just now gets a moment for it.
  bool Runs(std::string_view path);

  Uses u_;
  RemovalReport report_;
  std::vector<Entry> entries_;
  std::vector<ProcessRecord> running_;  // in the end
};

}  // namespace quarnel
