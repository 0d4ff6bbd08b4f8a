#pragma once
// Writes a data container from a description in memory. vesk-pack describes the whole game with it, tests
// describe games of three objects. Positions in the vectors are the asset indices.
#include "pack/studio/Studio.h" // Picture

#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace vesk::pack {

// Pictures are cropped and packed onto texture pages by the writer.
struct Sprite {
  std::string name;
  std::vector<Picture> frames = {}; // all of one size
  int originX = 0, originY = 0;
  int left = 0, top = 0, right = -1, bottom = -1; // box, inclusive pixels; right below left: the full frame
  int bboxMode = 0;
  bool precise = false; // collision by masks instead of the box
  // Masks, one byte a pixel of the full frame, not 0 is solid. Empty: made from the frames' alpha, one for a
  // box sprite and one a frame for a precise one.
  std::vector<std::vector<uint8_t>> masks = {};
  bool transparent = false, smooth = false, preload = false;
  int width = 0, height = 0; // pixels; only asked for when there are no frames
};

struct Background {
  std::string name;
  Picture picture = {};
  bool transparent = false, smooth = false, preload = false;
};

struct Sound {
  std::string name;
  uint32_t mode = 103; // 100 streamed, 101 uncompressed, 102 kept compressed, 103 decoded at load
  std::string type = {}, file = {}; // ".wav", "snd_jump.wav"
  float gain = 1;                   // 0 to 1
  int audioIndex = -1;              // position of the data among all sounds' data; -1: the next free one
  std::string data = {};            // an Ogg Vorbis stream; empty: the sound has no data
};

struct PathPoint {
  float x, y, speed; // room pixels; percent
};
struct Path {
  std::string name;
  bool smooth = false, closed = false;
  int precision = 4;
  std::vector<PathPoint> points = {};
};

struct Script {
  std::string name;
  int code = -1; // index in the code table
};

struct Shader {
  std::string name;
  std::string vertex = {}, fragment = {}; // GLSL ES; the desktop GL form is the same text
  std::vector<std::string> attributes = {"in_Position", "in_Colour", "in_TextureCoord"};
};

struct FontGlyph {
  uint16_t character = 0;                  // UTF-16
  int x = 0, y = 0, width = 0, height = 0; // on the page, pixels
  int advance = 0, offset = 0;             // pixels
};
struct Font {
  std::string name, displayName;
  int size = 12; // points
  bool bold = false, italic = false;
  int background = -1; // whose picture is the page; -1 none
  float scaleX = 1, scaleY = 1;
  std::vector<FontGlyph> glyphs = {};
};

struct Event {
  int type, subtype; // Files/Object/EventTypes.h; of a collision the subtype is the other object
  int code;          // index in the code table
};
struct Object {
  std::string name;
  int sprite = -1, mask = -1; // sprite indices; mask -1: the sprite itself
  int depth = 0;
  int parent = -100; // object index, -100 none
  bool visible = true, solid = false, persistent = false;
  std::vector<Event> events = {};
};

struct RoomBackground {
  bool visible = false, foreground = false;
  int background = -1;
  int x = 0, y = 0;
  bool tiledSideways = false, tiledUpright = false;
  int hspeed = 0, vspeed = 0; // pixels a step
  bool stretch = false;
};
struct RoomView {
  bool enabled = false;
  int x = 0, y = 0, width = 640, height = 480;                 // room pixels
  int portX = 0, portY = 0, portWidth = 640, portHeight = 480; // screen pixels
  int borderX = 32, borderY = 32;
  int speedX = -1, speedY = -1; // -1 no limit
  int object = -1;              // the object to follow
};
struct RoomInstance {
  int x = 0, y = 0, object = 0;
  int id = 0; // 0: the next free one from 100000 on
  int code = -1, preCreateCode = -1;
  float scaleX = 1, scaleY = 1;
  uint32_t colour = 0xFFFFFFFF;
  float rotation = 0; // degrees
};
struct RoomTile {
  int x = 0, y = 0, background = 0;
  int sourceX = 0, sourceY = 0, width = 16, height = 16;
  int depth = 0;
  int id = 0; // 0: the next free one from 10000000 on
  float scaleX = 1, scaleY = 1;
  uint32_t colour = 0xFFFFFFFF;
};
struct Room {
  std::string name, caption;
  int width = 384, height = 216, speed = 60;
  bool persistent = false;
  uint32_t colour = 0; // 0xBBGGRR
  bool showColour = true;
  int code = -1;
  bool viewsEnabled = false, clearDisplay = false, clearViews = true;
  std::array<RoomBackground, 8> backgrounds;
  std::array<RoomView, 8> views;
  std::vector<RoomInstance> instances;
  std::vector<RoomTile> tiles;
};

struct Header {
  std::string fileName = "VeskEditor", configuration = "Default", name = "VeskEditor";
  std::string displayName = "Vesk Editor";
  int lastInstanceId = -1, lastTileId = -1; // -1: the highest in use
  uint32_t gameId = 902404778;
  int windowWidth = 384, windowHeight = 216; // pixels
  uint32_t flags = 0x8D0;
  uint64_t timestamp = 0;
  uint64_t featureMask = 0x4000B23DCDFE22B4;
  std::vector<int> roomOrder; // empty: all rooms as they stand
};

struct Options {
  uint32_t flags = 0xCC7A24;
  int32_t scale = -1;
  uint32_t windowColour = 0, colourDepth = 0, resolution = 0, frequency = 0, verticalSync = 0;
  std::vector<std::pair<std::string, std::string>> constants = {{"@@SleepMargin", "0"},
                                                                {"@@DrawColour", "4294967295"}};
};

struct Game {
  Header header;
  Options options;
  std::vector<Sprite> sprites;
  std::vector<Background> backgrounds;
  std::vector<Sound> sounds;
  std::vector<Path> paths;
  std::vector<Script> scripts;
  std::vector<int> startScripts; // code indices that run once at game start
  std::vector<Shader> shaders;
  std::vector<Font> fonts;
  std::vector<Object> objects;
  std::vector<Room> rooms;
};

// The same description gives the same bytes. Throws std::runtime_error, in words, when a description can't be
// written: frames of different sizes, a picture larger than a page, a mask of the wrong length.
// References between assets are not checked here: Container_Verify does that.
std::vector<uint8_t> Write(const Game& game);

// ---- help for small games ----

Picture SolidPicture(int width, int height, uint32_t rgba); // rgba is 0xAABBGGRR
// A box sprite of opaque frames, its box the full frame.
Sprite SolidSprite(std::string name, int width, int height, int frames = 1, uint32_t rgba = 0xFFFFFFFF);

} // namespace vesk::pack
