#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/files.h"
#include "platform/posix/files/change_place.h"

// Open files. Only plain files are opened: a pipe or a device under a machine's drive would hold
// the program up. `about` is the path for the text of an error.
namespace quarnel {

// Windows knows no right to run a file: what is called a program may be run.
bool IsProgramName(std::string_view name);

// Null when nothing stands there.
std::unique_ptr<File> OpenForReading(const std::string& host, std::string_view about);
// The same for the name itself, which must be no link.
std::unique_ptr<File> OpenForReading(const ChangePlace& place, std::string_view about);
// The same for a host name in an open folder.
std::unique_ptr<File> OpenForReading(int folder, const std::string& name, std::string_view about);
std::unique_ptr<File> OpenForWriting(const ChangePlace& place, std::string_view about,
                                     OpenMode mode);

// Makes or replaces the file at `target` with content, attributes and time of the one at `host`.
// What was made of it is deleted when that fails.
void CopyFile(const std::string& host, std::string_view about, const ChangePlace& target,
              std::string_view aboutTarget);
// The same of the file that has the name itself, which must be no link.
void CopyFile(const ChangePlace& source, std::string_view about, const ChangePlace& target,
              std::string_view aboutTarget);

// Lets the system begin to write the file's content to the disk: where several are to be waited
// for, they then go there together.
void BeginSync(const ChangePlace& place);

// Returns when the file's content is on the disk.
void SyncFile(const ChangePlace& place, std::string_view about);

}  // namespace quarnel
