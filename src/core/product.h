#pragma once

#include <array>
#include <string>
#include <string_view>

// The facts of the product's version record, and the maker's addresses.
namespace quarnel {

inline constexpr std::string_view kProductName = "Quarnel";
// The executable of the window's program, without its ending. Whichever front runs, "the program"
// that starts with Windows, is updated or is renamed is this one.
inline constexpr std::string_view kExecutableName = "quarnel";
// The maker is named by his address, which the splash shows as a link.
inline constexpr std::string_view kCompanyName = "www.quarnel.example";
inline constexpr std::array<int, 4> kFileVersion = {3, 0, 0, 4};

// Reserved example names: a distributor puts the real ones here.
inline constexpr std::string_view kMakerPages = "http://www.quarnel.example/";
inline constexpr std::string_view kUpdateServer = "http://updates.quarnel.example";

// Major, minor and revision in plain decimal: file version 3.0.0.4 is "3.0.4".
std::string VersionRecordText();

// The class under which every top-level window of the program can be found.
inline constexpr std::string_view kWindowClass = "ThunderRT6FormDC";

}  // namespace quarnel
