#include "recovery/safe_path.h"

#include <gtest/gtest.h>

#include <string>

namespace quarnel {
namespace {

TEST(SafePath, TakesWholePathsOnly) {
  for (const char* path :
       {"C:\\a", "c:\\Program Files\\Name with. points .txt", "D:\\console\\com10\\nul1.txt",
        "C:\\\xC3\xA4\\\xE2\x82\xAC.dll", "C:\\a\\...", "C:\\compact.exe", "C:\\lpt0"}) {
    EXPECT_EQ(WhyUnsafe(path), "") << path;
  }
  for (const std::string path : {"",
                                 "C:",
                                 "C:\\",
                                 "a\\b",
                                 "\\a",
                                 "C:a",
                                 "1:\\a",
                                 "\\\\server\\share\\a",
                                 "\\\\?\\C:\\a",
                                 "\\\\.\\PhysicalDrive0",
                                 "C:\\a\\..\\b",
                                 "C:\\..",
                                 "C:\\.\\a",
                                 "C:\\a\\\\b",
                                 "C:\\a\\",
                                 "C:\\a:stream",
                                 "C:\\a\\b.txt::$DATA",
                                 "C:\\a:x\\b",
                                 "C:\\a/..\\b",
                                 "C:/a",
                                 "C:\\a*",
                                 "C:\\nul",
                                 "C:\\a\\NUL.txt",
                                 "C:\\con .x\\a",
                                 "C:\\Com1",
                                 "C:\\LPT9.a.b",
                                 "C:\\com\xC2\xB2",
                                 "C:\\CONIN$",
                                 "C:\\a\nb"}) {
    EXPECT_NE(WhyUnsafe(path), "") << path;
  }
  EXPECT_NE(WhyUnsafe(std::string("C:\\a\0b", 6)), "");
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
