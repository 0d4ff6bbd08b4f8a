#pragma once
// Rooms: the templates of the container and the running copy in which instances and tiles live.
#include "Files/Code/Code.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace vesk {

class CInstance;

inline constexpr int kRoomSlots = 8; // backgrounds and views of a room

// Negative room requests; 0 or more is a room.
enum RoomRequest : int32_t {
  kNoRoomRequest = -1,
  RoomRequestEndGame = -100,
  RoomRequestRestartGame = -200,
  RoomRequestLoadGame = -300,
  RoomRequestAbortGame = -400,
};

struct BackgroundSlot {
  bool visible = false, foreground = false;
  int32_t index = -1;
  float x = 0, y = 0; // room pixels
  bool htiled = false, vtiled = false;
  float hspeed = 0, vspeed = 0; // pixels a step
  float xscale = 1, yscale = 1;
  uint32_t blend = 0xFFFFFF;
  float alpha = 1;
};

struct ViewSlot {
  bool visible = false;
  float xview = 0, yview = 0, wview = 640, hview = 480;   // room pixels
  int32_t xport = 0, yport = 0, wport = 640, hport = 480; // screen pixels
  float angle = 0;                                        // degrees
  int32_t hborder = 32, vborder = 32;
  int32_t hspeed = -1, vspeed = -1; // -1 no limit
  int32_t object = -1;              // an object or an instance id
  int32_t surface = -1;
  int32_t camera = -1;
};

struct Tile {
  float x, y; // room pixels
  int32_t background;
  int32_t left, top, width, height; // pixels of the background
  float depth;
  int32_t id;
  float xscale = 1, yscale = 1;
  uint32_t blend = 0xFFFFFF; // as scripts have colours: red in the low byte
  float alpha = 1;
  bool visible = true;
};

// Doubly linked through the instances themselves.
struct RoomList {
  CInstance* head = nullptr;
  CInstance* tail = nullptr;
  int32_t count = 0;
};

class CRoom {
public:
  int32_t index = -1;
  std::string name;
  std::string caption;
  int32_t speed = 30; // steps a second
  int32_t width = 640, height = 480;
  bool persistent = false;
  uint32_t colour = 0xC0C0C0;
  bool showColour = true;
  std::array<BackgroundSlot, kRoomSlots> backgrounds;
  bool viewsEnabled = false;
  bool clearDisplay = false;
  bool clearViews = true;
  std::array<ViewSlot, kRoomSlots> views;
  std::shared_ptr<CCode> creationCode;
  RoomList active;                    // depth ascending from head to tail
  RoomList inactive;                  // in order of deactivation
  std::vector<int32_t> creationOrder; // ids in file order, between build and the end of room start
  std::vector<Tile> tiles;            // sorted by depth, highest first, when a draw pass begins
  const uint8_t* source = nullptr;    // the room's record in the container
};

struct RoomState {
  std::vector<std::unique_ptr<CRoom>> templates;
  std::vector<std::unique_ptr<CRoom>> running; // by room index; null until entered
  std::vector<int32_t> order;
  CRoom* current = nullptr;
  int32_t currentIndex = -1;
  int32_t request = kNoRoomRequest;
  int32_t nextInstanceId = 100000; // the last id given
  int32_t nextTileId = 10000000;
  uint64_t passCounter = 0;
  int64_t frameCounter = 0;
};
RoomState& Rooms();
void Room_Reset();
inline CRoom* CurrentRoom() { return Rooms().current; }

// ---- instances of the current room ----

CInstance* Instance_Find(int32_t id); // active or not; null for an unknown or negative id
int32_t instance_create(float x, float y, int32_t object); // id, -1 with an error report

// ---- room flow, called by the frame function ----

void Room_Start(int32_t room, bool first);
void Room_End(bool gameEnding);
void SwitchRoom(int32_t room);

} // namespace vesk
