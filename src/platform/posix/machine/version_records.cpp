#include <string>

#include "base/runtime_error.h"
#include "platform/posix/backends.h"
#include "platform/posix/machine/pe_reader.h"

namespace quarnel {
namespace {

class PeVersionRecords : public VersionRecords {
 public:
  explicit PeVersionRecords(Files& files) : files_(files) {}

  std::optional<FixedVersionRecord> Fixed(std::string_view path) override {
    try {
      const auto file = files_.Open(path, OpenMode::kRead);
      const auto resource = FindVersionResource([&](uint64_t offset, size_t size) {
        std::string bytes(size, '\0');
        size_t done = 0;
        file->Seek(offset);
        while (done < size) {
          const size_t read = file->Read(std::span(bytes).subspan(done));
          if (read == 0) break;
          done += read;
        }
        bytes.resize(done);
        return bytes;
      });
      if (resource) return FixedFromVersionResource(*resource);
    } catch (const RuntimeError&) {
      // A file that cannot be read has no record.
    }
    return std::nullopt;
  }

 private:
  Files& files_;
};

}  // namespace

std::unique_ptr<VersionRecords> MakeVersionRecords(Files& files) {
  return std::make_unique<PeVersionRecords>(files);
}

}  // namespace quarnel
