#pragma once
// The chunked data container: frame, chunks, references. Bytes stay in place for the whole run; nothing
// outside them is ever read.
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vesk {

constexpr uint32_t ChunkTag(const char (&tag)[5]) {
  return static_cast<uint32_t>(static_cast<uint8_t>(tag[0])) |
         static_cast<uint32_t>(static_cast<uint8_t>(tag[1])) << 8 |
         static_cast<uint32_t>(static_cast<uint8_t>(tag[2])) << 16 |
         static_cast<uint32_t>(static_cast<uint8_t>(tag[3])) << 24;
}
// The four characters; unprintable ones become "?".
std::string ChunkName(uint32_t tag);

// Writable view of the whole container with bounds-checked reads. An offset of 0 is null.
class ContainerView {
public:
  ContainerView() = default;
  ContainerView(uint8_t* bytes, uint32_t size) : m_bytes(bytes), m_size(size) {}
  uint8_t* Bytes() const { return m_bytes; }
  uint32_t Size() const { return m_size; }
  bool Has(uint32_t offset, uint32_t length) const { return offset <= m_size && length <= m_size - offset; }

  // Little-endian numbers at any offset, aligned or not; 0 where they don't lie inside.
  uint8_t U8(uint32_t offset) const;
  uint16_t U16(uint32_t offset) const;
  uint32_t U32(uint32_t offset) const;
  int32_t I32(uint32_t offset) const { return static_cast<int32_t>(U32(offset)); }
  uint64_t U64(uint32_t offset) const;
  float F32(uint32_t offset) const;
  // The text at a string reference. Null for reference 0, and where the length in front of the text, its
  // characters and its NUL don't agree or don't lie inside.
  const char* Text(uint32_t offset) const;

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

struct Chunk {
  uint32_t tag = 0;
  uint32_t offset = 0; // of the body
  uint32_t size = 0;   // of the body, bytes
};

// Checks the frame and lists the chunks in file order. On an error the list holds those before the bad one.
LoadError Container_ListChunks(const ContainerView& container, std::vector<Chunk>& chunks);

} // namespace vesk
