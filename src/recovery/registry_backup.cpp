#include "recovery/registry_backup.h"

#include <memory>

#include "base/hex.h"
#include "base/little_endian.h"
#include "base/text.h"
#include "base/unicode.h"
#include "core/lines.h"
#include "recovery/restore_point.h"
#include "scan/traces.h"

namespace quarnel {
namespace {

constexpr size_t kBuffer = 255;

std::u16string WideUnits(std::string_view bytes) {
  std::u16string units;
  for (size_t i = 0; i + 1 < bytes.size(); i += 2) units += static_cast<char16_t>(U16At(bytes, i));
  return units;
}

// A string value as text, with its NULs.
std::string TextOf(const RawValue& value) { return ToUtf8(WideUnits(value.data)); }

bool IsText(ValueType type) {
  return type == ValueType::kString || type == ValueType::kExpandString ||
         type == ValueType::kMultiString;
}

// How many characters a buffer needs for the data.
size_t BufferedSize(const RawValue& value) {
  return IsText(value.type) ? TextOf(value).size() : value.data.size();
}

std::string LongText(std::string_view bytes) {
  constexpr size_t kLeast = 3;
  std::string digits = std::to_string(U32At(bytes, 0));
  if (digits.size() < kLeast) digits.insert(0, kLeast - digits.size(), '0');
  return digits;
}

// Numbers take a place for their sign.
std::string SignedText(uint32_t hive) {
  const auto number = static_cast<int32_t>(hive);
  return (number < 0 ? "" : " ") + std::to_string(number);
}

ListRow Row(std::string_view threat, std::string hive, std::string key, std::string valueName,
            std::string data, int32_t type) {
  return {.text = std::string(threat),
          .subItems = {std::move(hive), std::move(key), std::move(valueName), std::move(data),
                       std::to_string(type)}};
}

}  // namespace

PassProgress::PassProgress(BackupPage& page, Host& host, std::string_view text, size_t rows)
    : page_(page), host_(host), text_(text), rows_(rows) {
  page_.pgbBackup.SetMin(0);
  page_.pgbBackup.SetMax(static_cast<double>(rows + 1));
}

void PassProgress::At(size_t row) {
  page_.pgbBackup.SetValue(static_cast<double>(row));
  const size_t percentage = row * 100 / rows_;
  page_.lblBackupProgress.SetCaption(
      Join({text_, " ", std::to_string(percentage), "% completed."}, ""));
  if (percentage == shown_) return;
  shown_ = percentage;
  host_.DoEvents();
}

std::string GetSubKeyValue(RegistryKey& key, std::string_view valueName, int32_t& type) {
  RawValue value;
  if (key.Query(valueName, value) != RegistryStatus::kSuccess) return {};
  if (type == -1 || type == 0) type = static_cast<int32_t>(value.type);
  switch (static_cast<ValueType>(type)) {
    case ValueType::kString:
    case ValueType::kMultiString: {
      return std::string(CutAtNul(TextOf(value)));
    }
    case ValueType::kBinary:
      return HexText(value.data);
    case ValueType::kDword:
      return LongText(value.data);
    default:
      return {};
  }
}

std::string RegistryBackup::BackupRegistry(std::string_view path) {
  lines_.clear();
  missing_.clear();
  u_.page.lvwRegBackup.Clear();
  try {
    if (!Collect()) return "the key is gone or may not be read: " + missing_;
    Write(path);
    u_.page.lvwRegBackup.Clear();
    u_.page.picBackupProgress.SetVisible(false);
    return {};
  } catch (const RuntimeError& error) {
    u_.page.picBackupProgress.SetVisible(false);
    u_.log.NoteInPassing("BackupRegistry", error);
    lines_.clear();
    return error.Description();
  }
}

bool RegistryBackup::Collect() {
  BackupPage& page = u_.page;
  const ListView& found = u_.results.lvwRegistryEntriesFound;
  page.picBackupProgress.SetVisible(true);
  page.lblBackupProgress.SetCaption("Please wait while initializing backup...");
  page.pgbBackup.SetValue(0);
  PassProgress progress(page, u_.host, "Analyzing registry backup.", found.Count());
  for (size_t i = 0; i < found.Count(); ++i) {
    const RegistryTrace trace = RegistryTrace::Of(found.At(i));  // events may change the list
    progress.At(i + 1);
    if (trace.valueName.empty()) {
      EnumerateRegSubKeys(page.lvwRegBackup, trace.threatName, trace.hive, trace.key);
      continue;
    }
    std::unique_ptr<RegistryKey> open;
    if (u_.registry.Open(trace.hive, trace.key, registry_access::kRead, open) !=
        RegistryStatus::kSuccess) {
      missing_ = ItemText(trace.hive, trace.key);
      return false;
    }
    int32_t type = 0;
    const std::string data = GetSubKeyValue(*open, trace.valueName, type);
    page.lvwRegBackup.Add(Row(trace.threatName, std::to_string(static_cast<int32_t>(trace.hive)),
                              trace.key, trace.valueName, data, type));
  }
  return true;
}

void RegistryBackup::Write(std::string_view path) {
  ListView& list = u_.page.lvwRegBackup;
  const size_t columns = list.ColumnHeaders().size();
  PassProgress progress(u_.page, u_.host, "Taking registry backup.", list.Count());
  std::string text;
  for (size_t i = 0; i < list.Count(); ++i) {
    progress.At(i + 1);
    const ListRow& row = list.At(i);
    std::string line = row.text;
    for (size_t column = 1; column < columns; ++column) {
      line.append(restore_point::kSeparator).append(row.SubItem(column));
    }
    line += "\r\n";
    // Data with line ends in it makes several lines.
    LineReader pieces(line);
    while (const auto piece = pieces.Next()) {
      lines_.push_back({static_cast<uint32_t>(ValLong(row.SubItem(1))), std::string(row.SubItem(2)),
                        std::string(row.SubItem(3)), Sha256Of(*piece)});
    }
    text += line;
  }
  ReplaceWholeFile(u_.files, path, text);
}

void RegistryBackup::EnumerateRegSubKeys(ListView& list, std::string_view threatName, uint32_t hive,
                                         const std::string& key) {
  std::unique_ptr<RegistryKey> open;
  if (u_.registry.Open(hive, key, registry_access::kRead, open) != RegistryStatus::kSuccess) return;
  for (uint32_t index = 0;; ++index) {
    EnumerateRegKeyValues(list, threatName, hive, key);
    std::string name;
    if (open->EnumKey(index, name) != RegistryStatus::kSuccess || name.size() >= kBuffer) return;
    name.resize(CutAtNul(name).size());
    EnumerateRegSubKeys(list, threatName, hive, key + "\\" + std::string(Trim(name)));
  }
}

void RegistryBackup::EnumerateRegKeyValues(ListView& list, std::string_view threatName,
                                           uint32_t hive, const std::string& key) {
  std::unique_ptr<RegistryKey> open;
  if (u_.registry.Open(hive, key, registry_access::kRead, open) != RegistryStatus::kSuccess) return;
  std::string name;
  RawValue value;
  for (uint32_t index = 0; open->EnumValue(index, name) == RegistryStatus::kSuccess; ++index) {
    if (name.size() >= kBuffer || open->Query(name, value) != RegistryStatus::kSuccess ||
        BufferedSize(value) > kBuffer) {
      return;
    }
    auto type = static_cast<int32_t>(value.type);
    const std::string data = GetSubKeyValue(*open, name, type);
    list.Add(Row(threatName, SignedText(hive), key, name, data, type));
    u_.host.DoEvents();
  }
}

}  // namespace quarnel
