#include "Files/Runner/Container.h"

#include <bit>
#include <cstdio>
#include <cstring>

namespace vesk {
namespace {

constexpr uint32_t kChunkHead = 8; // tag and size

template <class T> T Read(const ContainerView& view, uint32_t offset) {
  static_assert(std::endian::native == std::endian::little);
  T value{};
  if (view.Has(offset, sizeof(T))) std::memcpy(&value, view.Bytes() + offset, sizeof(T));
  return value;
}

} // namespace

std::string ChunkName(uint32_t tag) {
  std::string name;
  for (int shift = 0; shift < 32; shift += 8) {
    const char c = static_cast<char>(tag >> shift & 0xFF);
    name += c >= ' ' && c <= '~' ? c : '?';
  }
  return name;
}

uint8_t ContainerView::U8(uint32_t offset) const { return Read<uint8_t>(*this, offset); }
uint16_t ContainerView::U16(uint32_t offset) const { return Read<uint16_t>(*this, offset); }
uint32_t ContainerView::U32(uint32_t offset) const { return Read<uint32_t>(*this, offset); }
uint64_t ContainerView::U64(uint32_t offset) const { return Read<uint64_t>(*this, offset); }
float ContainerView::F32(uint32_t offset) const { return Read<float>(*this, offset); }

const char* ContainerView::Text(uint32_t offset) const {
  if (offset < 4 || !Has(offset, 1)) return nullptr;
  const uint32_t length = U32(offset - 4);
  if (length >= m_size - offset) return nullptr;
  const void* end = std::memchr(m_bytes + offset, 0, length + 1);
  if (end != m_bytes + offset + length) return nullptr;
  return reinterpret_cast<const char*>(m_bytes + offset);
}

LoadError Container_ListChunks(const ContainerView& container, std::vector<Chunk>& chunks) {
  chunks.clear();
  char text[128];
  if (container.Size() < kChunkHead || container.U32(0) != ChunkTag("FORM"))
    return {"FORM: the container does not begin with \"FORM\""};
  if (container.U32(4) != container.Size() - kChunkHead) {
    std::snprintf(text, sizeof text, "FORM: the size field says %u bytes, but %u follow it", container.U32(4),
                  container.Size() - kChunkHead);
    return {text};
  }
  uint32_t at = kChunkHead;
  while (at < container.Size()) {
    if (!container.Has(at, kChunkHead)) {
      std::snprintf(text, sizeof text, "FORM: %u bytes at 0x%x are too few for a chunk",
                    container.Size() - at, at);
      return {text};
    }
    const Chunk chunk{container.U32(at), at + kChunkHead, container.U32(at + 4)};
    if (!container.Has(chunk.offset, chunk.size)) {
      std::snprintf(text, sizeof text, "%s: the chunk at 0x%x of %u bytes ends outside the container",
                    ChunkName(chunk.tag).c_str(), at, chunk.size);
      return {text};
    }
    chunks.push_back(chunk);
    at = chunk.offset + chunk.size;
  }
  return {};
}

} // namespace vesk
