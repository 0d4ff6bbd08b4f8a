#include "pack/Inspect.h"

#include "Files/Sprite/Sprite.h"  // PageEntry
#include "pack/ContainerWriter.h" // SolidPicture
#include "pack/TexturePages.h"

#include <algorithm>
#include <cctype>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <vorbis/codec.h>

namespace vesk::pack {
namespace {

namespace fs = std::filesystem;

__attribute__((format(printf, 1, 2))) std::string Format(const char* format, ...) {
  char text[1024];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  return text;
}

PageEntry EntryAt(const ContainerView& container, uint32_t offset) {
  PageEntry entry;
  std::memcpy(&entry, container.Bytes() + offset, sizeof entry);
  return entry;
}

// The three header packets of a Vorbis stream; what is wrong with them, or nothing.
class VorbisCheck {
public:
  VorbisCheck() {
    ogg_sync_init(&m_sync);
    vorbis_info_init(&m_info);
    vorbis_comment_init(&m_comment);
  }
  ~VorbisCheck() {
    if (m_streamStarted) ogg_stream_clear(&m_stream);
    vorbis_comment_clear(&m_comment);
    vorbis_info_clear(&m_info);
    ogg_sync_clear(&m_sync);
  }
  VorbisCheck(const VorbisCheck&) = delete;
  VorbisCheck& operator=(const VorbisCheck&) = delete;

  std::string Run(std::span<const uint8_t> data) {
    char* buffer = ogg_sync_buffer(&m_sync, static_cast<long>(data.size()));
    std::memcpy(buffer, data.data(), data.size());
    ogg_sync_wrote(&m_sync, static_cast<long>(data.size()));
    int headers = 0;
    ogg_page page;
    while (headers < 3 && ogg_sync_pageout(&m_sync, &page) == 1) {
      if (!m_streamStarted) {
        ogg_stream_init(&m_stream, ogg_page_serialno(&page));
        m_streamStarted = true;
      }
      ogg_stream_pagein(&m_stream, &page);
      ogg_packet packet;
      while (headers < 3 && ogg_stream_packetout(&m_stream, &packet) == 1) {
        if (vorbis_synthesis_headerin(&m_info, &m_comment, &packet) != 0)
          return "its header " + std::to_string(headers) + " is no Vorbis header";
        ++headers;
      }
    }
    return headers == 3 ? "" : "it is no Ogg Vorbis stream";
  }

private:
  ogg_sync_state m_sync{};
  ogg_stream_state m_stream{};
  vorbis_info m_info{};
  vorbis_comment m_comment{};
  bool m_streamStarted = false;
};

class Lister {
public:
  Lister(const ContainerRecords& records, const ContainerView& container)
      : m_records(records), m_container(container) {}

  std::string Text() {
    Sprites();
    Backgrounds();
    Sounds();
    Each("path", m_records.paths, [](const auto& path) { return Format("%zu points", path.points.size()); });
    Each("script", m_records.scripts, [](const auto& script) { return Format("code %d", script.code); });
    Each("shader", m_records.shaders, [](const auto& shader) { return Format("kind %u", shader.kind); });
    Each("font", m_records.fonts, [](const auto& font) { return Format("%d points", font.size); });
    Each("object", m_records.objects, [](const auto& object) {
      return Format("sprite %d, mask %d, depth %d, parent %d, %zu events", object.sprite, object.mask,
                    object.depth, object.parent, object.events.size());
    });
    Each("room", m_records.rooms, [](const auto& room) {
      return Format("%d by %d, %zu instances, %zu tiles", room.width, room.height, room.instances.size(),
                    room.tiles.size());
    });
    for (size_t i = 0; i < m_records.textures.size(); ++i)
      if (const auto& page = m_records.textures[i])
        m_text += Format("page\t%zu\t\t%d by %d\n", i, page->width, page->height);
    m_text += Format("text\t%u\n", m_records.stringCount);
    return std::move(m_text);
  }

private:
  template <class T, class F> void Each(const char* kind, const container::RecordList<T>& list, F details) {
    for (size_t i = 0; i < list.size(); ++i)
      m_text += Format("%s\t%zu\t", kind, i) +
                (list[i] ? std::string(list[i]->name) + "\t" + details(*list[i]) : std::string("(none)")) +
                "\n";
  }
  void Sprites() {
    Each("sprite", m_records.sprites, [](const auto& sprite) {
      return Format("%d by %d, origin %d %d, box %d %d %d %d, %zu frames, %d masks%s", sprite.width,
                    sprite.height, sprite.originX, sprite.originY, sprite.left, sprite.top, sprite.right,
                    sprite.bottom, sprite.frames.size(), sprite.maskCount,
                    sprite.separateMasks == 1 ? ", precise" : "");
    });
  }
  void Backgrounds() {
    Each("background", m_records.backgrounds, [&](const auto& background) -> std::string {
      if (background.page == 0) return "no picture";
      const PageEntry entry = EntryAt(m_container, background.page);
      return Format("%d by %d", entry.boundingWidth, entry.boundingHeight);
    });
  }
  void Sounds() {
    Each("sound", m_records.sounds, [](const auto& sound) {
      return Format("mode %u, gain %g, %s, data %d of %zu bytes", static_cast<unsigned>(sound.mode),
                    static_cast<double>(sound.gain), sound.file, sound.audioIndex, sound.data.size());
    });
  }

  const ContainerRecords& m_records;
  const ContainerView& m_container;
  std::string m_text;
};

// A name that is safe as a file name, whatever a container claims.
std::string FileName(const char* name, size_t index) {
  std::string safe;
  for (const char* c = name; *c != 0 && safe.size() < 100; ++c)
    safe += (std::isalnum(static_cast<unsigned char>(*c)) || *c == '_' || *c == '-') ? *c : '_';
  return safe.empty() ? std::to_string(index) : safe;
}

class Extractor {
public:
  Extractor(const ContainerRecords& records, const ContainerView& container, fs::path folder)
      : m_records(records), m_container(container), m_folder(std::move(folder)) {}

  int Run() {
    for (const auto& texture : m_records.textures)
      m_pages.push_back(texture ? DecodePng(texture->data) : Picture{});
    for (size_t i = 0; i < m_records.sprites.size(); ++i)
      if (const auto& sprite = m_records.sprites[i])
        for (size_t frame = 0; frame < sprite->frames.size(); ++frame)
          WritePicture("sprites", FileName(sprite->name, i) + "_" + std::to_string(frame),
                       sprite->frames[frame]);
    for (size_t i = 0; i < m_records.backgrounds.size(); ++i)
      if (const auto& background = m_records.backgrounds[i])
        WritePicture("backgrounds", FileName(background->name, i), background->page);
    for (size_t i = 0; i < m_records.sounds.size(); ++i)
      if (const auto& sound = m_records.sounds[i]; sound && !sound->data.empty())
        WriteFile("sounds", FileName(sound->name, i) + ".ogg",
                  {reinterpret_cast<const char*>(sound->data.data()), sound->data.size()});
    for (size_t i = 0; i < m_records.shaders.size(); ++i)
      if (const auto& shader = m_records.shaders[i]) {
        WriteFile("shaders", FileName(shader->name, i) + ".vert", shader->glesVertex);
        WriteFile("shaders", FileName(shader->name, i) + ".frag", shader->glesFragment);
      }
    WriteFile("", "assets.txt", ListAssets(m_records, m_container));
    WriteFile("", "objects.txt", Objects());
    WriteFile("", "rooms.txt", Rooms());
    WriteFile("", "paths.txt", Paths());
    return m_files;
  }

private:
  void WriteFile(const char* below, const std::string& name, std::string_view bytes) {
    const fs::path folder = m_folder / below;
    fs::create_directories(folder);
    std::ofstream out(folder / name, std::ios::binary);
    if (!out.write(bytes.data(), static_cast<std::streamsize>(bytes.size())) || !out.flush())
      throw std::runtime_error((folder / name).string() + ": can't be written");
    ++m_files;
  }

  void WritePicture(const char* below, const std::string& name, uint32_t offset) {
    if (offset == 0) return;
    const PageEntry entry = EntryAt(m_container, offset);
    Picture picture = SolidPicture(entry.boundingWidth, entry.boundingHeight, 0);
    if (entry.texture < 0 || static_cast<size_t>(entry.texture) >= m_pages.size() || picture.rgba.empty())
      return;
    const Picture& page = m_pages[static_cast<size_t>(entry.texture)];
    const int width = std::min<int>(entry.sourceWidth, entry.targetWidth);
    const int height = std::min<int>(entry.sourceHeight, entry.targetHeight);
    if (entry.sourceX + width > page.width || entry.sourceY + height > page.height) return;
    for (int y = 0; y < height; ++y)
      std::copy_n(&page.rgba[static_cast<size_t>(entry.sourceY + y) * static_cast<size_t>(page.width) +
                             entry.sourceX],
                  width,
                  &picture.rgba[static_cast<size_t>(entry.targetY + y) * static_cast<size_t>(picture.width) +
                                entry.targetX]);
    WriteFile(below, name + ".png", EncodePng(picture));
  }

  std::string Objects() const {
    std::string text;
    for (size_t i = 0; i < m_records.objects.size(); ++i)
      if (const auto& object = m_records.objects[i]) {
        text += Format("%zu %s sprite %d mask %d depth %d parent %d%s%s%s\n", i, object->name, object->sprite,
                       object->mask, object->depth, object->parent, object->visible ? " visible" : "",
                       object->solid ? " solid" : "", object->persistent ? " persistent" : "");
        for (const auto& event : object->events)
          text += Format("  event %d %d code %d\n", event.type, event.subtype, event.code);
      }
    return text;
  }
  std::string Rooms() const {
    std::string text;
    for (size_t i = 0; i < m_records.rooms.size(); ++i)
      if (const auto& room = m_records.rooms[i]) {
        text += Format("%zu %s %d by %d, speed %d, colour %06x\n", i, room->name, room->width, room->height,
                       room->speed, room->colour);
        for (const auto& instance : room->instances)
          text += Format("  instance %d object %d at %d %d scale %g %g code %d\n", instance.id,
                         instance.object, instance.x, instance.y, static_cast<double>(instance.scaleX),
                         static_cast<double>(instance.scaleY), instance.code);
        for (const auto& tile : room->tiles)
          text += Format("  tile %d background %d at %d %d from %d %d size %d %d depth %d\n", tile.id,
                         tile.background, tile.x, tile.y, tile.sourceX, tile.sourceY, tile.width, tile.height,
                         tile.depth);
      }
    return text;
  }
  std::string Paths() const {
    std::string text;
    for (size_t i = 0; i < m_records.paths.size(); ++i)
      if (const auto& path = m_records.paths[i]) {
        text += Format("%zu %s %s %s precision %d\n", i, path->name, path->kind == 1 ? "smooth" : "straight",
                       path->closed ? "closed" : "open", path->precision);
        for (const auto& point : path->points)
          text += Format("  %g %g %g\n", static_cast<double>(point.x), static_cast<double>(point.y),
                         static_cast<double>(point.speed));
      }
    return text;
  }

  const ContainerRecords& m_records;
  const ContainerView& m_container;
  fs::path m_folder;
  std::vector<Picture> m_pages;
  int m_files = 0;
};

} // namespace

std::vector<uint8_t> ReadContainer(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in || fs::is_directory(file)) throw std::runtime_error(file.string() + ": can't be read");
  if (fs::file_size(file) > 0x7FFFFFFF)
    throw std::runtime_error(file.string() + ": is too large for a container");
  std::vector<uint8_t> bytes(fs::file_size(file));
  in.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  if (static_cast<size_t>(in.gcount()) != bytes.size())
    throw std::runtime_error(file.string() + ": can't be read");
  return bytes;
}

std::vector<std::string> Inspect(const ContainerView& container, int32_t codeCount) {
  ContainerRecords records;
  const LoadError error = Container_ReadRecords(container, codeCount, records);
  std::vector<std::string> findings = records.remarks;
  if (error) {
    findings.push_back(error.text);
    return findings;
  }
  for (size_t i = 0; i < records.textures.size(); ++i) {
    const auto& texture = records.textures[i];
    if (!texture || std::memcmp(texture->data.data(), "RAW ", 4) == 0) continue;
    try {
      DecodePng(texture->data);
    } catch (const std::runtime_error& why) {
      findings.push_back("TXTR record " + std::to_string(i) + ": " + why.what());
    }
  }
  for (size_t i = 0; i < records.soundData.size(); ++i)
    if (const auto& data = records.soundData[i])
      if (const std::string wrong = VorbisCheck().Run(*data); !wrong.empty())
        findings.push_back("AUDO record " + std::to_string(i) + ": " + wrong);
  return findings;
}

std::string ListAssets(const ContainerRecords& records, const ContainerView& container) {
  return Lister(records, container).Text();
}

int Extract(const ContainerRecords& records, const ContainerView& container, const fs::path& folder) {
  return Extractor(records, container, folder).Run();
}

} // namespace vesk::pack
