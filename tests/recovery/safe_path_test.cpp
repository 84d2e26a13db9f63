#include "recovery/safe_path.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quarnel {
namespace {

TEST(SafePath, TakesWholePathsOnly) {
  for (const char* path :
       {"C:\\a", "c:\\Program Files\\Name with. points .txt", "D:\\console\\com10\\nul1.txt",
        "C:\\\xC3\xA4\\\xE2\x82\xAC.dll", "C:\\a\\...", "C:\\compact.exe", "C:\\lpt0"}) {
    EXPECT_EQ(WhyUnsafe(path), "") << path;
  }
  const struct {
    std::string_view reason;
    std::vector<std::string> paths;
  } cases[] = {
      {"not a whole one", {"", "C:", "C:\\", "a\\b", "\\a", "C:a", "1:\\a", "C:/a"}},
      {"not a whole one", {"\\\\server\\a", "\\\\?\\C:\\a", "\\\\.\\Physical"}},
      {"through another folder", {"C:\\a\\..\\b", "C:\\..", "C:\\.\\a"}},
      {"has no name", {"C:\\a\\\\b", "C:\\a\\"}},
      {"a stream", {"C:\\a:stream", "C:\\a\\b::$DATA", "C:\\a:x\\b"}},
      {"no name can hold", {"C:\\a/..\\b", "C:\\a*", "C:\\a\nb", {"C:\\a\0b", 6}}},
      {"a device",
       {"C:\\nul", "C:\\a\\NUL.txt", "C:\\con .x\\a", "C:\\Com1", "C:\\LPT9.a.b", "C:\\com\xC2\xB2",
        "C:\\CONIN$"}},
  };
  for (const auto& [reason, paths] : cases) {
    for (const std::string& path : paths) {
      EXPECT_NE(WhyUnsafe(path).find(reason), std::string_view::npos) << path;
    }
  }
}

TEST(SafePath, StaysBelowAFolder) {
  EXPECT_EQ(WhyUnsafeBelow("C:\\Folder\\", "c:\\folder\\a\\b"), "");
  EXPECT_EQ(WhyUnsafeBelow("C:\\", "C:\\a"), "");
  for (const char* path : {"C:\\Folder", "C:\\Folder2\\a", "D:\\Folder\\a", "C:\\Folder\\..\\a"}) {
    EXPECT_NE(WhyUnsafeBelow("C:\\Folder", path), "") << path;
  }
}

}  // namespace
}  // namespace quarnel
