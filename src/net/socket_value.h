#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quarnel {

// What a socket sends and gives: a value whose bytes go in memory order, low byte first.
struct Currency {
  int64_t tenThousandths = 0;
  bool operator==(const Currency&) const = default;
};
struct DateSerial {
  double days = 0;  // since 12/30/1899
  bool operator==(const DateSerial&) const = default;
};
using ByteArray = std::vector<uint8_t>;

// The first one is a value of any other type, which has no bytes.
using SocketValue = std::variant<std::monostate, uint8_t, int16_t, bool, int32_t, float, double,
                                 Currency, DateSerial, std::string, ByteArray>;

enum class SocketType {
  kNone,
  kByte,
  kInteger,
  kBoolean,
  kLong,
  kSingle,
  kDouble,
  kCurrency,
  kDate,
  kString,
  kBytes
};

// A Boolean takes two bytes, all bits set for true.
std::string BytesOf(const SocketValue& value);
// The value that begins the bytes; what is missing of it is taken for 0. Without a type it is text.
SocketValue ValueFrom(std::string_view bytes, SocketType type);

}  // namespace quarnel
