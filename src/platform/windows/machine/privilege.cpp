#include "platform/windows/machine/privilege.h"

namespace quarnel {

RaisedPrivilege::RaisedPrivilege(const wchar_t* name) {
  TOKEN_PRIVILEGES wanted = {1, {{{}, SE_PRIVILEGE_ENABLED}}};
  if (!OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY,
                        token_.Receive()) ||
      !LookupPrivilegeValueW(nullptr, name, &wanted.Privileges[0].Luid)) {
    return;
  }
  DWORD size = 0;
  raised_ = AdjustTokenPrivileges(token_.Get(), FALSE, &wanted, sizeof before_, &before_, &size) &&
            // The call is a success, too, when the token has no such privilege.
            GetLastError() == ERROR_SUCCESS;
}

RaisedPrivilege::~RaisedPrivilege() {
  // Only what was changed is noted.
  if (before_.PrivilegeCount == 0) return;
  AdjustTokenPrivileges(token_.Get(), FALSE, &before_, 0, nullptr, nullptr);
}

}  // namespace quarnel
