#include "apps/vesk-pack/GameRecords.h"

#if __has_include("game/GameTables.h")
#include "game/GameTables.h"
#else
// Until the game's tables are there: its objects without their events, no scripts, no code.
#include "Files/Code/Code.h"
#include "game/AssetNames.h"

namespace vesk {
namespace {

enum : int {
#define OBJECT(symbol, ...) symbol,
#include "game/Objects.inc"
#undef OBJECT
};

struct EventRow {
  int type, subtype;
};
struct ObjectRow {
  const char* symbol;
  const char* name;
  int parent, sprite, mask, depth;
  bool visible, persistent;
  std::span<const EventRow> events;
  int firstCode;
};
struct ScriptRow {
  const char* name;
  int code;
};

constexpr int none = -1;
constexpr ObjectRow kObjects[] = {
#define OBJECT(symbol, name, parent, sprite, mask, depth, visible, persistent)                               \
  {                                                                                                          \
      #symbol,                                                                                               \
      name,                                                                                                  \
      (parent) == none ? -100 : (parent),                                                                    \
      sprite,                                                                                                \
      mask,                                                                                                  \
      depth,                                                                                                 \
      (visible) != 0,                                                                                        \
      (persistent) != 0,                                                                                     \
      {},                                                                                                    \
      0},
#include "game/Objects.inc"
#undef OBJECT
};

std::span<const ObjectRow> GameObjects() { return kObjects; }
std::span<const ScriptRow> GameScripts() { return {}; }
std::span<const CodeEntry> GameCodeTable() { return {}; }

} // namespace
} // namespace vesk
#endif

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
  const std::span<const CodeEntry> code = GameCodeTable();
  for (size_t i = 0; i < code.size(); ++i)
    if (name == code[i].name) return static_cast<int>(i);
  return -1;
}

} // namespace vesk
