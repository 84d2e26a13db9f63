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
    {kKeywatch, csidl::kSystem, "samplekw.dll", Content::kProgram, "Unlisted Example", "keywatch"},
    {kKeywatch, csidl::kWindows, "samplekw.log", Content::kText, "", "keywatch-log"},
    {kKeywatch, csidl::kLocalAppData, "Sample Keywatch\\{user}.log", Content::kText, "",
     "keywatch-user"},
    {kMole, csidl::kAppData, "samplemole.dat", Content::kText, "", "mole"},
    {kMole, csidl::kProfile, "Local Settings\\Temp\\~samplemole.tmp", Content::kText, "",
     "mole-temp"},
    {kMole, csidl::kCommonAppData, "Sample Mole\\mole.dat", Content::kText, "", "mole"},
    // Found by the company in the version record.
    {kDialer, csidl::kWindows, "sampledial.exe", Content::kProgram, "Example Dial Company"},
    {kDialer, csidl::kProgramFiles, "Example Dial\\dial.exe", Content::kProgram,
     "EXAMPLE DIAL COMPANY"},
    // Found with its folder.
    {kToolbar, csidl::kProgramFiles, "Sample Toolbar\\toolbar.dll", Content::kProgram,
     "Examplesoft Labs"},
    {kToolbar, csidl::kProgramFiles, "Sample Toolbar\\license.txt", Content::kText, ""},
    {kToolbar, csidl::kProgramFiles, "Sample Toolbar\\skins\\plain.skn", Content::kText, ""},
    {kToolbar, csidl::kProgramFiles, "Sample Toolbar\\skins\\blue\\blue.skn", Content::kText, ""},
    // Found by name.
    {kHijack, csidl::kStartup, "Sample Hijack.lnk", Content::kShortcut,
     "{programs}Example Dial\\dial.exe"},
    {kHijack, csidl::kDesktop, "Free Samples.lnk", Content::kShortcut,
     "{programs}Sample Toolbar\\license.txt"},
    // Found while it runs.
    {kWatch, csidl::kProgramFiles, "Sample Watch\\samplewatch.exe", Content::kWatch, "", "watch"},
    // Clean, though signatures name them: another content, another company, and neither of them.
    {"", csidl::kSystem, "samplekw2.dll", Content::kProgram, "Unlisted Example"},
    {"", csidl::kWindows, "sampledial2.exe", Content::kProgram, "Another Example Company"},
    {"", csidl::kWindows, "samplekw.txt", Content::kText, ""},
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

constexpr uint32_t kMachine = hive::kLocalMachine;
constexpr uint32_t kUser = hive::kCurrentUser;

constexpr SampleEntry kEntries[] = {
    // Whole keys, with others below them.
    {kToolbar, hive::kClassesRoot, kClass, "", Shown::kUpper, "Sample Toolbar"},
    {"", hive::kClassesRoot, kClassServer, "", Shown::kUpper,
     "{programs}Sample Toolbar\\toolbar.dll"},
    {"", hive::kClassesRoot, kClassServer, "ThreadingModel", Shown::kUpper, "Apartment"},
    {kToolbar, kMachine,
     "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Browser Helper Objects\\"
     "{5A3D1E00-0000-4000-8000-0000000000A1}",
     ""},
    {kToolbar, kUser, kToolbarKey, "", Shown::kAsWritten},
    {"", kUser, "Software\\Examplesoft Labs\\Sample Toolbar\\Settings\\Window", "Width",
     Shown::kUpper, "dword:640"},
    {"Unknown", kUser, "Software\\Examplesoft Labs\\Nameless", "", Shown::kAsWritten},
    // Values.
    {kToolbar, kUser, "Software\\Microsoft\\Internet Explorer\\Toolbar\\WebBrowser",
     "{5A3D1E00-0000-4000-8000-0000000000A1}", Shown::kAsWritten, "0"},
    {kKeywatch, kMachine, kRun, "SampleKeywatch", Shown::kUpper,
     "rundll32.exe {windows}system32\\samplekw.dll"},
    {kKeywatch, kUser, kRunOfUser, "SampleKeywatchHelp", Shown::kUpper, ""},
    {"", kMachine, kRun, "SampleClean", Shown::kUpper, "{windows}samplekw.txt"},
    // Names of the user.
    {kKeywatch, hive::kUsers, "{sid}\\Software\\Sample Keywatch\\Users\\{user}", "",
     Shown::kAsWritten},
    {kKeywatch, hive::kUsers, "{sid}\\Software\\Sample Keywatch", "LastRun", Shown::kKeyAsWritten,
     "dword:1"},
    {kMole, kUser, "Software\\Sample Mole", "{windows}Profiles\\{user}", Shown::kAsWritten, "1"},
    // Names of folders.
    {kKeywatch, kMachine, kShared, "{windows}System32\\samplekw.dll", Shown::kValueAsWritten,
     "dword:1"},
    {kDialer, kMachine, kDialFiles, "{windows}sampledial.exe", Shown::kValueAsWritten, "1"},
    {kDialer, kMachine, kDialFiles, "{programs}Example Dial\\dial.exe", Shown::kValueAsWritten,
     "1"},
    {kDialer, kMachine, kDialFiles, "{common}Example Dial\\dial.ocx", Shown::kValueAsWritten, "1"},
    {kDialer, kMachine, kDialFiles, "{root}sampledial.log", Shown::kUpper, "1"},
    {kDialer, kMachine, kDialFiles, "{personal}download\\dial.inf", Shown::kValueAsWritten, "1"},
    // What a signature may mean as a key's value or as a value at the end of a path.
    {kDialer, kMachine, "SOFTWARE\\Example Dial\\Setup", "Installed", Shown::kUpper, "dword:1"},
    {kDialer, kMachine, kRun, "SampleDialer", Shown::kUpper, "{windows}sampledial.exe"},
};

}  // namespace

std::span<const SampleFile> SampleFiles() { return kFiles; }
std::span<const SampleCookie> SampleCookies() { return kCookies; }
std::span<const SampleEntry> SampleEntries() { return kEntries; }

}  // namespace quarnel
