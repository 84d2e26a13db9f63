#pragma once

#include <string>
#include <string_view>

#include "platform/files.h"
#include "platform/posix/files/change_place.h"

// What is done at a place once the way to it is open. `about` is the path for the text of an error;
// all but ReadEntry raise RuntimeError as Files does.
namespace quarnel {

// What stands at a name, as the target of a link shows it; a link to nothing shows itself. False
// with errno when the name is gone. `path` is the same place for calls that have no "at" form.
bool ReadEntry(int folder, const char* name, const std::string& path, DirectoryEntry& entry);

void RequireExists(const ChangePlace& place, std::string_view about);
void RefuseReadOnly(const ChangePlace& place, std::string_view about);
void DeleteAt(const ChangePlace& place, std::string_view about);
void SetAttributesAt(const ChangePlace& place, uint32_t attributes, std::string_view about);
FileTimes TimesAt(const ChangePlace& place);
void SetTimesAt(const ChangePlace& place, const FileTimes& times, std::string_view about);
// Both must be no folders, and what stands at the target must not be read-only.
void RequireReplaceable(const ChangePlace& source, const ChangePlace& target,
                        std::string_view about);
void RenameAt(const ChangePlace& source, const ChangePlace& target, std::string_view about);

}  // namespace quarnel
