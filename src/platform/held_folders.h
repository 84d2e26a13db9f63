#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"
#include "platform/names.h"

namespace quarnel {

// A folder to make many files in, whose way was looked up once. It is held: as long as this lives,
// what is done here is done in that very folder, whatever another program puts in its place or in
// that of a folder above. Operations take names in this folder, in any letter case, and do what
// those of Files do for paths, but never follow a link that has the name. A name that is made by
// other means meanwhile may be missed in other letter cases than its own.
class HeldFolder {
 public:
  virtual ~HeldFolder() = default;
  virtual std::optional<DirectoryEntry> Stat(std::string_view name) = 0;
  virtual std::unique_ptr<File> OpenForReading(std::string_view name) = 0;
  // Makes a file to write to. One that had the name is deleted, and so is a link.
  virtual std::unique_ptr<File> Create(std::string_view name) = 0;
  virtual void Delete(std::string_view name) = 0;
  virtual void SetAttributes(std::string_view name, uint32_t attributes) = 0;
  virtual void SetTimes(std::string_view name, const FileTimes& times) = 0;
  // Puts `from` in the place of `to`, in one step that a crash cannot tear if `from` was flushed.
  virtual void PutInPlace(std::string_view from, std::string_view to) = 0;
};

// The folders that are held for a batch of files.
class HeldFolders {
 public:
  virtual ~HeldFolders() = default;
  // The folder at a path, the same object at each call. Null when there is none, or none that may
  // be entered.
  virtual HeldFolder* Find(const std::string& path) = 0;
  // The same, but makes what is missing of the way. Raises RuntimeError as Files does.
  virtual HeldFolder& Make(const std::string& path) = 0;
  virtual size_t Count() const = 0;
  // Returns when all that was made in these folders since the last call is on the disk: the content
  // of files, their names, and those of folders that were made. Many files at once cost little more
  // than one where the system can wait for all. Raises RuntimeError.
  virtual void Flush() = 0;
};

// A path as folders that are held take it: a drive's root keeps its backslash, and a bare name lies
// in the program's folder.
struct PathParts {
  std::string folder;
  std::string name;
};
PathParts PartsOf(const std::string& path);
// The path of a name in a folder, which may be a drive's root.
std::string PathIn(std::string_view folder, std::string_view name);

// Raises kBadFileName for what is not the name of a file in a folder.
void RequireName(std::string_view name);

// A folder by its path, for a backend whose calls take whole paths. Whoever makes it holds the way.
class HeldFolderByPath : public HeldFolder {
 public:
  HeldFolderByPath(Files& files, std::string path) : files_(files), path_(std::move(path)) {}

  std::optional<DirectoryEntry> Stat(std::string_view name) override;
  std::unique_ptr<File> OpenForReading(std::string_view name) override;
  std::unique_ptr<File> Create(std::string_view name) override;
  void Delete(std::string_view name) override;
  void SetAttributes(std::string_view name, uint32_t attributes) override;
  void SetTimes(std::string_view name, const FileTimes& times) override;
  void PutInPlace(std::string_view from, std::string_view to) override;
  // Returns when the content of the files that were made is on the disk.
  void Flush();

 private:
  std::string PathOf(std::string_view name) const;
  // Gives a file its name; it is flushed already.
  virtual void Replace(const std::string& from, const std::string& to);

  Files& files_;
  std::string path_;
  std::vector<std::string> unflushed_;  // names
};

class HeldFoldersByPath : public HeldFolders {
 public:
  // `hold` takes the path of a folder that stands, and raises when it may not be entered.
  using Hold = std::function<std::unique_ptr<HeldFolderByPath>(const std::string& path)>;
  HeldFoldersByPath(Files& files, Hold hold) : files_(files), hold_(std::move(hold)) {}

  HeldFolder* Find(const std::string& path) override;
  HeldFolder& Make(const std::string& path) override;
  size_t Count() const override { return folders_.size(); }
  void Flush() override;

 private:
  Files& files_;
  Hold hold_;
  std::map<std::string, std::unique_ptr<HeldFolderByPath>, LessNames> folders_;
};

}  // namespace quarnel
