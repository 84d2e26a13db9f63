#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/runtime_error.h"
#include "base/text.h"
#include "platform/held_folders.h"

namespace quarnel {

// Files of which the n-th changing operation fails, as if the disk were full or the power went, and
// of which some folders may be changed by somebody else only.
class FailingFiles : public Files {
 public:
  explicit FailingFiles(Files& files) : files_(files) {}
  int failAt = 0;  // 0: never
  int steps = 0;
  std::vector<std::string> denied;  // those folders

  Files& Step(std::string_view path) {
    Changing(path);
    if (++steps == failAt) throw RuntimeError(ErrorNumber::kDiskFull);
    return files_;
  }
  Files& Changing(std::string_view path) {
    for (const std::string& folder : denied) {
      if (StartsWithText(path, folder)) throw RuntimeError(ErrorNumber::kPermissionDenied, path);
    }
    return files_;
  }
  Files& WithoutLinks() override { return *this; }
  std::optional<DirectoryEntry> Look(std::string_view path) override { return files_.Look(path); }
  std::vector<DirectoryEntry> List(std::string_view folder) override { return files_.List(folder); }
  std::unique_ptr<File> Open(std::string_view path, OpenMode mode) override {
    if (mode == OpenMode::kRead) return files_.Open(path, mode);
    return std::make_unique<FailingFile>(*this, Step(path).Open(path, mode));
  }
  std::unique_ptr<HeldFolders> HoldFolders() override {
    return std::make_unique<HeldFoldersByPath>(*this, [this](const std::string& folder) {
      return std::make_unique<HeldFolderByPath>(*this, folder);
    });
  }
  void Delete(std::string_view path) override { Changing(path).Delete(path); }
  void DeleteFolder(std::string_view path) override { Changing(path).DeleteFolder(path); }
  void CreateFolder(std::string_view path) override { Changing(path).CreateFolder(path); }
  void Move(std::string_view from, std::string_view to) override { Changing(to).Move(from, to); }
  void ReplaceFile(std::string_view from, std::string_view to) override {
    Step(to).ReplaceFile(from, to);
  }
  void Copy(std::string_view from, std::string_view to) override { Changing(to).Copy(from, to); }
  void SetAttributes(std::string_view path, uint32_t attributes) override {
    Changing(path).SetAttributes(path, attributes);
  }
  FileTimes Times(std::string_view path) override { return files_.Times(path); }
  void SetTimes(std::string_view path, const FileTimes& times) override {
    Changing(path).SetTimes(path, times);
  }

 private:
  struct FailingFile : File {
    FailingFile(FailingFiles& all, std::unique_ptr<File> file)
        : all_(all), file_(std::move(file)) {}
    size_t Read(std::span<char> buffer) override { return file_->Read(buffer); }
    void Write(std::string_view bytes) override {
      file_->Write(bytes.substr(0, bytes.size() / 2));
      all_.Step({});
      file_->Write(bytes.substr(bytes.size() / 2));
    }
    void Seek(uint64_t position) override { file_->Seek(position); }
    uint64_t Size() override { return file_->Size(); }
    void Flush() override {
      all_.Step({});
      file_->Flush();
    }
    FailingFiles& all_;
    std::unique_ptr<File> file_;
  };
  Files& files_;
};

}  // namespace quarnel
