#include "protection/memory_shield.h"

#include <utility>

#include "core/own_files.h"
#include "core/system_version.h"
#include "scan/progress.h"
#include "signatures/cipher.h"
#include "signatures/signature_files.h"

namespace quarnel {
namespace {

ScanContext ContextOf(const MemoryShield::Uses& uses, Unread& unread) {
  const ScanContext& scan = uses.scan;
  return {.page = scan.page,
          .resultsPage = scan.resultsPage,
          .flags = scan.flags,
          .unread = unread,
          .results = scan.results,
          .files = uses.files,
          .machine = scan.machine,
          .host = scan.host,
          .log = scan.log};
}

}  // namespace

MemoryShield::MemoryShield(const Uses& uses)
    : u_(uses),
      flags_(uses.scan.flags),
      context_(ContextOf(uses, unread_)),
      inspection_(context_, uses.processes,
                  [this](const MemoryAlert& alert) { u_.window.Alert(alert); }) {}

bool MemoryShield::Watches() const {
  return u_.options.chkMemorySheild.Checked() &&
         SignaturePresent(context_.files, context_.machine, signature_file::kPrograms);
}

bool MemoryShield::Inspect() {
  ScanPage& page = context_.page;
  if (!page.ImgStartScanMouseMove.Enabled() || page.ImgStopScanMouseMove.Enabled() || !Watches()) {
    return false;
  }
  ShowMaximum(page.pbgMain,
              GetSignatureCount(context_.files, context_.machine, signature_file::kPrograms));
  unread_.Clear();
  const size_t before = inspection_.Inspected();
  switch (GetOSVersionInfo(context_.machine, context_.host, u_.settings.ApplicationName())) {
    case static_cast<int>(SystemFamily::kWindows9x):
      inspection_.CountProcessIn95();
      break;
    case static_cast<int>(SystemFamily::kWindowsNt):
      inspection_.MemoryItemsInspection(page.pbgMain);
      break;
    default:
      break;
  }
  done_.inspected = inspection_.Inspected();
  // An inspection that had no reason to look has missed nothing.
  if (done_.inspected != before) done_.unread = unread_.Count();
  return true;
}

bool MemoryShield::TakeScanRequest() { return std::exchange(flags_.alertScanRequested, false); }

void MemoryShield::AlertOpened() {
  flags_.alertAnswered = false;
  ++done_.alerts;
}

void MemoryShield::Decline(const MemoryAlert& alert) {
  AppendToOwnFile(context_.files, context_.machine,
                  SignaturePath(context_.machine, signature_file::kDeclined),
                  Encrypt(alert.hash + "^" + alert.typeName + "^" + alert.threatName) + "\r\n");
  ++done_.declined;
}

}  // namespace quarnel
