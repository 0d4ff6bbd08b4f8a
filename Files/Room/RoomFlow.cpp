// How a room begins and ends, and what survives in between.
#include "Files/Base/Error.h"
#include "Files/Object/Instance.h"
#include "Files/Object/Object.h"
#include "Files/Room/Room.h"
#include "Files/Run/Run_Events.h"
#include "Files/Run/Run_FrameBody.h"

#include <string>

namespace vesk {

namespace {

void BuildInstance(CRoom& room, const InstanceTemplate& from) {
  CObjectFb* object = Object_Find(from.object);
  if (!object) return;
  auto* instance = new CInstance(object, static_cast<float>(from.x), static_cast<float>(from.y), from.id,
                                 Code().instanceSlotCount);
  object->AddInstance(instance);
  instance->creationCode = from.creationCode.get();
  instance->preCreateCode = from.preCreateCode.get();
  instance->SetImageXScale(from.xscale);
  instance->SetImageYScale(from.yscale);
  const uint32_t colour = from.colour & 0xFFFFFF;
  instance->imageBlend = (colour & 0xFF) << 16 | (colour & 0xFF00) | colour >> 16;
  instance->imageAlpha = static_cast<float>(from.colour >> 24) / 255.0f;
  instance->SetImageAngle(from.rotation);
  room.active.InsertSorted(instance);
  Rooms().instances.Set(from.id) = instance;
  room.creationOrder.push_back(from.id);
}

std::unique_ptr<CRoom> BuildRunningCopy(const CRoom& from) {
  std::unique_ptr<CRoom> room = Room_CopyWithoutContents(from);
  for (const InstanceTemplate& instance : from.instanceTemplates) BuildInstance(*room, instance);
  for (const Tile& tile : from.tileTemplates) room->tiles.Add(tile);
  return room;
}

// The instances of a persistent room come back to their objects and the table.
void Revisit(CRoom& room) {
  for (CInstance* it = room.active.head; it; it = it->next) {
    it->object->AddInstance(it);
    Rooms().instances.Set(it->id) = it;
  }
  for (CInstance* it = room.inactive.head; it; it = it->next) Rooms().instances.Set(it->id) = it;
}

void PlaceCarried(CRoom& room, const CInstance& saved) {
  CInstance* instance = Instance_Find(saved.id);
  if (instance && !instance->inInactiveList) {
    instance->CopyStateFrom(saved);
    if (instance->depth != instance->sortDepth) NoteResort(instance);
  } else {
    instance = new CInstance(saved.object, saved.x, saved.y, saved.id, saved.slotCount);
    instance->CopyStateFrom(saved);
    instance->object->AddInstance(instance);
    room.active.InsertSorted(instance);
    Rooms().instances.Set(instance->id) = instance;
  }
  instance->carriedOver = true;
}

void CreateRoomInstances(CRoom& room) {
  const std::vector<int32_t> order = std::move(room.creationOrder);
  room.creationOrder.clear();
  RValue unused;
  for (const int32_t id : order) {
    CInstance* it = Instance_Find(id);
    if (!it) continue;
    if (it->carriedOver) {
      it->carriedOver = false;
      continue;
    }
    if (it->marked) continue;
    PerformOwnEvent(it, it, ev_pre_create, 0);
    if (it->preCreateCode) Code_Execute(it, it, it->preCreateCode, unused);
    PerformOwnEvent(it, it, ev_create, 0);
    if (it->creationCode) Code_Execute(it, it, it->creationCode, unused);
    it->created = true;
  }
}

void RunCreationCode(const CRoom& room) {
  if (!room.creationCode) return;
  CInstance nobody(Object_Find(0), 0, 0, 0, Code().instanceSlotCount);
  RValue unused;
  Code_Execute(&nobody, &nobody, room.creationCode.get(), unused);
}

void SaveCarried(const CRoom& room) {
  for (CInstance* it = room.active.head; it; it = it->next) {
    if (!it->persistent || !it->Live()) continue;
    auto saved = std::make_unique<CInstance>(it->object, it->x, it->y, it->id, it->slotCount);
    saved->CopyStateFrom(*it);
    Rooms().carried.push_back(std::move(saved));
    MarkInstance(it);
  }
}

// The room keeps its instances for the next visit; meanwhile no search finds them.
void PutAside(CRoom& room) {
  CleanUpInstances();
  for (CInstance* it = room.active.head; it; it = it->next) it->object->RemoveInstance(it);
  Rooms().instances.Clear();
}

void ForgetDeactivations() {
  for (CInstance* it : Run().deactivationList) it->inDeactivationList = false;
  Run().deactivationList.clear();
}

} // namespace

std::unique_ptr<CRoom> Room_CopyWithoutContents(const CRoom& from) {
  auto room = std::make_unique<CRoom>();
  room->index = from.index;
  room->name = from.name;
  room->caption = from.caption;
  room->speed = from.speed;
  room->width = from.width;
  room->height = from.height;
  room->persistent = from.persistent;
  room->colour = from.colour;
  room->showColour = from.showColour;
  room->backgrounds = from.backgrounds;
  room->viewsEnabled = from.viewsEnabled;
  room->clearDisplay = from.clearDisplay;
  room->clearViews = from.clearViews;
  room->views = from.views;
  room->creationCode = from.creationCode;
  room->source = from.source;
  return room;
}

void Room_Start(int32_t index, bool first) {
  RoomState& rooms = Rooms();
  const FrameServices& services = FrameBody().services;
  rooms.request = kNoRoomRequest;
  if (first && services.clearInput) services.clearInput();
  const CRoom* source = Room_Find(index);
  if (!source) {
    ReportError(std::string_view("Unexisting room number: " + std::to_string(index)), true);
    rooms.request = RoomRequestAbortGame;
    return;
  }
  const std::vector<InstanceTemplate> kept =
      source->instanceTemplates; // room_assign may take their code away
  rooms.currentIndex = index;
  if (rooms.running.size() < rooms.templates.size()) rooms.running.resize(rooms.templates.size());
  auto& running = rooms.running[static_cast<size_t>(index)];
  const bool revisit = running != nullptr;
  if (revisit) {
    rooms.current = running.get();
    Revisit(*running);
  } else {
    running = BuildRunningCopy(*source);
    rooms.current = running.get();
  }
  CRoom& room = *rooms.current;

  for (const auto& saved : rooms.carried) PlaceCarried(room, *saved);
  rooms.carried.clear();
  if (!revisit) CreateRoomInstances(room);
  RemoveMarked();
  if (first) {
    BroadcastEvent(ev_other, ev_game_start);
    RemoveMarked();
  }
  if (!revisit) RunCreationCode(room);
  if (services.roomReady) services.roomReady(first);
  BroadcastEvent(ev_other, ev_room_start);
  RemoveMarked();
}

void Room_End(bool gameEnding) {
  RoomState& rooms = Rooms();
  CRoom* room = rooms.current;
  if (!room) return;
  RemoveMarked();
  const int32_t request = rooms.request;
  rooms.request = kNoRoomRequest;
  BroadcastEvent(ev_other, ev_room_end);
  RemoveMarked();
  if (gameEnding) {
    rooms.request = kNoRoomRequest;
    for (CInstance *it = room->active.head, *next; it; it = next) {
      next = it->next;
      if (it->persistent) PerformOwnEvent(it, it, ev_cleanup, 0);
    }
    BroadcastEvent(ev_other, ev_game_end);
    RemoveMarked();
  }
  rooms.request = request;
  if (FrameBody().services.resetVirtualKeys) FrameBody().services.resetVirtualKeys();

  SaveCarried(*room);
  RemoveMarked();
  if (room->persistent) {
    PutAside(*room);
  } else {
    rooms.instances.Clear();
    rooms.running[static_cast<size_t>(rooms.currentIndex)].reset();
  }
  rooms.current = nullptr;
  ForgetDeactivations();
}

void SwitchRoom(int32_t index) {
  Room_End(false);
  Room_Start(index, false);
}

void Room_StartGame() {
  RoomState& rooms = Rooms();
  rooms.frameCounter = 0;
  rooms.carried.clear();
  rooms.current = nullptr;
  rooms.running.clear();
  rooms.running.resize(rooms.templates.size());
  Room_Start(rooms.order.empty() ? 0 : rooms.order.front(), true);
  if (rooms.request >= 0) SwitchRoom(rooms.request);
}

void Room_EndGame() {
  RoomState& rooms = Rooms();
  Room_End(true);
  rooms.carried.clear();
  rooms.instances.Clear();
  rooms.running.clear();
  rooms.current = nullptr;
  rooms.currentIndex = -1;
}

} // namespace vesk
