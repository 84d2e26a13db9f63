#include "platform/windows/backends.h"
#include "platform/windows/unique_handle.h"
#include "platform/windows/wide_text.h"
#include "support/platform_fixture.h"
#include "support/victim.h"

namespace quarnel {
namespace {

class WindowsProcessesTest : public PlatformTest {
 protected:
  // Whether this process has a privilege raised at the moment.
  static bool IsRaised(const wchar_t* name) {
    KernelHandle token;
    OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, token.Receive());
    DWORD size = 0;
    GetTokenInformation(token.Get(), TokenPrivileges, nullptr, 0, &size);
    std::vector<DWORD> block(size / sizeof(DWORD) + 1);
    GetTokenInformation(token.Get(), TokenPrivileges, block.data(), size, &size);
    const auto* list = reinterpret_cast<const TOKEN_PRIVILEGES*>(block.data());
    LUID wanted = {};
    LookupPrivilegeValueW(nullptr, name, &wanted);
    for (DWORD i = 0; i < list->PrivilegeCount; ++i) {
      const LUID_AND_ATTRIBUTES& entry = list->Privileges[i];
      if (entry.Luid.LowPart == wanted.LowPart && entry.Luid.HighPart == wanted.HighPart) {
        return (entry.Attributes & SE_PRIVILEGE_ENABLED) != 0;
      }
    }
    return false;
  }
};

TEST_F(WindowsProcessesTest, KillsAProgramOfAnyNameAndDropsThePrivilege) {
  Processes& processes = platform().processes();
  const bool before = IsRaised(L"SeDebugPrivilege");
  const Victim victim(platform(), Path("\xD0\xB6\xE2\x82\xAC victim.exe"));
  ASSERT_NE(victim.Id(), 0U);
  const KernelHandle process(OpenProcess(PROCESS_QUERY_INFORMATION, FALSE, victim.Id()));
  EXPECT_TRUE(KillProcess(processes, victim.Id(), 42));
  EXPECT_TRUE(processes.WaitForEnd(victim.Id(), std::chrono::seconds(10)));
  DWORD code = 0;
  EXPECT_TRUE(GetExitCodeProcess(process.Get(), &code));
  EXPECT_EQ(code, 42U);
  EXPECT_EQ(IsRaised(L"SeDebugPrivilege"), before);
  // A handle that somebody holds keeps the process known, but it has ended.
  EXPECT_FALSE(processes.MainModulePath(victim.Id()));
  EXPECT_FALSE(processes.Terminate(victim.Id(), 0));
}

TEST_F(WindowsProcessesTest, RestartTakesThePrivilegeAndAsksOnce) {
  std::vector<std::pair<uint32_t, uint32_t>> calls;
  bool answer = true;
  ReplaceRestartCall([&](uint32_t flags, uint32_t reason) {
    EXPECT_TRUE(IsRaised(L"SeShutdownPrivilege"));
    calls.emplace_back(flags, reason);
    return answer;
  });
  EXPECT_TRUE(ReBootMachine(platform().power()));
  answer = false;
  EXPECT_FALSE(ReBootMachine(platform().power()));
  EXPECT_EQ(calls, (std::vector<std::pair<uint32_t, uint32_t>>(2, {2, 0xFFFFFFFF})));
  ReplaceRestartCall([](uint32_t, uint32_t) { return false; });
}

}  // namespace
}  // namespace quarnel
