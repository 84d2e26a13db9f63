#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/services.h"

// Home pages of browsers: the one write that the old alert needs, and the reads of other browsers'
// own files, which no path of the program calls.
namespace quarnel {

// Writes one value below HKEY_CURRENT_USER. A key that cannot be opened is not made, and nobody is
// told.
void SetHomePageKeyValue(const Services& services, std::string_view key, std::string_view valueName,
                         const RegistryValue& value, ValueType type);

// The home page that a preferences file ("prefs.js") names, whatever its bytes; of several the last
// one counts. Nothing when it names none.
std::optional<std::string> HomePageInPreferences(std::string_view bytes);
// The same of an "Opera6.ini"; the first one counts.
std::optional<std::string> HomePageInOperaIni(std::string_view bytes);

// The folder of the user's profiles; empty when there is none.
std::string FindProfileFolderPath(const Services& services);
// The file of this name below `folder` beside which the profile's own folder "chrome" stands; empty
// when there is none.
std::string FindFile(const Services& services, std::string_view folder, std::string_view name);

// The home pages as the browsers' files have them. Where none is found it is what the setting
// `HomePage` of the browser's name says, or else the empty page.
std::string GetNetscapeHomePage(const Services& services);
std::string GetOperaHomePage(const Services& services);

}  // namespace quarnel
