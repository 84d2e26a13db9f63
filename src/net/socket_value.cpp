#include "net/socket_value.h"

#include <algorithm>
#include <array>
#include <bit>
#include <type_traits>

namespace quarnel {
namespace {

template <typename Number>
std::string InMemoryOrder(Number number) {
  static_assert(std::endian::native == std::endian::little);
  const auto bytes = std::bit_cast<std::array<char, sizeof number>>(number);
  return {bytes.begin(), bytes.end()};
}

template <typename Number>
Number FromMemory(std::string_view bytes) {
  std::array<char, sizeof(Number)> memory{};
  std::copy_n(bytes.begin(), std::min(bytes.size(), memory.size()), memory.begin());
  return std::bit_cast<Number>(memory);
}

}  // namespace

std::string BytesOf(const SocketValue& value) {
  return std::visit(
      [](const auto& held) -> std::string {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, std::monostate>) {
          return {};
        } else if constexpr (std::is_same_v<Held, bool>) {
          return InMemoryOrder(static_cast<int16_t>(held ? -1 : 0));
        } else if constexpr (std::is_same_v<Held, Currency>) {
          return InMemoryOrder(held.tenThousandths);
        } else if constexpr (std::is_same_v<Held, DateSerial>) {
          return InMemoryOrder(held.days);
        } else if constexpr (std::is_same_v<Held, std::string> || std::is_same_v<Held, ByteArray>) {
          return {held.begin(), held.end()};
        } else {
          return InMemoryOrder(held);
        }
      },
      value);
}

SocketValue ValueFrom(std::string_view bytes, SocketType type) {
  switch (type) {
    case SocketType::kByte:
      return FromMemory<uint8_t>(bytes);
    case SocketType::kInteger:
      return FromMemory<int16_t>(bytes);
    case SocketType::kBoolean:
      return FromMemory<int16_t>(bytes) != 0;
    case SocketType::kLong:
      return FromMemory<int32_t>(bytes);
    case SocketType::kSingle:
      return FromMemory<float>(bytes);
    case SocketType::kDouble:
      return FromMemory<double>(bytes);
    case SocketType::kCurrency:
      return Currency{FromMemory<int64_t>(bytes)};
    case SocketType::kDate:
      return DateSerial{FromMemory<double>(bytes)};
    case SocketType::kBytes:
      return ByteArray(bytes.begin(), bytes.end());
    case SocketType::kNone:
    case SocketType::kString:
      break;
  }
  return std::string(bytes);
}

}  // namespace quarnel
