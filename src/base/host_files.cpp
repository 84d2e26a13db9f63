#include "base/host_files.h"

#include <fstream>
#include <system_error>

#include "base/runtime_error.h"

namespace quarnel {

namespace fs = std::filesystem;

fs::path HostPath(std::string_view text) { return {std::u8string(text.begin(), text.end())}; }

std::string HostText(const fs::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

std::string ReadHostFile(const std::string& path, uint64_t limit) {
  const fs::path host = HostPath(path);
  std::error_code error;
  const fs::file_status status = fs::status(host, error);
  if (!fs::exists(status)) throw RuntimeError(ErrorNumber::kFileNotFound, path, error.value());
  if (!fs::is_regular_file(status)) throw RuntimeError(ErrorNumber::kPathFileAccess, path);
  const uintmax_t size = fs::file_size(host, error);
  if (size > limit) throw RuntimeError(ErrorNumber::kOverflow, path, error.value());
  std::ifstream stream(host, std::ios::binary);
  if (!stream) throw RuntimeError(ErrorNumber::kPathFileAccess, path);
  std::string bytes(static_cast<size_t>(size), '\0');
  stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (stream.bad()) throw RuntimeError(ErrorNumber::kDeviceError, path);
  bytes.resize(static_cast<size_t>(stream.gcount()));
  return bytes;
}

void WriteHostFile(const std::string& path, std::string_view bytes) {
  std::ofstream stream(HostPath(path), std::ios::binary | std::ios::trunc);
  if (!stream) throw RuntimeError(ErrorNumber::kPathFileAccess, path);
  stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  stream.close();
  if (stream.fail()) throw RuntimeError(ErrorNumber::kDeviceError, path);
}

}  // namespace quarnel
