#include "recovery/file_restorer.h"

#include <memory>

#include "base/runtime_error.h"
#include "recovery/safe_path.h"

namespace quarnel {

void RequireBelow(std::string_view root, std::string_view path) {
  if (const std::string_view reason = WhyUnsafeBelow(root, path); !reason.empty()) {
    throw RuntimeError(ErrorNumber::kBadFileName, reason);
  }
}

void FileRestorer::Put(const std::string& path, const Source& source,
                       const std::function<void(const std::string& temporary)>& finish) {
  const std::string folder = path.substr(0, path.rfind('\\'));
  CreateFolders(files_, folder);
  const std::string temporary = TemporaryName(path);
  const auto discard = [&] { files_.Delete(temporary); };
  IgnoringErrors(discard);
  try {
    {
      const std::unique_ptr<File> file = files_.Open(temporary, OpenMode::kCreate);
      source([&](std::string_view piece) { file->Write(piece); });
    }
    if (finish) finish(temporary);
    // Sees the bytes onto the disk first.
    files_.ReplaceFile(temporary, path);
  } catch (...) {
    IgnoringErrors(discard);
    throw;
  }
}

}  // namespace quarnel
