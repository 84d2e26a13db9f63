#include "signatures/signature_tool.h"

#include <filesystem>
#include <ostream>
#include <string_view>
#include <system_error>

#include "base/host_files.h"
#include "base/runtime_error.h"
#include "signatures/compiler.h"

namespace quarnel {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kUsage =
    "usage:\n"
    "  quarnel-signatures compile SOURCE_DIR OUT_DIR\n"
    "      makes a set of signature files from plain text\n"
    "  quarnel-signatures show FILE\n"
    "      shows a signature file as plain text\n";

int Compile(const std::string& sourceFolder, const std::string& outFolder, std::ostream& out,
            std::ostream& errors) {
  SignatureSources sources;
  bool any = false;
  for (const SourceFile& file : SourceFiles()) {
    try {
      sources.*file.text = ReadHostFile(HostText(HostPath(sourceFolder) / HostPath(file.name)));
      any = true;
    } catch (const RuntimeError& error) {
      if (error.Number() != ErrorNumber::kFileNotFound) throw;
      errors << file.name << ": not there, taken as empty\n";
    }
  }
  if (!any) {
    errors << sourceFolder << ": holds no signature sources\n";
    return 1;
  }
  const CompiledSet set = CompileSet(sources);
  for (const SourceError& error : set.errors) errors << error.Text() << '\n';
  if (!set.errors.empty()) return 1;
  std::error_code ignored;
  fs::create_directories(HostPath(outFolder), ignored);
  for (const CompiledFile& file : set.files) {
    WriteHostFile(HostText(HostPath(outFolder) / HostPath(file.name)), file.bytes);
  }
  out << set.files.size() << " files written to " << outFolder << '\n';
  return 0;
}

int Show(const std::string& file, std::ostream& out, std::ostream& errors) {
  const auto text = ShowSignatureFile(HostText(HostPath(file).filename()), ReadHostFile(file));
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
  const std::string command = arguments.empty() ? std::string() : arguments[0];
  try {
    if (arguments.size() == 3 && command == "compile") {
      return Compile(arguments[1], arguments[2], out, errors);
    }
    if (arguments.size() == 2 && command == "show") return Show(arguments[1], out, errors);
  } catch (const RuntimeError& error) {
    errors << "quarnel-signatures: " << error.Description() << '\n';
    return 1;
  }
  const bool asked = arguments.size() == 1 && command == "--help";
  (asked ? out : errors) << kUsage;
  return asked ? 0 : 2;
}

}  // namespace quarnel
