#include "core/own_files.h"

#include <utility>
#include <vector>

#include "base/runtime_error.h"
#include "core/paths.h"
#include "core/product.h"
#include "platform/held_folders.h"

namespace quarnel {
namespace {

std::string UsersFolder(Machine& machine) {
  const std::string data = GetSpecialFolderPath(machine, csidl::kAppData);
  return data.empty() ? data : data + std::string(kProductName);
}

// The user's own copy of a file; empty when he has no folder for such.
std::string UsersCopy(Machine& machine, std::string_view path) {
  const std::string folder = UsersFolder(machine);
  return folder.empty() ? folder : folder + "\\" + FileName_Parse(path);
}

// Whether a failure means that another user might have done it.
bool IsForbidden(const RuntimeError& error) {
  return error.Number() == ErrorNumber::kPermissionDenied;
}

void Forget(Files& files, const std::string& copy) {
  if (!copy.empty() && files.Stat(copy)) IgnoringErrors([&] { files.Delete(copy); });
}

// Runs `described`, and `users` with the user's folder where the first may not be done.
template <typename Described, typename Users>
bool WriteEither(Files& files, Machine& machine, Described&& described, Users&& users) {
  try {
    described();
    return true;
  } catch (const RuntimeError& error) {
    const std::string folder = UsersFolder(machine);
    if (!IsForbidden(error) || folder.empty()) throw;
    CreateFolders(files, folder);
    users();
    return false;
  }
}

}  // namespace

std::string OwnFileToRead(Files& files, Machine& machine, std::string_view path) {
  std::string copy = UsersCopy(machine, path);
  const auto users = copy.empty() ? std::nullopt : files.Stat(copy);
  if (!users) return std::string(path);
  // It was written because the other could not be: of two of one moment it is the later.
  const auto described = files.Stat(path);
  return described && described->modified > users->modified ? std::string(path) : copy;
}

std::string OwnFileToWrite(Files& files, Machine& machine, std::string_view path) {
  std::string place(path);
  const auto open = [&] { files.Open(place, OpenMode::kReadWrite); };
  WriteEither(files, machine, open, [&] {
    place = UsersCopy(machine, path);
    open();
  });
  return place;
}

void ReplaceOwnFile(Files& files, Machine& machine, std::string_view path, std::string_view bytes) {
  const std::string copy = UsersCopy(machine, path);
  const bool atItsPlace = WriteEither(
      files, machine, [&] { ReplaceWholeFile(files, path, bytes); },
      [&] { ReplaceWholeFile(files, copy, bytes); });
  // A clock that was set back must not let the older copy win.
  if (atItsPlace) Forget(files, copy);
}

void ReplaceOwnFiles(Files& files, Machine& machine, std::span<const WholeFile> wanted) {
  std::vector<WholeFile> copies;
  for (const WholeFile& file : wanted) {
    copies.push_back({UsersCopy(machine, file.path), file.bytes});
  }
  const bool atTheirPlaces = WriteEither(
      files, machine, [&] { ReplaceWholeFiles(files, wanted); },
      [&] { ReplaceWholeFiles(files, copies); });
  if (!atTheirPlaces) return;
  for (const WholeFile& copy : copies) Forget(files, copy.path);
}

void AppendToOwnFile(Files& files, Machine& machine, std::string_view path,
                     std::string_view bytes) {
  WriteEither(
      files, machine, [&] { AppendToFile(files, path, bytes); },
      [&] { AppendToFile(files, UsersCopy(machine, path), bytes); });
}

std::string OwnFolderToWrite(Files& files, Machine& machine, std::string_view path) {
  std::string folder(path);
  // Whether files can be made in a folder shows when one is. What lies in it is on the disk only
  // when it is.
  const auto tryOut = [&] {
    const auto folders = files.HoldFolders();
    folders->Make(folder);
    folders->Flush();
    const std::string probe = TemporaryName(folder + "\\probe");
    files.Open(probe, OpenMode::kReadWrite);
    files.Delete(probe);
  };
  WriteEither(files, machine, tryOut, [&] {
    folder = UsersCopy(machine, path);
    tryOut();
  });
  return folder;
}

std::vector<std::string> OwnFolders(Machine& machine, std::string_view path) {
  std::vector<std::string> folders{std::string(path)};
  if (std::string copy = UsersCopy(machine, path); !copy.empty()) {
    folders.push_back(std::move(copy));
  }
  return folders;
}

void DeleteOwnFile(Files& files, Machine& machine, std::string_view path) {
  const std::string copy = UsersCopy(machine, path);
  if (!files.Stat(path)) return Forget(files, copy);
  const bool deleted = WriteEither(
      files, machine, [&] { files.Delete(path); }, [&] { ReplaceWholeFile(files, copy, {}); });
  if (deleted) Forget(files, copy);
}

}  // namespace quarnel
