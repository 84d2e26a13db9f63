#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "platform/processes.h"
#include "scan/scan_context.h"
#include "signatures/hash_index.h"

namespace quarnel {

// What the alert about a running threat shows.
struct MemoryAlert {
  std::string path;
  std::string company;
  std::string hash;
  std::string typeName;
  std::string threatName;

  // "... is running in the memory and has been detected as ...", with its question.
  std::string Question() const;
};

// Compares the running programs with the signature file of their hashes. During a scan, which the
// enabled Stop image tells, a hit goes to the results; otherwise it raises the alert.
class MemoryScan {
 public:
  // Shows the alert and returns when it was answered.
  using RaiseAlert = std::function<void(const MemoryAlert& alert)>;
  MemoryScan(const ScanContext& context, Processes& processes, RaiseAlert raiseAlert)
      : u_(context), processes_(processes), raiseAlert_(std::move(raiseAlert)) {}

  // The NT family: inspects the main module of each process, unless the number of processes is that
  // of the last time.
  void MemoryItemsInspection(ProgressBar& progressBar);

  // The 9x family: walks the snapshot itself, each time.
  void CountProcessIn95();

  // How many programs were inspected so far, in all calls.
  size_t Inspected() const { return inspected_; }

  // A module's path in a form that the file functions take: what stands behind "SYSTEM32\" is put
  // below the system folder.
  std::string ActuallProcessName(std::string_view path);

 private:
  struct Hit {
    std::string typeCode;
    std::string threatName;
  };

  void Inspect(std::string_view modulePath, const HashIndex& signatures);
  void DetectRunningEXE(std::string_view path, std::string_view company, std::string_view hash,
                        const Hit& hit);
  HashIndex LoadPrograms();
  void DoEvents() { u_.host.DoEvents(); }
  bool InScan() const { return u_.page.ImgStopScanMouseMove.Enabled(); }

  ScanContext u_;
  Processes& processes_;
  RaiseAlert raiseAlert_;
  size_t inspected_ = 0;
};

}  // namespace quarnel
