#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// The line cipher of the signature files. It keeps their text out of plain sight and is no
// protection: a text is mirrored, and the bytes of a constant key, repeated, are added to it.
namespace quarnel {

inline constexpr std::string_view kCipherKey = "MELKORAN";

// Lines of a signature file are no longer than this: their positions are 16-bit numbers with a sign
// in the format's definition.
inline constexpr size_t kLongestLine = 32767;

// A text of odd length gets one blank at its end first, so it comes back from Decrypt with that
// blank. An empty text stays empty. Any length is taken.
std::string Encrypt(std::string_view plain);

std::string Decrypt(std::string_view cipher);

// Replaces `plain` by the deciphered text, in a buffer that can be used again and again. The two
// must not overlap.
void DecryptInto(std::string_view cipher, std::string& plain);

// The instructions that deciphering may use. One that the processor lacks is replaced by the best
// that it has; tests and measurements choose.
enum class CipherLevel { kPortable, kSsse3, kAvx2 };
CipherLevel BestCipherLevel();

// Deciphers to `plain`, which has room for cipher.size() characters and does not overlap it.
void DecryptTo(std::string_view cipher, char* plain, CipherLevel level = BestCipherLevel());

// Deciphers the lines at the front of `bytes` and keeps their ends, so that each character of the
// text stands at the place of its byte. It stops at a line that does not end at CR LF, or is longer
// than kLongestLine, and returns how many bytes it took. `text` has room for all of `bytes` and
// does not overlap it; what stands behind the lines taken is lost.
size_t DecryptLines(std::string_view bytes, char* text, CipherLevel level = BestCipherLevel());

}  // namespace quarnel
