#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include "platform/files.h"
#include "platform/machine.h"

namespace quarnel {

// The number of the line of a text that holds a position, from 1.
size_t LineNumber(std::string_view text, size_t position);

// The deciphered text of QNLESig.dll with an index of every hash in it. It answers what a search of
// the whole text for a hash would find, without the search: the hash may stand anywhere, also in a
// name, its letter case does not matter, and its first place counts.
class HashIndex {
 public:
  // An empty text, in which nothing is found.
  HashIndex();
  // Takes over a copy of a text.
  explicit HashIndex(std::string_view text);
  ~HashIndex();
  HashIndex(HashIndex&& other) noexcept;
  HashIndex& operator=(HashIndex&& other) noexcept;

  // Reads an enciphered signature file straight into the text that LoadSignatures gives, with up to
  // `workers` threads. `goesOn` is asked on the caller's thread every few milliseconds; once it
  // answers false the work ends soon, with an empty text. No plain text reaches the disk. Raises
  // what LoadSignatures raises.
  static HashIndex Load(Files& files, Machine& machine, std::string_view sFileName,
                        size_t workers = 2, const std::function<bool()>& goesOn = {});

  std::string_view Text() const;

  // The first position of `hash` in the text, letter case folded; nothing when it is not there. Any
  // number of threads may ask at a time. 32 hexadecimal digits, and the 32 blanks that stand for
  // the hash of a file that cannot be read, are looked up; any other text is searched for.
  std::optional<size_t> Find(std::string_view hash) const;

 private:
  class Data;
  std::unique_ptr<Data> data_;
};

}  // namespace quarnel
