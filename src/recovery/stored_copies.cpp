#include "recovery/stored_copies.h"

#include <algorithm>
#include <utility>

#include "base/runtime_error.h"

namespace quarnel {
namespace {

constexpr size_t kPiece = size_t{1} << 18;

}  // namespace

StoredCopies::StoredCopies(Files& files, std::string archivePath)
    : files_(files), path_(std::move(archivePath)), buffer_(kPiece, '\0') {}

void StoredCopies::Read(const FileItem& item,
                        const std::function<void(std::string_view piece)>& take) {
  if (!archive_) archive_ = files_.Open(path_, OpenMode::kRead);
  archive_->Seek(item.offset);
  Sha256 hash;
  for (uint64_t left = item.size; left > 0;) {
    const auto wanted = static_cast<size_t>(std::min<uint64_t>(left, buffer_.size()));
    const size_t count = archive_->Read({buffer_.data(), wanted});
    if (count == 0) break;
    const std::string_view piece(buffer_.data(), count);
    hash.Update(piece);
    left -= count;
    // The last piece is handed over only when all are known to be right.
    if (left > 0) take(piece);
    if (left == 0 && hash.Finish() == item.digest) return take(piece);
  }
  if (item.size == 0 && hash.Finish() == item.digest) return;
  throw RuntimeError(ErrorNumber::kDeviceError, "the copy is damaged");
}

}  // namespace quarnel
