#include "recovery/registry_cleaning.h"

#include "base/text.h"
#include "scan/registry_scan.h"
#include "signatures/taxonomy.h"

namespace quarnel {
namespace {

// The columns of a registry trace that name what it is.
enum Column : size_t { kMainKey = 3, kKey = 4, kValueName = 5 };

}  // namespace

void RegistryCleaning::CleanRegistryEntries() {
  Reporting(u_.log, "CleanRegistryEntries in frmMain", [&] {
    std::string_view hiveName;
    while (const auto index = NextRow(hiveName)) {
      DeleteTrace(u_.results.lvwRegistryEntriesFound.At(*index));
      u_.results.lvwRegistryEntriesFound.Remove(*index);
    }
    u_.page.pbrRemoveSpyware.SetVisible(false);
    u_.page.lblDeletingCaption.SetCaption("Cleaning Spyware/Adware registry enntries...");
    u_.page.lblDeletingCaption.SetVisible(false);
  });
}

std::optional<size_t> RegistryCleaning::NextRow(std::string_view& hiveName) {
  const ListView& list = u_.results.lvwRegistryEntriesFound;
  ProgressBar& bar = u_.page.pbrRemoveSpyware;
  bar.SetMin(0);
  bar.SetMax(static_cast<double>(list.Count() + 1));
  bar.SetVisible(true);
  u_.page.lblDeletingCaption.SetCaption("Cleaning Spyware/Adware registry entries...");
  for (size_t i = 0; i < list.Count(); ++i) {
    bar.SetValue(static_cast<double>(i + 1));
    const ListRow& row = list.At(i);
    if (!row.checked) continue;
    const auto handle = static_cast<uint32_t>(ToLong(row.SubItem(kMainKey)));
    // A handle without a name keeps that of the row before, also over walks.
    if (const std::string_view name = HiveName(handle); !name.empty()) hiveName = name;
    const std::string trace =
        RegistryTraceText(hiveName, row.SubItem(kKey), row.SubItem(kValueName));
    if (!u_.results.lvwIgnoredSpywares.FindText(trace)) return i;
  }
  return std::nullopt;
}

void RegistryCleaning::DeleteTrace(const ListRow& row) {
  const auto hive = static_cast<uint32_t>(ToLong(row.SubItem(kMainKey)));
  // Copies: events processed below a deep key may change the list.
  const std::string key(row.SubItem(kKey));
  const std::string valueName(row.SubItem(kValueName));
  if (valueName.empty()) {
    DeleteKeyTree(u_.registry, hive, key, [this] { u_.host.DoEvents(); });
  } else {
    DeleteValue(u_.registry, hive, key, valueName);
  }
}

}  // namespace quarnel
