#include "recovery/registry_cleaning.h"

#include "scan/traces.h"
#include "signatures/taxonomy.h"

namespace quarnel {

std::vector<RegistryCleaning::Refusal> RegistryCleaning::CleanRegistryEntries() {
  std::vector<Refusal> refusals;
  Reporting(u_.log, "CleanRegistryEntries in frmMain", [&] {
    std::string_view hiveName;
    while (const auto index = NextRow(hiveName)) {
      const ListRow row = u_.results.lvwRegistryEntriesFound.At(*index);
      const RegistryStatus status = DeleteTrace(row);
      if (status != RegistryStatus::kSuccess && status != RegistryStatus::kFileNotFound) {
        refusals.push_back({std::string(RegistryTrace::CompleteKey(row)), status});
      }
      u_.results.lvwRegistryEntriesFound.Remove(*index);
    }
    u_.page.lblDeletingCaption.SetCaption("Cleaning Spyware/Adware registry enntries...");
    u_.page.facts.measured = u_.page.facts.told = false;
    Show(u_.page);
  });
  return refusals;
}

std::optional<size_t> RegistryCleaning::NextRow(std::string_view& hiveName) {
  const ListView& list = u_.results.lvwRegistryEntriesFound;
  ProgressBar& bar = u_.page.pbrRemoveSpyware;
  bar.SetMin(0);
  bar.SetMax(static_cast<double>(list.Count() + 1));
  u_.page.facts.measured = true;
  Show(u_.page);
  u_.page.lblDeletingCaption.SetCaption("Cleaning Spyware/Adware registry entries...");
  for (size_t i = 0; i < list.Count(); ++i) {
    bar.SetValue(static_cast<double>(i + 1));
    const ListRow& row = list.At(i);
    if (!row.checked) continue;
    const RegistryTrace trace = RegistryTrace::Of(row);
    // A handle without a name keeps that of the row before, also over walks.
    if (const std::string_view name = HiveName(trace.hive); !name.empty()) hiveName = name;
    const std::string text = RegistryTraceText(hiveName, trace.key, trace.valueName);
    if (!FindName(u_.results.lvwIgnoredSpywares, text)) return i;
  }
  return std::nullopt;
}

RegistryStatus RegistryCleaning::DeleteTrace(const ListRow& row) {
  const RegistryTrace trace = RegistryTrace::Of(row);
  if (!trace.valueName.empty()) {
    return DeleteValue(u_.registry, trace.hive, trace.key, trace.valueName);
  }
  return DeleteKeyTree(u_.registry, trace.hive, trace.key, [this] { u_.host.DoEvents(); });
}

}  // namespace quarnel
