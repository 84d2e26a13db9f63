#include "signatures/signature_tool.h"

#include <filesystem>
#include <fstream>
#include <optional>
#include <ostream>
#include <string_view>
#include <system_error>

#include "signatures/compiler.h"

namespace quarnel {
namespace {

namespace fs = std::filesystem;

// Texts are UTF-8 on every system; a path has its own form on some.
fs::path PathOf(std::string_view text) { return {std::u8string(text.begin(), text.end())}; }

// The whole content of an ordinary file; nothing when it cannot be read. Pipes and devices are left
// alone: they may never end.
std::optional<std::string> ReadHostFile(const fs::path& path) {
  std::error_code error;
  if (!fs::is_regular_file(path, error)) return std::nullopt;
  const uintmax_t size = fs::file_size(path, error);
  std::ifstream stream(path, std::ios::binary);
  if (error || !stream) return std::nullopt;
  std::string bytes(static_cast<size_t>(size), '\0');
  stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (stream.bad()) return std::nullopt;
  bytes.resize(static_cast<size_t>(stream.gcount()));
  return bytes;
}

bool WriteHostFile(const fs::path& path, std::string_view bytes) {
  std::ofstream stream(path, std::ios::binary | std::ios::trunc);
  stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  stream.close();
  return !stream.fail();
}

int Compile(const std::string& sourceFolder, const std::string& outFolder, std::ostream& out,
            std::ostream& errors) {
  SignatureSources sources;
  bool any = false;
  for (const SourceFile& file : SourceFiles()) {
    const fs::path path = PathOf(sourceFolder) / PathOf(file.name);
    std::error_code ignored;
    if (!fs::exists(path, ignored)) {
      errors << file.name << ": not there, taken as empty\n";
      continue;
    }
    auto text = ReadHostFile(path);
    if (!text) {
      errors << file.name << ": cannot be read\n";
      return 1;
    }
    sources.*file.text = std::move(*text);
    any = true;
  }
  if (!any) {
    errors << sourceFolder << ": holds no signature sources\n";
    return 1;
  }
  const CompiledSet set = CompileSet(sources);
  for (const SourceError& error : set.errors) errors << error.Text() << '\n';
  if (!set.errors.empty()) return 1;
  std::error_code ignored;
  fs::create_directories(PathOf(outFolder), ignored);
  for (const CompiledFile& file : set.files) {
    if (!WriteHostFile(PathOf(outFolder) / PathOf(file.name), file.bytes)) {
      errors << file.name << ": cannot be written to " << outFolder << '\n';
      return 1;
    }
  }
  out << set.files.size() << " files written to " << outFolder << '\n';
  return 0;
}

int Show(const std::string& file, std::ostream& out, std::ostream& errors) {
  const fs::path path = PathOf(file);
  const auto bytes = ReadHostFile(path);
  if (!bytes) {
    errors << file << ": cannot be read\n";
    return 1;
  }
  const std::u8string fileName = path.filename().u8string();
  const auto text = ShowSignatureFile(std::string(fileName.begin(), fileName.end()), *bytes);
  if (!text) {
    errors << file << ": not the name of a signature file\n";
    return 1;
  }
  out << *text;
  return 0;
}

}  // namespace

int RunSignatureTool(const std::vector<std::string>& arguments, std::ostream& out,
                     std::ostream& errors) {
  if (arguments.size() == 3 && arguments[0] == "compile") {
    return Compile(arguments[1], arguments[2], out, errors);
  }
  if (arguments.size() == 2 && arguments[0] == "show") return Show(arguments[1], out, errors);
  errors << "usage: quarnel-signatures compile SOURCE_DIR OUT_DIR | show FILE\n";
  return 2;
}

}  // namespace quarnel
