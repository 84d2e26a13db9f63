#include "ui/hijack_page.h"

namespace quarnel {

HijackPage::HijackPage(Form& owner) : form(owner) {
  lvwBrowserHijackRestore.ItemClick = [this](size_t row) { ItemClick(row); };
  imgListOfAllowedBlockedURLs.Click = [this] { ShowRestoreList(false); };
  imgSwitchTORestoreListOfURLs.Click = [this] { ShowRestoreList(true); };
  chlSelectAllBHR.Click = [this] {
    ListView& list = ShownList();
    for (size_t row = 0; row < list.Count(); ++row) {
      list.SetChecked(row, chlSelectAllBHR.Checked());
    }
  };
  ShowRestoreList(true);
  // Reading and writing the browser's settings is not part of the program yet.
  for (Control* control : std::initializer_list<Control*>{&imgRestore, &imgRemoveAllowRestoreURLs,
                                                          &lblChangeRestoreURL}) {
    control->SetEnabled(false);
  }
}

ListView& HijackPage::ShownList() {
  return lvwAllowedBlockedURLs.Visible() ? lvwAllowedBlockedURLs : lvwBrowserHijackRestore;
}

void HijackPage::ShowRestoreList(bool restore) {
  imgRestore.SetVisible(restore);
  lvwBrowserHijackRestore.SetVisible(restore);
  lblHint.SetVisible(restore);
  imgListOfAllowedBlockedURLs.SetVisible(restore);
  lvwAllowedBlockedURLs.SetVisible(!restore);
  imgRemoveAllowRestoreURLs.SetVisible(!restore);
  imgSwitchTORestoreListOfURLs.SetVisible(!restore);
}

void HijackPage::ItemClick(size_t row) {
  const ListRow& item = lvwBrowserHijackRestore.At(row);
  lblSetting.SetCaption(item.text);
  txtSetting.SetText(item.SubItem(3));
  txtCurrentSetting.SetText(item.SubItem(1));
  txtRestoreSettingTo.SetText(item.SubItem(2));
  txtInternetExplorerDefaultSetting.SetText(item.SubItem(4));
}

}  // namespace quarnel
