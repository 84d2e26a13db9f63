#include "net/ftp_listing.h"

#include <gtest/gtest.h>

#include <random>

#include "base/runtime_error.h"

namespace quarnel {
namespace {

const DateTime kNow = std::chrono::local_days(std::chrono::year(2024) / 3 / 5);

// One line a file: what a listing tells of it.
std::string Told(std::string_view reply) {
  const CFtpFiles files = GetFileListX(reply, kNow);
  std::string told;
  for (size_t i = 1; i <= files.Count(); ++i) {
    const CFtpFile& file = files.Item(i);
    told += (file.IsDirectory ? "d " : "- ") + std::to_string(file.FileSize) + "|" +
            GeneralDateText(file.LastWriteTime) + "|" + file.FileName + "|" + file.FilePath + "|" +
            file.Permissions + "|" + file.Owner + "|" + file.Group + "\n";
  }
  return told;
}

TEST(FtpListing, ReadsTheLinesOfBothSystems) {
  struct Case {
    std::string_view reply;
    std::string_view told;
  };
  const Case cases[] = {
      {"", ""},
      {"total 8\r\n"
       "-rw-r--r--    1 1000     100         4096 Jan 12 15:04 a name.txt\r\n"
       "drwxr-xr-x   2 root     root         4096 Dec  3  2004 sub\r\n"
       "lrwxrwxrwx   1 root     root            7 Feb 29  2004 link -> a -> b\r\n",
       "- 4096|1/12/2024 3:04:00 PM|a name.txt||-rw-r--r--|1000|100\n"
       "d 4096|12/3/2004|sub||drwxr-xr-x|root|root\n"
       "- 7|2/29/2004|link|a -> b|lrwxrwxrwx|root|root\n"},
      // Without a group; a size of more than 32 bits; no such day; a link that leads nowhere.
      {"-rw-r--r-- 1 joe 5000000000 Feb 30 2004  x\nlrwxrwxrwx 1 joe 1 Mar 01 10:00 l\n",
       "- 2147483647|12:00:00 AM|x||-rw-r--r--|joe|\n- 1|3/1/2024 10:00:00 "
       "AM|l||lrwxrwxrwx|joe|\n"},
      {"02-23-05  03:15PM                 1234 file one.zip\r\n"
       "12-31-99  12:00AM       <DIR>          old\r\n",
       "- 1234|2/23/2005 3:15:00 PM|file one.zip||||\nd 0|12/31/1999|old||||\n"},
      // An empty line ends it; so does a name that has been there.
      {"02-23-05  03:15PM                 1234 a\n\n02-23-05  03:15PM                 1234 b\n",
       "- 1234|2/23/2005 3:15:00 PM|a||||\n"},
      {"02-23-05  03:15PM                    1 a\n02-23-05  03:15PM                    2 A\n"
       "02-23-05  03:15PM                    3 b\n",
       "- 1|2/23/2005 3:15:00 PM|a||||\n"},
      {"total", "- 0|12:00:00 AM|||||\n"},
      {"nonsense\r\n\r\n", "- 0|12:00:00 AM|||||\n"},
  };
  for (const Case& each : cases) EXPECT_EQ(Told(each.reply), each.told) << each.reply;
}

// A month that is part of a name is no date.
TEST(FtpListing, FindsTheDateByWhatStandsAroundIt) {
  EXPECT_EQ(GetDateStartPosition("-rw 1 o g 12 May 12 15:04 by jan 1"), 14U);
  EXPECT_EQ(GetDateStartPosition(" jan "), 0U);
  EXPECT_EQ(GetDateStartPosition("x jan 12 15:04"), 0U);
}

TEST(FtpListing, TakesAnyBytes) {
  const std::string good =
      "total 8\r\n-rw-r--r-- 1 1000 100 4096 Jan 12 15:04 a\r\nlrwx 1 r r 7 Feb 29  2004 l -> b\r\n"
      "02-23-05  03:15PM                 1234 file\r\n";
  std::mt19937 random(7);
  for (int turn = 0; turn < 20'000; ++turn) {
    std::string reply = good.substr(random() % good.size());
    reply.resize(random() % (reply.size() + 1));
    for (int change = turn % 5; change > 0 && !reply.empty(); --change) {
      reply[random() % reply.size()] = static_cast<char>(random());
    }
    const CFtpFiles files = GetFileListX(reply, kNow);
    size_t held = 0;
    for (size_t i = 1; i <= files.Count(); ++i) {
      const CFtpFile& file = files.Item(i);
      held += file.FileName.size() + file.FilePath.size() + file.Permissions.size();
    }
    ASSERT_LE(held, reply.size());
  }
}

TEST(FtpFiles, AreFoundByNameAndNumber) {
  CFtpFiles files;
  files.Add({.FileName = "One"}, "One");
  files.Add({.FileName = "two"}, "two");
  EXPECT_EQ(files.Item("ONE").FileName, "One");
  EXPECT_THROW(files.Add({}, "TWO"), RuntimeError);
  files.Remove(1);
  EXPECT_EQ(files.Item(1).FileName, "two");
  EXPECT_THROW(files.Item(2), RuntimeError);
  EXPECT_THROW(files.Item("One"), RuntimeError);
}

}  // namespace
}  // namespace quarnel
