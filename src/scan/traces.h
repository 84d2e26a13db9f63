#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "controls/list_view.h"

namespace quarnel {

// The traces that a scan finds, and the rows that stand for them in the lists of results. Only here
// is it told which column holds what.

// A row of lvwFilesToBeDeleted: a file, or the file of a running program.
struct FileTrace {
  std::string path;
  std::string typeName;
  std::string threatName;

  static FileTrace Of(const ListRow& row);
  ListRow Row() const;
  const std::string& Text() const { return path; }
};

// A row of lvwRegistryEntriesFound: a value, or without a value name a whole key.
struct RegistryTrace {
  std::string company;
  std::string threatName;
  std::string typeName;
  uint32_t hive = 0;
  std::string key;
  std::string valueName;

  // A row whose handle is no number stands for a hive without a name.
  static RegistryTrace Of(const ListRow& row);
  ListRow Row() const;
  // The text in the row: what a ticked node must have to be this trace's.
  static std::string_view CompleteKey(const ListRow& row);
  std::string Text() const;
};

// A row of lvwTrackingCookieObjectrecognized.
struct CookieTrace {
  std::string path;

  static CookieTrace Of(const ListRow& row) { return {row.text}; }
  ListRow Row() const;
  const std::string& Text() const { return path; }
};

// The one threat under which all tracking cookies stand.
inline constexpr std::string_view kTrackingObject = "Tracking Object";
inline constexpr std::string_view kTrackingCookies = "Tracking Cookies";

// The first row whose text names the same file, key or value as `name`; FindText folds the letters
// of ASCII alone.
std::optional<size_t> FindName(const ListView& list, std::string_view name);

using AnyTrace = std::variant<FileTrace, RegistryTrace, CookieTrace>;

// A row of lvwPicRemoveListOfSpywareFoundAndToBeRemoved.
struct Threat {
  std::string name;
  std::string typeName;
  std::string company;
  std::string spywareId;  // the row's tag

  // `text` is what the row is found by.
  ListRow Row(std::string_view text) const;
};

}  // namespace quarnel
