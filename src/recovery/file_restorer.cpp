#include "recovery/file_restorer.h"

#include <memory>
#include <utility>

#include "base/text.h"
#include "recovery/safe_path.h"

namespace quarnel {
namespace {

// A batch is no larger than what may be left under temporary names by a crash without a burden.
constexpr size_t kMostFiles = 1000;
constexpr uint64_t kMostBytes = uint64_t{64} << 20;

template <typename Action>
std::optional<RuntimeError> TroubleOf(Action&& action) {
  try {
    action();
  } catch (const RuntimeError& error) {
    return error;
  }
  return std::nullopt;
}

}  // namespace

void RequireBelow(std::string_view root, std::string_view path) {
  if (const std::string_view reason = WhyUnsafeBelow(root, path); !reason.empty()) {
    throw RuntimeError(ErrorNumber::kBadFileName, reason);
  }
}

FileRestorer::~FileRestorer() {
  for (const std::string& temporary : temporaries_) {
    IgnoringErrors([&] { files_.Delete(temporary); });
  }
}

std::optional<DirectoryEntry> FileRestorer::Stat(const std::string& path) {
  if (taken_.contains(ToUpper(TemporaryName(path)))) Settle();
  return files_.Stat(path);
}

void FileRestorer::Put(Item item) {
  const std::string temporary = TemporaryName(item.path);
  // Two names may come to the same one.
  if (taken_.contains(ToUpper(temporary))) Settle();
  // Neighbours come in a row: their folder is looked for once.
  std::string folder = item.path.substr(0, item.path.rfind('\\'));
  if (folder != folder_) CreateFolders(files_, folder);
  folder_ = std::move(folder);
  const auto discard = [&] { files_.Delete(temporary); };
  IgnoringErrors(discard);
  try {
    {
      const std::unique_ptr<File> file = files_.Open(temporary, OpenMode::kCreate);
      item.source([&](std::string_view piece) {
        file->Write(piece);
        bytes_ += piece.size();
      });
    }
    if (item.finish) item.finish(temporary);
  } catch (...) {
    folder_.clear();
    IgnoringErrors(discard);
    throw;
  }
  item.source = nullptr;
  written_.push_back(std::move(item));
  temporaries_.push_back(temporary);
  taken_.insert(ToUpper(temporary));
  if (written_.size() >= kMostFiles || bytes_ >= kMostBytes) Settle();
}

void FileRestorer::Place(const Item& item, const std::string& temporary) {
  try {
    return files_.PutInPlace(temporary, item.path);
  } catch (const RuntimeError&) {
    // A read-only file is in the way no longer than the new one takes to come.
    const auto present = files_.Stat(item.path);
    if (!present || (present->attributes & file_attribute::kReadOnly) == 0) throw;
    files_.SetAttributes(item.path, present->attributes & ~file_attribute::kReadOnly);
  }
  files_.PutInPlace(temporary, item.path);
}

void FileRestorer::Settle() {
  if (written_.empty()) return;
  const std::vector<Item> items = std::exchange(written_, {});
  const std::vector<std::string> temporaries = std::exchange(temporaries_, {});
  taken_.clear();
  bytes_ = 0;
  const auto unflushed = TroubleOf([&] { files_.FlushAll(temporaries); });
  std::vector<std::string> paths;
  std::vector<const Item*> placed;
  for (size_t i = 0; i < items.size(); ++i) {
    const auto trouble =
        unflushed ? unflushed : TroubleOf([&] { Place(items[i], temporaries[i]); });
    if (trouble) {
      IgnoringErrors([&] { files_.Delete(temporaries[i]); });
      items[i].failed(*trouble);
    } else {
      paths.push_back(items[i].path);
      placed.push_back(&items[i]);
    }
  }
  const auto unnamed = TroubleOf([&] { files_.FlushAll(paths); });
  for (const Item* item : placed) {
    const auto trouble = unnamed ? unnamed : TroubleOf(item->placed);
    if (trouble) item->failed(*trouble);
  }
}

}  // namespace quarnel
