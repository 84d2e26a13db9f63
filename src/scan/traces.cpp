#include "scan/traces.h"

#include <algorithm>

#include "base/text.h"
#include "platform/names.h"
#include "signatures/taxonomy.h"

namespace quarnel {
namespace {

namespace file_column {
enum : size_t { kType = 1, kThreat };
}
namespace registry_column {
enum : size_t { kThreat = 1, kType, kMainKey, kKey, kValueName, kCompleteKey };
}

constexpr std::string_view kCookieKind = "File";

}  // namespace

std::optional<size_t> FindName(const ListView& list, std::string_view name) {
  const auto row = list.FindText(name);
  if (row || IsAscii(name)) return row;
  const std::string folded = FoldName(name);
  const auto found = std::find_if(
      list.Rows().begin(), list.Rows().end(),
      [&](const ListRow& other) { return !IsAscii(other.text) && FoldName(other.text) == folded; });
  if (found == list.Rows().end()) return std::nullopt;
  return static_cast<size_t>(found - list.Rows().begin());
}

FileTrace FileTrace::Of(const ListRow& row) {
  return {.path = row.text,
          .typeName = std::string(row.SubItem(file_column::kType)),
          .threatName = std::string(row.SubItem(file_column::kThreat))};
}

ListRow FileTrace::Row() const { return {.text = path, .subItems = {typeName, threatName}}; }

RegistryTrace RegistryTrace::Of(const ListRow& row) {
  using namespace registry_column;
  const auto column = [&](size_t number) { return std::string(row.SubItem(number)); };
  return {.company = row.text,
          .threatName = column(kThreat),
          .typeName = column(kType),
          .hive = static_cast<uint32_t>(ValLong(row.SubItem(kMainKey))),
          .key = column(kKey),
          .valueName = column(kValueName)};
}

// The handle stands there as a signed number.
ListRow RegistryTrace::Row() const {
  return {.text = company,
          .subItems = {threatName, typeName, std::to_string(static_cast<int32_t>(hive)), key,
                       valueName, Text()}};
}

std::string_view RegistryTrace::CompleteKey(const ListRow& row) {
  return row.SubItem(registry_column::kCompleteKey);
}

std::string RegistryTrace::Text() const {
  return RegistryTraceText(HiveName(hive), key, valueName);
}

ListRow CookieTrace::Row() const { return {.text = path, .subItems = {std::string(kCookieKind)}}; }

ListRow Threat::Row(std::string_view text) const {
  return {.text = std::string(text), .subItems = {typeName, company}, .tag = spywareId};
}

}  // namespace quarnel
