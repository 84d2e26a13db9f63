#include "signatures/source_rules.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

#include "base/hex.h"
#include "base/runtime_error.h"
#include "base/text.h"
#include "core/like.h"
#include "signatures/cipher.h"
#include "signatures/signature_files.h"
#include "signatures/taxonomy.h"

namespace quarnel {
namespace {

bool IsHexDigit(char c) { return HexDigit(c) >= 0; }

// A text for a message of one line: short, and without what a terminal would obey.
std::string Quoted(std::string_view text) {
  constexpr size_t kMost = 60;
  std::string quoted(text.substr(0, kMost));
  std::replace_if(
      quoted.begin(), quoted.end(), [](char c) { return (c >= 0 && c < ' ') || c == '\x7F'; }, '?');
  return '"' + quoted + (text.size() > kMost ? "...\"" : "\"");
}

// A whole number in plain digits between two bounds.
std::string CheckNumber(std::string_view field, int low, int high) {
  int number = 0;
  const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), number);
  const bool whole = error == std::errc() && end == field.data() + field.size();
  if (whole && number >= low && number <= high) return {};
  return Quoted(field) + " is not a number from " + std::to_string(low) + " to " +
         std::to_string(high);
}

constexpr char kEndMark = '\x1A';

std::string_view NameOfEnd(char c) {
  if (c == '\r') return "a carriage return";
  if (c == '\n') return "a line feed";
  return "an end-of-file mark";
}

}  // namespace

std::string CheckAnything(std::string_view /*field*/) { return {}; }

std::string CheckListText(std::string_view field) {
  for (const std::string_view separator : {"^", "[[]]"}) {
    if (field.find(separator) != std::string_view::npos) {
      return "holds the separator " + Quoted(separator);
    }
  }
  return {};
}

std::string CheckTypeCode(std::string_view field) {
  return CheckNumber(field, 0, static_cast<int>(ThreatTypes().size()) - 1);
}

std::string CheckHiveCode(std::string_view field) {
  return CheckNumber(field, 0, static_cast<int>(Hives().size()) - 1);
}

std::string CheckFolderCode(std::string_view field) {
  // Any code without a folder stands for the path alone.
  return CheckNumber(field, 0, std::numeric_limits<int16_t>::max());
}

std::string CheckHash(std::string_view field) {
  if (field.size() == 32 && std::all_of(field.begin(), field.end(), IsHexDigit)) return {};
  return Quoted(field) + " is not 32 hexadecimal digits";
}

std::string CheckOptionalHash(std::string_view field) {
  return field.empty() ? std::string() : CheckHash(field);
}

std::string CheckPlainField(std::string_view field) {
  if (field.empty()) return "is empty";
  if (field.front() == '"') return "begins with a quotation mark";
  if (field.front() == ' ' || field.front() == '\t') return "begins with a blank";
  return {};
}

std::string CheckClassId(std::string_view field) {
  constexpr std::string_view kForm = "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}";
  const auto fits = [](char c, char form) { return form == 'x' ? IsHexDigit(c) : c == form; };
  if (std::equal(field.begin(), field.end(), kForm.begin(), kForm.end(), fits)) return {};
  return Quoted(field) + " is not of the form " + std::string(kForm);
}

std::string CheckPattern(std::string_view field) {
  if (std::string fault = CheckPlainField(field); !fault.empty()) return fault;
  if (field.size() > kLongestCookiePattern) {
    return "has more than " + std::to_string(kLongestCookiePattern) + " characters";
  }
  if (IgnoringErrors([&] { Like({}, field); })) return {};
  return Quoted(field) + " has a list without its end, or a range that runs backwards";
}

// What the scan makes of such a key is empty, or the user's part of a hive.
std::string KeyFault(std::string_view key, std::string_view valueName) {
  const auto withoutMarkers = [](std::string_view text,
                                 std::initializer_list<std::string_view> all) {
    for (const std::string_view marker : all) {
      if (StartsWithText(text, marker)) text.remove_prefix(marker.size());
    }
    return text;
  };
  if (!withoutMarkers(valueName, {"KVN:"}).empty()) return {};
  // What stands in front of the user's token is dropped.
  constexpr std::string_view kUser = "[[HKEYUSERVALUE]]";
  const size_t user = key.find("[[");
  if (user != std::string_view::npos && key.substr(user).starts_with(kUser)) {
    key.remove_prefix(user);
  }
  std::string path(withoutMarkers(key, {"KEY:", "CB:"}));
  for (size_t begin = path.find("[["); begin != std::string::npos; begin = path.find("[[")) {
    const size_t end = path.find("]]", begin + 2);
    path.erase(begin, end == std::string::npos ? end : end + 2 - begin);
  }
  if (path.find_first_not_of('\\') != std::string::npos) return {};
  return key.empty() ? "neither a key nor a value name"
                     : Quoted(key) + " would stand for a whole hive";
}

std::string CipherFault(std::string_view line) {
  const std::string cipher = Encrypt(line);
  if (cipher.size() > kLongestLine) {
    return std::to_string(line.size()) + " characters; a line has at most " +
           std::to_string(kLongestLine - 1);
  }
  const size_t bad = cipher.find_first_of("\r\n\x1A");
  if (bad == std::string::npos) return {};
  // The cipher is the mirror image: its first byte belongs to the last character.
  return "byte " + std::to_string(cipher.size() - bad) + " would be enciphered to " +
         std::string(NameOfEnd(cipher[bad])) + "; re-word the line";
}

std::string ComplementFault(std::string_view line) {
  if (line.size() > kLongestLine) {
    return std::to_string(line.size()) + " characters; a line has at most " +
           std::to_string(kLongestLine);
  }
  constexpr std::array<char, 3> kLost = {'\0', '\xFF', kEndMark};
  const size_t bad = line.find_first_of({kLost.data(), kLost.size()});
  if (bad == std::string_view::npos) return {};
  const int value = static_cast<unsigned char>(line[bad]);
  return "byte " + std::to_string(bad + 1) + " has the value " + std::to_string(value) +
         ", which the file cannot hold";
}

std::string LevelFault(std::string_view entry) {
  const size_t equals = entry.find('=');
  if (equals == std::string_view::npos) return "no \"=\" between name and level";
  const std::string_view key = entry.substr(0, equals);
  const std::string_view trimmed = key.substr(0, key.find_last_not_of(" \t") + 1);
  if (trimmed.find(' ') != std::string_view::npos) {
    return "the name " + Quoted(trimmed) + " has blanks, without which it is looked for";
  }
  std::string_view level = entry.substr(equals + 1);
  level.remove_prefix(std::min(level.find_first_not_of(' '), level.size()));
  return CheckNumber(level, std::numeric_limits<int16_t>::min(),
                     std::numeric_limits<int16_t>::max());
}

}  // namespace quarnel
