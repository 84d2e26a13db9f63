#include "protection/home_page_setting.h"

#include <gmock/gmock.h>

#include "core/paths.h"
#include "support/platform_fixture.h"
#include "support/test_host.h"

namespace quarnel {
namespace {

using testing::Optional;

constexpr std::string_view kPage = "http://home.example/";

TEST(HomePages, InTheBytesOfAPreferencesFile) {
  const std::string entry = "user_pref(\"browser.startup.homepage\", \"http://home.example/\");";
  for (const std::string& bytes :
       {entry, "// a\r\n" + entry + "\r\n",
        "\"\xFF\n  user_pref ( 'browser.startup.homepage' ,'" + std::string(kPage) + "');",
        "user_pref(\"browser.startup.homepage\", \"old\");\n" + entry}) {
    EXPECT_THAT(HomePageInPreferences(bytes), Optional(std::string(kPage))) << bytes;
  }
  EXPECT_THAT(HomePageInPreferences("user_pref(\"browser.startup.homepage\", \"a\\\"b\\\\\");"),
              Optional(std::string("a\"b\\")));
  for (const std::string& bytes :
       {std::string(), "// " + entry, std::string("user_pref(\"browser.startup.homepage\""),
        std::string("user_pref(\"browser.startup.homepage\", \"torn"),
        std::string("user_pref(\"browser.startup.homepage.x\", \"a\");"),
        std::string("user_pref(\"browser.startup.homepage\", \"a\\")}) {
    EXPECT_EQ(HomePageInPreferences(bytes), std::nullopt) << bytes;
  }
}

TEST(HomePages, InTheBytesOfAnOperaIni) {
  EXPECT_THAT(HomePageInOperaIni("[User Prefs]\r\nhome url= http://home.example/ \r\nHome URL=b"),
              Optional(std::string(kPage)));
  EXPECT_THAT(HomePageInOperaIni("Home URL="), Optional(std::string()));
  EXPECT_EQ(HomePageInOperaIni("My Home URL=x\nHome UR"), std::nullopt);
}

class BrowsersTest : public PlatformTest {
 protected:
  void Write(const std::string& path, std::string_view bytes) {
    CreateFolders(files(), path.substr(0, path.rfind('\\')));
    WriteWholeFile(files(), path, bytes);
  }
  std::string Data() { return GetPathWithSlash(*machine().SpecialFolder(csidl::kAppData)); }

  TestHost host;
  Settings settings{registry(), "QuarnelTest"};
  ErrorLog log{files(), machine(), host, "QuarnelTest"};
  Services services{platform(), host, settings, log};
};

TEST_F(BrowsersTest, FilesAreFoundByTheirNames) {
  settings.Save(setting::kHomePageOf.Named("Opera"), "http://last.example/");
  EXPECT_EQ(GetNetscapeHomePage(services), "about:blank");
  EXPECT_EQ(GetOperaHomePage(services), "http://last.example/");

  // Of two such files the one beside "chrome" is a profile's own.
  const std::string profiles = Data() + "Netscape\\Profiles\\";
  const std::string preference = "user_pref(\"browser.startup.homepage\", \"";
  Write(profiles + "backup\\prefs.js", preference + "http://old.example/\");");
  Write(profiles + "user\\x.slt\\prefs.js", preference + std::string(kPage) + "\");");
  CreateFolders(files(), profiles + "user\\x.slt\\chrome");
  EXPECT_EQ(GetNetscapeHomePage(services), kPage);

  Write(Data() + "Opera\\Opera7\\profile\\opera6.ini", "Home URL=http://home.example/\r\n");
  EXPECT_EQ(GetOperaHomePage(services), kPage);
  const std::string ini = Make("Opera6.ini", "Home URL=http://installed.example/\r\n");
  const std::string key = "SOFTWARE\\Netscape\\Netscape Navigator\\5.0, Opera\\Main";
  RegCreateKeyValue(registry(), hive::kLocalMachine, key, "Install Directory",
                    ini.substr(0, ini.rfind('\\')));
  EXPECT_EQ(GetOperaHomePage(services), "http://installed.example/");
  DeleteKey(registry(), hive::kLocalMachine, key);
  for (const char* tree : {"Netscape", "Opera"}) DeleteTree(files(), Data() + tree);
}

TEST_F(BrowsersTest, OnlyAnExistingKeyIsWritten) {
  const std::string key = Key("Main");
  SetHomePageKeyValue(services, key, "Start Page", std::string(kPage), ValueType::kString);
  EXPECT_EQ(QueryText(registry(), hive::kCurrentUser, key, "Start Page"), "");
  CreateNewKey(registry(), hive::kCurrentUser, key);
  SetHomePageKeyValue(services, key, "Start Page", std::string(kPage), ValueType::kString);
  SetHomePageKeyValue(services, key, "Flag", 7U, ValueType::kDword);
  EXPECT_EQ(QueryText(registry(), hive::kCurrentUser, key, "Start Page"), kPage);
  EXPECT_EQ(QueryText(registry(), hive::kCurrentUser, key, "Flag"), "7");
}

}  // namespace
}  // namespace quarnel
