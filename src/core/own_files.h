#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"
#include "platform/machine.h"

// The files that the program writes for itself: lists, records, results, the log. Each has its one
// described path, in the folder of the system or of the program. A user who may not write there has
// a copy of his own below his application data; readers take the newer of both.
namespace quarnel {

// Where the file is to be read, whether or not anything stands there.
std::string OwnFileToRead(Files& files, Machine& machine, std::string_view path);

// Where the file is to be written by one who opens it himself. It is made when there is none.
// Raises when it may be written nowhere.
std::string OwnFileToWrite(Files& files, Machine& machine, std::string_view path);

// As ReplaceWholeFile, ReplaceWholeFiles and AppendToFile. Files that are replaced together stand
// together, at their own places or all in the user's folder.
void ReplaceOwnFile(Files& files, Machine& machine, std::string_view path, std::string_view bytes);
void ReplaceOwnFiles(Files& files, Machine& machine, std::span<const WholeFile> wanted);
void AppendToOwnFile(Files& files, Machine& machine, std::string_view path, std::string_view bytes);

// The same for a folder of the program's own whose files are told apart by their names: where new
// ones go, and where they are to be looked for, the described place first. It is made when there is
// none. Raises when it may be written nowhere.
std::string OwnFolderToWrite(Files& files, Machine& machine, std::string_view path);
std::vector<std::string> OwnFolders(Machine& machine, std::string_view path);

// After this the file reads as missing, or as empty where the described one may not be deleted.
void DeleteOwnFile(Files& files, Machine& machine, std::string_view path);

}  // namespace quarnel
