#pragma once

#include <string>
#include <string_view>

// What the compiler asks of the lines and fields of signature sources. Each function gives the
// reason why its text is refused, for a person to read, or an empty text.
namespace quarnel {

struct FieldRule {
  std::string_view name;
  std::string (*check)(std::string_view field);
};

std::string CheckAnything(std::string_view field);
// Company and threat names stand in files of the program that use "^" and "[[]]" between fields.
std::string CheckListText(std::string_view field);
std::string CheckTypeCode(std::string_view field);
std::string CheckHiveCode(std::string_view field);
std::string CheckFolderCode(std::string_view field);
std::string CheckHash(std::string_view field);
std::string CheckOptionalHash(std::string_view field);
// A field that its reader gives back as it stands: no quotes around it, no blank before it.
std::string CheckPlainField(std::string_view field);
// "{", hexadecimal digits in groups of 8, 4, 4, 4 and 12, "}".
std::string CheckClassId(std::string_view field);
// A pattern whose character lists are closed and in order, and that is not overlong.
std::string CheckPattern(std::string_view field);

// The key and value name of a registry signature, which together must not stand for a hive as a
// whole: the removal would empty it.
std::string KeyFault(std::string_view key, std::string_view valueName);

// A line that will be enciphered: its length, and the bytes that readers take for a line's or the
// file's end.
std::string CipherFault(std::string_view line);
// A line of a complemented file: the bytes that the complement loses.
std::string ComplementFault(std::string_view line);
// An entry of the section of levels.
std::string LevelFault(std::string_view entry);

}  // namespace quarnel
