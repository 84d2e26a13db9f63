#include "machine/sample_plan.h"

#include "platform/machine.h"
#include "platform/registry.h"

namespace quarnel {
namespace {

constexpr std::string_view kToolbar = "Sample Toolbar";
constexpr std::string_view kKeywatch = "Sample Keywatch";
constexpr std::string_view kDialer = "Sample Dialer";
constexpr std::string_view kHijack = "Sample Hijack";
constexpr std::string_view kMole = "Sample Mole";
constexpr std::string_view kWatch = "Sample Watch";

constexpr SampleFile kFiles[] = {
    // Found by hash.
    {kKeywatch, csidl::kSystem, Content::kProgram, "samplekw.dll", "Unlisted Example", "keywatch"},
    {kKeywatch, csidl::kWindows, Content::kText, "samplekw.log", "", "keywatch-log"},
    {kKeywatch, csidl::kLocalAppData, Content::kText, "Sample Keywatch\\{user}.log", "",
     "keywatch-user"},
    {kMole, csidl::kAppData, Content::kText, "samplemole.dat", "", "mole"},
    {kMole, csidl::kProfile, Content::kText, "Local Settings\\Temp\\~samplemole.tmp", "",
     "mole-temp"},
    {kMole, csidl::kCommonAppData, Content::kText, "Sample Mole\\mole.dat", "", "mole"},
    // Found by the company in the version record.
    {kDialer, csidl::kWindows, Content::kProgram, "sampledial.exe", "Example Dial Company"},
    {kDialer, csidl::kProgramFiles, Content::kProgram, "Example Dial\\dial.exe",
     "EXAMPLE DIAL COMPANY"},
    // Found with its folder.
    {kToolbar, csidl::kProgramFiles, Content::kProgram, "Sample Toolbar\\toolbar.dll",
     "Examplesoft Labs"},
    {kToolbar, csidl::kProgramFiles, Content::kText, "Sample Toolbar\\license.txt", ""},
    {kToolbar, csidl::kProgramFiles, Content::kText, "Sample Toolbar\\skins\\plain.skn", ""},
    {kToolbar, csidl::kProgramFiles, Content::kText, "Sample Toolbar\\skins\\blue\\blue.skn", ""},
    // Found by name.
    {kHijack, csidl::kStartup, Content::kShortcut, "Sample Hijack.lnk",
     "{programs}Example Dial\\dial.exe"},
    {kHijack, csidl::kDesktop, Content::kShortcut, "Free Samples.lnk",
     "{programs}Sample Toolbar\\license.txt"},
    // Found while it runs.
    {kWatch, csidl::kProgramFiles, Content::kWatch, "Sample Watch\\samplewatch.exe", "", "watch"},
    // Clean, though signatures name them: another content, another company, and neither of them.
    {"", csidl::kSystem, Content::kProgram, "samplekw2.dll", "Unlisted Example"},
    {"", csidl::kWindows, Content::kProgram, "sampledial2.exe", "Another Example Company"},
    {"", csidl::kWindows, Content::kText, "samplekw.txt", ""},
    // Clean, and of no signature.
    {"", csidl::kProgramFiles, Content::kProgram, "Example Reader\\helper.dll",
     "Example Reader Company"},
    {"", csidl::kProgramFiles, Content::kProgram, "Example Reader\\reader.exe",
     "Example Reader Company"},
    {"", csidl::kCommonStartup, Content::kShortcut, "Example Reader.lnk",
     "{programs}Example Reader\\reader.exe"},
};

constexpr SampleCookie kCookies[] = {
    {true, "{user}@www.tracker[1].txt", "www.tracker.example"},
    {true, "{user}@pixel.eu.tracker[2].txt", "pixel.eu.tracker.example"},
    {true, "{user}@counter7[1].txt", "counter7.example"},
    {true, "{user}@ads.example[1].txt", "ads.example.net"},
    {false, "{user}@tracker[1].txt", "tracker.example.org"},
    {false, "{user}@shop.example[1].txt", "shop.example.com"},
};

constexpr std::string_view kRun = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr std::string_view kRunOfUser = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr std::string_view kShared = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\SharedDLLs";
constexpr std::string_view kDialFiles = "SOFTWARE\\Example Dial\\Files";
constexpr std::string_view kToolbarKey = "Software\\Examplesoft Labs\\Sample Toolbar";
constexpr std::string_view kClass = "CLSID\\{5A3D1E00-0000-4000-8000-0000000000A1}";
constexpr std::string_view kClassServer =
    "CLSID\\{5A3D1E00-0000-4000-8000-0000000000A1}\\InprocServer32";

constexpr std::string_view kReaderClass = "CLSID\\{5A3D1E00-0000-4000-8000-0000000000B2}";
constexpr std::string_view kReaderServer =
    "CLSID\\{5A3D1E00-0000-4000-8000-0000000000B2}\\InprocServer32";

constexpr uint32_t kMachine = hive::kLocalMachine;
constexpr uint32_t kUser = hive::kCurrentUser;

constexpr SampleEntry kEntries[] = {
    // Whole keys, with others below them.
    {kToolbar, hive::kClassesRoot, Shown::kUpper, kClass, "", "Sample Toolbar"},
    {"", hive::kClassesRoot, Shown::kUpper, kClassServer, "",
     "{programs}Sample Toolbar\\toolbar.dll"},
    {"", hive::kClassesRoot, Shown::kUpper, kClassServer, "ThreadingModel", "Apartment"},
    {kToolbar, kMachine, Shown::kUpper,
     "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Browser Helper Objects\\"
     "{5A3D1E00-0000-4000-8000-0000000000A1}",
     ""},
    // Another helper object of the browser, which is no threat.
    {"", hive::kClassesRoot, Shown::kUpper, kReaderClass, "", "Example Reader Helper"},
    {"", hive::kClassesRoot, Shown::kUpper, kReaderServer, "",
     "{programs}Example Reader\\helper.dll"},
    {"", kMachine, Shown::kUpper,
     "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Browser Helper Objects\\"
     "{5A3D1E00-0000-4000-8000-0000000000B2}",
     "", "Example Reader Helper"},
    {kToolbar, kUser, Shown::kAsWritten, kToolbarKey, ""},
    {"", kUser, Shown::kUpper, "Software\\Examplesoft Labs\\Sample Toolbar\\Settings\\Window",
     "Width", "dword:640"},
    {"Unknown", kUser, Shown::kAsWritten, "Software\\Examplesoft Labs\\Nameless", ""},
    // Values.
    {kToolbar, kUser, Shown::kAsWritten,
     "Software\\Microsoft\\Internet Explorer\\Toolbar\\WebBrowser",
     "{5A3D1E00-0000-4000-8000-0000000000A1}", "0"},
    {kKeywatch, kMachine, Shown::kUpper, kRun, "SampleKeywatch",
     "rundll32.exe {windows}system32\\samplekw.dll"},
    {kKeywatch, kUser, Shown::kUpper, kRunOfUser, "SampleKeywatchHelp"},
    {"", kMachine, Shown::kUpper, kRun, "SampleClean", "{windows}samplekw.txt"},
    {"", kUser, Shown::kUpper, kRunOfUser, "ExampleReader",
     "\"{programs}Example Reader\\reader.exe\" /quiet"},
    // Names of the user.
    {kKeywatch, hive::kUsers, Shown::kAsWritten, "{sid}\\Software\\Sample Keywatch\\Users\\{user}",
     ""},
    {kKeywatch, hive::kUsers, Shown::kKeyAsWritten, "{sid}\\Software\\Sample Keywatch", "LastRun",
     "dword:1"},
    {kMole, kUser, Shown::kAsWritten, "Software\\Sample Mole", "{windows}Profiles\\{user}", "1"},
    // Names of folders.
    {kKeywatch, kMachine, Shown::kValueAsWritten, kShared, "{windows}System32\\samplekw.dll",
     "dword:1"},
    {kDialer, kMachine, Shown::kValueAsWritten, kDialFiles, "{windows}sampledial.exe", "1"},
    {kDialer, kMachine, Shown::kValueAsWritten, kDialFiles, "{programs}Example Dial\\dial.exe",
     "1"},
    {kDialer, kMachine, Shown::kValueAsWritten, kDialFiles, "{common}Example Dial\\dial.ocx", "1"},
    {kDialer, kMachine, Shown::kUpper, kDialFiles, "{root}sampledial.log", "1"},
    {kDialer, kMachine, Shown::kValueAsWritten, kDialFiles, "{personal}download\\dial.inf", "1"},
    // What a signature may mean as a key's value or as a value at the end of a path.
    {kDialer, kMachine, Shown::kUpper, "SOFTWARE\\Example Dial\\Setup", "Installed", "dword:1"},
    {kDialer, kMachine, Shown::kUpper, kRun, "SampleDialer", "{windows}sampledial.exe"},
};

constexpr std::string_view kBrowserMain = "Software\\Microsoft\\Internet Explorer\\Main";
constexpr std::string_view kBrowserSearch = "Software\\Microsoft\\Internet Explorer\\Search";
constexpr std::string_view kBrowserAbout = "Software\\Microsoft\\Internet Explorer\\AboutURLs";

constexpr SampleBrowserSetting kBrowserSettings[] = {
    {kUser, kBrowserMain, "Start Page", "http://www.samplehijack.example/", "Start Page",
     "http://www.home.example/"},
    {kUser, kBrowserMain, "Search Page",
     "http://www.search.example/isapi/redir.dll?prd=ie&ar=iesearch"},
    {kUser, kBrowserMain, "Search Bar", "http://www.samplehijack.example/bar"},
    {kUser, "Software\\Microsoft\\Internet Explorer\\SearchURL", "",
     "http://auto.search.example/access/autosearch.asp?p=%s"},
    {kMachine, kBrowserMain, "Start Page", "http://www.home.example/"},
    {kMachine, kBrowserMain, "Default_Search_URL", "http://www.search.example/search/search.asp"},
    {kMachine, kBrowserSearch, "SearchAssistant", "http://www.samplehijack.example/assistant",
     "Search Assistant (all users)",
     "http://ie.search.example/{SUB_RFC1766}/srchasst/srchasst.htm"},
    {kMachine, kBrowserAbout, "Blank", "res://mshtml.dll/blank.htm"},
    {kMachine, kBrowserAbout, "NavigationFailure", "res://samplehijack.dll/navcancl.htm"},
    {kMachine, kBrowserAbout, "Mozilla", "res://mshtml.dll/about.moz"},
};

}  // namespace

std::span<const SampleFile> SampleFiles() { return kFiles; }
std::span<const SampleCookie> SampleCookies() { return kCookies; }
std::span<const SampleEntry> SampleEntries() { return kEntries; }
std::span<const SampleBrowserSetting> SampleBrowserSettings() { return kBrowserSettings; }

}  // namespace quarnel
