#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "platform/windows/desktop/standard_streams.h"
#include "platform/windows/unique_handle.h"

namespace quarnel {
namespace {

TEST(StandardStreams, AConsoleShowsUtf8ThatComesInPieces) {
  FreeConsole();
  ASSERT_TRUE(AllocConsole());
  const KernelHandle console(CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE,
                                         FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                         0, nullptr));
  ASSERT_TRUE(console.Valid());
  const auto buffer = MakeConsoleBuffer(console.Get());
  std::ostream out(buffer.get());
  CONSOLE_SCREEN_BUFFER_INFO before = {};
  ASSERT_TRUE(GetConsoleScreenBufferInfo(console.Get(), &before));
  out << "\xD0";
  out << "\xB6\xE2\x82" << '\xAC' << " 50%\n";
  std::wstring shown(6, L' ');
  DWORD count = 0;
  EXPECT_TRUE(
      ReadConsoleOutputCharacterW(console.Get(), shown.data(), 6, before.dwCursorPosition, &count));
  EXPECT_EQ(shown, L"\x0436\x20AC 50%");

  // More than one call takes; afterwards the cursor stands behind the last character.
  out << std::string(20000, 'x');
  CONSOLE_SCREEN_BUFFER_INFO after = {};
  EXPECT_TRUE(GetConsoleScreenBufferInfo(console.Get(), &after));
  EXPECT_EQ(after.dwCursorPosition.X, 20000 % after.dwSize.X);
  EXPECT_TRUE(out.good());
  FreeConsole();
}

}  // namespace
}  // namespace quarnel
