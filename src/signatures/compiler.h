#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// The signature compiler: from source texts that people write to the files that the scan reads, and
// back. Pure functions of bytes; signature_tool.h has the command line around them.
namespace quarnel {

// The texts of the source files, as they stand on the disk. In all but the levels a line that is
// empty or begins with "#" is skipped. An absent file is an empty text.
struct SignatureSources {
  std::string registry;        // QNLRSig.txt: seven fields separated by ","
  std::string files;           // QNLFSig.txt: seven fields separated by ","
  std::string programs;        // QNLESig.txt: hash^type code^threat name
  std::string blockedCookies;  // QNLBlkCoo.txt: one domain pattern a line
  std::string activeX;         // QNLImmData.txt: control name,{class identifier}
  std::string levels;          // QNLSigLevel.ini: the section "Level", taken over as it is
};

// One source file: its name and the member that holds its text.
struct SourceFile {
  std::string_view name;
  std::string SignatureSources::*text;
};
std::span<const SourceFile> SourceFiles();

// What is wrong with a line, for a person to read: "QNLFSig.txt:12: the hash has 31 digits".
struct SourceError {
  std::string file;
  size_t line = 0;  // from 1
  std::string reason;

  std::string Text() const { return file + ':' + std::to_string(line) + ": " + reason; }
};

struct CompiledFile {
  std::string name;  // "QNLRSig.dll"
  std::string bytes;
};

// The compiler stops at so many errors.
inline constexpr size_t kMostSourceErrors = 1000;

// Either the whole set of files or, when any line was refused, the first errors in the order of
// files and lines and no file.
struct CompiledSet {
  std::vector<CompiledFile> files;
  std::vector<SourceError> errors;
};

// Makes every file of the set. Nothing passes that the readers could not read back as it was meant:
// a line is refused for a wrong number of fields, a hash, code or identifier of a wrong form, bytes
// that a reader would drop or take for a line's end, a length over kLongestLine, a registry key
// that stands for a whole hive, and a threat's name in a second spelling of its letter case.
CompiledSet CompileSet(const SignatureSources& sources);

// The source text of a signature file, whose kind its name tells (letter case ignored); nothing for
// a name that is none of the set's. For a file that CompileSet made, compiling the text gives the
// same bytes again. Any other bytes give what the program's readers would see in them.
std::optional<std::string> ShowSignatureFile(std::string_view name, std::string_view bytes);

}  // namespace quarnel
