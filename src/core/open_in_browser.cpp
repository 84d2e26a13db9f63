#include "core/open_in_browser.h"

#include <string>

#include "base/runtime_error.h"
#include "controls/host.h"

namespace quarnel {

void OpenInBrowser(Shell& shell, Machine& machine, Files& files, Host& host,
                   std::string_view address, std::string_view extension, std::string_view title) {
  const auto show = [&host](std::string_view text, std::string_view caption, MessageIcon icon) {
    host.MsgBox({.text = std::string(text), .title = std::string(caption), .icon = icon});
  };

  // The shell tells programs by existing files only.
  std::string probe;
  const auto temp = machine.TempFolder();
  if (temp) probe = *temp + "\\temphtm." + std::string(extension);
  if (!temp || !IgnoringErrors([&] { WriteWholeFile(files, probe, {}); })) {
    show("Sorry! file  cannot be created.", title, MessageIcon::kInformation);
    return;
  }
  const auto browser = shell.FindExecutable(probe);
  if (!browser) {
    show("Could not find associated application!", "Browser Not Found", MessageIcon::kExclamation);
    return;
  }
  IgnoringErrors([&] { files.Delete(probe); });
  if (!shell.Run(*browser, address)) show("Page not Opened.", "URL Failed", MessageIcon::kNone);
}

}  // namespace quarnel
