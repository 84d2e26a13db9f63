#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "controls/form.h"
#include "core/ini_text.h"
#include "platform/files.h"
#include "platform/machine.h"

namespace quarnel {

// Access to one ini file. A new instance is filled in the order Path, Section, Key, Value, and then
// discarded. Nothing is raised: callers may look at Success. Each operation reads the file anew; a
// write replaces it in one step, so that a crash leaves the old text or the new one. What an edit
// does not concern survives it (see IniText).
class cInifile {
 public:
  explicit cInifile(Files& files) : files_(files) {}
  // For a file of the program's own, by its described path: see core/own_files.h.
  cInifile(Files& files, Machine& machine) : files_(files), machine_(&machine) {}

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
  // NUL characters are removed from the text. A key that begins with "[" or ";" is refused.
  void SetValue(std::string_view text);
  void DeleteKey();

  // The same for several keys of the current section in one look at the file, or one replacement.
  // One key that is refused refuses all.
  std::vector<std::string> Values(std::span<const std::string_view> keys) const;
  using KeyAndValue = std::pair<std::string_view, std::string>;
  void SetValues(std::span<const KeyAndValue> values);
  void DeleteSection();

  // The current section's "key=value" lines, each ended by a NUL, at most 8190 characters.
  std::string INISection() const;
  void SetINISection(std::string_view nulSeparatedLines);
  // All section names, each ended by a NUL, at most 8190 characters.
  std::string Sections() const;
  // The keys of the current section, and the names of all sections: what stands whole in the two
  // texts above.
  void EnumerateCurrentSection(std::vector<std::string>& keys, long& count) const;
  void EnumerateAllSections(std::vector<std::string>& names, long& count) const;

  // From here on the file is not read again: what is asked and set is about its text of this
  // moment. Release puts what has become of that into the file's place, in one step, if it has
  // changed.
  void Hold();
  void Release();
  // The held text; empty when there is none.
  std::string HeldText() const { return held_ ? held_->Text() : std::string(); }

  // Stores where a form's window stands under "Left", "Top", "Width", "Height" and "Maximised", in
  // the section of the form's name.
  void SaveFormPosition(const Form& form);
  // Applies what was stored; what is absent leaves the form as it is. A window that would reach
  // over the screen's edge is moved back.
  void LoadFormPosition(Form& form, const ScreenArea& screen) const;

  // The number in a text, or `fallback` when the text is none.
  static int32_t CLngDefault(std::string_view text, int32_t fallback);

 private:
  std::optional<IniText> Read() const;
  template <typename Edit>
  void Rewrite(Edit&& edit);
  void Replace(const std::string& text);

  Files& files_;
  Machine* machine_ = nullptr;
  std::string path_, section_, key_, default_;
  long lastReturnCode_ = 0;
  bool holds_ = false;
  std::optional<IniText> held_;
  std::string heldFirst_;  // as the file has it
};

}  // namespace quarnel
