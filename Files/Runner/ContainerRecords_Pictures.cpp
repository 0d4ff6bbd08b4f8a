#include "Files/Runner/ContainerReader.h"
#include "Files/Sprite/Sprite.h" // PageEntry

#include <cstring>

namespace vesk::container {
namespace {

constexpr int32_t kMaximumPage = 16384; // pixels of a texture page

// Big-endian, as PNG has its numbers.
uint32_t BigEndian(const uint8_t* bytes) {
  return static_cast<uint32_t>(bytes[0]) << 24 | static_cast<uint32_t>(bytes[1]) << 16 |
         static_cast<uint32_t>(bytes[2]) << 8 | bytes[3];
}

} // namespace

void ContainerReader::ReadTextures() {
  ReadList("TXTR", m_records.textures, [&] { return ReadTexture(); });
  // A picture ends where the next one begins.
  const Chunk chunk = Find(ChunkTag("TXTR"));
  std::vector<const uint8_t*> ends = {m_container.Bytes() + chunk.offset + chunk.size,
                                      m_container.Bytes() + m_container.Size()};
  for (const std::optional<TextureRecord>& texture : m_records.textures)
    if (texture) ends.push_back(texture->data.data());
  std::sort(ends.begin(), ends.end());
  for (size_t i = 0; i < m_records.textures.size() && m_reader.Ok(); ++i) {
    std::optional<TextureRecord>& texture = m_records.textures[i];
    if (!texture || texture->data.empty()) continue;
    const auto end = std::upper_bound(ends.begin(), ends.end(), texture->data.data());
    texture->data = texture->data.first(static_cast<size_t>(*end - texture->data.data()));
    m_reader.EnterRecord("record", i, static_cast<uint32_t>(texture->data.data() - m_container.Bytes()));
    MeasureTexture(*texture);
  }
}

TextureRecord ContainerReader::ReadTexture() {
  TextureRecord texture;
  texture.flags = m_reader.U32();
  const uint32_t data = m_reader.U32();
  if (!m_reader.Ok()) return texture;
  if (data == 0 || !m_container.Has(data, 1)) {
    m_reader.Fail("the picture reference " + Hex(data) + " lies outside the container");
    return texture;
  }
  texture.data = {m_container.Bytes() + data, m_container.Size() - data};
  return texture;
}

void ContainerReader::MeasureTexture(TextureRecord& texture) {
  constexpr uint8_t kPng[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n', 0, 0, 0, 13, 'I', 'H', 'D', 'R'};
  constexpr size_t kPngHead = 33, kRawHead = 16;
  const std::span<const uint8_t> data = texture.data;
  uint32_t width = 0, height = 0;
  if (data.size() >= kPngHead && std::memcmp(data.data(), kPng, sizeof kPng) == 0) {
    width = BigEndian(data.data() + 16);
    height = BigEndian(data.data() + 20);
  } else if (data.size() >= kRawHead && std::memcmp(data.data(), "RAW ", 4) == 0) {
    const uint32_t offset = static_cast<uint32_t>(data.data() - m_container.Bytes());
    width = m_container.U32(offset + 4);
    height = m_container.U32(offset + 8);
    const uint64_t bytes = m_container.U32(offset + 12) == 1 ? 2 : 4;
    m_reader.Check(width <= kMaximumPage && height <= kMaximumPage &&
                       width * bytes * height <= data.size() - kRawHead,
                   "the picture has fewer pixels than its size says");
  } else {
    m_reader.Fail("the picture is neither a PNG file nor a raw picture");
  }
  m_reader.Check(width >= 1 && height >= 1 && width <= kMaximumPage && height <= kMaximumPage, [&] {
    return "a picture of " + Number(width) + " by " + Number(height) + " pixels is impossible";
  });
  texture.width = static_cast<int32_t>(width);
  texture.height = static_cast<int32_t>(height);
}

// Entries are written to at load, so they may stand nowhere but in their chunk, and not on each other.
void ContainerReader::ReadPageEntries() {
  if (!Enter("TPAG")) return;
  const Chunk chunk = Find(ChunkTag("TPAG"));
  m_records.pageEntries = m_reader.List("records");
  const uint32_t listEnd = m_reader.At();
  std::vector<std::pair<uint32_t, size_t>> sorted;
  for (size_t i = 0; i < m_records.pageEntries.size() && m_reader.Ok(); ++i) {
    const uint32_t offset = m_records.pageEntries[i];
    if (offset == 0) continue;
    m_reader.EnterRecord("record", i, offset);
    if (offset < listEnd || offset > chunk.offset + chunk.size - sizeof(PageEntry) ||
        chunk.size < sizeof(PageEntry)) {
      m_reader.Fail("the entry does not lie in the chunk behind its list");
      return;
    }
    if (offset % 2 != 0) {
      m_reader.Fail("the entry lies on an odd offset");
      return;
    }
    sorted.emplace_back(offset, i);
    m_pageOffsets.insert(offset);
    PageEntry entry;
    std::memcpy(&entry, m_container.Bytes() + offset, sizeof entry);
    m_reader.Check(entry.targetX + entry.targetWidth <= entry.boundingWidth &&
                       entry.targetY + entry.targetHeight <= entry.boundingHeight,
                   [&] {
                     return "the crop leaves the frame of " + Number(entry.boundingWidth) + " by " +
                            Number(entry.boundingHeight);
                   });
    if (entry.texture < 0 || static_cast<size_t>(entry.texture) >= m_records.textures.size()) {
      Remark(m_reader.Place() + ": texture page " + Number(entry.texture) + " is not one of " +
             Number(static_cast<int64_t>(m_records.textures.size())));
    } else if (const auto& page = m_records.textures[static_cast<size_t>(entry.texture)]) {
      m_reader.Check(entry.sourceX + entry.sourceWidth <= page->width &&
                         entry.sourceY + entry.sourceHeight <= page->height,
                     [&] {
                       return "the picture at (" + Number(entry.sourceX) + ", " + Number(entry.sourceY) +
                              ") of " + Number(entry.sourceWidth) + " by " + Number(entry.sourceHeight) +
                              " leaves its page of " + Number(page->width) + " by " + Number(page->height);
                     });
    }
  }
  std::sort(sorted.begin(), sorted.end());
  for (size_t i = 1; i < sorted.size() && m_reader.Ok(); ++i)
    if (sorted[i].first - sorted[i - 1].first < sizeof(PageEntry)) {
      m_reader.EnterRecord("record", sorted[i].second, sorted[i].first);
      m_reader.Fail("the entry lies on record " + Number(static_cast<int64_t>(sorted[i - 1].second)));
    }
}

uint32_t ContainerReader::PageReference(const std::string& what) {
  const uint32_t reference = m_reader.U32();
  if (m_reader.Ok() && reference != 0 && !m_pageOffsets.count(reference))
    m_reader.Fail(what + " refers to " + Hex(reference) + ", where no page entry stands");
  return reference;
}

void ContainerReader::ReadSprites() {
  ReadList("SPRT", m_records.sprites, [&] { return ReadSprite(); });
}

SpriteRecord ContainerReader::ReadSprite() {
  SpriteRecord sprite;
  sprite.name = m_reader.Text();
  sprite.width = m_reader.I32();
  sprite.height = m_reader.I32();
  sprite.left = m_reader.I32();
  sprite.right = m_reader.I32();
  sprite.bottom = m_reader.I32();
  sprite.top = m_reader.I32();
  sprite.transparent = m_reader.Bool();
  sprite.smooth = m_reader.Bool();
  sprite.preload = m_reader.Bool();
  sprite.bboxMode = m_reader.I32();
  sprite.separateMasks = m_reader.I32();
  sprite.originX = m_reader.I32();
  sprite.originY = m_reader.I32();
  m_reader.Check(
      sprite.width >= 0 && sprite.height >= 0 && sprite.width <= kMaximumSize &&
          sprite.height <= kMaximumSize,
      [&] { return "the size " + Number(sprite.width) + " by " + Number(sprite.height) + " is impossible"; });
  m_reader.Check(
      std::abs(int64_t{sprite.originX}) <= kMaximumSize && std::abs(int64_t{sprite.originY}) <= kMaximumSize,
      [&] {
        return "the origin (" + Number(sprite.originX) + ", " + Number(sprite.originY) + ") is impossible";
      });

  const uint32_t frameWord = m_reader.At();
  if (m_reader.I32() == -1) m_reader.Fail("the extended form is not supported");
  m_reader.Seek(frameWord);
  sprite.frames.resize(m_reader.Count("frames", 4));
  for (size_t i = 0; i < sprite.frames.size(); ++i) {
    sprite.frames[i] = PageReference("frame " + Number(static_cast<int64_t>(i)));
    if (!m_reader.Ok() || sprite.frames[i] == 0) continue;
    const int32_t width = m_container.U16(sprite.frames[i] + 16),
                  height = m_container.U16(sprite.frames[i] + 18);
    m_reader.Check(width == sprite.width && height == sprite.height, [&] {
      return "frame " + Number(static_cast<int64_t>(i)) + " is " + Number(width) + " by " + Number(height) +
             ", the sprite " + Number(sprite.width) + " by " + Number(sprite.height);
    });
  }

  const uint32_t masks = m_reader.U32();
  sprite.masks = m_reader.At();
  if (!m_reader.Ok()) return sprite;
  const uint64_t maskBytes =
      (static_cast<uint64_t>(sprite.width) + 7) / 8 * static_cast<uint64_t>(sprite.height);
  // Compared by division: the product of hostile numbers overflows.
  const bool fits = masks == 0 || (maskBytes > 0 && masks <= (m_container.Size() - sprite.masks) / maskBytes);
  m_reader.Check(fits, [&] {
    return Number(masks) + " masks of " + Number(static_cast<int64_t>(maskBytes)) +
           " bytes end outside the container";
  });
  if (fits) sprite.maskCount = static_cast<int32_t>(masks);
  if (masks > 0)
    m_reader.Check(sprite.left >= 0 && sprite.top >= 0 && sprite.right < sprite.width &&
                       sprite.bottom < sprite.height,
                   [&] {
                     return "the box (" + Number(sprite.left) + ", " + Number(sprite.top) + ") to (" +
                            Number(sprite.right) + ", " + Number(sprite.bottom) +
                            ") leaves the frame that the masks cover";
                   });
  return sprite;
}

void ContainerReader::ReadBackgrounds() {
  ReadList("BGND", m_records.backgrounds, [&] {
    BackgroundRecord background;
    background.name = m_reader.Text();
    background.transparent = m_reader.Bool();
    background.smooth = m_reader.Bool();
    background.preload = m_reader.Bool();
    background.page = PageReference("the picture");
    return background;
  });
}

void ContainerReader::ReadFonts() {
  ReadList("FONT", m_records.fonts, [&] { return ReadFont(); });
}

FontRecord ContainerReader::ReadFont() {
  constexpr uint32_t kGlyphBytes = 16; // eight fields
  FontRecord font;
  font.name = m_reader.Text();
  font.displayName = m_reader.Text();
  font.size = m_reader.I32();
  font.bold = m_reader.Bool();
  font.italic = m_reader.Bool();
  font.rangeStart = m_reader.U32();
  font.rangeEnd = m_reader.U32();
  font.page = PageReference("the picture");
  font.scaleX = m_reader.F32();
  font.scaleY = m_reader.F32();
  font.glyphs = m_reader.List("glyphs");
  for (size_t i = 0; i < font.glyphs.size() && m_reader.Ok(); ++i)
    m_reader.Check(font.glyphs[i] == 0 || m_container.Has(font.glyphs[i], kGlyphBytes), [&] {
      return "glyph " + Number(static_cast<int64_t>(i)) + " ends outside the container";
    });
  return font;
}

} // namespace vesk::container
