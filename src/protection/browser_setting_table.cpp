#include "protection/browser_setting_table.h"

#include "core/paths.h"
#include "platform/registry.h"

namespace quarnel {
namespace {

constexpr uint32_t kUser = hive::kCurrentUser;
constexpr uint32_t kMachine = hive::kLocalMachine;

constexpr std::string_view kMain = "Software\\Microsoft\\Internet Explorer\\Main";
constexpr std::string_view kSearchUrl = "Software\\Microsoft\\Internet Explorer\\SearchURL";
constexpr std::string_view kSearch = "Software\\Microsoft\\Internet Explorer\\Search";
constexpr std::string_view kAbout = "Software\\Microsoft\\Internet Explorer\\AboutURLs";

constexpr std::string_view kHomePage = "http://www.home.example/";
constexpr std::string_view kSearchPage =
    "http://www.search.example/isapi/redir.dll?prd=ie&ar=iesearch";
constexpr std::string_view kSearchBar = "http://www.search.example/search/lobby/search.asp";
constexpr std::string_view kAutoSearch = "http://auto.search.example/access/autosearch.asp?p=%s";
constexpr std::string_view kDefaultPage =
    "http://www.home.example/isapi/redir.dll?prd=ie&pver=6&ar=msnhome";
constexpr std::string_view kDefaultSearch = "http://www.search.example/search/search.asp";
constexpr std::string_view kCustomize =
    "http://ie.search.example/{SUB_RFC1766}/srchasst/srchcust.htm";
constexpr std::string_view kAssistant =
    "http://ie.search.example/{SUB_RFC1766}/srchasst/srchasst.htm";
constexpr std::string_view kBlankOfSystem = {};
constexpr std::string_view kCancelled = "res://shdoclc.dll/navcancl.htm";

// A setting that goes by its label everywhere.
constexpr BrowserSetting OfMachine(std::string_view label, std::string_view key,
                                   std::string_view value, std::string_view original,
                                   std::string_view help) {
  return {label, label, label, label, kMachine, key, value, original, help};
}

// The texts stand as users know them, misspellings included.
constexpr BrowserSetting kSettings[] = {
    {"Home Page", "Home Page", "Start Page", "Start Page", kUser, kMain, "Start Page", kHomePage,
     "This is the URL of the web page that will be displayed when a new Internet Explorer browser "
     "window is opened."},
    {"Home Page", "Search Page", "Search Page", "Home Page", kUser, kMain, "Search Page",
     kSearchPage,
     "This is the default search engine when you click the Search button in Internet Explorer."},
    {"Local Page", "Local Page", "Local Page", "Local Page", kUser, kMain, "Local Page",
     kBlankOfSystem,
     "This is the page that will load if a website is not found when entering it in the Internet "
     "Explorer address bar."},
    {"Search Bar", "Search Bar", "Search Bar", "Serach Bar", kUser, kMain, "Search Bar", kSearchBar,
     "This is the page that will be displayed when you click on the Search icon in Internet "
     "Explorer. The Search bar provides the ability to store detailed information."},
    {"Search Bar (all users)", "Search Bar (all users)", "Search Bar (all users)",
     "Serach Bar (all users)", kMachine, kMain, "Search Bar", kSearchBar,
     "This is the page that will be displayed when you click on the Search icon in Internet "
     "Explorer. The Search bar provides the ability to store detailed information. This is for all "
     "users of this computer."},
    {"Search URL", "Search URL", "Search URL", "Search URL", kUser, kSearchUrl, "", kAutoSearch,
     "Serach URLs are convenient way to use different search engines. For example, you might have "
     "a search URL called news that seraches online newgroups. If you type in a keyword(s) in the "
     "address bar to automatically search online newsgroup for all articals relatedto these "
     "keywords."},
    OfMachine("Start Page (all users)", kMain, "Start Page", kHomePage,
              "This is the page that will be displayed when a new browser window of Internet "
              "Explorer is opened."),
    OfMachine("Search Page (all users)", kMain, "Search Page", kSearchPage,
              "This is the default search engine when you click the Search button in Internet "
              "Explorer. This is for all users of this computer."),
    OfMachine("Default Page URL (all users)", kMain, "Default_Page_URL", kDefaultPage,
              "The is the default web page URL used by Internet Explorer. This is for all users of "
              "this computer."),
    OfMachine("Local Page (all users)", kMain, "Local Page", kBlankOfSystem,
              "This is the page that will load if a website is not found when entering it in the "
              "Internet Explorer address bar. This is for all users of this computer."),
    OfMachine("Default Search URL (all users)", kMain, "Default_Search_URL", kDefaultSearch,
              "This is the page that will be displayed when Internet Explorer attempts to perform "
              "a search. This is for all users of this computer."),
    OfMachine("Customize Search (all users)", kSearch, "CustomizeSearch", kCustomize,
              "This is the page that is displayed in the Internet Explorer search box when you run "
              "a customized search. The Search Assistant provides users with a single, unified "
              "search across different types of searches. This seting is for all users of this "
              "computer."),
    OfMachine("Search Assistant (all users)", kSearch, "SearchAssistant", kAssistant,
              "This is the Search Assitant page displayed by Internet Explorer. The Search "
              "Assistant provides users with a single, unified search across different types of "
              "searches. This seting is for all users of this computer."),
    OfMachine("Blank Page", kAbout, "Blank", "res://mshtml.dll/blank.htm",
              "The page cannot be displayed - This is the page displayed by Internet Explorer when "
              "it cannot find a web site or page."),
    OfMachine("Desktop Navigation Failure", kAbout, "DesktopItemNavigationFailure", kCancelled,
              "This is the Internet Explorer page that is displayed if your computer cannot access "
              "the Internet."),
    OfMachine("Navigation Canceled", kAbout, "NavigationCanceled", kCancelled,
              "This is the Internet Explorer page that is displayed when you cancel navigation."),
    OfMachine("Navigation Failure", kAbout, "NavigationFailure", kCancelled,
              "This is the Internet Explorer page that is displayed if your computer cannot access "
              "the Internet."),
    OfMachine("Offline Information", kAbout, "OfflineInformation", "res://shdoclc.dll/offcancl.htm",
              "This is the Internet Explorer page that is displayed if your computer cannot access "
              "the Internet or a Web page is unavailable or offline."),
    OfMachine("Post Not Cached", kAbout, "PostNotCached", "res://mshtml.dll/repost.htm",
              "Warning: Page has Expired - This is the warning page when Internet explorer cannot "
              "read content from its cache."),
    OfMachine("Mozilla", kAbout, "Mozilla", "res://mshtml.dll/about.moz",
              "This Internet Explorer page displays information about the Mozilla browser."),
};

}  // namespace

std::span<const BrowserSetting> BrowserSettingTable() { return kSettings; }

std::string DefaultOf(const BrowserSetting& setting, Machine& machine) {
  if (!setting.original.empty()) return std::string(setting.original);
  return GetWindowsSystemFolder(machine) + "\\blank.htm";
}

}  // namespace quarnel
