// Room templates from their records.
#include "Files/Room/Room.h"

#include "Files/Background/Background.h"
#include "Files/Runner/ContainerRecords.h"

#include <algorithm>

namespace vesk {

using namespace container;

namespace {

std::shared_ptr<CCode> CodeOf(int32_t index) { return index < 0 ? nullptr : std::make_shared<CCode>(index); }

BackgroundSlot SlotOf(const RoomRecord::Background& from, const RoomRecord& room) {
  BackgroundSlot slot;
  slot.visible = from.visible;
  slot.foreground = from.foreground;
  slot.index = from.background;
  slot.x = static_cast<float>(from.x);
  slot.y = static_cast<float>(from.y);
  slot.htiled = from.tiledSideways;
  slot.vtiled = from.tiledUpright;
  slot.hspeed = static_cast<float>(from.hspeed);
  slot.vspeed = static_cast<float>(from.vspeed);
  const CBackground* picture = from.stretch ? Background_Find(from.background) : nullptr;
  if (picture && picture->width > 0 && picture->height > 0) {
    slot.xscale = static_cast<float>(room.width) / static_cast<float>(picture->width);
    slot.yscale = static_cast<float>(room.height) / static_cast<float>(picture->height);
  }
  return slot;
}

ViewSlot SlotOf(const RoomRecord::View& from) {
  ViewSlot view;
  view.visible = from.enabled;
  view.xview = static_cast<float>(from.x);
  view.yview = static_cast<float>(from.y);
  view.wview = static_cast<float>(from.width);
  view.hview = static_cast<float>(from.height);
  view.xport = from.portX;
  view.yport = from.portY;
  view.wport = from.portWidth;
  view.hport = from.portHeight;
  view.hborder = from.borderX;
  view.vborder = from.borderY;
  view.hspeed = from.speedX;
  view.vspeed = from.speedY;
  view.object = from.object;
  return view;
}

InstanceTemplate TemplateOf(const RoomRecord::Instance& from) {
  InstanceTemplate instance;
  instance.x = from.x;
  instance.y = from.y;
  instance.object = from.object;
  instance.id = from.id;
  instance.creationCode = CodeOf(from.code);
  instance.preCreateCode = CodeOf(from.preCreateCode);
  instance.xscale = from.scaleX;
  instance.yscale = from.scaleY;
  instance.colour = from.colour;
  instance.rotation = from.rotation;
  return instance;
}

Tile TemplateOf(const RoomRecord::Tile& from) {
  Tile tile;
  tile.x = static_cast<float>(from.x);
  tile.y = static_cast<float>(from.y);
  tile.background = from.background;
  tile.left = from.sourceX;
  tile.top = from.sourceY;
  tile.width = from.width;
  tile.height = from.height;
  tile.depth = static_cast<float>(from.depth);
  tile.id = from.id;
  tile.xscale = from.scaleX;
  tile.yscale = from.scaleY;
  tile.blend = from.colour & 0xFFFFFF;
  tile.alpha = static_cast<float>(from.colour >> 24) / 255.0f;
  return tile;
}

std::unique_ptr<CRoom> MakeRoom(const RoomRecord& record, int32_t index, const ContainerView& bytes) {
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
  room->creationCode = CodeOf(record.code);
  room->source = bytes.Bytes() + record.offset;
  for (size_t i = 0; i < std::min(record.backgrounds.size(), room->backgrounds.size()); ++i)
    if (record.backgrounds[i]) room->backgrounds[i] = SlotOf(*record.backgrounds[i], record);
  for (size_t i = 0; i < std::min(record.views.size(), room->views.size()); ++i)
    if (record.views[i]) room->views[i] = SlotOf(*record.views[i]);
  for (const auto& instance : record.instances)
    if (instance.object >= 0) room->instanceTemplates.push_back(TemplateOf(instance));
  for (const auto& tile : record.tiles) room->tileTemplates.push_back(TemplateOf(tile));
  return room;
}

} // namespace

void Room_Load(const std::vector<std::optional<container::RoomRecord>>& records, const ContainerView& bytes) {
  auto& templates = Rooms().templates;
  templates.clear();
  for (size_t i = 0; i < records.size(); ++i)
    templates.push_back(records[i] ? MakeRoom(*records[i], static_cast<int32_t>(i), bytes) : nullptr);
}

} // namespace vesk
