#include "Files/Runner/ContainerRecords.h"

#include "Files/Object/EventTypes.h"
#include "Files/Runner/RecordReader.h"
#include "Files/Sprite/Sprite.h" // PageEntry

#include <algorithm>
#include <cstring>
#include <unordered_set>

namespace vesk {
namespace {

constexpr int32_t kMaximumSize = 0x7FFF; // pixels of a sprite, 16 bits in page entries
constexpr int32_t kMaximumPage = 16384;  // pixels of a texture page
constexpr int32_t kRoomEntries = 8;
constexpr int32_t kNoParent = -100;
constexpr int32_t kSubtypes = 256;

std::string Number(int64_t value) { return std::to_string(value); }

// Big-endian, as PNG has its numbers.
uint32_t BigEndian(const uint8_t* bytes) {
  return static_cast<uint32_t>(bytes[0]) << 24 | static_cast<uint32_t>(bytes[1]) << 16 |
         static_cast<uint32_t>(bytes[2]) << 8 | bytes[3];
}

class ContainerReader {
public:
  ContainerReader(const ContainerView& container, int32_t codeCount, ContainerRecords& records)
      : m_container(container), m_codeCount(codeCount), m_records(records),
        m_reader(container, Find(ChunkTag("STRG"))) {}

  LoadError Read();

private:
  Chunk Find(uint32_t tag) const;
  bool Enter(const char (&tag)[5]);
  bool Stands(uint32_t tag) const { return Find(tag).size != 0; }
  void CheckChunks();
  void CheckOrder(uint32_t first, uint32_t second);
  void Remark(const std::string& text) { m_records.remarks.push_back(text); }

  void ReadHeader();
  void ReadOptions();
  void ReadNewOptions();
  void ReadOldOptions();
  void ReadConstants();
  void RefuseContents();
  void ReadStrings();
  void ReadTextures();
  void ReadPageEntries();
  void ReadAudioGroups();
  void ReadSoundData();
  void ReadSounds();
  void ReadSprites();
  void ReadBackgrounds();
  void ReadPaths();
  void ReadScripts();
  void ReadStartScripts();
  void ReadShaders();
  void ReadFonts();
  void ReadObjects();
  void CheckParents();
  void ReadRooms();
  void CheckRoomOrder();

  // One record a reference; a null reference leaves a hole.
  template <class T, class F> void ReadList(const char (&tag)[5], RecordList<T>& list, F read) {
    if (!Enter(tag)) return;
    const std::vector<uint32_t> references = m_reader.List("records");
    list.resize(references.size());
    for (size_t i = 0; i < references.size() && m_reader.Ok(); ++i) {
      if (references[i] == 0) continue;
      m_reader.EnterRecord("record", i, references[i]);
      list[i] = read();
    }
  }
  template <class F> void ReadParts(const char* kind, const std::vector<uint32_t>& references, F read) {
    for (size_t i = 0; i < references.size() && m_reader.Ok(); ++i) {
      if (references[i] == 0) continue;
      m_reader.EnterPart(kind, i, references[i]);
      read(i);
    }
    m_reader.LeavePart();
  }

  SoundRecord ReadSound();
  SpriteRecord ReadSprite();
  ShaderRecord ReadShader();
  FontRecord ReadFont();
  ObjectRecord ReadObject();
  void ReadEvents(ObjectRecord& object, int32_t type, const std::vector<uint32_t>& entries);
  RoomRecord ReadRoom();
  RoomRecord::Background ReadRoomBackground();
  RoomRecord::View ReadRoomView();
  RoomRecord::Instance ReadRoomInstance();
  RoomRecord::Tile ReadRoomTile();
  TextureRecord ReadTexture();
  void MeasureTexture(TextureRecord& texture);

  // A code index: -1 or an entry of the code table.
  int32_t Code(const char* what);
  // An asset index: -1 none, or one of the list.
  int32_t Asset(const char* what, size_t count);
  // A reference to a page entry, or 0.
  uint32_t PageReference(const std::string& what);

  const ContainerView& m_container;
  int32_t m_codeCount;
  ContainerRecords& m_records;
  RecordReader m_reader;
  std::unordered_set<uint32_t> m_pageOffsets;
  std::unordered_set<int32_t> m_instanceIds, m_tileIds;
  size_t m_objectCount = 0;
};

// ---- chunks ----

constexpr uint32_t kKnownChunks[] = {ChunkTag("GEN8"), ChunkTag("GEN7"), ChunkTag("GENL"), ChunkTag("OPTN"),
                                     ChunkTag("LANG"), ChunkTag("EXTN"), ChunkTag("EMBI"), ChunkTag("SOND"),
                                     ChunkTag("AUDO"), ChunkTag("AGRP"), ChunkTag("SPRT"), ChunkTag("BGND"),
                                     ChunkTag("PATH"), ChunkTag("SCPT"), ChunkTag("SHDR"), ChunkTag("FONT"),
                                     ChunkTag("TMLN"), ChunkTag("OBJT"), ChunkTag("ROOM"), ChunkTag("TPAG"),
                                     ChunkTag("TXTR"), ChunkTag("GLOB"), ChunkTag("CODE"), ChunkTag("FUNC"),
                                     ChunkTag("VARI"), ChunkTag("DAFL"), ChunkTag("STRG"), ChunkTag("HELP"),
                                     ChunkTag("RASP"), ChunkTag("PSPS"), ChunkTag("STAT")};

Chunk ContainerReader::Find(uint32_t tag) const {
  for (const Chunk& chunk : m_records.chunks)
    if (chunk.tag == tag && chunk.size != 0) return chunk;
  return {};
}

bool ContainerReader::Enter(const char (&tag)[5]) {
  const Chunk chunk = Find(ChunkTag(tag));
  if (!m_reader.Ok() || chunk.size == 0) return false;
  m_reader.EnterChunk(chunk);
  return true;
}

void ContainerReader::CheckChunks() {
  std::unordered_set<uint32_t> seen;
  for (const Chunk& chunk : m_records.chunks) {
    if (chunk.size == 0) continue;
    m_reader.EnterChunk(chunk);
    if (std::find(std::begin(kKnownChunks), std::end(kKnownChunks), chunk.tag) == std::end(kKnownChunks))
      Remark(ChunkName(chunk.tag) + ": an unknown chunk of " + Number(chunk.size) + " bytes at " +
             Hex(chunk.offset - 8));
    else
      m_reader.Check(seen.insert(chunk.tag).second, "the chunk stands twice");
  }
  constexpr uint32_t kOrder[][2] = {
      {ChunkTag("OPTN"), ChunkTag("SOND")}, {ChunkTag("OPTN"), ChunkTag("AGRP")},
      {ChunkTag("OPTN"), ChunkTag("AUDO")}, {ChunkTag("SOND"), ChunkTag("AUDO")},
      {ChunkTag("TPAG"), ChunkTag("TXTR")}, {ChunkTag("GEN8"), ChunkTag("SPRT")},
      {ChunkTag("GEN8"), ChunkTag("OBJT")}, {ChunkTag("GEN8"), ChunkTag("ROOM")},
      {ChunkTag("GEN7"), ChunkTag("SPRT")}, {ChunkTag("GEN7"), ChunkTag("OBJT")},
      {ChunkTag("GEN7"), ChunkTag("ROOM")}, {ChunkTag("GENL"), ChunkTag("SPRT")},
      {ChunkTag("GENL"), ChunkTag("OBJT")}, {ChunkTag("GENL"), ChunkTag("ROOM")}};
  for (const auto& pair : kOrder) CheckOrder(pair[0], pair[1]);
}

void ContainerReader::CheckOrder(uint32_t first, uint32_t second) {
  const Chunk a = Find(first), b = Find(second);
  if (a.size == 0 || b.size == 0 || a.offset < b.offset) return;
  m_reader.EnterChunk(b);
  m_reader.Fail("the chunk stands before " + ChunkName(first));
}

// Chunks whose contents this runner does not read. Empty ones are fine.
void ContainerReader::RefuseContents() {
  if (Enter("EXTN")) m_reader.Check(m_reader.U32() == 0, "extension packages are not supported");
  if (Enter("TMLN")) m_reader.Check(m_reader.U32() == 0, "time lines are not supported");
  if (Enter("CODE")) m_reader.Check(m_reader.U32() == 0, "byte-code is not supported");
  if (Enter("EMBI")) Remark("EMBI: embedded images are passed over");
  if (Enter("LANG")) {
    m_reader.U32();
    const uint32_t entries = m_reader.U32(), languages = m_reader.U32();
    if (entries != 0 && languages != 0) Remark("LANG: language tables are passed over");
  }
}

// ---- general chunks ----

void ContainerReader::ReadHeader() {
  if (!Enter("GEN8") && !Enter("GEN7") && !Enter("GENL")) {
    m_reader.EnterChunk({ChunkTag("GEN8"), 0, 0});
    m_reader.Fail("the chunk is missing");
    return;
  }
  HeaderRecord& header = m_records.header;
  const uint32_t body = m_reader.At();
  header.debug = m_reader.U8();
  header.version = m_reader.U8();
  m_reader.U16();
  header.fileName = m_reader.Text();
  header.configuration = m_reader.Text();
  header.lastInstanceId = m_reader.I32();
  header.lastTileId = m_reader.I32();
  header.gameId = m_reader.U32();
  for (uint8_t& byte : header.guid) byte = header.version < 8 ? uint8_t{0} : m_reader.U8();
  if (header.version >= 8) {
    header.name = m_reader.Text();
    header.major = m_reader.I32();
    header.minor = m_reader.I32();
    header.release = m_reader.I32();
    header.build = m_reader.I32();
    header.windowWidth = m_reader.I32();
    header.windowHeight = m_reader.I32();
    header.flags = m_reader.U32();
    m_reader.Skip(20);
    header.timestamp = m_reader.U64();
    m_reader.Check(header.windowWidth >= 0 && header.windowHeight >= 0 &&
                       header.windowWidth <= kMaximumSize && header.windowHeight <= kMaximumSize,
                   [&] {
                     return "the window size " + Number(header.windowWidth) + " by " +
                            Number(header.windowHeight) + " is impossible";
                   });
  }
  if (header.version >= 10) header.displayName = m_reader.Text();
  if (header.version >= 11) header.targetMask = m_reader.U64();
  if (header.version >= 12) header.featureMask = m_reader.U64();
  if (header.version >= 13) header.storeAppId = m_reader.I32();
  if (header.version >= 14) header.debuggerPort = m_reader.I32();
  m_reader.Check(header.major < 2,
                 [&] { return "major version " + Number(header.major) + " is not supported"; });

  uint32_t word = 25;
  if (header.version < 8)
    word = 9;
  else if (header.version >= 14)
    word = 32;
  else if (header.version >= 10)
    word = header.version == 10 ? 26 : header.version == 11 ? 28 : header.version == 12 ? 30 : 31;
  m_reader.Seek(body + 4 * word);
  header.roomOrder.resize(m_reader.Count("rooms in the order", 4));
  for (int32_t& room : header.roomOrder) room = m_reader.I32();
}

void ContainerReader::ReadOptions() {
  if (!Enter("OPTN")) return;
  const uint32_t body = m_reader.At();
  const int32_t marker = m_reader.I32();
  m_reader.Seek(body);
  if (marker < 0)
    ReadNewOptions();
  else
    ReadOldOptions();
}

void ContainerReader::ReadNewOptions() {
  m_reader.Skip(4);
  if (const uint32_t form = m_reader.U32(); form != 2) {
    if (m_reader.Ok())
      Remark("OPTN: form version " + Number(form) + " is unknown, the options keep their defaults");
    return;
  }
  OptionsRecord& options = m_records.options;
  options.flags = m_reader.U32();
  m_reader.Skip(4);
  options.scale = m_reader.I32();
  options.windowColour = m_reader.U32();
  options.colourDepth = m_reader.U32();
  options.resolution = m_reader.U32();
  options.frequency = m_reader.U32();
  options.verticalSync = m_reader.U32();
  m_reader.Skip(20);
  ReadConstants();
}

void ContainerReader::ReadOldOptions() {
  OptionsRecord& options = m_records.options;
  const uint32_t body = m_reader.At();
  const auto word = [&](uint32_t index) {
    m_reader.Seek(body + 4 * index);
    return m_reader.U32();
  };
  constexpr struct {
    uint32_t word, flag;
  } kFlags[] = {{0, kOptionFullScreen},       {2, kOptionNewAudio},         {4, kOptionShowCursor},
                {9, kOptionChangeResolution}, {22, kOptionFreezeUnfocused}, {32, kOptionAbortOnError}};
  for (const auto& row : kFlags)
    if (word(row.word) != 0) options.flags |= row.flag;
  options.scale = static_cast<int32_t>(word(5));
  options.windowColour = word(8);
  options.colourDepth = word(10);
  options.resolution = word(11);
  options.frequency = word(12);
  options.verticalSync = word(14);
  m_reader.Seek(body + 4 * 35);
  ReadConstants();
}

void ContainerReader::ReadConstants() {
  const uint32_t count = m_reader.Count("named constants", 8);
  for (uint32_t i = 0; i < count && m_reader.Ok(); ++i) {
    const char* name = m_reader.Text();
    const char* value = m_reader.Text();
    m_records.options.constants.push_back({name, value});
  }
}

void ContainerReader::ReadStrings() {
  if (!Enter("STRG")) return;
  const Chunk chunk = Find(ChunkTag("STRG"));
  const std::vector<uint32_t> references = m_reader.List("texts");
  for (size_t i = 0; i < references.size() && m_reader.Ok(); ++i) {
    const uint32_t offset = references[i];
    if (offset < chunk.offset || offset - chunk.offset >= chunk.size || !m_container.Text(offset + 4)) {
      m_reader.EnterRecord("record", i, offset);
      m_reader.Fail("there stands no text");
    }
  }
  m_records.stringCount = static_cast<uint32_t>(references.size());
}

void ContainerReader::ReadStartScripts() {
  if (!Enter("GLOB")) return;
  m_records.startScripts.resize(m_reader.Count("scripts", 4));
  for (int32_t& code : m_records.startScripts) code = Code("script");
}

int32_t ContainerReader::Code(const char* what) {
  const int32_t code = m_reader.I32();
  if (code < -1 || (m_codeCount >= 0 && code >= m_codeCount))
    m_reader.Fail(std::string(what) + " code index " + Number(code) + " is not in the code table of " +
                  Number(m_codeCount));
  return code;
}

int32_t ContainerReader::Asset(const char* what, size_t count) {
  const int32_t index = m_reader.I32();
  if (index < -1 || (index >= 0 && static_cast<size_t>(index) >= count))
    m_reader.Fail(std::string(what) + " index " + Number(index) + " is not one of " +
                  Number(static_cast<int64_t>(count)));
  return index;
}

// ---- texture pages ----

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

// ---- sounds ----

void ContainerReader::ReadAudioGroups() {
  if ((m_records.options.flags & kOptionNewAudio) == 0 || !Enter("AGRP")) return;
  const std::vector<uint32_t> references = m_reader.List("records");
  for (size_t i = 0; i < references.size() && m_reader.Ok(); ++i) {
    m_records.audioGroups.push_back("");
    if (references[i] == 0) continue;
    m_reader.EnterRecord("record", i, references[i]);
    m_records.audioGroups.back() = m_reader.Text();
  }
}

void ContainerReader::ReadSoundData() {
  ReadList("AUDO", m_records.soundData, [&]() -> std::span<const uint8_t> {
    const uint32_t length = m_reader.U32();
    const uint32_t data = m_reader.At();
    if (!m_reader.Ok()) return {};
    if (!m_container.Has(data, length)) {
      m_reader.Fail("the data of " + Number(length) + " bytes end outside the container");
      return {};
    }
    return {m_container.Bytes() + data, length};
  });
}

void ContainerReader::ReadSounds() {
  if ((m_records.options.flags & kOptionNewAudio) == 0) {
    if (Enter("SOND"))
      m_reader.Check(m_reader.U32() == 0,
                     "the options ask for the old form of sounds, which is not supported");
    return;
  }
  ReadSoundData();
  ReadList("SOND", m_records.sounds, [&] { return ReadSound(); });
}

SoundRecord ContainerReader::ReadSound() {
  SoundRecord sound;
  sound.name = m_reader.Text();
  const uint32_t mode = m_reader.U32();
  if (mode < 100)
    sound.mode = mode > 0 ? SoundMode::kStreamed : SoundMode::kUncompressed;
  else if (mode <= 103)
    sound.mode = static_cast<SoundMode>(mode);
  else
    m_reader.Fail("storage mode " + Number(mode) + " is unknown");
  sound.type = m_reader.Text();
  sound.file = m_reader.Text();
  m_reader.Skip(4);
  sound.gain = m_reader.F32();
  m_reader.Skip(4);
  sound.group = m_reader.I32();
  const auto groups = static_cast<int32_t>(m_records.audioGroups.size());
  if (groups == 0)
    sound.group = 0;
  else
    m_reader.Check(sound.group >= 0 && sound.group < groups,
                   [&] { return "audio group " + Number(sound.group) + " is not one of " + Number(groups); });
  sound.audioIndex = Asset("data", m_records.soundData.size());
  if (m_reader.Ok() && sound.audioIndex >= 0)
    sound.data =
        m_records.soundData[static_cast<size_t>(sound.audioIndex)].value_or(std::span<const uint8_t>());
  return sound;
}

// ---- pictures ----

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
  constexpr uint32_t kGlyphHead = 10; // up to and with the height
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
    m_reader.Check(font.glyphs[i] == 0 || m_container.Has(font.glyphs[i], kGlyphHead), [&] {
      return "glyph " + Number(static_cast<int64_t>(i)) + " ends outside the container";
    });
  return font;
}

// ---- paths, scripts, shaders ----

void ContainerReader::ReadPaths() {
  ReadList("PATH", m_records.paths, [&] {
    PathRecord path;
    path.name = m_reader.Text();
    path.kind = m_reader.I32();
    path.closed = m_reader.Bool();
    path.precision = m_reader.I32();
    // A smooth path is sampled 2 to the power of the precision times a piece.
    m_reader.Check(path.precision >= 0 && path.precision <= 8,
                   [&] { return "the precision " + Number(path.precision) + " is not within 0 to 8"; });
    path.points.resize(m_reader.Count("points", 12));
    for (PathRecord::Point& point : path.points) {
      point.x = m_reader.F32();
      point.y = m_reader.F32();
      point.speed = m_reader.F32();
    }
    return path;
  });
}

void ContainerReader::ReadScripts() {
  ReadList("SCPT", m_records.scripts, [&] {
    ScriptRecord script;
    script.name = m_reader.Text();
    script.code = Code("script");
    return script;
  });
}

void ContainerReader::ReadShaders() {
  ReadList("SHDR", m_records.shaders, [&] { return ReadShader(); });
}

ShaderRecord ContainerReader::ReadShader() {
  constexpr uint32_t kExtended = 0x80000000;
  ShaderRecord shader;
  shader.name = m_reader.Text();
  const uint32_t type = m_reader.U32();
  shader.kind = type & ~kExtended;
  for (const char** source : {&shader.glesVertex, &shader.glesFragment, &shader.glVertex, &shader.glFragment,
                              &shader.hlsl9Vertex, &shader.hlsl9Fragment})
    *source = m_reader.Text();
  m_reader.Skip(8);
  shader.attributes.resize(m_reader.Count("attributes", 4));
  for (const char*& attribute : shader.attributes) attribute = m_reader.Text();
  if ((type & kExtended) != 0) m_reader.U32();
  return shader;
}

// ---- objects ----

void ContainerReader::ReadObjects() {
  if (Enter("OBJT"))
    m_objectCount = m_container.U32(m_reader.At()); // ReadList refuses a count that is too high
  ReadList("OBJT", m_records.objects, [&] { return ReadObject(); });
  CheckParents();
}

ObjectRecord ContainerReader::ReadObject() {
  const auto sprite = [&](const char* what) {
    int32_t index = m_reader.I32();
    if ((static_cast<uint32_t>(index) & 0xF0000000u) == 0x80000000u)
      index = static_cast<int32_t>(static_cast<uint32_t>(index) & 0x7FFFFFFFu);
    if (index < -1 || (index >= 0 && static_cast<size_t>(index) >= m_records.sprites.size()))
      m_reader.Fail(std::string(what) + " index " + Number(index) + " is not one of " +
                    Number(static_cast<int64_t>(m_records.sprites.size())));
    return index;
  };
  ObjectRecord object;
  object.name = m_reader.Text();
  object.sprite = sprite("sprite");
  object.visible = m_reader.Bool();
  object.solid = m_reader.Bool();
  object.depth = m_reader.I32();
  object.persistent = m_reader.Bool();
  object.parent = m_reader.I32();
  object.mask = sprite("mask sprite");
  m_reader.Check(object.parent == kNoParent ||
                     (object.parent >= 0 && static_cast<size_t>(object.parent) < m_objectCount),
                 [&] {
                   return "parent index " + Number(object.parent) + " is not one of " +
                          Number(static_cast<int64_t>(m_objectCount));
                 });
  if (m_records.header.version >= 6) {
    m_reader.Skip(12);
    for (int i = 0; i < 2; ++i) m_reader.F32();
    m_reader.Skip(4);
    for (int i = 0; i < 2; ++i) m_reader.F32();
    const uint32_t vertices = m_reader.U32();
    if (m_records.header.version >= 9) {
      m_reader.F32();
      m_reader.Skip(8);
    }
    if (m_reader.Ok() && vertices > (m_container.Size() - m_reader.At()) / 8)
      m_reader.Fail("the number of shape points, " + Number(vertices) + ", is more than there is room for");
    else
      m_reader.Skip(8 * vertices);
  }
  const std::vector<uint32_t> lists = m_reader.List("event lists");
  for (size_t type = 0; type < lists.size() && m_reader.Ok(); ++type) {
    if (lists[type] == 0) continue;
    m_reader.EnterPart("events of type", type, lists[type]);
    ReadEvents(object, static_cast<int32_t>(type), m_reader.List("events"));
  }
  m_reader.LeavePart();
  return object;
}

void ContainerReader::ReadEvents(ObjectRecord& object, int32_t type, const std::vector<uint32_t>& entries) {
  m_reader.Check(entries.empty() || type < kEventTypeCount, "there is no such event type");
  const int64_t subtypes = type == ev_collision ? static_cast<int64_t>(m_objectCount) : kSubtypes;
  for (size_t i = 0; i < entries.size() && m_reader.Ok(); ++i) {
    if (entries[i] == 0) continue;
    m_reader.Seek(entries[i]);
    ObjectRecord::Event event{type, m_reader.I32(), -1};
    m_reader.Check(event.subtype >= 0 && event.subtype < subtypes, [&] {
      return "event " + Number(static_cast<int64_t>(i)) + " has subtype " + Number(event.subtype) +
             ", which is not below " + Number(subtypes);
    });
    const std::vector<uint32_t> actions = m_reader.List("actions");
    if (!m_reader.Ok() || actions.empty() || actions[0] == 0) continue;
    m_reader.Seek(actions[0]);
    m_reader.Skip(32);
    event.code = Code("event");
    m_reader.Skip(20);
    object.events.push_back(event);
  }
}

void ContainerReader::CheckParents() {
  const RecordList<ObjectRecord>& objects = m_records.objects;
  std::vector<uint32_t> seen(objects.size()); // the walk that came by last
  std::vector<bool> sound(objects.size());    // known to lead to an end
  for (size_t i = 0; i < objects.size() && m_reader.Ok(); ++i) {
    std::vector<size_t> way;
    size_t at = i;
    while (m_reader.Ok() && objects[at] && !sound[at]) {
      if (seen[at] == i + 1) {
        m_reader.EnterRecord("record", i, 0);
        m_reader.Fail("the parents run in a circle");
        return;
      }
      seen[at] = static_cast<uint32_t>(i + 1);
      way.push_back(at);
      if (objects[at]->parent == kNoParent) break;
      const auto parent = static_cast<size_t>(objects[at]->parent);
      if (!objects[parent]) {
        m_reader.EnterRecord("record", at, 0);
        m_reader.Fail("parent " + Number(static_cast<int64_t>(parent)) + " is a hole in the list");
      }
      at = parent;
    }
    for (const size_t object : way) sound[object] = true;
  }
}

// ---- rooms ----

void ContainerReader::ReadRooms() {
  ReadList("ROOM", m_records.rooms, [&] { return ReadRoom(); });
}

RoomRecord ContainerReader::ReadRoom() {
  RoomRecord room;
  room.offset = m_reader.At();
  room.name = m_reader.Text();
  room.caption = m_reader.Text();
  room.width = m_reader.I32();
  room.height = m_reader.I32();
  room.speed = m_reader.I32();
  room.persistent = m_reader.Bool();
  room.colour = m_reader.U32();
  room.showColour = m_reader.Bool();
  room.code = Code("creation");
  const uint32_t flags = m_reader.U32();
  room.viewsEnabled = (flags & 1) != 0;
  room.clearDisplay = (flags & 2) != 0;
  room.clearViews = (flags & 4) == 0;
  m_reader.Check(flags >> 16 < 2,
                 [&] { return "layers (record version " + Number(flags >> 16) + ") are not supported"; });
  m_reader.Check(room.width >= 0 && room.height >= 0, [&] {
    return "the size " + Number(room.width) + " by " + Number(room.height) + " is impossible";
  });
  const std::vector<uint32_t> backgrounds = m_reader.ListReference("backgrounds");
  const std::vector<uint32_t> views = m_reader.ListReference("views");
  const std::vector<uint32_t> instances = m_reader.ListReference("instances");
  const std::vector<uint32_t> tiles = m_reader.ListReference("tiles");
  if (m_records.header.version >= 6) {
    m_reader.Skip(20);
    for (int i = 0; i < 3; ++i) m_reader.F32();
  }
  m_reader.Check(backgrounds.size() <= kRoomEntries, "there are more than 8 backgrounds");
  m_reader.Check(views.size() <= kRoomEntries, "there are more than 8 views");
  if (!m_reader.Ok()) return room;
  room.backgrounds.resize(backgrounds.size());
  room.views.resize(views.size());
  ReadParts("background", backgrounds, [&](size_t i) { room.backgrounds[i] = ReadRoomBackground(); });
  ReadParts("view", views, [&](size_t i) { room.views[i] = ReadRoomView(); });
  ReadParts("instance", instances, [&](size_t) { room.instances.push_back(ReadRoomInstance()); });
  ReadParts("tile", tiles, [&](size_t) { room.tiles.push_back(ReadRoomTile()); });
  return room;
}

RoomRecord::Background ContainerReader::ReadRoomBackground() {
  RoomRecord::Background slot;
  slot.visible = m_reader.Bool();
  slot.foreground = m_reader.Bool();
  slot.background = Asset("background", m_records.backgrounds.size());
  slot.x = m_reader.I32();
  slot.y = m_reader.I32();
  slot.tiledSideways = m_reader.Bool();
  slot.tiledUpright = m_reader.Bool();
  slot.hspeed = m_reader.I32();
  slot.vspeed = m_reader.I32();
  slot.stretch = m_reader.Bool();
  return slot;
}

RoomRecord::View ContainerReader::ReadRoomView() {
  RoomRecord::View view;
  view.enabled = m_reader.Bool();
  for (int32_t* field :
       {&view.x, &view.y, &view.width, &view.height, &view.portX, &view.portY, &view.portWidth,
        &view.portHeight, &view.borderX, &view.borderY, &view.speedX, &view.speedY})
    *field = m_reader.I32();
  view.object = Asset("object", m_objectCount);
  return view;
}

RoomRecord::Instance ContainerReader::ReadRoomInstance() {
  constexpr int32_t kFirstId = 100000;
  RoomRecord::Instance instance;
  instance.x = m_reader.I32();
  instance.y = m_reader.I32();
  instance.object = Asset("object", m_objectCount);
  instance.id = m_reader.I32();
  instance.code = Code("creation");
  instance.scaleX = m_reader.F32();
  instance.scaleY = m_reader.F32();
  instance.colour = m_reader.U32();
  instance.rotation = m_reader.F32();
  instance.preCreateCode = Code("pre-creation");
  if (!m_reader.Ok()) return instance;
  m_reader.Check(instance.object < 0 || m_records.objects[static_cast<size_t>(instance.object)].has_value(),
                 [&] { return "object " + Number(instance.object) + " is a hole in the list"; });
  m_reader.Check(instance.id >= kFirstId,
                 [&] { return "id " + Number(instance.id) + " is below " + Number(kFirstId); });
  m_reader.Check(m_instanceIds.insert(instance.id).second,
                 [&] { return "id " + Number(instance.id) + " is used twice"; });
  m_reader.Check(instance.id <= m_records.header.lastInstanceId, [&] {
    return "id " + Number(instance.id) + " is above the last id of the header, " +
           Number(m_records.header.lastInstanceId);
  });
  return instance;
}

RoomRecord::Tile ContainerReader::ReadRoomTile() {
  RoomRecord::Tile tile;
  for (int32_t* field : {&tile.x, &tile.y, &tile.background, &tile.sourceX, &tile.sourceY, &tile.width,
                         &tile.height, &tile.depth, &tile.id})
    *field = m_reader.I32();
  tile.scaleX = m_reader.F32();
  tile.scaleY = m_reader.F32();
  tile.colour = m_reader.U32();
  if (!m_reader.Ok()) return tile;
  const RecordList<BackgroundRecord>& backgrounds = m_records.backgrounds;
  if (tile.background < 0 || static_cast<size_t>(tile.background) >= backgrounds.size() ||
      !backgrounds[static_cast<size_t>(tile.background)]) {
    m_reader.Fail("background index " + Number(tile.background) + " is not one of " +
                  Number(static_cast<int64_t>(backgrounds.size())));
    return tile;
  }
  m_reader.Check(m_tileIds.insert(tile.id).second,
                 [&] { return "id " + Number(tile.id) + " is used twice"; });
  m_reader.Check(tile.id <= m_records.header.lastTileId, [&] {
    return "id " + Number(tile.id) + " is above the last id of the header, " +
           Number(m_records.header.lastTileId);
  });
  const uint32_t page = backgrounds[static_cast<size_t>(tile.background)]->page;
  const int64_t width = m_container.U16(page + 16), height = m_container.U16(page + 18);
  if (page != 0)
    m_reader.Check(tile.sourceX >= 0 && tile.sourceY >= 0 && tile.width >= 0 && tile.height >= 0 &&
                       int64_t{tile.sourceX} + tile.width <= width &&
                       int64_t{tile.sourceY} + tile.height <= height,
                   [&] {
                     return "the part at (" + Number(tile.sourceX) + ", " + Number(tile.sourceY) + ") of " +
                            Number(tile.width) + " by " + Number(tile.height) + " leaves background " +
                            Number(tile.background) + " of " + Number(width) + " by " + Number(height);
                   });
  return tile;
}

void ContainerReader::CheckRoomOrder() {
  if (!m_reader.Ok()) return;
  if (!Enter("GEN8") && !Enter("GEN7")) Enter("GENL");
  for (const int32_t room : m_records.header.roomOrder)
    m_reader.Check(room >= 0 && static_cast<size_t>(room) < m_records.rooms.size() &&
                       m_records.rooms[static_cast<size_t>(room)].has_value(),
                   [&] {
                     return "room index " + Number(room) + " of the room order is not one of " +
                            Number(static_cast<int64_t>(m_records.rooms.size()));
                   });
}

LoadError ContainerReader::Read() {
  CheckChunks();
  ReadHeader();
  ReadOptions();
  RefuseContents();
  ReadStrings();
  ReadTextures();
  ReadPageEntries();
  ReadAudioGroups();
  ReadSounds();
  ReadSprites();
  ReadBackgrounds();
  ReadPaths();
  ReadScripts();
  ReadStartScripts();
  ReadShaders();
  ReadFonts();
  ReadObjects();
  ReadRooms();
  CheckRoomOrder();
  return m_reader.Error();
}

} // namespace

LoadError Container_ReadRecords(const ContainerView& container, int32_t codeCount,
                                ContainerRecords& records) {
  records = {};
  if (LoadError error = Container_ListChunks(container, records.chunks)) return error;
  return ContainerReader(container, codeCount, records).Read();
}

LoadError Container_Verify(const ContainerView& container, int32_t codeCount) {
  ContainerRecords records;
  if (LoadError error = Container_ReadRecords(container, codeCount, records)) return error;
  return records.remarks.empty() ? LoadError{} : LoadError{records.remarks.front()};
}

} // namespace vesk
