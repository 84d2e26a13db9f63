#include "protection/browser_settings.h"

namespace quarnel {

BrowserSettings::BrowserSettings(BrowserSettingsPage& page) : page_(page) {
  page_.lvwBrowserHijackRestore.ItemClick = [this](size_t row) { ItemClick(row); };
  page_.imgListOfAllowedBlockedURLs.Click = [this] { ShowRestoreList(false); };
  page_.imgSwitchTORestoreListOfURLs.Click = [this] { ShowRestoreList(true); };
  page_.chlSelectAllBHR.Click = [this] {
    ListView& list = ShownList();
    for (size_t row = 0; row < list.Count(); ++row) {
      list.SetChecked(row, page_.chlSelectAllBHR.Checked());
    }
  };
  ShowRestoreList(true);
  // Reading and writing the browser's settings is not part of the program yet.
  for (Control* control : std::initializer_list<Control*>{
           &page_.imgRestore, &page_.imgRemoveAllowRestoreURLs, &page_.lblChangeRestoreURL}) {
    control->SetEnabled(false);
  }
}

void BrowserSettings::Load() {
  if (!page_.lvwBrowserHijackRestore.Empty()) ItemClick(0);
}

ListView& BrowserSettings::ShownList() {
  return page_.lvwAllowedBlockedURLs.Visible() ? page_.lvwAllowedBlockedURLs
                                               : page_.lvwBrowserHijackRestore;
}

void BrowserSettings::ShowRestoreList(bool restore) {
  page_.imgRestore.SetVisible(restore);
  page_.lvwBrowserHijackRestore.SetVisible(restore);
  page_.lblHint.SetVisible(restore);
  page_.imgListOfAllowedBlockedURLs.SetVisible(restore);
  page_.lvwAllowedBlockedURLs.SetVisible(!restore);
  page_.imgRemoveAllowRestoreURLs.SetVisible(!restore);
  page_.imgSwitchTORestoreListOfURLs.SetVisible(!restore);
}

void BrowserSettings::ItemClick(size_t row) {
  const ListRow& item = page_.lvwBrowserHijackRestore.At(row);
  page_.lblSetting.SetCaption(item.text);
  page_.txtSetting.SetText(item.SubItem(3));
  page_.txtCurrentSetting.SetText(item.SubItem(1));
  page_.txtRestoreSettingTo.SetText(item.SubItem(2));
  page_.txtInternetExplorerDefaultSetting.SetText(item.SubItem(4));
}

}  // namespace quarnel
