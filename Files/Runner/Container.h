#pragma once
// The chunked data container: frame, chunks, references. Bytes stay in place for the whole run; nothing
// outside them is ever read.
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace vesk {

constexpr uint32_t ChunkTag(const char (&tag)[5]) {
  return static_cast<uint32_t>(static_cast<uint8_t>(tag[0])) |
         static_cast<uint32_t>(static_cast<uint8_t>(tag[1])) << 8 |
         static_cast<uint32_t>(static_cast<uint8_t>(tag[2])) << 16 |
         static_cast<uint32_t>(static_cast<uint8_t>(tag[3])) << 24;
}

// Writable view of the whole container with bounds-checked reads. An offset of 0 is null.
class ContainerView {
public:
  ContainerView() = default;
  ContainerView(uint8_t* bytes, uint32_t size) : m_bytes(bytes), m_size(size) {}
  uint8_t* Bytes() const { return m_bytes; }
  uint32_t Size() const { return m_size; }
  bool Has(uint32_t offset, uint32_t length) const { return offset <= m_size && length <= m_size - offset; }

private:
  uint8_t* m_bytes = nullptr;
  uint32_t m_size = 0;
};

// What went wrong in a container, in words: "SPRT record 12: frame reference 0x1234 lies outside the
// container".
struct LoadError {
  std::string text;
  explicit operator bool() const { return !text.empty(); }
};

} // namespace vesk
