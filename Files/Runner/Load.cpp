#include "Files/Runner/Load.h"

#include "Files/Background/Background.h"
#include "Files/Base/Console.h"
#include "Files/Code/BuiltinVariables.h"
#include "Files/Code/Slots.h"
#include "Files/Font/Font.h"
#include "Files/Function/Function.h"
#include "Files/Graphics/Draw.h"
#include "Files/Graphics/Shader.h"
#include "Files/Graphics/Texture.h"
#include "Files/Path/Path.h"
#include "Files/Runner/LoadWorld.h"
#include "Files/Script/Script.h"
#include "Files/Sound/SoundRecords.h"
#include "Files/Sprite/Sprite.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace vesk {
namespace {

LoadState g_load;

// Page entries lie in the container at even offsets, which ReadRecords checks.
const PageEntry* EntryAt(uint32_t offset) {
  return offset == 0 ? nullptr : reinterpret_cast<const PageEntry*>(g_load.container.Bytes() + offset);
}

// True when the records of this container are there.
bool ReadOnce(const ContainerView& container, int32_t codeCount) {
  LoadState& load = g_load;
  if (load.hasHeader && load.container.Bytes() == container.Bytes() &&
      load.container.Size() == container.Size())
    return true;
  Load_Reset();
  load.container = container;
  if (LoadError error = Container_ReadRecords(container, codeCount, load.records)) {
    load.error = std::move(error.text);
    load.records = {};
    ReleaseConsole().Output("%s\n", load.error.c_str());
    return false;
  }
  load.hasHeader = true;
  load.scriptObjects = (load.records.header.flags & container::kHeaderScriptObjects) != 0;
  return true;
}

void ClearTables() {
  Sprite_Reset();
  Background_Reset();
  Path_Reset();
  Font_Reset();
  Script_Reset();
  Shader_Reset();
  World_ClearTables();
}

// ---- one function a chunk ----

void LoadSounds() {
  const auto& sounds = g_load.records.sounds;
  for (size_t i = 0; i < sounds.size(); ++i)
    if (const auto& sound = sounds[i]) {
      SoundRecord record;
      record.name = sound->name;
      record.flags = static_cast<int32_t>(sound->mode);
      record.type = sound->type;
      record.file = sound->file;
      record.gain = sound->gain;
      record.audioGroup = sound->group;
      record.audioIndex = sound->audioIndex;
      Audio_AddSound(static_cast<int32_t>(i), record);
    }
}

void LoadSoundData() {
  const auto& data = g_load.records.soundData;
  for (size_t i = 0; i < data.size(); ++i)
    if (data[i]) Audio_BindData(static_cast<int32_t>(i), *data[i]);
}

void LoadAudioGroups() {
  const auto& groups = g_load.records.audioGroups;
  for (size_t i = 0; i < groups.size(); ++i) Audio_AddGroup(static_cast<int32_t>(i), groups[i]);
}

// From the origin to the farthest corner of the frame, pixels.
SpriteKind KindOf(const container::SpriteRecord& record) {
  return record.separateMasks == 1   ? SpriteKind::kPrecise
         : record.separateMasks == 2 ? SpriteKind::kRotatedRectangle
                                     : SpriteKind::kRectangle;
}

void LoadSprites() {
  for (const auto& record : g_load.records.sprites) {
    auto& slot = Sprites().table.emplace_back();
    if (!record) continue;
    slot = std::make_unique<CSprite>();
    CSprite& sprite = *slot;
    sprite.name = record->name;
    sprite.index = static_cast<int32_t>(Sprites().table.size()) - 1;
    sprite.width = record->width;
    sprite.height = record->height;
    sprite.left = record->left;
    sprite.top = record->top;
    sprite.right = record->right;
    sprite.bottom = record->bottom;
    sprite.originX = record->originX;
    sprite.originY = record->originY;
    sprite.boundingRadius = Sprite_BoundingRadius(sprite);
    sprite.bboxMode = record->bboxMode;
    sprite.kind = KindOf(*record);
    sprite.transparent = record->transparent;
    sprite.smooth = record->smooth;
    sprite.preload = record->preload;
    for (const uint32_t frame : record->frames) sprite.frames.push_back(EntryAt(frame));
    sprite.maskCount = record->maskCount;
    if (record->maskCount > 0) sprite.packedMasks = g_load.container.Bytes() + record->masks;
  }
}

void LoadBackgrounds() {
  for (const auto& record : g_load.records.backgrounds) {
    auto& slot = Backgrounds().table.emplace_back();
    if (!record) continue;
    slot = std::make_unique<CBackground>();
    CBackground& background = *slot;
    background.name = record->name;
    background.index = static_cast<int32_t>(Backgrounds().table.size()) - 1;
    background.transparent = record->transparent;
    background.smooth = record->smooth;
    background.preload = record->preload;
    background.page = EntryAt(record->page);
    if (background.page) {
      background.width = background.page->boundingWidth;
      background.height = background.page->boundingHeight;
    }
  }
}

void LoadPaths() { Path_Load(g_load.records.paths); }

int16_t Field(uint32_t offset, uint32_t field) {
  return static_cast<int16_t>(g_load.container.U16(offset + 2 * field));
}

std::unique_ptr<CFontFb> MakeFont(const container::FontRecord& record) {
  auto font = std::make_unique<CFontFb>();
  font->name = record.displayName;
  font->assetName = record.name;
  font->size = record.size;
  font->bold = record.bold;
  font->italic = record.italic;
  font->first = static_cast<int32_t>(record.rangeStart & 0xFFFF);
  font->charset = static_cast<int32_t>(record.rangeStart >> 16 & 0xFF);
  font->antialias = static_cast<int32_t>(record.rangeStart >> 24) - 1;
  font->last = static_cast<int32_t>(record.rangeEnd);
  font->page = EntryAt(record.page);
  if (font->page) {
    font->textureWidth = font->page->sourceWidth;
    font->textureHeight = font->page->sourceHeight;
  }
  font->scaleX = record.scaleX;
  font->scaleY = record.scaleY;
  for (const uint32_t at : record.glyphs) {
    if (at == 0) continue;
    Glyph glyph;
    glyph.character = g_load.container.U16(at);
    glyph.x = Field(at, 1);
    glyph.y = Field(at, 2);
    glyph.frame = Field(at, 3);
    glyph.height = Field(at, 4);
    glyph.advance = Field(at, 5);
    glyph.offset = Field(at, 6);
    font->height = std::max<int32_t>(font->height, glyph.height);
    font->glyphs.push_back(glyph);
  }
  std::stable_sort(font->glyphs.begin(), font->glyphs.end(),
                   [](const Glyph& a, const Glyph& b) { return a.character < b.character; });
  return font;
}

void LoadFonts() {
  for (const auto& record : g_load.records.fonts)
    Fonts().table.push_back(record ? MakeFont(*record) : nullptr);
}

// The colour that drawing starts with before a game starts, which goes back to black.
void LoadOptions() {
  const char* colour = Load_Constant("@@DrawColour");
  if (!colour) return;
  Drawing().colourWord = static_cast<uint32_t>(std::strtoul(colour, nullptr, 10));
  Drawing().alphaByte = static_cast<uint8_t>(Drawing().colourWord >> 24);
}

void LoadScripts() {
  for (const auto& record : g_load.records.scripts) {
    if (record)
      Script_Add(record->name, record->code);
    else
      Script_AddHole();
  }
}

void LoadShaders() {
  for (const auto& record : g_load.records.shaders) {
    if (record)
      Shader_Load(record->name, static_cast<int32_t>(record->kind), record->glesVertex, record->glesFragment,
                  {record->attributes.begin(), record->attributes.end()});
    else
      Shaders().table.emplace_back();
  }
}

// Makes the textures and puts their ids into the page entries.
void LoadTextures() {
  std::vector<int32_t> ids;
  for (const auto& texture : g_load.records.textures)
    ids.push_back(texture ? Texture_CreateFromData(texture->data.data(),
                                                   static_cast<uint32_t>(texture->data.size()),
                                                   texture->flags & 1)
                          : -1);
  for (const uint32_t offset : g_load.records.pageEntries) {
    if (offset == 0) continue;
    const uint32_t at = offset + offsetof(PageEntry, texture);
    const auto page = static_cast<int16_t>(g_load.container.U16(at));
    if (page < 0 || static_cast<size_t>(page) >= ids.size()) {
      ReleaseConsole().Output("what!!!!\n");
      continue;
    }
    g_load.pageNumbers.emplace_back(at, static_cast<uint16_t>(page));
    const auto id = static_cast<int16_t>(ids[static_cast<size_t>(page)]);
    std::memcpy(g_load.container.Bytes() + at, &id, sizeof id);
  }
}

constexpr struct {
  uint32_t tag;
  void (*load)();
  bool newAudioOnly = false;
} kLoaders[] = {
    {ChunkTag("SOND"), LoadSounds, true},
    {ChunkTag("AUDO"), LoadSoundData, true},
    {ChunkTag("AGRP"), LoadAudioGroups, true},
    {ChunkTag("SPRT"), LoadSprites},
    {ChunkTag("BGND"), LoadBackgrounds},
    {ChunkTag("PATH"), LoadPaths},
    {ChunkTag("SCPT"), LoadScripts},
    {ChunkTag("SHDR"), LoadShaders},
    {ChunkTag("FONT"), LoadFonts},
    {ChunkTag("OPTN"), LoadOptions},
    {ChunkTag("OBJT"), World_LoadObjects},
    {ChunkTag("ROOM"), World_LoadRooms},
    {ChunkTag("TXTR"), LoadTextures},
};

void ProcessChunk(const Chunk& chunk) {
  const bool newAudio = (g_load.records.options.flags & container::kOptionNewAudio) != 0;
  for (const auto& loader : kLoaders)
    if (loader.tag == chunk.tag && (newAudio || !loader.newAudioOnly)) loader.load();
}

} // namespace

LoadState& Load() { return g_load; }

void Load_Reset() {
  for (const auto& [offset, page] : g_load.pageNumbers)
    std::memcpy(g_load.container.Bytes() + offset, &page, sizeof page);
  g_load = {};
}

bool Container_PreScan(const ContainerView& container, int32_t codeCount,
                       std::span<const BuiltinGroup> builtins) {
  if (!ReadOnce(container, codeCount)) return false;
  DebugConsole().Output("Get Header Information\n");
  for (const BuiltinGroup& group : builtins) {
    DebugConsole().Output("%s", group.name);
    if (group.add) group.add();
  }
  DebugConsole().Output("Fini\n");
  return true;
}

bool LoadGameData(const ContainerView& container, GameDescriptor& descriptor) {
  DebugConsole().Output("initialise everything!\n");
  ClearTables();
  Code().table = descriptor.codeTable;
  Code().instanceSlotCount = descriptor.instanceSlotCount;
  Variables_Intern(descriptor.variableTable, descriptor.instanceSlotCount);
  GlobalObject_Create(std::max(descriptor.globalSlotCount, descriptor.instanceSlotCount));
  if (!ReadOnce(container, static_cast<int32_t>(descriptor.codeTable.size()))) return false;

  bool known = true;
  for (const Chunk& chunk : g_load.records.chunks) {
    DebugConsole().Output("Process Chunk: %s   %d\n", ChunkName(chunk.tag).c_str(),
                          static_cast<int>(chunk.size));
    if (chunk.size == 0) continue;
    if (!Container_KnowsChunk(chunk.tag)) {
      ReleaseConsole().Output("unknown Chunk %s:%d\n", ChunkName(chunk.tag).c_str(),
                              static_cast<int>(chunk.size));
      known = false;
      continue;
    }
    ProcessChunk(chunk);
  }
  Variables_Number(descriptor.variableTable);
  for (FunctionEntry& entry : descriptor.functionTable)
    if (!Function_Find(entry.name, entry.id))
      ErrorConsole().Output("The game calls the built-in \"%s\", which does not exist\n", entry.name);
  for (const std::string& remark : g_load.records.remarks) ReleaseConsole().Output("%s\n", remark.c_str());
  if (!known) g_load.error = g_load.records.remarks.front();
  return known;
}

const char* Load_Constant(std::string_view name) {
  for (const auto& constant : g_load.records.options.constants)
    if (constant.name == name) return constant.value;
  return nullptr;
}

} // namespace vesk
