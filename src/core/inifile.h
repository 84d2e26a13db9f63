#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "controls/controls_fwd.h"
#include "platform/files.h"

namespace quarnel {

// Access to one ini file. A new instance is filled in the order Path, Section, Key, Value, and then
// discarded. Nothing is raised: callers may look at Success.
class cInifile {
 public:
  explicit cInifile(Files& files) : files_(files) {}

  long LastReturnCode() const { return lastReturnCode_; }
  bool Success() const { return lastReturnCode_ != 0; }
  const std::string& Default() const { return default_; }
  void SetDefault(std::string_view text) { default_ = text; }
  const std::string& Path() const { return path_; }
  void SetPath(std::string_view path) { path_ = path; }
  const std::string& Key() const { return key_; }
  void SetKey(std::string_view key) { key_ = key; }
  const std::string& Section() const { return section_; }
  void SetSection(std::string_view section) { section_ = section; }

  // The value of the current key, or Default; at most 254 characters.
  std::string Value() const;
  // NUL characters are removed from the text.
  void SetValue(std::string_view text);
  void DeleteKey();
  void DeleteSection();
  // The current section's "key=value" lines, each ended by a NUL, at most 8190 characters.
  std::string INISection() const;
  void SetINISection(std::string_view nulSeparatedLines);
  // All section names, each ended by a NUL, at most 8190 characters.
  std::string Sections() const;
  void EnumerateCurrentSection(std::vector<std::string>& keys, long& count) const;
  void EnumerateAllSections(std::vector<std::string>& names, long& count) const;

 private:
  Files& files_;
  std::string path_, section_, key_, default_;
  long lastReturnCode_ = 0;
};

}  // namespace quarnel
