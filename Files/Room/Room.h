#pragma once
// Rooms: the templates of the container and the running copy in which instances and tiles live.
#include "Files/Code/Code.h"
#include "Files/Room/FlatTable.h"
#include "Files/Room/Tile.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace vesk {

class CInstance;
class CObjectFb;

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

// Doubly linked through the instances themselves. An instance is in at most one room list.
struct RoomList {
  CInstance* head = nullptr;
  CInstance* tail = nullptr;
  int32_t count = 0;
};

// In order of deactivation.
struct InactiveList : RoomList {
  void Append(CInstance* instance);
  void Remove(CInstance* instance);
};

// Sorted by depth, ascending from head to tail; among equal depths the newest is nearest the tail.
struct ActiveList : RoomList {
  // Behind the last one whose depth is less or equal. The cost depends on the number of different depths.
  void InsertSorted(CInstance* instance);
  void Remove(CInstance* instance);

private:
  struct Band {
    float depth;
    CInstance* tail;
    int32_t count;
  };
  std::vector<Band> m_bands; // one a depth, ascending
};

// An instance that a room makes when it is built.
struct InstanceTemplate {
  int32_t x = 0, y = 0;
  int32_t object = -1;
  int32_t id = 0;
  std::shared_ptr<CCode> creationCode, preCreateCode;
  float xscale = 1, yscale = 1;
  uint32_t colour = 0xFFFFFFFF; // low three bytes blend, top byte alpha
  float rotation = 0;
};

class CRoom {
public:
  CRoom() = default;
  ~CRoom(); // deletes its instances; no event runs
  CRoom(const CRoom&) = delete;
  CRoom& operator=(const CRoom&) = delete;

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
  ActiveList active;
  InactiveList inactive;
  std::vector<int32_t> creationOrder; // ids in file order, between build and the end of room start
  TileList tiles;                     // of a running room
  std::vector<InstanceTemplate> instanceTemplates; // of a template
  std::vector<Tile> tileTemplates;                 // of a template
  const uint8_t* source = nullptr;                 // the room's record in the container
};

struct RoomState {
  std::vector<std::unique_ptr<CRoom>> templates;
  std::vector<std::unique_ptr<CRoom>> running; // by room index; null until entered
  std::vector<int32_t> order;
  CRoom* current = nullptr;
  int32_t currentIndex = -1;
  int32_t request = kNoRoomRequest;
  FlatTable<int32_t, CInstance*> instances;        // all of the current room, active and inactive, by id
  std::vector<std::unique_ptr<CInstance>> carried; // persistent ones, between two rooms
  int32_t nextInstanceId = 100000;                 // the last id given
  int32_t nextTileId = 10000000;
  uint64_t passCounter = 0;
  uint64_t listCounter = 0; // entries into room lists so far
  int64_t frameCounter = 0;
};
RoomState& Rooms();
void Room_Reset();
inline CRoom* CurrentRoom() { return Rooms().current; }

// ---- instances of the current room ----

CInstance* Instance_Find(int32_t id); // active or not; null for an unknown or negative id
int32_t instance_create(float x, float y, int32_t object); // id, -1 with an error report

// A new instance of the current room with a fresh id, in the room list and the table; no event has run.
CInstance* Instance_Add(CObjectFb* object, float x, float y);
void RunCreationEvents(CInstance* instance); // pre-create, then create
// Leaves the table and its room list, and is deleted. No event runs.
void Instance_Remove(CInstance* instance);

// ---- rooms as assets ----

CRoom* Room_Find(int32_t index); // the template; null for an index that names none
// A running copy of the template without instances and tiles.
std::unique_ptr<CRoom> Room_CopyWithoutContents(const CRoom& from);

// ---- room flow, called by the frame function ----

// Both run events; a request made in them is left in Rooms().request.
void Room_Start(int32_t room, bool first);
void Room_End(bool gameEnding);
void SwitchRoom(int32_t room); // Room_End and Room_Start

// The part of the start and the end of a game that concerns rooms: the first room of the order is started,
// and a request made there followed once; at the end the closing events run and every running room is
// destroyed.
void Room_StartGame();
void Room_EndGame();

// ---- before each draw pass ----

void UpdateViews(); // views follow their objects
// How ports map to the application surface; 1 without a visible view.
struct PortScale {
  double x = 1, y = 1;
};
PortScale ViewPortScale(const CRoom& room, int32_t surfaceWidth, int32_t surfaceHeight);

} // namespace vesk
