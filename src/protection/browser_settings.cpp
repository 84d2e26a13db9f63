#include "protection/browser_settings.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include "base/text.h"
#include "core/existing_files.h"
#include "core/messages.h"
#include "core/own_files.h"
#include "core/paths.h"

namespace quarnel {
namespace {

constexpr std::string_view kBaselineFile = "QS_BHR.ini";
constexpr std::string_view kBaselineSection = "BHR Settings";
constexpr std::string_view kVerdictFile = "QS_AB_BHR.ini";
constexpr std::string_view kVerdictSection = "BHR";
constexpr std::string_view kNotFound = "NOT FOUND";

// The listed name of the two settings that share one, and the key of the first of them.
constexpr std::string_view kHomePageLabel = "Home Page";
constexpr std::string_view kHomePageKey = "Start Page";

enum Column : size_t { kCurrent = 1, kRestoreTo, kDescription, kDefault };

// Reads settings one after the other. Most of them share a key with the one before, which stays
// open for them.
class SettingReader {
 public:
  explicit SettingReader(Registry& registry) : registry_(registry) {}

  std::string Text(const BrowserSetting& setting) {
    if (hive_ != setting.hive || path_ != setting.key) {
      hive_ = setting.hive;
      path_ = setting.key;
      key_.reset();
      registry_.Open(hive_, path_, registry_access::kReadWrite, key_);
    }
    std::string text;
    if (key_) GetKeyValue(*key_, setting.value, text);
    return text;
  }

 private:
  Registry& registry_;
  uint32_t hive_ = 0;
  std::string_view path_;
  std::unique_ptr<RegistryKey> key_;
};

// The place in the table of the setting that goes by this text.
std::optional<size_t> Find(std::string_view text, std::string_view BrowserSetting::*name) {
  const auto table = BrowserSettingTable();
  const auto found = std::find_if(table.begin(), table.end(), [&](const BrowserSetting& setting) {
    return setting.*name == text;
  });
  if (found == table.end()) return std::nullopt;
  return static_cast<size_t>(found - table.begin());
}

}  // namespace

BrowserSettings::BrowserSettings(const Uses& uses) : u_(uses) {
  BrowserSettingsPage& page = u_.page;
  page.lvwBrowserHijackRestore.ItemClick = [this](size_t row) { ItemClick(row); };
  page.imgListOfAllowedBlockedURLs.Click = [this] { ShowRestoreList(false); };
  page.imgSwitchTORestoreListOfURLs.Click = [this] { ShowRestoreList(true); };
  page.imgRestore.Click = [this] { imgRestore_Click(); };
  page.lblChangeRestoreURL.Click = [this] { lblChangeRestoreURL_Click(); };
  page.imgRemoveAllowRestoreURLs.Click = [this] {
    Reporting(u_.services.log, "imgRemoveAllowRestoreURLs_Click in frmMain",
              [&] { imgRemoveAllowRestoreURLs_Click(); });
  };
  page.chlSelectAllBHR.Click = [this] {
    ListView& list = ShownList();
    for (size_t row = 0; row < list.Count(); ++row) {
      list.SetChecked(row, u_.page.chlSelectAllBHR.Checked());
    }
  };
  ShowRestoreList(true);
}

// ---- the two lists -----------------------------------------------------------------------------

void BrowserSettings::LoadBrowserSettings() {
  ListView& list = u_.page.lvwBrowserHijackRestore;
  list.Clear();
  const auto table = BrowserSettingTable();
  std::vector<std::string> values = ReadBaselines(kNotFound);
  std::vector<cInifile::KeyAndValue> captured;
  SettingReader registry(u_.services.platform.registry());
  for (size_t i = 0; i < table.size(); ++i) {
    if (values[i] != kNotFound) continue;
    values[i] = registry.Text(table[i]);
    captured.emplace_back(table[i].baseline, values[i]);
  }
  if (!captured.empty()) Baselines().SetValues(captured);
  // The two that share a label show what the file has made of their values.
  const std::vector<std::string> written = captured.empty() ? values : ReadBaselines(kNotFound);
  for (size_t i = 0; i < table.size(); ++i) {
    const BrowserSetting& setting = table[i];
    if (values[i].empty()) continue;
    const bool sharesLabel = setting.label == kHomePageLabel;
    if (sharesLabel && list.FindText(kHomePageLabel)) continue;
    std::string original = DefaultOf(setting, u_.services.platform.machine());
    std::string restoreTo = u_.services.settings.GetSetting(setting::kBrowserRestore.place.section,
                                                            setting.restore, original);
    list.Add({.text = std::string(setting.label),
              .subItems = {sharesLabel ? written[i] : values[i], std::move(restoreTo),
                           std::string(setting.help), std::move(original)}});
  }
  if (!list.Empty()) list.Select(0);
  ShowDetails();
}

void BrowserSettings::LoadAllowedBlockedURLs() {
  ListView& list = u_.page.lvwAllowedBlockedURLs;
  list.Clear();
  const cInifile ini = Verdicts();
  Files& files = u_.services.platform.files();
  if (!FileExists(files, OwnFileToRead(files, u_.services.platform.machine(), ini.Path()))) return;
  std::vector<std::string> urls;
  long count = 0;
  ini.EnumerateCurrentSection(urls, count);
  const std::vector<std::string> verdicts =
      ini.Values(std::vector<std::string_view>(urls.begin(), urls.end()));
  for (size_t i = 0; i < urls.size(); ++i) {
    const bool blocked = verdicts[i] == url_verdict::kBlock;
    list.Add({.text = urls[i],
              .subItems = {blocked ? "Blocked" : "Allowed"},
              .look = {.colour = blocked ? Colour::kRed : Colour::kDarkGreen}});
  }
}

ListView& BrowserSettings::ShownList() {
  return u_.page.lvwAllowedBlockedURLs.Visible() ? u_.page.lvwAllowedBlockedURLs
                                                 : u_.page.lvwBrowserHijackRestore;
}

void BrowserSettings::ShowRestoreList(bool restore) {
  BrowserSettingsPage& page = u_.page;
  page.imgRestore.SetVisible(restore);
  page.lvwBrowserHijackRestore.SetVisible(restore);
  page.lblHint.SetVisible(restore);
  page.imgListOfAllowedBlockedURLs.SetVisible(restore);
  page.lvwAllowedBlockedURLs.SetVisible(!restore);
  page.imgRemoveAllowRestoreURLs.SetVisible(!restore);
  page.imgSwitchTORestoreListOfURLs.SetVisible(!restore);
}

void BrowserSettings::ItemClick(size_t row) {
  const ListRow& item = u_.page.lvwBrowserHijackRestore.At(row);
  u_.page.lblSetting.SetCaption(item.text);
  u_.page.txtSetting.SetText(item.SubItem(kDescription));
  u_.page.txtCurrentSetting.SetText(item.SubItem(kCurrent));
  u_.page.txtRestoreSettingTo.SetText(item.SubItem(kRestoreTo));
  u_.page.txtInternetExplorerDefaultSetting.SetText(item.SubItem(kDefault));
}

// The details are those of the chosen row, and none without one.
void BrowserSettings::ShowDetails() {
  if (const auto row = u_.page.lvwBrowserHijackRestore.SelectedRow()) return ItemClick(*row);
  u_.page.lblSetting.SetCaption("");
  for (TextBox* box : {&u_.page.txtSetting, &u_.page.txtCurrentSetting,
                       &u_.page.txtRestoreSettingTo, &u_.page.txtInternetExplorerDefaultSetting}) {
    box->SetText("");
  }
}

// ---- what the page does ------------------------------------------------------------------------

// A restore looks for its settings by their keys among the baselines. The home page is listed by
// another name, so it is counted and noted, and never written.
void BrowserSettings::imgRestore_Click() {
  ListView& list = u_.page.lvwBrowserHijackRestore;
  std::vector<cInifile::KeyAndValue> baselines;
  for (size_t row = 0; row < list.Count(); ++row) {
    if (!list.At(row).checked) continue;
    list.SetSubItem(row, kCurrent, std::string(list.At(row).SubItem(kRestoreTo)));
    baselines.emplace_back(list.At(row).text, list.At(row).SubItem(kCurrent));
  }
  if (!baselines.empty()) Baselines().SetValues(baselines);
  for (const auto& [text, value] : baselines) {
    const auto place = Find(text, &BrowserSetting::baseline);
    if (!place) continue;
    const BrowserSetting& setting = BrowserSettingTable()[*place];
    WriteBrowserValue(value, setting.hive, setting.key, setting.value);
  }
  ShowDetails();
  Messages(u_.services.host, u_.services.settings)
      .Inform(std::to_string(baselines.size()) +
              " Internet Explorer brwoser settings were changed sucessfully.");
}

// The list may be filled anew while the question is open, so its row is looked for again.
void BrowserSettings::lblChangeRestoreURL_Click() {
  ListView& list = u_.page.lvwBrowserHijackRestore;
  const auto selected = list.SelectedRow();
  if (!selected) return;
  const ListRow item = list.At(*selected);
  const std::optional<std::string> answer = u_.services.host.InputBox(
      "Change the Internet Explorer restore setting for " + item.text +
          ". The URL in the field below is the default Internet Explorer URL for this setting. You "
          "can enter any other page or URL in this field other than the default one.",
      "Change Internet Explorer Restore Setting", item.SubItem(kDefault));
  if (!answer || answer->empty() || *answer == item.SubItem(kRestoreTo)) return;
  if (const auto row = list.FindText(item.text)) list.SetSubItem(*row, kRestoreTo, *answer);
  const std::string_view name = item.text == kHomePageLabel ? kHomePageKey : item.text;
  u_.services.settings.Save(setting::kBrowserRestore.Named(name), *answer);
  Messages(u_.services.host, u_.services.settings)
      .Inform("The Internet Explorer setting for Search Page has been changed to " + *answer +
                  ". This new setting has also been added to your default restore setting. If a "
                  "spyware threat attempts to hijack your Internet Explorer setting, " +
                  u_.services.settings.ApplicationName() +
                  " will restore it to this new setting automatically.",
              "Internet Explorer Restore Setting Changed");
  ShowDetails();
}

void BrowserSettings::imgRemoveAllowRestoreURLs_Click() {
  cInifile ini = Verdicts();
  for (const ListRow& row : u_.page.lvwAllowedBlockedURLs.Rows()) {
    if (!row.checked) continue;
    ini.SetKey(row.text);
    ini.DeleteKey();
  }
  LoadAllowedBlockedURLs();
}

// ---- the guard ---------------------------------------------------------------------------------

void BrowserSettings::CheckBrowserSettings() {
  const ListView& list = u_.page.lvwBrowserHijackRestore;
  const std::vector<std::string> baselines = ReadBaselines("");
  SettingReader registry(u_.services.platform.registry());
  for (const ListRow& item : list.Rows()) {
    const auto place = Find(item.text, &BrowserSetting::compared);
    if (!place || baselines[*place].empty()) continue;
    const BrowserSetting& setting = BrowserSettingTable()[*place];
    std::string now = registry.Text(setting);
    if (now == baselines[*place]) continue;
    return HandleBrowserSettingChange({.label = item.text,
                                       .newValue = std::move(now),
                                       .defaultValue = std::string(item.SubItem(kDefault)),
                                       .storedValue = std::string(item.SubItem(kCurrent)),
                                       .hive = setting.hive,
                                       .key = std::string(setting.key),
                                       .valueName = std::string(setting.value)});
  }
}

void BrowserSettings::HandleBrowserSettingChange(PendingBrowserChange change) {
  if (EqualText(pending_.newValue, pending_.storedValue)) return;
  pending_ = std::move(change);
  cInifile ini = Verdicts();
  ini.SetKey(pending_.newValue);
  const std::string verdict = ini.Value();
  if (verdict == url_verdict::kBlock) {
    Undo(pending_);
  } else if (verdict != url_verdict::kAllow) {
    u_.window.AlertBrowserChange();
  }
}

void BrowserSettings::MoveBaseline() {
  if (pending_.label == kHomePageLabel) pending_.label = kHomePageKey;
  cInifile ini = Baselines();
  ini.SetKey(pending_.label);
  ini.SetValue(pending_.newValue);
}

void BrowserSettings::Undo(const PendingBrowserChange& change) {
  WriteBrowserValue(change.storedValue, change.hive, change.key, change.valueName);
}

void BrowserSettings::Remember(std::string_view url, std::string_view verdict) {
  cInifile ini = Verdicts();
  ini.SetKey(url);
  ini.SetValue(verdict);
}

std::vector<BrowserSettings::State> BrowserSettings::States() {
  const auto table = BrowserSettingTable();
  std::vector<std::string> baselines = ReadBaselines("");
  SettingReader registry(u_.services.platform.registry());
  std::vector<State> states;
  for (size_t i = 0; i < table.size(); ++i) {
    states.push_back({std::string(table[i].compared), registry.Text(table[i]),
                      std::move(baselines[i]),
                      DefaultOf(table[i], u_.services.platform.machine())});
  }
  return states;
}

// ---- the files and the registry ----------------------------------------------------------------

cInifile BrowserSettings::IniFile(std::string_view name, std::string_view section) const {
  Platform& platform = u_.services.platform;
  cInifile ini(platform.files(), platform.machine());
  ini.SetPath(GetPathWithSlash(platform.machine().ProgramFolder()).append(name));
  ini.SetSection(section);
  return ini;
}

cInifile BrowserSettings::Baselines() const { return IniFile(kBaselineFile, kBaselineSection); }
cInifile BrowserSettings::Verdicts() const { return IniFile(kVerdictFile, kVerdictSection); }

// The baselines of all settings in the table's order; `absent` for one that is not there.
std::vector<std::string> BrowserSettings::ReadBaselines(std::string_view absent) const {
  std::vector<std::string_view> keys;
  for (const BrowserSetting& setting : BrowserSettingTable()) keys.push_back(setting.baseline);
  cInifile ini = Baselines();
  ini.SetDefault(absent);
  return ini.Values(keys);
}

// Of a user without the right to write there the value stays, and nobody is told.
void BrowserSettings::WriteBrowserValue(std::string_view newValue, uint32_t hive,
                                        std::string_view key, std::string_view valueName) {
  std::unique_ptr<RegistryKey> open;
  u_.services.platform.registry().Open(hive, key, registry_access::kReadWrite, open);
  if (open) SetValueEx(*open, valueName, ValueType::kString, std::string(newValue));
}

}  // namespace quarnel
