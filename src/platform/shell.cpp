#include "platform/shell.h"

namespace quarnel {

bool RegisterComponent(Shell& shell, std::string_view path, bool registerIt) {
  return shell.CallRegistrationEntry(path,
                                     registerIt ? "DllRegisterServer" : "DllUnregisterServer");
}

}  // namespace quarnel
