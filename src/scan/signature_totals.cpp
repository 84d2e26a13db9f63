#include "scan/signature_totals.h"

#include "base/text.h"
#include "signatures/signature_files.h"

namespace quarnel {

void LoadTotalNoOfSignature(ScanPage& page, Files& files, Machine& machine) {
  for (const SignatureFile& file : SignatureFiles()) {
    if (file.encoding != SignatureEncoding::kCountedCipher) continue;
    if (!SignaturePresent(files, machine, file.name)) continue;
    const double total =
        Val(page.lblTotalNoOfSignature.Caption()) + GetSignatureCount(files, machine, file.name);
    page.lblTotalNoOfSignature.SetCaption(std::to_string(static_cast<int64_t>(total)));
    page.lblTotalSpywares.SetCaption(page.lblTotalNoOfSignature.Caption());
  }
}

}  // namespace quarnel
