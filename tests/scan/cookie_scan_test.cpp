#include "scan/cookie_scan.h"

#include <gmock/gmock.h>
#include <random>

#include "base/runtime_error.h"
#include "core/like.h"
#include "scan/pattern_set.h"
#include "scan/scan_fixture.h"
#include "signatures/complement.h"
#include "signatures/signature_files.h"

namespace quarnel {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class CookieScanTest : public ScanTest {
 protected:
  CookieScanTest() {
    IgnoringErrors([&] {
      for (const DirectoryEntry& entry : files().List(folder)) {
        if (!entry.IsFolder()) files().Delete(folder + "\\" + entry.name);
      }
    });
  }

  CookieScan cookieScan{context, "Quarnel"};
  std::string folder = GetPath(machine(), csidl::kCookies);

  std::string Cookie(std::string_view name, std::string_view itsHost) {
    std::string path = folder + "\\" + std::string(name);
    Write(path, "id\nvalue\n" + std::string(itsHost) + "/path\n1024\n*\n");
    return path;
  }

  std::vector<std::string> Scan(const std::string& patterns) {
    IgnoringErrors([&] { files().Delete(DataFolder(machine()) + "BlockedCookies"); });
    WriteWholeFile(files(), DataFolder(machine()) + "QNLBlkCoo.dll", ComplementBytes(patterns));
    resultsPage.lvwTrackingCookieObjectrecognized.Clear();
    cookieScan.DeleteSelectedCookies(resultsPage.lvwTrackingCookieObjectrecognized, false);
    return Texts(resultsPage.lvwTrackingCookieObjectrecognized);
  }
};

TEST_F(CookieScanTest, NamesInPaths) {
  const struct {
    std::string_view path, name;
  } kCases[] = {
      {"C:\\c\\user@ads.example[1].txt", "ads.example"},
      {"user@host(2)x[1].txt", "host"},
      {"user@host.example.txt", "host.example"},
      {"no at sign.txt", ""},
      {"a@b@c[1].txt", "b@c"},
      {"user@bare", "bare"},
  };
  for (const auto& [path, name] : kCases) {
    EXPECT_EQ(GetExtractedFilenameFromPath(path), name) << path;
  }
}

TEST_F(CookieScanTest, HostComesFromTheFileElseFromItsName) {
  EXPECT_EQ(cookieScan.FindDomianNameFromCookies(Cookie("u@ads.example[1].txt", "ads.example")),
            "ads.example");
  EXPECT_EQ(cookieScan.FindDomianNameFromCookies(Cookie("u@ads[1].txt", "x.ads.example")),
            "ads.example");
  EXPECT_EQ(cookieScan.FindDomianNameFromCookies(Cookie("u@other[1].txt", "ads.example")), "other");
  EXPECT_EQ(cookieScan.FindDomianNameFromCookies(Cookie("plain.txt", "ads.example")), "False");
  EXPECT_EQ(cookieScan.FindDomianNameFromCookies(folder + "\\u@missing[1].txt"), "False");
}

TEST_F(CookieScanTest, BlockedDomainsBecomeTracesOfOneThreat) {
  const std::string first = Cookie("user@ads.example[1].txt", "ads.example");
  const std::string second = Cookie("user@www.track1.example[1].txt", "www.track1.example");
  Cookie("user@good.example[2].txt", "good.example");
  Cookie("user@ADS.upper[1].txt", "ADS.upper");
  EXPECT_THAT(Scan("ads.*\ntrack#.example\n"), ElementsAre(first, second));
  EXPECT_THAT(TreeLines(),
              ElementsAre("Tracking Object", "  [Found] - " + first, "  [Found] - " + second));
  EXPECT_EQ(resultsPage.lbltracesFound.Caption(), "2");
  EXPECT_EQ(resultsPage.lvwPicRemoveListOfSpywareFoundAndToBeRemoved.At(0).SubItem(1),
            "Tracking Cookies");
  // The patterns are loaded anew each time, so an update takes effect.
  EXPECT_THAT(Scan("nothing\n"), ElementsAre());
}

TEST_F(CookieScanTest, InvalidPatternEndsTheWalk) {
  Cookie("user@ads.example[1].txt", "ads.example");
  const std::string late = Cookie("user@late.example[1].txt", "late.example");
  EXPECT_THAT(Scan("late*\n[torn\n"), ElementsAre());
  EXPECT_THAT(LogText(), HasSubstr("DeleteCookie"));
  EXPECT_THAT(unread.NotRun(), ElementsAre(HasSubstr("QNLBlkCoo.dll: Invalid pattern")));
  EXPECT_THAT(Scan("ads*\nlate*\n[torn\n"), ElementsAre(testing::_, late));
}

TEST_F(CookieScanTest, OverlongPatternIsToldAndTheOthersServe) {
  const std::string cookie = Cookie("user@ads.example[1].txt", "ads.example");
  EXPECT_THAT(Scan(std::string(kLongestCookiePattern + 1, '*') + "\nads*\n"), ElementsAre(cookie));
  EXPECT_THAT(unread.NotRun(), ElementsAre(HasSubstr("entry 1: longer than 4096 characters")));
}

TEST_F(CookieScanTest, StopLeavesTheSearchWithTheListAsItStands) {
  Cookie("user@ads.example[1].txt", "ads.example");
  host.onEvents = [&] { flags.scanStopRequested = true; };
  EXPECT_THAT(Scan("miss1\nmiss2\nads*\n"), ElementsAre());
}

// The plain loop: -1 for no match, -2 where an invalid pattern is met first.
long PlainSearch(const std::vector<std::string>& patterns, std::string_view text) {
  for (size_t i = 0; i < patterns.size(); ++i) {
    bool fits = false;
    if (!IgnoringErrors([&] { fits = Like(text, patterns[i]); })) return -2;
    if (fits) return static_cast<long>(i);
  }
  return -1;
}

long SetSearch(const PatternSet& set, std::string_view text) {
  long result = -2;
  IgnoringErrors([&] {
    const auto match = set.FirstMatch(text);
    result = match ? static_cast<long>(*match) : -1;
  });
  return result;
}

TEST(PatternSetTest, AnswersAsThePlainLoopDoes) {
  std::mt19937 random(7);
  const std::string_view alphabet = "abc.*?#1[]!-";
  const auto make = [&](size_t longest, size_t letters) {
    std::string text;
    for (size_t n = random() % (longest + 1); n > 0; --n) text += alphabet[random() % letters];
    return text;
  };
  for (int round = 0; round < 300; ++round) {
    std::vector<std::string> patterns(12);
    // Most sets stay free of brackets, which are seldom valid when drawn by chance.
    const size_t letters = round % 4 == 0 ? alphabet.size() : 8;
    for (std::string& pattern : patterns) pattern = make(7, letters);
    const PatternSet set(patterns);
    for (int i = 0; i < 40; ++i) {
      const std::string text = make(9, 4);
      ASSERT_EQ(SetSearch(set, text), PlainSearch(patterns, text)) << text << ", round " << round;
    }
  }
}

TEST(PatternSetTest, HostileTextStaysCheap) {
  std::vector<std::string> patterns(2000, "*a*a*a*a*b");
  patterns.emplace_back("*[xyz]");
  const PatternSet set(patterns);
  // Under the time limit of the test only when no pattern is asked that cannot fit.
  EXPECT_EQ(SetSearch(set, std::string(200000, 'a')), -1);
}

}  // namespace
}  // namespace quarnel
