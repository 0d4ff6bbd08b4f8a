#include "pack/ContainerWriter.h"

#include "pack/TexturePages.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <map>
#include <set>
#include <stdexcept>
#include <string_view>

namespace vesk::pack {
namespace {

constexpr uint32_t kVersion = 16;
constexpr size_t kEventTypes = 13;
constexpr int kFirstInstance = 100000;
constexpr int kFirstTile = 10000000;

[[noreturn]] void Fail(const std::string& text) { throw std::runtime_error(text); }

// The growing file. References are patched when what they point at has found its place.
class Bytes {
public:
  std::vector<uint8_t> bytes;

  uint32_t At() const { return static_cast<uint32_t>(bytes.size()); }
  void U8(uint32_t value) { bytes.push_back(static_cast<uint8_t>(value)); }
  void U16(uint32_t value) {
    U8(value & 0xFF);
    U8(value >> 8 & 0xFF);
  }
  void U32(uint32_t value) {
    U16(value & 0xFFFF);
    U16(value >> 16);
  }
  void I32(int value) { U32(static_cast<uint32_t>(value)); }
  void U64(uint64_t value) {
    U32(static_cast<uint32_t>(value));
    U32(static_cast<uint32_t>(value >> 32));
  }
  void F32(float value) { U32(std::bit_cast<uint32_t>(value)); }
  void Bool(bool value) { U32(value ? 1 : 0); }
  void Raw(std::string_view data) { bytes.insert(bytes.end(), data.begin(), data.end()); }
  void Align(size_t to) { bytes.resize((bytes.size() + to - 1) / to * to); }
  void Patch(uint32_t at, uint32_t value) {
    for (uint32_t i = 0; i < 4; ++i) bytes[at + i] = static_cast<uint8_t>(value >> (8 * i));
  }

  // A word that will hold the offset of that text; equal texts share one place.
  void Text(const std::string& text) {
    const auto [entry, added] = m_textIndex.try_emplace(text, m_texts.size());
    if (added) m_texts.push_back(text);
    m_textUses.emplace_back(At(), entry->second);
    U32(0);
  }
  // A word that will hold the offset of a page entry.
  void PageEntry(size_t entry) {
    m_pageUses.emplace_back(At(), entry);
    U32(0);
  }

  void BeginChunk(const char* tag) {
    Raw(std::string_view(tag, 4));
    m_chunk = At();
    U32(0);
  }
  void EndChunk() {
    Align(16);
    Patch(m_chunk, At() - m_chunk - 4);
  }

  // A pointer list: the count and room for the references. Element() makes one point here.
  uint32_t BeginList(size_t count) {
    U32(static_cast<uint32_t>(count));
    const uint32_t list = At();
    bytes.resize(bytes.size() + 4 * count);
    return list;
  }
  void Element(uint32_t list, size_t index) { Patch(list + static_cast<uint32_t>(4 * index), At()); }

  void PageEntriesWritten(const std::vector<uint32_t>& offsets) {
    for (const auto& [at, entry] : m_pageUses) Patch(at, offsets[entry]);
  }
  void WriteTexts() {
    const uint32_t list = BeginList(m_texts.size());
    std::vector<uint32_t> offsets;
    for (size_t i = 0; i < m_texts.size(); ++i) {
      Align(4);
      Element(list, i);
      U32(static_cast<uint32_t>(m_texts[i].size()));
      offsets.push_back(At());
      Raw(m_texts[i]);
      U8(0);
    }
    for (const auto& [at, text] : m_textUses) Patch(at, offsets[text]);
  }

private:
  uint32_t m_chunk = 0;
  std::map<std::string, size_t> m_textIndex;
  std::vector<std::string> m_texts;
  std::vector<std::pair<uint32_t, size_t>> m_textUses;
  std::vector<std::pair<uint32_t, size_t>> m_pageUses;
};

// Gives every record without an id the next free one; ids given by hand are kept.
template <class T>
std::vector<int> Ids(const std::vector<Room>& rooms, std::vector<T> Room::*list, int first) {
  std::set<int> used;
  for (const Room& room : rooms)
    for (const T& record : room.*list)
      if (record.id != 0) used.insert(record.id);
  std::vector<int> ids;
  int next = first;
  for (const Room& room : rooms)
    for (const T& record : room.*list) {
      if (record.id == 0) {
        while (used.count(next)) ++next;
        used.insert(next);
      }
      ids.push_back(record.id != 0 ? record.id : next);
    }
  return ids;
}

int LastId(int given, const std::vector<int>& ids, int first) {
  if (given >= 0) return given;
  return ids.empty() ? first : *std::max_element(ids.begin(), ids.end());
}

void WriteHeader(Bytes& out, const Game& game, int lastInstance, int lastTile) {
  const Header& header = game.header;
  out.U8(1);
  out.U8(kVersion);
  out.U16(0);
  out.Text(header.fileName);
  out.Text(header.configuration);
  out.I32(lastInstance);
  out.I32(lastTile);
  out.U32(header.gameId);
  out.U64(0);
  out.U64(0);
  out.Text(header.name);
  for (const int version : {1, 0, 0, 9999}) out.I32(version);
  out.I32(header.windowWidth);
  out.I32(header.windowHeight);
  out.U32(header.flags);
  for (int i = 0; i < 5; ++i) out.U32(0);
  out.U64(header.timestamp);
  out.Text(header.displayName);
  out.U64(0);
  out.U64(header.featureMask);
  out.U32(0);
  out.U32(6502);
  const size_t rooms = header.roomOrder.empty() ? game.rooms.size() : header.roomOrder.size();
  out.U32(static_cast<uint32_t>(rooms));
  for (size_t i = 0; i < rooms; ++i)
    out.I32(header.roomOrder.empty() ? static_cast<int>(i) : header.roomOrder[i]);
}

void WriteOptions(Bytes& out, const Options& options) {
  out.U32(0x80000000);
  out.U32(2);
  out.U32(options.flags);
  out.U32(0);
  out.I32(options.scale);
  out.U32(options.windowColour);
  out.U32(options.colourDepth);
  out.U32(options.resolution);
  out.U32(options.frequency);
  out.U32(options.verticalSync);
  for (int i = 0; i < 4; ++i) out.U32(0);
  out.U32(255);
  out.U32(static_cast<uint32_t>(options.constants.size()));
  for (const auto& [name, value] : options.constants) {
    out.Text(name);
    out.Text(value);
  }
}

// The order of the sounds' data, and each sound's place in it (-1 none).
struct SoundData {
  std::vector<const std::string*> data; // null for a place that no sound has
  std::vector<int> places;
};

SoundData PlaceSounds(const std::vector<Sound>& sounds) {
  SoundData result;
  const auto take = [&](size_t place, const Sound& sound) {
    if (result.data.size() <= place) result.data.resize(place + 1);
    if (result.data[place])
      Fail("sound " + sound.name + ": data place " + std::to_string(place) + " is taken");
    result.data[place] = &sound.data;
  };
  for (const Sound& sound : sounds) {
    if (sound.audioIndex > 0xFFFF)
      Fail("sound " + sound.name + ": data place " + std::to_string(sound.audioIndex) + " is too high");
    if (!sound.data.empty() && sound.audioIndex >= 0) take(static_cast<size_t>(sound.audioIndex), sound);
  }
  size_t next = 0;
  for (const Sound& sound : sounds) {
    int place = -1;
    if (!sound.data.empty()) {
      place = sound.audioIndex;
      if (place < 0) {
        while (next < result.data.size() && result.data[next]) ++next;
        take(next, sound);
        place = static_cast<int>(next);
      }
    }
    result.places.push_back(place);
  }
  return result;
}

void WriteSounds(Bytes& out, const std::vector<Sound>& sounds, const std::vector<int>& places) {
  const uint32_t list = out.BeginList(sounds.size());
  for (size_t i = 0; i < sounds.size(); ++i) {
    const Sound& sound = sounds[i];
    out.Element(list, i);
    out.Text(sound.name);
    out.U32(sound.mode);
    out.Text(sound.type);
    out.Text(sound.file);
    out.U32(0);
    out.F32(sound.gain);
    out.U32(0);
    out.U32(0);
    out.I32(places[i]);
  }
}

void WriteMask(Bytes& out, const uint8_t* solid, int width, int height) {
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; x += 8) {
      uint32_t bits = 0;
      for (int i = 0; i < 8 && x + i < width; ++i)
        if (solid[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x + i)])
          bits |= 0x80u >> i;
      out.U8(bits);
    }
}

std::vector<std::vector<uint8_t>> MasksOf(const Sprite& sprite, int width, int height) {
  const size_t pixels = static_cast<size_t>(width) * static_cast<size_t>(height);
  std::vector<std::vector<uint8_t>> masks = sprite.masks;
  for (const std::vector<uint8_t>& mask : masks)
    if (mask.size() != pixels)
      Fail("sprite " + sprite.name + ": a mask has " + std::to_string(mask.size()) + " pixels, not " +
           std::to_string(pixels));
  if (!masks.empty()) return masks;
  const size_t count = sprite.precise ? sprite.frames.size() : std::min<size_t>(1, sprite.frames.size());
  for (size_t frame = 0; frame < count; ++frame) {
    std::vector<uint8_t>& mask = masks.emplace_back(pixels);
    for (size_t i = 0; i < pixels; ++i) mask[i] = (sprite.frames[frame].rgba[i] >> 24) != 0;
  }
  return masks;
}

void WriteSprites(Bytes& out, const std::vector<Sprite>& sprites) {
  const uint32_t list = out.BeginList(sprites.size());
  size_t entry = 0;
  for (size_t i = 0; i < sprites.size(); ++i) {
    const Sprite& sprite = sprites[i];
    const int width = sprite.frames.empty() ? sprite.width : sprite.frames[0].width;
    const int height = sprite.frames.empty() ? sprite.height : sprite.frames[0].height;
    const bool wholeFrame = sprite.right < sprite.left;
    out.Element(list, i);
    out.Text(sprite.name);
    out.I32(width);
    out.I32(height);
    out.I32(wholeFrame ? 0 : sprite.left);
    out.I32(wholeFrame ? width - 1 : sprite.right);
    out.I32(wholeFrame ? height - 1 : sprite.bottom);
    out.I32(wholeFrame ? 0 : sprite.top);
    out.Bool(sprite.transparent);
    out.Bool(sprite.smooth);
    out.Bool(sprite.preload);
    out.I32(sprite.bboxMode);
    out.U32(sprite.precise ? 1 : 0);
    out.I32(sprite.originX);
    out.I32(sprite.originY);
    out.U32(static_cast<uint32_t>(sprite.frames.size()));
    for (size_t frame = 0; frame < sprite.frames.size(); ++frame) out.PageEntry(entry++);
    const std::vector<std::vector<uint8_t>> masks = MasksOf(sprite, width, height);
    out.U32(static_cast<uint32_t>(masks.size()));
    for (const std::vector<uint8_t>& mask : masks) WriteMask(out, mask.data(), width, height);
    out.Align(4);
  }
}

void WriteBackgrounds(Bytes& out, const std::vector<Background>& backgrounds, size_t firstEntry) {
  const uint32_t list = out.BeginList(backgrounds.size());
  for (size_t i = 0; i < backgrounds.size(); ++i) {
    out.Element(list, i);
    out.Text(backgrounds[i].name);
    out.Bool(backgrounds[i].transparent);
    out.Bool(backgrounds[i].smooth);
    out.Bool(backgrounds[i].preload);
    out.PageEntry(firstEntry + i);
  }
}

void WritePaths(Bytes& out, const std::vector<Path>& paths) {
  const uint32_t list = out.BeginList(paths.size());
  for (size_t i = 0; i < paths.size(); ++i) {
    const Path& path = paths[i];
    out.Element(list, i);
    out.Text(path.name);
    out.Bool(path.smooth);
    out.Bool(path.closed);
    out.I32(path.precision);
    out.U32(static_cast<uint32_t>(path.points.size()));
    for (const PathPoint& point : path.points) {
      out.F32(point.x);
      out.F32(point.y);
      out.F32(point.speed);
    }
  }
}

void WriteScripts(Bytes& out, const std::vector<Script>& scripts) {
  const uint32_t list = out.BeginList(scripts.size());
  for (size_t i = 0; i < scripts.size(); ++i) {
    out.Element(list, i);
    out.Text(scripts[i].name);
    out.I32(scripts[i].code);
  }
}

void WriteShaders(Bytes& out, const std::vector<Shader>& shaders) {
  constexpr int kPrecompiledForms = 6;
  const uint32_t list = out.BeginList(shaders.size());
  for (size_t i = 0; i < shaders.size(); ++i) {
    const Shader& shader = shaders[i];
    out.Element(list, i);
    out.Text(shader.name);
    out.U32(0x80000001);
    for (int form = 0; form < 2; ++form) { // GL ES, desktop GL
      out.Text(shader.vertex);
      out.Text(shader.fragment);
    }
    out.Text("");
    out.Text("");
    out.U32(0);
    out.U32(0);
    out.U32(static_cast<uint32_t>(shader.attributes.size()));
    for (const std::string& attribute : shader.attributes) out.Text(attribute);
    out.U32(2);
    for (int form = 0; form < kPrecompiledForms; ++form) {
      out.U32(0);
      out.U32(0);
    }
  }
}

void WriteGlyph(Bytes& out, const FontGlyph& glyph) {
  out.U16(glyph.character);
  for (const int field : {glyph.x, glyph.y, glyph.width, glyph.height, glyph.advance, glyph.offset, 0})
    out.U16(static_cast<uint32_t>(field));
}

void WriteFonts(Bytes& out, const std::vector<Font>& fonts, size_t firstBackground) {
  constexpr uint32_t kAntialiased = 2u << 24; // the level plus 1
  const uint32_t list = out.BeginList(fonts.size());
  for (size_t i = 0; i < fonts.size(); ++i) {
    const Font& font = fonts[i];
    out.Element(list, i);
    out.Text(font.name);
    out.Text(font.displayName);
    out.I32(font.size);
    out.Bool(font.bold);
    out.Bool(font.italic);
    out.U32(kAntialiased | (font.glyphs.empty() ? 0u : font.glyphs.front().character));
    out.U32(font.glyphs.empty() ? 0u : font.glyphs.back().character);
    if (font.background >= 0)
      out.PageEntry(firstBackground + static_cast<size_t>(font.background));
    else
      out.U32(0);
    out.F32(font.scaleX);
    out.F32(font.scaleY);
    const uint32_t glyphs = out.BeginList(font.glyphs.size());
    for (size_t g = 0; g < font.glyphs.size(); ++g) {
      out.Element(glyphs, g);
      WriteGlyph(out, font.glyphs[g]);
    }
  }
  for (uint32_t i = 0; i < 256; ++i) out.U16(i);
}

void WriteAction(Bytes& out, int code) {
  for (const int word : {1, 603, 7, 0, 0, 1, 2}) out.I32(word);
  out.Text("");
  out.I32(code);
  for (const int word : {1, -1, 0, 0, 0}) out.I32(word);
}

void WriteObjects(Bytes& out, const std::vector<Object>& objects) {
  const uint32_t list = out.BeginList(objects.size());
  for (size_t i = 0; i < objects.size(); ++i) {
    const Object& object = objects[i];
    out.Element(list, i);
    out.Text(object.name);
    out.I32(object.sprite);
    out.Bool(object.visible);
    out.Bool(object.solid);
    out.I32(object.depth);
    out.Bool(object.persistent);
    out.I32(object.parent);
    out.I32(object.mask);
    for (int word = 0; word < 3; ++word) out.U32(0);
    out.F32(0.5f);
    out.F32(0.1f);
    out.U32(0);
    out.F32(0.1f);
    out.F32(0.1f);
    out.U32(2);
    out.F32(0.2f);
    out.U32(1);
    out.U32(0);
    for (const float shape : {0.f, 0.f, 16.f, 16.f}) out.F32(shape);

    size_t types = kEventTypes;
    for (const Event& event : object.events) {
      if (event.type < 0 || event.type > 255)
        Fail("object " + object.name + ": there is no event type " + std::to_string(event.type));
      types = std::max(types, static_cast<size_t>(event.type) + 1);
    }
    const uint32_t lists = out.BeginList(types);
    for (size_t type = 0; type < types; ++type) {
      out.Element(lists, type);
      std::vector<const Event*> events;
      for (const Event& event : object.events)
        if (event.type == static_cast<int>(type)) events.push_back(&event);
      const uint32_t entries = out.BeginList(events.size());
      for (size_t k = 0; k < events.size(); ++k) {
        out.Element(entries, k);
        out.I32(events[k]->subtype);
        const uint32_t actions = out.BeginList(1);
        out.Element(actions, 0);
        WriteAction(out, events[k]->code);
      }
    }
  }
}

void WriteRoomBackground(Bytes& out, const RoomBackground& slot) {
  out.Bool(slot.visible);
  out.Bool(slot.foreground);
  out.I32(slot.background);
  out.I32(slot.x);
  out.I32(slot.y);
  out.Bool(slot.tiledSideways);
  out.Bool(slot.tiledUpright);
  out.I32(slot.hspeed);
  out.I32(slot.vspeed);
  out.Bool(slot.stretch);
}

void WriteRoomView(Bytes& out, const RoomView& view) {
  out.Bool(view.enabled);
  for (const int word : {view.x, view.y, view.width, view.height, view.portX, view.portY, view.portWidth,
                         view.portHeight, view.borderX, view.borderY, view.speedX, view.speedY, view.object})
    out.I32(word);
}

void WriteRoomInstance(Bytes& out, const RoomInstance& instance, int id) {
  for (const int word : {instance.x, instance.y, instance.object, id, instance.code}) out.I32(word);
  out.F32(instance.scaleX);
  out.F32(instance.scaleY);
  out.U32(instance.colour);
  out.F32(instance.rotation);
  out.I32(instance.preCreateCode);
}

void WriteRoomTile(Bytes& out, const RoomTile& tile, int id) {
  for (const int word :
       {tile.x, tile.y, tile.background, tile.sourceX, tile.sourceY, tile.width, tile.height, tile.depth, id})
    out.I32(word);
  out.F32(tile.scaleX);
  out.F32(tile.scaleY);
  out.U32(tile.colour);
}

void WriteRooms(Bytes& out, const std::vector<Room>& rooms, const std::vector<int>& instanceIds,
                const std::vector<int>& tileIds) {
  size_t nextInstance = 0, nextTile = 0;
  const uint32_t list = out.BeginList(rooms.size());
  for (size_t i = 0; i < rooms.size(); ++i) {
    const Room& room = rooms[i];
    out.Element(list, i);
    out.Text(room.name);
    out.Text(room.caption);
    out.I32(room.width);
    out.I32(room.height);
    out.I32(room.speed);
    out.Bool(room.persistent);
    out.U32(room.colour);
    out.Bool(room.showColour);
    out.I32(room.code);
    out.U32((room.viewsEnabled ? 1u : 0u) | (room.clearDisplay ? 2u : 0u) | (room.clearViews ? 0u : 4u));
    const uint32_t lists = out.At();
    for (int k = 0; k < 4; ++k) out.U32(0);
    for (const int word : {0, 0, 0, 640, 480}) out.I32(word);
    out.F32(0);
    out.F32(10);
    out.F32(0.1f);

    const auto records = [&](size_t place, const auto& elements, auto&& write) {
      out.Element(lists, place);
      const uint32_t references = out.BeginList(elements.size());
      for (size_t k = 0; k < elements.size(); ++k) {
        out.Element(references, k);
        write(elements[k]);
      }
    };
    records(0, room.backgrounds, [&](const RoomBackground& slot) { WriteRoomBackground(out, slot); });
    records(1, room.views, [&](const RoomView& view) { WriteRoomView(out, view); });
    records(2, room.instances, [&](const RoomInstance& instance) {
      WriteRoomInstance(out, instance, instanceIds[nextInstance++]);
    });
    records(3, room.tiles, [&](const RoomTile& tile) { WriteRoomTile(out, tile, tileIds[nextTile++]); });
  }
}

std::vector<uint32_t> WritePageEntries(Bytes& out, const std::vector<PagePlace>& places) {
  std::vector<uint32_t> offsets;
  const uint32_t list = out.BeginList(places.size());
  for (size_t i = 0; i < places.size(); ++i) {
    const PagePlace& place = places[i];
    out.Element(list, i);
    offsets.push_back(out.At());
    for (const int word :
         {place.sourceX, place.sourceY, place.width, place.height, place.targetX, place.targetY, place.width,
          place.height, place.fullWidth, place.fullHeight, place.page})
      out.U16(static_cast<uint32_t>(word));
  }
  return offsets;
}

void WriteTextures(Bytes& out, const std::vector<Picture>& pages) {
  const uint32_t list = out.BeginList(pages.size());
  const uint32_t records = out.At();
  for (size_t i = 0; i < pages.size(); ++i) {
    out.Element(list, i);
    out.U32(0);
    out.U32(0);
  }
  for (size_t i = 0; i < pages.size(); ++i) {
    out.Align(128);
    out.Patch(records + static_cast<uint32_t>(8 * i) + 4, out.At());
    out.Raw(EncodePng(pages[i]));
  }
}

void WriteSoundData(Bytes& out, const std::vector<const std::string*>& data) {
  const uint32_t list = out.BeginList(data.size());
  for (size_t i = 0; i < data.size(); ++i) {
    if (!data[i]) continue;
    out.Align(4);
    out.Element(list, i);
    out.U32(static_cast<uint32_t>(data[i]->size()));
    out.Raw(*data[i]);
  }
}

// The backgrounds that stand as tiles in a room.
std::vector<bool> TileSets(const Game& game) {
  std::vector<bool> tileSets(game.backgrounds.size());
  for (const Room& room : game.rooms)
    for (const RoomTile& tile : room.tiles)
      if (tile.background >= 0 && static_cast<size_t>(tile.background) < tileSets.size())
        tileSets[static_cast<size_t>(tile.background)] = true;
  return tileSets;
}

// All pictures in the order of their page entries: frames of sprites, then backgrounds. Sprites and tile sets
// are drawn in turns all over a picture: they share pages before backdrops and screens.
std::vector<PagePicture> Pictures(const Game& game) {
  std::vector<PagePicture> pictures;
  const auto add = [&](const std::string& owner, const Picture& picture, bool backdrop) {
    if (picture.width < 1 || picture.height < 1 || picture.width > 0x7FFF || picture.height > 0x7FFF ||
        picture.rgba.size() != static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height))
      Fail(owner + ": a picture of " + std::to_string(picture.width) + " by " +
           std::to_string(picture.height) + " with " + std::to_string(picture.rgba.size()) + " pixels");
    pictures.push_back({&picture, backdrop});
  };
  for (const Sprite& sprite : game.sprites)
    for (const Picture& frame : sprite.frames) {
      add("sprite " + sprite.name, frame, false);
      if (frame.width != sprite.frames[0].width || frame.height != sprite.frames[0].height)
        Fail("sprite " + sprite.name + ": its frames differ in size");
    }
  const std::vector<bool> tileSets = TileSets(game);
  for (size_t at = 0; at < game.backgrounds.size(); ++at)
    add("background " + game.backgrounds[at].name, game.backgrounds[at].picture, !tileSets[at]);
  return pictures;
}

} // namespace

std::vector<uint8_t> Write(const Game& game) {
  const std::vector<PagePicture> pictures = Pictures(game);
  const TexturePages pages = PackPages(pictures);
  const SoundData sounds = PlaceSounds(game.sounds);
  const std::vector<int> instanceIds = Ids(game.rooms, &Room::instances, kFirstInstance);
  const std::vector<int> tileIds = Ids(game.rooms, &Room::tiles, kFirstTile);

  Bytes out;
  const auto chunk = [&](const char* tag, auto&& body) {
    out.BeginChunk(tag);
    body();
    out.EndChunk();
  };
  const auto noRecords = [&] { out.U32(0); };

  out.Raw("FORM");
  out.U32(0);
  chunk("GEN8", [&] {
    WriteHeader(out, game, LastId(game.header.lastInstanceId, instanceIds, kFirstInstance),
                LastId(game.header.lastTileId, tileIds, kFirstTile));
  });
  chunk("OPTN", [&] { WriteOptions(out, game.options); });
  chunk("LANG", [&] {
    for (const uint32_t word : {1u, 0u, 0u}) out.U32(word);
  });
  chunk("EXTN", noRecords);
  chunk("SOND", [&] { WriteSounds(out, game.sounds, sounds.places); });
  chunk("AGRP", noRecords);
  chunk("SPRT", [&] { WriteSprites(out, game.sprites); });
  const size_t firstBackground = pictures.size() - game.backgrounds.size();
  chunk("BGND", [&] { WriteBackgrounds(out, game.backgrounds, firstBackground); });
  chunk("PATH", [&] { WritePaths(out, game.paths); });
  chunk("SCPT", [&] { WriteScripts(out, game.scripts); });
  chunk("GLOB", [&] {
    out.U32(static_cast<uint32_t>(game.startScripts.size()));
    for (const int code : game.startScripts) out.I32(code);
  });
  chunk("SHDR", [&] { WriteShaders(out, game.shaders); });
  chunk("FONT", [&] { WriteFonts(out, game.fonts, firstBackground); });
  chunk("TMLN", noRecords);
  chunk("OBJT", [&] { WriteObjects(out, game.objects); });
  chunk("ROOM", [&] { WriteRooms(out, game.rooms, instanceIds, tileIds); });
  chunk("DAFL", noRecords);
  chunk("TPAG", [&] { out.PageEntriesWritten(WritePageEntries(out, pages.places)); });
  chunk("STRG", [&] { out.WriteTexts(); });
  chunk("TXTR", [&] { WriteTextures(out, pages.pages); });
  chunk("AUDO", [&] { WriteSoundData(out, sounds.data); });
  out.Patch(4, out.At() - 8);
  return std::move(out.bytes);
}

Picture SolidPicture(int width, int height, uint32_t rgba) {
  return {width, height,
          std::vector<uint32_t>(static_cast<size_t>(width) * static_cast<size_t>(height), rgba)};
}

Sprite SolidSprite(std::string name, int width, int height, int frames, uint32_t rgba) {
  Sprite sprite;
  sprite.name = std::move(name);
  sprite.frames.assign(static_cast<size_t>(frames), SolidPicture(width, height, rgba));
  sprite.width = width;
  sprite.height = height;
  return sprite;
}

} // namespace vesk::pack
