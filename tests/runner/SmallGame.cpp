#include "tests/runner/SmallGame.h"

#include "Files/Base/Error.h"
#include "Files/Function/Function.h"
#include "Files/Object/CollisionIndex.h"
#include "Files/Path/Path.h"
#include "Files/Run/Run_Events.h"
#include "Files/Sprite/Sprite.h"

#include <array>
#include <utility>

namespace vesk::test {

namespace {

constexpr size_t kMostEvents = 256;
constexpr int32_t kSlots = 64;

struct GameCode {
  std::array<SmallGame::Event, kMostEvents> events;
  std::array<std::string, kMostEvents> names;
  std::array<CodeEntry, kMostEvents> table;
  size_t count = 0;
  std::string log;
};
GameCode g_code;

// The code table wants plain functions, so each entry has one that knows its number.
template <size_t N> void RunEvent(Self self, Self other) { g_code.events[N](self, other); }
template <size_t... N> void FillTable(std::index_sequence<N...>) {
  ((g_code.table[N] = {"", &RunEvent<N>}), ...);
}

int32_t AddCode(const std::string& name, SmallGame::Event event) {
  const size_t index = g_code.count++;
  g_code.events.at(index) = std::move(event);
  g_code.names[index] = name;
  g_code.table[index].name = g_code.names[index].c_str();
  return static_cast<int32_t>(index);
}

void ResetAll() {
  Run_ResetEvents();
  Room_Reset();
  CollisionIndex_Reset();
  Object_Reset();
  Sprite_Reset();
  Path_Reset();
  FrameBody().services = {};
  Run_ResetFrameBody();
  GlobalObject_Reset();
  Error_Reset();
  Code_Reset();
}

} // namespace

void Log(const std::string& entry) {
  if (!g_code.log.empty()) g_code.log += ' ';
  g_code.log += entry;
}

std::string Events() { return std::exchange(g_code.log, {}); }

SmallGame::SmallGame() {
  ResetAll();
  g_code = {};
  FillTable(std::make_index_sequence<kMostEvents>());
  vesk::Code().table = g_code.table;
  vesk::Code().instanceSlotCount = kSlots;
  GlobalObject_Create(kSlots);
  Error().showBox = false;
  AddRoom("room");
}

SmallGame::~SmallGame() {
  ResetAll();
  g_code = {};
}

int32_t SmallGame::Sprite(int32_t width, int32_t height, int32_t frames, int32_t originX, int32_t originY) {
  auto sprite = std::make_unique<CSprite>();
  sprite->index = static_cast<int32_t>(Sprites().table.size());
  sprite->name = "sprite" + std::to_string(sprite->index);
  sprite->width = width;
  sprite->height = height;
  sprite->right = width - 1;
  sprite->bottom = height - 1;
  sprite->originX = originX;
  sprite->originY = originY;
  sprite->frames.resize(static_cast<size_t>(frames));
  Sprites().table.push_back(std::move(sprite));
  return Sprites().table.back()->index;
}

int32_t SmallGame::PreciseSprite(int32_t width, int32_t height, const std::vector<uint8_t>& mask,
                                 int32_t originX, int32_t originY) {
  const int32_t index = Sprite(width, height, 1, originX, originY);
  CSprite& sprite = *Sprites().table.back();
  sprite.kind = SpriteKind::kPrecise;
  sprite.maskCount = 1;
  sprite.expandedMasks = {mask};
  return index;
}

int32_t SmallGame::Object(const std::string& name, const ObjectOptions& options) {
  CObjectFb& object = Object_Add(name);
  object.spriteIndex = options.sprite;
  object.parentIndex = options.parent;
  object.maskIndex = options.mask;
  object.depth = options.depth;
  object.flags = (options.solid ? CObjectFb::kSolid : 0u) | (options.visible ? CObjectFb::kVisible : 0u) |
                 (options.persistent ? CObjectFb::kPersistent : 0u);
  return object.objectIndex;
}

void SmallGame::On(int32_t object, int32_t type, int32_t subtype, Event event) {
  const std::string name =
      std::string(Object_Name(object)) + "_" + std::to_string(type) + "_" + std::to_string(subtype);
  Object_Find(object)->SetEvent(type, subtype, AddCode(name, std::move(event)));
}

CRoom& SmallGame::AddRoom(const std::string& name, int32_t width, int32_t height) {
  auto room = std::make_unique<CRoom>();
  room->index = static_cast<int32_t>(Rooms().templates.size());
  room->name = name;
  room->speed = 60;
  room->width = width;
  room->height = height;
  Rooms().order.push_back(room->index);
  Rooms().templates.push_back(std::move(room));
  return *Rooms().templates.back();
}

int32_t SmallGame::Place(int32_t room, int32_t object, int32_t x, int32_t y) {
  InstanceTemplate instance;
  instance.object = object;
  instance.x = x;
  instance.y = y;
  instance.id = ++Rooms().nextInstanceId;
  RoomTemplate(room).instanceTemplates.push_back(instance);
  return instance.id;
}

std::shared_ptr<CCode> SmallGame::Code(Event event) {
  return std::make_shared<CCode>(AddCode("code", std::move(event)));
}

void SmallGame::Start() {
  BuildEventLists();
  Room_StartGame();
}

void SmallGame::Body() {
  FrameBody().input = input;
  RunFrameBody();
  input.keyPressed = {};
  input.keyReleased = {};
  input.buttonPressed = {};
  input.buttonReleased = {};
  input.wheelUp = input.wheelDown = false;
}

void SmallGame::Step(int count) {
  for (; count > 0; --count) {
    Body();
    ActOnRequest();
  }
}

void SmallGame::ActOnRequest() {
  const int32_t request = Rooms().request;
  if (request >= 0) {
    SwitchRoom(request);
  } else if (request == RoomRequestRestartGame) {
    Room_EndGame();
    Room_StartGame();
  } else if (request != kNoRoomRequest) {
    Room_EndGame();
  }
}

} // namespace vesk::test
