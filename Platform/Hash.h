#pragma once
// CRC-32 (polynomial 0xEDB88320, reflected, start 0xFFFFFFFF) without the final inversion: the hash of map
// keys.
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace vesk {

namespace detail {
constexpr std::array<uint32_t, 256> MakeCrcTable() {
  std::array<uint32_t, 256> table{};
  for (uint32_t i = 0; i < 256; ++i) {
    uint32_t value = i;
    for (int bit = 0; bit < 8; ++bit) value = (value >> 1) ^ ((value & 1) ? 0xEDB88320u : 0u);
    table[i] = value;
  }
  return table;
}
inline constexpr std::array<uint32_t, 256> kCrcTable = MakeCrcTable();
} // namespace detail

constexpr uint32_t Hash_Text(std::string_view bytes) {
  uint32_t hash = 0xFFFFFFFFu;
  for (const char byte : bytes)
    hash = (hash >> 8) ^ detail::kCrcTable[(hash ^ static_cast<uint8_t>(byte)) & 0xFF];
  return hash;
}

// Over the 8 bytes of the number, lowest first.
constexpr uint32_t Hash_Real(double number) {
  const uint64_t bits = std::bit_cast<uint64_t>(number);
  uint32_t hash = 0xFFFFFFFFu;
  for (int i = 0; i < 8; ++i)
    hash = (hash >> 8) ^ detail::kCrcTable[(hash ^ static_cast<uint32_t>(bits >> (8 * i))) & 0xFF];
  return hash;
}

} // namespace vesk
