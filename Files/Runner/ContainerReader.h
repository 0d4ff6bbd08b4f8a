#pragma once
// The work behind Container_ReadRecords; not for others.
#include "Files/Runner/ContainerRecords.h"
#include "Files/Runner/RecordReader.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace vesk::container {

inline constexpr int32_t kMaximumSize = 0x7FFF; // pixels of a sprite, 16 bits in page entries

inline std::string Number(int64_t value) { return std::to_string(value); }

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

} // namespace vesk::container
