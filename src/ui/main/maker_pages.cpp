#include "ui/main/maker_pages.h"

#include "core/open_in_browser.h"
#include "core/product.h"
#include "platform/shell.h"

namespace quarnel {

std::string MakerPage(std::string_view path) {
  return std::string(kMakerPages) + std::string(path);
}

void OpenAddress(const Services& services, std::string_view address) {
  Platform& platform = services.platform;
  OpenInBrowser(platform.shell(), platform.machine(), platform.files(), services.host, address,
                "html", services.settings.ApplicationName());
}

void OpenMakerPage(const Services& services, std::string_view path) {
  OpenAddress(services, MakerPage(path));
}

}  // namespace quarnel
