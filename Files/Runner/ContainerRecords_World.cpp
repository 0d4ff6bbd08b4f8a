#include "Files/Object/EventTypes.h"
#include "Files/Runner/ContainerReader.h"

namespace vesk::container {
namespace {

constexpr int32_t kRoomEntries = 8; // backgrounds and views
constexpr int32_t kNoParent = -100;
constexpr int32_t kSubtypes = 256;

} // namespace

void ContainerReader::ReadObjects() {
  if (Enter("OBJT"))
    m_objectCount = m_container.U32(m_reader.At()); // ReadList refuses a count that is too high
  ReadList("OBJT", m_records.objects, [&] { return ReadObject(); });
  CheckParents();
}

ObjectRecord ContainerReader::ReadObject() {
  const auto sprite = [&](const char* what) {
    int32_t index = m_reader.I32();
    if ((static_cast<uint32_t>(index) & 0xF0000000u) == 0x80000000u)
      index = static_cast<int32_t>(static_cast<uint32_t>(index) & 0x7FFFFFFFu);
    if (index < -1 || (index >= 0 && static_cast<size_t>(index) >= m_records.sprites.size()))
      m_reader.Fail(std::string(what) + " index " + Number(index) + " is not one of " +
                    Number(static_cast<int64_t>(m_records.sprites.size())));
    return index;
  };
  ObjectRecord object;
  object.name = m_reader.Text();
  object.sprite = sprite("sprite");
  object.visible = m_reader.Bool();
  object.solid = m_reader.Bool();
  object.depth = m_reader.I32();
  object.persistent = m_reader.Bool();
  object.parent = m_reader.I32();
  object.mask = sprite("mask sprite");
  m_reader.Check(object.parent == kNoParent ||
                     (object.parent >= 0 && static_cast<size_t>(object.parent) < m_objectCount),
                 [&] {
                   return "parent index " + Number(object.parent) + " is not one of " +
                          Number(static_cast<int64_t>(m_objectCount));
                 });
  if (m_records.header.version >= 6) {
    m_reader.Skip(12);
    for (int i = 0; i < 2; ++i) m_reader.F32();
    m_reader.Skip(4);
    for (int i = 0; i < 2; ++i) m_reader.F32();
    const uint32_t vertices = m_reader.U32();
    if (m_records.header.version >= 9) {
      m_reader.F32();
      m_reader.Skip(8);
    }
    if (m_reader.Ok() && vertices > (m_container.Size() - m_reader.At()) / 8)
      m_reader.Fail("the number of shape points, " + Number(vertices) + ", is more than there is room for");
    else
      m_reader.Skip(8 * vertices);
  }
  const std::vector<uint32_t> lists = m_reader.List("event lists");
  for (size_t type = 0; type < lists.size() && m_reader.Ok(); ++type) {
    if (lists[type] == 0) continue;
    m_reader.EnterPart("events of type", type, lists[type]);
    ReadEvents(object, static_cast<int32_t>(type), m_reader.List("events"));
  }
  m_reader.LeavePart();
  return object;
}

void ContainerReader::ReadEvents(ObjectRecord& object, int32_t type, const std::vector<uint32_t>& entries) {
  m_reader.Check(entries.empty() || type < kEventTypeCount, "there is no such event type");
  const int64_t subtypes = type == ev_collision ? static_cast<int64_t>(m_objectCount) : kSubtypes;
  for (size_t i = 0; i < entries.size() && m_reader.Ok(); ++i) {
    if (entries[i] == 0) continue;
    m_reader.Seek(entries[i]);
    ObjectRecord::Event event{type, m_reader.I32(), -1};
    m_reader.Check(event.subtype >= 0 && event.subtype < subtypes, [&] {
      return "event " + Number(static_cast<int64_t>(i)) + " has subtype " + Number(event.subtype) +
             ", which is not below " + Number(subtypes);
    });
    const std::vector<uint32_t> actions = m_reader.List("actions");
    if (!m_reader.Ok() || actions.empty() || actions[0] == 0) continue;
    m_reader.Seek(actions[0]);
    m_reader.Skip(32);
    event.code = Code("event");
    m_reader.Skip(20);
    object.events.push_back(event);
  }
}

void ContainerReader::CheckParents() {
  const RecordList<ObjectRecord>& objects = m_records.objects;
  std::vector<uint32_t> seen(objects.size()); // the walk that came by last
  std::vector<bool> sound(objects.size());    // known to lead to an end
  for (size_t i = 0; i < objects.size() && m_reader.Ok(); ++i) {
    std::vector<size_t> way;
    size_t at = i;
    while (m_reader.Ok() && objects[at] && !sound[at]) {
      if (seen[at] == i + 1) {
        m_reader.EnterRecord("record", i, 0);
        m_reader.Fail("the parents run in a circle");
        return;
      }
      seen[at] = static_cast<uint32_t>(i + 1);
      way.push_back(at);
      if (objects[at]->parent == kNoParent) break;
      const auto parent = static_cast<size_t>(objects[at]->parent);
      if (!objects[parent]) {
        m_reader.EnterRecord("record", at, 0);
        m_reader.Fail("parent " + Number(static_cast<int64_t>(parent)) + " is a hole in the list");
      }
      at = parent;
    }
    for (const size_t object : way) sound[object] = true;
  }
}

void ContainerReader::ReadRooms() {
  ReadList("ROOM", m_records.rooms, [&] { return ReadRoom(); });
}

RoomRecord ContainerReader::ReadRoom() {
  RoomRecord room;
  room.offset = m_reader.At();
  room.name = m_reader.Text();
  room.caption = m_reader.Text();
  room.width = m_reader.I32();
  room.height = m_reader.I32();
  room.speed = m_reader.I32();
  room.persistent = m_reader.Bool();
  room.colour = m_reader.U32();
  room.showColour = m_reader.Bool();
  room.code = Code("creation");
  const uint32_t flags = m_reader.U32();
  room.viewsEnabled = (flags & 1) != 0;
  room.clearDisplay = (flags & 2) != 0;
  room.clearViews = (flags & 4) == 0;
  m_reader.Check(flags >> 16 < 2,
                 [&] { return "layers (record version " + Number(flags >> 16) + ") are not supported"; });
  m_reader.Check(room.width >= 0 && room.height >= 0, [&] {
    return "the size " + Number(room.width) + " by " + Number(room.height) + " is impossible";
  });
  const std::vector<uint32_t> backgrounds = m_reader.ListReference("backgrounds");
  const std::vector<uint32_t> views = m_reader.ListReference("views");
  const std::vector<uint32_t> instances = m_reader.ListReference("instances");
  const std::vector<uint32_t> tiles = m_reader.ListReference("tiles");
  if (m_records.header.version >= 6) {
    m_reader.Skip(20);
    for (int i = 0; i < 3; ++i) m_reader.F32();
  }
  m_reader.Check(backgrounds.size() <= kRoomEntries, "there are more than 8 backgrounds");
  m_reader.Check(views.size() <= kRoomEntries, "there are more than 8 views");
  if (!m_reader.Ok()) return room;
  room.backgrounds.resize(backgrounds.size());
  room.views.resize(views.size());
  ReadParts("background", backgrounds, [&](size_t i) { room.backgrounds[i] = ReadRoomBackground(); });
  ReadParts("view", views, [&](size_t i) { room.views[i] = ReadRoomView(); });
  ReadParts("instance", instances, [&](size_t) { room.instances.push_back(ReadRoomInstance()); });
  ReadParts("tile", tiles, [&](size_t) { room.tiles.push_back(ReadRoomTile()); });
  return room;
}

RoomRecord::Background ContainerReader::ReadRoomBackground() {
  RoomRecord::Background slot;
  slot.visible = m_reader.Bool();
  slot.foreground = m_reader.Bool();
  slot.background = Asset("background", m_records.backgrounds.size());
  slot.x = m_reader.I32();
  slot.y = m_reader.I32();
  slot.tiledSideways = m_reader.Bool();
  slot.tiledUpright = m_reader.Bool();
  slot.hspeed = m_reader.I32();
  slot.vspeed = m_reader.I32();
  slot.stretch = m_reader.Bool();
  return slot;
}

RoomRecord::View ContainerReader::ReadRoomView() {
  RoomRecord::View view;
  view.enabled = m_reader.Bool();
  for (int32_t* field :
       {&view.x, &view.y, &view.width, &view.height, &view.portX, &view.portY, &view.portWidth,
        &view.portHeight, &view.borderX, &view.borderY, &view.speedX, &view.speedY})
    *field = m_reader.I32();
  view.object = Asset("object", m_objectCount);
  return view;
}

RoomRecord::Instance ContainerReader::ReadRoomInstance() {
  constexpr int32_t kFirstId = 100000;
  RoomRecord::Instance instance;
  instance.x = m_reader.I32();
  instance.y = m_reader.I32();
  instance.object = Asset("object", m_objectCount);
  instance.id = m_reader.I32();
  instance.code = Code("creation");
  instance.scaleX = m_reader.F32();
  instance.scaleY = m_reader.F32();
  instance.colour = m_reader.U32();
  instance.rotation = m_reader.F32();
  instance.preCreateCode = Code("pre-creation");
  if (!m_reader.Ok()) return instance;
  m_reader.Check(instance.object < 0 || m_records.objects[static_cast<size_t>(instance.object)].has_value(),
                 [&] { return "object " + Number(instance.object) + " is a hole in the list"; });
  m_reader.Check(instance.id >= kFirstId,
                 [&] { return "id " + Number(instance.id) + " is below " + Number(kFirstId); });
  m_reader.Check(m_instanceIds.insert(instance.id).second,
                 [&] { return "id " + Number(instance.id) + " is used twice"; });
  m_reader.Check(instance.id <= m_records.header.lastInstanceId, [&] {
    return "id " + Number(instance.id) + " is above the last id of the header, " +
           Number(m_records.header.lastInstanceId);
  });
  return instance;
}

RoomRecord::Tile ContainerReader::ReadRoomTile() {
  RoomRecord::Tile tile;
  for (int32_t* field : {&tile.x, &tile.y, &tile.background, &tile.sourceX, &tile.sourceY, &tile.width,
                         &tile.height, &tile.depth, &tile.id})
    *field = m_reader.I32();
  tile.scaleX = m_reader.F32();
  tile.scaleY = m_reader.F32();
  tile.colour = m_reader.U32();
  if (!m_reader.Ok()) return tile;
  const RecordList<BackgroundRecord>& backgrounds = m_records.backgrounds;
  if (tile.background < 0 || static_cast<size_t>(tile.background) >= backgrounds.size() ||
      !backgrounds[static_cast<size_t>(tile.background)]) {
    m_reader.Fail("background index " + Number(tile.background) + " is not one of " +
                  Number(static_cast<int64_t>(backgrounds.size())));
    return tile;
  }
  m_reader.Check(m_tileIds.insert(tile.id).second,
                 [&] { return "id " + Number(tile.id) + " is used twice"; });
  m_reader.Check(tile.id <= m_records.header.lastTileId, [&] {
    return "id " + Number(tile.id) + " is above the last id of the header, " +
           Number(m_records.header.lastTileId);
  });
  const uint32_t page = backgrounds[static_cast<size_t>(tile.background)]->page;
  const int64_t width = m_container.U16(page + 16), height = m_container.U16(page + 18);
  if (page != 0)
    m_reader.Check(tile.sourceX >= 0 && tile.sourceY >= 0 && tile.width >= 0 && tile.height >= 0 &&
                       int64_t{tile.sourceX} + tile.width <= width &&
                       int64_t{tile.sourceY} + tile.height <= height,
                   [&] {
                     return "the part at (" + Number(tile.sourceX) + ", " + Number(tile.sourceY) + ") of " +
                            Number(tile.width) + " by " + Number(tile.height) + " leaves background " +
                            Number(tile.background) + " of " + Number(width) + " by " + Number(height);
                   });
  return tile;
}

void ContainerReader::CheckRoomOrder() {
  if (!m_reader.Ok()) return;
  if (!Enter("GEN8") && !Enter("GEN7")) Enter("GENL");
  for (const int32_t room : m_records.header.roomOrder)
    m_reader.Check(room >= 0 && static_cast<size_t>(room) < m_records.rooms.size() &&
                       m_records.rooms[static_cast<size_t>(room)].has_value(),
                   [&] {
                     return "room index " + Number(room) + " of the room order is not one of " +
                            Number(static_cast<int64_t>(m_records.rooms.size()));
                   });
}

} // namespace vesk::container
