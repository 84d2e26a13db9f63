#pragma once

#include <string>
#include <string_view>

#include "core/services.h"

// The maker's pages, which open in the user's own browser.
namespace quarnel {

namespace maker_page {
inline constexpr std::string_view kQuestions = "remofaq.htm";
inline constexpr std::string_view kAbout = "remover.htm";
inline constexpr std::string_view kReferAFriend = "referafriend.htm";
inline constexpr std::string_view kReport = "reportsw.htm";
}  // namespace maker_page

std::string MakerPage(std::string_view path);

// Opens an address in the program that shows pages. Failures are shown to the user.
void OpenAddress(const Services& services, std::string_view address);

void OpenMakerPage(const Services& services, std::string_view path);

}  // namespace quarnel
