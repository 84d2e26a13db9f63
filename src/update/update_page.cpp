#include "update/update_page.h"

namespace quarnel {

void Show(UpdatePage& page) {
  const UpdateFacts& facts = page.facts;
  page.cmdFTPDownloadCancel.SetVisible(facts.cancellable);
  page.cmdFTPDownloadCancel.SetEnabled(facts.cancellable);
  page.lblFTPStatus.SetVisible(facts.told);
  page.pgbFTP.SetVisible(facts.measured);
}

}  // namespace quarnel
