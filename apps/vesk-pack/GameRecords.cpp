#include "apps/vesk-pack/GameRecords.h"

#include "game/GameTables.h"

namespace vesk {

void AddGameRecords(pack::Game& game) {
  for (const ScriptRow& row : GameScripts()) game.scripts.push_back({row.name, row.code});
  for (const ObjectRow& row : GameObjects()) {
    pack::Object object;
    object.name = row.name;
    object.sprite = row.sprite;
    object.mask = row.mask;
    object.depth = row.depth;
    object.parent = row.parent;
    object.visible = row.visible;
    object.persistent = row.persistent;
    int code = row.firstCode;
    for (const EventRow& event : row.events) object.events.push_back({event.type, event.subtype, code++});
    game.objects.push_back(std::move(object));
  }
}

int32_t GameCodeCount() { return static_cast<int32_t>(GameCodeTable().size()); }

int FindGameObject(const std::string& symbol) {
  const std::span<const ObjectRow> objects = GameObjects();
  for (size_t i = 0; i < objects.size(); ++i)
    if (symbol == objects[i].symbol) return static_cast<int>(i);
  return -1;
}

int FindGameCode(const std::string& name) {
  for (const RoomCodeRow& row : GameRoomCodes())
    if (name == row.name) return row.code;
  return -1;
}

} // namespace vesk
