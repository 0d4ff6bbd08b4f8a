#include "Files/Runner/LoadWorld.h"

#include "Files/Background/Background.h"
#include "Files/Object/Object.h"
#include "Files/Room/Room.h"
#include "Files/Runner/Load.h"

#include <memory>

namespace vesk {
namespace {

std::unique_ptr<CObjectFb> MakeObject(const container::ObjectRecord& record, int32_t index) {
  auto object = std::make_unique<CObjectFb>();
  object->name = record.name;
  object->objectIndex = index;
  object->spriteIndex = record.sprite;
  object->maskIndex = record.mask;
  object->depth = record.depth;
  object->parentIndex = record.parent;
  object->flags = (record.solid ? CObjectFb::kSolid : 0u) | (record.visible ? CObjectFb::kVisible : 0u) |
                  (record.persistent ? CObjectFb::kPersistent : 0u);
  for (const auto& event : record.events) {
    auto& slots = object->eventTable[static_cast<size_t>(event.type)];
    if (slots.size() <= static_cast<size_t>(event.subtype))
      slots.resize(static_cast<size_t>(event.subtype) + 1);
    // A second entry for the same event takes the first one's place.
    slots[static_cast<size_t>(event.subtype)] = std::make_unique<CEvent>(event.code);
  }
  return object;
}

std::shared_ptr<CCode> MakeCode(int32_t index) {
  return index < 0 ? nullptr : std::make_shared<CCode>(index);
}

BackgroundSlot MakeSlot(const container::RoomRecord& room, const container::RoomRecord::Background& record) {
  BackgroundSlot slot;
  slot.visible = record.visible;
  slot.foreground = record.foreground;
  slot.index = record.background;
  slot.x = static_cast<float>(record.x);
  slot.y = static_cast<float>(record.y);
  slot.htiled = record.tiledSideways;
  slot.vtiled = record.tiledUpright;
  slot.hspeed = static_cast<float>(record.hspeed);
  slot.vspeed = static_cast<float>(record.vspeed);
  const CBackground* background = record.stretch ? Background_Find(record.background) : nullptr;
  if (background && background->width > 0 && background->height > 0) {
    slot.xscale = static_cast<float>(room.width) / static_cast<float>(background->width);
    slot.yscale = static_cast<float>(room.height) / static_cast<float>(background->height);
  }
  return slot;
}

ViewSlot MakeView(const container::RoomRecord::View& record) {
  ViewSlot view;
  view.visible = record.enabled;
  view.xview = static_cast<float>(record.x);
  view.yview = static_cast<float>(record.y);
  view.wview = static_cast<float>(record.width);
  view.hview = static_cast<float>(record.height);
  view.xport = record.portX;
  view.yport = record.portY;
  view.wport = record.portWidth;
  view.hport = record.portHeight;
  view.hborder = record.borderX;
  view.vborder = record.borderY;
  view.hspeed = record.speedX;
  view.vspeed = record.speedY;
  view.object = record.object;
  return view;
}

InstanceTemplate MakeInstance(const container::RoomRecord::Instance& record) {
  InstanceTemplate instance;
  instance.x = record.x;
  instance.y = record.y;
  instance.object = record.object;
  instance.id = record.id;
  instance.creationCode = MakeCode(record.code);
  instance.preCreateCode = MakeCode(record.preCreateCode);
  instance.xscale = record.scaleX;
  instance.yscale = record.scaleY;
  instance.colour = record.colour;
  instance.rotation = record.rotation;
  return instance;
}

Tile MakeTile(const container::RoomRecord::Tile& record) {
  Tile tile;
  tile.x = static_cast<float>(record.x);
  tile.y = static_cast<float>(record.y);
  tile.background = record.background;
  tile.left = record.sourceX;
  tile.top = record.sourceY;
  tile.width = record.width;
  tile.height = record.height;
  tile.depth = static_cast<float>(record.depth);
  tile.id = record.id;
  tile.xscale = record.scaleX;
  tile.yscale = record.scaleY;
  tile.blend = record.colour & 0xFFFFFF;
  tile.alpha = static_cast<float>(record.colour >> 24) / 255.0f;
  return tile;
}

std::unique_ptr<CRoom> MakeRoom(const container::RoomRecord& record, int32_t index) {
  auto room = std::make_unique<CRoom>();
  room->index = index;
  room->name = record.name;
  room->caption = record.caption;
  room->speed = record.speed;
  room->width = record.width;
  room->height = record.height;
  room->persistent = record.persistent;
  room->colour = record.colour;
  room->showColour = record.showColour;
  room->viewsEnabled = record.viewsEnabled;
  room->clearDisplay = record.clearDisplay;
  room->clearViews = record.clearViews;
  room->creationCode = MakeCode(record.code);
  for (size_t i = 0; i < record.backgrounds.size(); ++i)
    if (record.backgrounds[i]) room->backgrounds[i] = MakeSlot(record, *record.backgrounds[i]);
  for (size_t i = 0; i < record.views.size(); ++i)
    if (record.views[i]) room->views[i] = MakeView(*record.views[i]);
  for (const auto& instance : record.instances) room->instanceTemplates.push_back(MakeInstance(instance));
  for (const auto& tile : record.tiles) room->tileTemplates.push_back(MakeTile(tile));
  room->source = Load().container.Bytes() + record.offset;
  return room;
}

} // namespace

void World_ClearTables() {
  Room_Reset();
  Object_Reset();
}

void World_LoadObjects() {
  auto& table = Objects().table;
  for (const auto& record : Load().records.objects) {
    auto& slot = table.emplace_back();
    if (record) slot = MakeObject(*record, static_cast<int32_t>(table.size()) - 1);
  }
  for (const auto& object : table)
    if (object && object->parentIndex >= 0)
      object->parent = table[static_cast<size_t>(object->parentIndex)].get();
}

void World_LoadRooms() {
  const ContainerRecords& records = Load().records;
  RoomState& rooms = Rooms();
  for (const auto& record : records.rooms) {
    auto& slot = rooms.templates.emplace_back();
    if (record) slot = MakeRoom(*record, static_cast<int32_t>(rooms.templates.size()) - 1);
  }
  rooms.order = records.header.roomOrder;
  rooms.nextInstanceId = records.header.lastInstanceId;
  rooms.nextTileId = records.header.lastTileId;
}

} // namespace vesk
