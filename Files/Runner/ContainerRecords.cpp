#include "Files/Runner/ContainerRecords.h"

#include "Files/Runner/ContainerReader.h"

namespace vesk {
namespace container {

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
    if (!Container_KnowsChunk(chunk.tag))
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

} // namespace container

bool Container_KnowsChunk(uint32_t tag) {
  constexpr uint32_t kKnownChunks[] = {ChunkTag("GEN8"), ChunkTag("GEN7"), ChunkTag("GENL"), ChunkTag("OPTN"),
                                       ChunkTag("LANG"), ChunkTag("EXTN"), ChunkTag("EMBI"), ChunkTag("SOND"),
                                       ChunkTag("AUDO"), ChunkTag("AGRP"), ChunkTag("SPRT"), ChunkTag("BGND"),
                                       ChunkTag("PATH"), ChunkTag("SCPT"), ChunkTag("SHDR"), ChunkTag("FONT"),
                                       ChunkTag("TMLN"), ChunkTag("OBJT"), ChunkTag("ROOM"), ChunkTag("TPAG"),
                                       ChunkTag("TXTR"), ChunkTag("GLOB"), ChunkTag("CODE"), ChunkTag("FUNC"),
                                       ChunkTag("VARI"), ChunkTag("DAFL"), ChunkTag("STRG"), ChunkTag("HELP"),
                                       ChunkTag("RASP"), ChunkTag("PSPS"), ChunkTag("STAT")};
  return std::find(std::begin(kKnownChunks), std::end(kKnownChunks), tag) != std::end(kKnownChunks);
}

LoadError Container_ReadRecords(const ContainerView& view, int32_t codeCount, ContainerRecords& records) {
  records = {};
  if (LoadError error = Container_ListChunks(view, records.chunks)) return error;
  return container::ContainerReader(view, codeCount, records).Read();
}

LoadError Container_Verify(const ContainerView& view, int32_t codeCount) {
  ContainerRecords records;
  LoadError error = Container_ReadRecords(view, codeCount, records);
  // A remark may be what an error follows from.
  return records.remarks.empty() ? error : LoadError{records.remarks.front()};
}

} // namespace vesk
