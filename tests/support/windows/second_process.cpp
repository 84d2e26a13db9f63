#include "support/second_process.h"

#include <filesystem>
#include <fstream>

#include "platform/windows/unique_handle.h"
#include "platform/windows/win32.h"

namespace quarnel {

bool ImportByAnotherProcess(const std::string& /*machineFolder*/, const std::string& regText) {
  const auto file = std::filesystem::temp_directory_path() / "quarnel-import.reg";
  std::ofstream(file, std::ios::binary) << regText;
  std::wstring line = L"reg.exe import \"" + file.wstring() + L"\"";
  STARTUPINFOW start{};
  start.cb = sizeof(start);
  PROCESS_INFORMATION made{};
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr,
                      nullptr, &start, &made)) {
    return false;
  }
  WaitForSingleObject(made.hProcess, 30000);
  DWORD code = 1;
  GetExitCodeProcess(made.hProcess, &code);
  CloseHandle(made.hProcess);
  CloseHandle(made.hThread);
  std::error_code ignored;
  std::filesystem::remove(file, ignored);
  return code == 0;
}

}  // namespace quarnel
