#include "signatures/complement.h"

#include <algorithm>
#include <array>
#include <span>

#include "base/text.h"
#include "controls/host.h"
#include "core/existing_files.h"

namespace quarnel {
namespace {

using Piece = std::array<char, 65536>;

// Reads until the buffer is full or the file ends.
std::span<char> ReadPiece(File& file, Piece& piece) {
  size_t filled = 0;
  while (filled < piece.size()) {
    const size_t count = file.Read(std::span(piece).subspan(filled));
    if (count == 0) break;
    filled += count;
  }
  return std::span(piece).first(filled);
}

char Complement(char c) { return static_cast<char>(~c); }

// Puts what the target holds into the places that the source's zero bytes leave alone.
void MergeTarget(std::span<char> piece, File& target, uint64_t position) {
  Piece old{};
  target.Seek(position);
  ReadPiece(target, old);
  for (size_t i = 0; i < piece.size(); ++i) {
    piece[i] = piece[i] == 0 ? old[i] : Complement(piece[i]);
  }
}

void WriteComplement(File& source, File& target) {
  Piece buffer;
  uint64_t position = 0;
  for (std::span<char> piece = ReadPiece(source, buffer); !piece.empty();
       piece = ReadPiece(source, buffer)) {
    // What follows the last written byte must not make the target longer.
    const auto last = std::find_if(piece.rbegin(), piece.rend(), [](char c) { return c != 0; });
    const size_t written = static_cast<size_t>(piece.rend() - last);
    const std::span<char> kept = piece.first(written);
    if (std::find(kept.begin(), kept.end(), '\0') == kept.end()) {
      std::transform(kept.begin(), kept.end(), kept.begin(), Complement);
    } else {
      MergeTarget(kept, target, position);
    }
    if (!kept.empty()) {
      target.Seek(position);
      target.Write({kept.data(), kept.size()});
    }
    position += piece.size();
  }
}

}  // namespace

std::string ComplementBytes(std::string_view source) {
  const size_t last = source.find_last_not_of('\0');
  std::string result(source.substr(0, last == std::string_view::npos ? 0 : last + 1));
  for (char& c : result) {
    if (c != 0) c = Complement(c);
  }
  return result;
}

bool ComplementFile(const ComplementTools& tools, std::string_view sSource,
                    std::string_view sTarget) {
  const auto tell = [&](std::string text) {
    tools.host.MsgBox({.text = std::move(text),
                       .title = std::string(tools.title),
                       .icon = MessageIcon::kCritical});
  };
  bool done = false;
  Reporting(tools.log, "DecompressFile", [&] {
    if (sSource.empty() || !FileExists(tools.files, sSource)) {
      return tell("Source file " + std::string(sSource) + " not found.");
    }
    if (Trim(sTarget).empty()) return tell("Specify the name of the target file.");
    const auto target = tools.files.Open(sTarget, OpenMode::kReadWrite);
    const auto source = tools.files.Open(sSource, OpenMode::kRead);
    WriteComplement(*source, *target);
    done = true;
  });
  return done;
}

}  // namespace quarnel
