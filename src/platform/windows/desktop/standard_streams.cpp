#include "platform/windows/desktop/standard_streams.h"

#include <fcntl.h>
#include <io.h>

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <string>

#include "base/unicode.h"

namespace quarnel {
namespace {

// How many bytes at the end begin a character and do not complete it.
size_t BytesOfUnfinishedCharacter(std::string_view bytes) {
  const size_t most = std::min<size_t>(bytes.size(), 3);
  for (size_t count = 1; count <= most; ++count) {
    const auto byte = static_cast<unsigned char>(bytes[bytes.size() - count]);
    if (byte < 0x80) return 0;
    if (byte < 0xC0) continue;
    const size_t length = byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
    return count < length ? count : 0;
  }
  return 0;
}

// Not the UTF-8 code page: where older systems write in it they count characters instead of bytes,
// which the C library takes for a failure and prints nothing more.
class ConsoleBuffer : public std::streambuf {
 public:
  explicit ConsoleBuffer(HANDLE console) : console_(console) {}

 protected:
  int_type overflow(int_type next) override {
    if (traits_type::eq_int_type(next, traits_type::eof())) return traits_type::not_eof(next);
    const char byte = traits_type::to_char_type(next);
    return xsputn(&byte, 1) == 1 ? next : traits_type::eof();
  }

  std::streamsize xsputn(const char* bytes, std::streamsize count) override {
    pending_.append(bytes, static_cast<size_t>(count));
    const size_t whole = pending_.size() - BytesOfUnfinishedCharacter(pending_);
    const bool written = Write(ToUtf16(std::string_view(pending_).substr(0, whole)));
    pending_.erase(0, whole);
    return written ? count : 0;
  }

 private:
  bool Write(std::u16string_view text) {
    constexpr size_t kMostAtOnce = 8192;  // older systems have 64 KB for a call
    while (!text.empty()) {
      size_t size = std::min(text.size(), kMostAtOnce);
      const bool isPair = size < text.size() && (text[size - 1] & 0xFC00) == 0xD800;
      if (isPair) --size;
      DWORD count = 0;
      if (!WriteConsoleW(console_, text.data(), static_cast<DWORD>(size), &count, nullptr) ||
          count == 0) {
        return false;
      }
      text.remove_prefix(count);
    }
    return true;
  }

  const HANDLE console_;
  std::string pending_;
};

void Redirect(std::ostream& stream, FILE* file, DWORD standardHandle) {
  _setmode(_fileno(file), _O_BINARY);
  const HANDLE handle = GetStdHandle(standardHandle);
  DWORD mode = 0;
  // Never destroyed, as the stream is flushed when everything else is gone.
  if (GetConsoleMode(handle, &mode)) stream.rdbuf(MakeConsoleBuffer(handle).release());
}

}  // namespace

void PrintUtf8() {
  Redirect(std::cout, stdout, STD_OUTPUT_HANDLE);
  Redirect(std::cerr, stderr, STD_ERROR_HANDLE);
}

std::unique_ptr<std::streambuf> MakeConsoleBuffer(HANDLE console) {
  return std::make_unique<ConsoleBuffer>(console);
}

}  // namespace quarnel
