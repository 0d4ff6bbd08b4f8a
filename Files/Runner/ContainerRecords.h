#pragma once
// All records of a container, read and checked: every count, reference and index has been compared with the
// container's size and with the records it names. Texts and data point into the container and live as long as
// it.
#include "Files/Runner/Container.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace vesk {

namespace container {

// A null reference in a pointer list leaves a hole: the record is absent, its index stays taken.
template <class T> using RecordList = std::vector<std::optional<T>>;

struct HeaderRecord {
  uint8_t debug = 0, version = 0;
  const char* fileName = "";
  const char* configuration = "";
  int32_t lastInstanceId = 0, lastTileId = 0;
  uint32_t gameId = 0;
  std::array<uint8_t, 16> guid{};
  const char* name = ""; // the project's
  int32_t major = 0, minor = 0, release = 0, build = 0;
  int32_t windowWidth = 0, windowHeight = 0; // pixels
  uint32_t flags = 0;
  uint64_t timestamp = 0;
  const char* displayName = "";
  uint64_t targetMask = 0;
  uint64_t featureMask = ~uint64_t{0};
  int32_t storeAppId = 0, debuggerPort = 0;
  std::vector<int32_t> roomOrder;
};
enum HeaderFlags : uint32_t {
  kHeaderFullScreen = 0x1,
  kHeaderKeepAspect = 0x10,
  kHeaderShowCursor = 0x20,
  kHeaderResizable = 0x40,
  kHeaderRoamingSaves = 0x2000,
  kHeaderBorderless = 0x4000,
  kHeaderScriptObjects = 0x8000,
};

// Both forms of the options; the old one's words are turned into flags.
struct OptionsRecord {
  uint32_t flags = 0;
  int32_t scale = -1;
  uint32_t windowColour = 0, colourDepth = 0, resolution = 0, frequency = 0, verticalSync = 0;
  struct Constant {
    const char* name;
    const char* value;
  };
  std::vector<Constant> constants;
};
enum OptionFlags : uint32_t {
  kOptionFullScreen = 0x1,
  kOptionNewAudio = 0x4,
  kOptionShowCursor = 0x10,
  kOptionChangeResolution = 0x80,
  kOptionAltEnter = 0x200,
  kOptionFreezeUnfocused = 0x8000,
  kOptionAbortOnError = 0x200000,
  kOptionSpatialTree = 0x4000000,
  kOptionSpatialTree2 = 0x8000000,
};

enum class SoundMode : uint32_t {
  kStreamed = 100,
  kUncompressed = 101,
  kCompressed = 102,
  kDecodedAtLoad = 103
};
struct SoundRecord {
  const char* name = "";
  SoundMode mode = SoundMode::kDecodedAtLoad;
  const char* type = ""; // extension
  const char* file = "";
  float gain = 1; // 0 to 1
  int32_t group = 0;
  int32_t audioIndex = -1;       // place in the data list, -1 none
  std::span<const uint8_t> data; // empty: none
};

struct SpriteRecord {
  const char* name = "";
  int32_t width = 0, height = 0;                    // pixels
  int32_t left = 0, top = 0, right = 0, bottom = 0; // box, inclusive pixels
  bool transparent = false, smooth = false, preload = false;
  int32_t bboxMode = 0, separateMasks = 0;
  int32_t originX = 0, originY = 0;
  std::vector<uint32_t> frames; // offsets of page entries, 0 null
  int32_t maskCount = 0;
  uint32_t masks = 0; // offset of the first mask
};

struct BackgroundRecord {
  const char* name = "";
  bool transparent = false, smooth = false, preload = false;
  uint32_t page = 0; // offset of the page entry, 0 null
};

struct PathRecord {
  const char* name = "";
  int32_t kind = 0; // 1 smooth, anything else straight
  bool closed = false;
  int32_t precision = 0;
  struct Point {
    float x, y, speed; // room pixels; percent
  };
  std::vector<Point> points;
};

struct ScriptRecord {
  const char* name = "";
  int32_t code = -1;
};

struct ShaderRecord {
  const char* name = "";
  uint32_t kind = 0;
  const char *glesVertex = "", *glesFragment = "";
  const char *glVertex = "", *glFragment = "";
  const char *hlsl9Vertex = "", *hlsl9Fragment = "";
  std::vector<const char*> attributes;
};

struct FontRecord {
  const char* name = "";
  const char* displayName = "";
  int32_t size = 0; // points
  bool bold = false, italic = false;
  uint32_t rangeStart = 0, rangeEnd = 0; // as in the file
  uint32_t page = 0;                     // offset of the page entry, 0 null
  float scaleX = 1, scaleY = 1;
  std::vector<uint32_t> glyphs; // offsets, 0 null
};

struct ObjectRecord {
  const char* name = "";
  int32_t sprite = -1, mask = -1;
  bool visible = true, solid = false, persistent = false;
  int32_t depth = 0;
  int32_t parent = -100;
  struct Event {
    int32_t type, subtype, code;
  };
  std::vector<Event> events; // in file order
};

struct RoomRecord {
  uint32_t offset = 0; // of the record
  const char* name = "";
  const char* caption = "";
  int32_t width = 0, height = 0; // pixels
  int32_t speed = 0;             // steps a second
  bool persistent = false;
  uint32_t colour = 0; // 0xBBGGRR
  bool showColour = false;
  int32_t code = -1;
  bool viewsEnabled = false, clearDisplay = false, clearViews = true;
  struct Background {
    bool visible = false, foreground = false;
    int32_t background = -1;
    int32_t x = 0, y = 0; // room pixels
    bool tiledSideways = false, tiledUpright = false;
    int32_t hspeed = 0, vspeed = 0; // pixels a step
    bool stretch = false;
  };
  struct View {
    bool enabled = false;
    int32_t x = 0, y = 0, width = 0, height = 0;                 // room pixels
    int32_t portX = 0, portY = 0, portWidth = 0, portHeight = 0; // screen pixels
    int32_t borderX = 0, borderY = 0;
    int32_t speedX = -1, speedY = -1;
    int32_t object = -1;
  };
  struct Instance {
    int32_t x = 0, y = 0, object = 0, id = 0, code = -1, preCreateCode = -1;
    float scaleX = 1, scaleY = 1;
    uint32_t colour = 0xFFFFFFFF;
    float rotation = 0; // degrees
  };
  struct Tile {
    int32_t x = 0, y = 0, background = 0;
    int32_t sourceX = 0, sourceY = 0, width = 0, height = 0;
    int32_t depth = 0, id = 0;
    float scaleX = 1, scaleY = 1;
    uint32_t colour = 0xFFFFFFFF;
  };
  std::vector<std::optional<Background>> backgrounds; // at most 8, by position
  std::vector<std::optional<View>> views;             // at most 8, by position
  std::vector<Instance> instances;                    // holes are left out
  std::vector<Tile> tiles;                            // holes are left out
};

struct TextureRecord {
  uint32_t flags = 0;
  std::span<const uint8_t> data; // an image file, perhaps with padding behind it
  int32_t width = 0, height = 0; // pixels
};

} // namespace container

struct ContainerRecords {
  std::vector<Chunk> chunks; // in file order
  container::HeaderRecord header;
  container::OptionsRecord options;
  std::vector<const char*> audioGroups;
  container::RecordList<container::SoundRecord> sounds;
  container::RecordList<container::SpriteRecord> sprites;
  container::RecordList<container::BackgroundRecord> backgrounds;
  container::RecordList<container::PathRecord> paths;
  container::RecordList<container::ScriptRecord> scripts;
  std::vector<int32_t> startScripts; // code indices
  container::RecordList<container::ShaderRecord> shaders;
  container::RecordList<container::FontRecord> fonts;
  container::RecordList<container::ObjectRecord> objects;
  container::RecordList<container::RoomRecord> rooms;
  std::vector<uint32_t> pageEntries; // offsets, 0 null
  container::RecordList<container::TextureRecord> textures;
  container::RecordList<std::span<const uint8_t>> soundData;
  uint32_t stringCount = 0;
  // What a load passes over but a whole container should not have, in words: an unknown chunk, options of
  // another form.
  std::vector<std::string> remarks;
};

// Whether the load knows the chunk at all; those it passes over count too.
bool Container_KnowsChunk(uint32_t tag);

// Reads and checks everything. `codeCount` is the length of the code table that records point into; negative:
// unknown, and code indices are not compared with it. The first error ends the reading.
LoadError Container_ReadRecords(const ContainerView& container, int32_t codeCount, ContainerRecords& records);

// The first remark, else the error of Container_ReadRecords; nothing for a container that is right in all.
LoadError Container_Verify(const ContainerView& container, int32_t codeCount);

} // namespace vesk
