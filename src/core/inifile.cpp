#include "core/inifile.h"

#include <algorithm>
#include <array>
#include <memory>
#include <utility>

#include "base/runtime_error.h"
#include "base/text.h"
#include "core/own_files.h"

namespace quarnel {
namespace {

// What the callers' buffers hold without the NULs at their ends.
constexpr size_t kValueLimit = 254;
constexpr size_t kSectionLimit = 8190;

// A larger file is no ini file of the program's: it reads as empty and is never replaced.
constexpr uint64_t kFileLimit = uint64_t{64} << 20;

constexpr std::string_view kAbsent = "FAIL";

std::string NulEnded(const std::vector<std::string>& texts) {
  std::string all;
  for (const std::string& text : texts) {
    all.append(text).push_back('\0');
    if (all.size() >= kSectionLimit) break;
  }
  if (all.size() > kSectionLimit) all.resize(kSectionLimit);
  return all;
}

std::vector<std::string> SplitAtNul(std::string_view text) {
  std::vector<std::string> parts;
  for (size_t end = text.find('\0'); end != std::string_view::npos; end = text.find('\0')) {
    parts.emplace_back(text.substr(0, end));
    text.remove_prefix(end + 1);
  }
  return parts;
}

// A window that begins before the screen or ends behind it, shifted to where it fits.
int ShiftedInto(int position, int length, int screenStart, int screenLength) {
  return std::max(std::min(position, screenStart + screenLength - length), screenStart);
}

}  // namespace

// Nothing when the file stands there but cannot be read.
std::optional<IniText> cInifile::Read() const {
  if (holds_) return held_;
  try {
    const std::string path = machine_ ? OwnFileToRead(files_, *machine_, path_) : path_;
    return IniText(ReadWholeFile(files_, path, kFileLimit));
  } catch (const RuntimeError& error) {
    const bool missing = error.Number() == ErrorNumber::kFileNotFound ||
                         error.Number() == ErrorNumber::kPathNotFound;
    return missing ? std::optional<IniText>(std::in_place) : std::nullopt;
  }
}

// Puts the text that `edit` leaves in the place of the file, unless nothing changed. Settings are
// saved often: this waits until a crash can tear nothing, not until the new text has its name.
template <typename Edit>
void cInifile::Rewrite(Edit&& edit) {
  lastReturnCode_ = 0;
  std::optional<IniText> ini = Read();
  if (!ini) return;
  const std::string before = ini->Text();
  if (!edit(*ini)) return;
  if (holds_) {
    held_ = std::move(ini);
    lastReturnCode_ = 1;
    return;
  }
  const bool done = ini->Text() == before || IgnoringErrors([&] { Replace(ini->Text()); });
  lastReturnCode_ = done ? 1 : 0;
}

void cInifile::Replace(const std::string& text) {
  const std::array wanted{WholeFile{path_, text}};
  machine_ ? ReplaceOwnFiles(files_, *machine_, wanted) : ReplaceWholeFiles(files_, wanted);
}

void cInifile::Hold() {
  held_ = Read();
  heldFirst_ = HeldText();
  holds_ = true;
}

void cInifile::Release() {
  const std::string text = HeldText();
  const bool done = held_ && (text == heldFirst_ || IgnoringErrors([&] { Replace(text); }));
  lastReturnCode_ = done ? 1 : 0;
  held_.reset();
  holds_ = false;
}

std::string cInifile::Value() const {
  const std::array<std::string_view, 1> keys{key_};
  return std::move(Values(keys).front());
}

std::vector<std::string> cInifile::Values(std::span<const std::string_view> keys) const {
  const std::optional<IniText> ini = Read();
  std::vector<std::string> values;
  values.reserve(keys.size());
  for (const std::string_view key : keys) {
    std::string value = ini ? ini->Value(section_, key).value_or(default_) : default_;
    if (value.size() > kValueLimit) value.resize(kValueLimit);
    values.push_back(std::move(value));
  }
  return values;
}

void cInifile::SetValue(std::string_view text) {
  Rewrite([&](IniText& ini) { return ini.SetValue(section_, key_, text); });
}

void cInifile::SetValues(std::span<const KeyAndValue> values) {
  Rewrite([&](IniText& ini) {
    return std::all_of(values.begin(), values.end(), [&](const KeyAndValue& entry) {
      return ini.SetValue(section_, entry.first, entry.second);
    });
  });
}

void cInifile::DeleteKey() {
  Rewrite([&](IniText& ini) { return ini.DeleteKey(section_, key_), true; });
}

void cInifile::DeleteSection() {
  Rewrite([&](IniText& ini) { return ini.DeleteSection(section_), true; });
}

std::string cInifile::INISection() const {
  const std::optional<IniText> ini = Read();
  return ini ? NulEnded(ini->Entries(section_)) : std::string();
}

void cInifile::SetINISection(std::string_view nulSeparatedLines) {
  const std::vector<std::string> lines = SplitAtNul(std::string(nulSeparatedLines) + '\0');
  Rewrite([&](IniText& ini) { return ini.SetEntries(section_, lines); });
}

std::string cInifile::Sections() const {
  const std::optional<IniText> ini = Read();
  return ini ? NulEnded(ini->SectionNames()) : std::string();
}

void cInifile::EnumerateCurrentSection(std::vector<std::string>& keys, long& count) const {
  keys = SplitAtNul(INISection());
  for (std::string& key : keys) key.resize(std::min(key.find('='), key.size()));
  count = static_cast<long>(keys.size());
}

void cInifile::EnumerateAllSections(std::vector<std::string>& names, long& count) const {
  names = SplitAtNul(Sections());
  count = static_cast<long>(names.size());
}

void cInifile::SaveFormPosition(const Form& form) {
  const ScreenArea& place = form.Place();
  const bool maximised = form.StateOfWindow() == WindowState::kMaximised;
  Rewrite([&](IniText& ini) {
    return ini.SetValue(form.Name(), "Left", std::to_string(place.left)) &&
           ini.SetValue(form.Name(), "Top", std::to_string(place.top)) &&
           ini.SetValue(form.Name(), "Width", std::to_string(place.width)) &&
           ini.SetValue(form.Name(), "Height", std::to_string(place.height)) &&
           ini.SetValue(form.Name(), "Maximised", FlagText(maximised));
  });
}

void cInifile::LoadFormPosition(Form& form, const ScreenArea& screen) const {
  const std::optional<IniText> ini = Read();
  if (!ini) return;
  const auto stored = [&](std::string_view key, int32_t present) {
    const std::string text = ini->Value(form.Name(), key).value_or(std::string(kAbsent));
    return text == kAbsent ? present : CLngDefault(text, present);
  };
  const ScreenArea present = form.Place();
  ScreenArea place = {stored("Left", present.left), stored("Top", present.top),
                      stored("Width", present.width), stored("Height", present.height)};
  // Sizes are bounded, so that no sum with a position can overflow.
  constexpr int kLargest = 1 << 20;
  const auto bounded = [](int size, int otherwise) {
    return size > 0 && size <= kLargest ? size : otherwise;
  };
  place.width = bounded(place.width, present.width);
  place.height = bounded(place.height, present.height);
  place.left = ShiftedInto(place.left, place.width, screen.left, screen.width);
  place.top = ShiftedInto(place.top, place.height, screen.top, screen.height);
  form.SetPlace(place);
  const bool wasMaximised = form.StateOfWindow() == WindowState::kMaximised;
  const bool maximised = stored("Maximised", wasMaximised ? 1 : 0) != 0;
  if (maximised != wasMaximised) {
    form.SetWindowState(maximised ? WindowState::kMaximised : WindowState::kNormal);
  }
}

int32_t cInifile::CLngDefault(std::string_view text, int32_t fallback) {
  int32_t number = fallback;
  IgnoringErrors([&] { number = ToLong(text); });
  return number;
}

}  // namespace quarnel
