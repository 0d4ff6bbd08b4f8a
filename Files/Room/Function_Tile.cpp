#include "Files/Room/Function_Tile.h"

#include "Files/Background/Background.h"
#include "Files/Base/Error.h"
#include "Files/Function/Function.h"
#include "Files/Room/Room.h"

namespace vesk {

namespace {

void ReportMissing() { ReportError(std::string_view("Tile does not exist."), false); }

const Tile* Known(int32_t id) {
  const CRoom* room = CurrentRoom();
  const Tile* tile = room ? room->tiles.Find(id) : nullptr;
  if (!tile) ReportMissing();
  return tile;
}

template <auto Field> auto Read(int32_t id) {
  const Tile* tile = Known(id);
  return tile ? tile->*Field : std::remove_cvref_t<decltype(tile->*Field)>{};
}

template <class Change> void Write(int32_t id, Change change) {
  CRoom* room = CurrentRoom();
  if (Tile* tile = room ? room->tiles.Edit(id) : nullptr)
    change(*tile);
  else
    ReportMissing();
}

template <class Change> void Layer(float depth, Change change) {
  if (CRoom* room = CurrentRoom()) room->tiles.ForEachAtDepth(depth, change);
}

} // namespace

int32_t tile_add(int32_t background, int32_t left, int32_t top, int32_t width, int32_t height, float x,
                 float y, float depth) {
  CRoom* room = CurrentRoom();
  if (!room || !Background_Find(background)) {
    ReportError(std::string_view("Background does not exist."), false);
    return -1;
  }
  Tile tile;
  tile.background = background;
  tile.left = left;
  tile.top = top;
  tile.width = width;
  tile.height = height;
  tile.x = x;
  tile.y = y;
  tile.depth = depth;
  tile.id = ++Rooms().nextTileId;
  room->tiles.Add(tile);
  return tile.id;
}

void tile_delete(int32_t id) {
  CRoom* room = CurrentRoom();
  if (!room || !room->tiles.Delete(id)) ReportMissing();
}

bool tile_exists(int32_t id) {
  const CRoom* room = CurrentRoom();
  return room && room->tiles.Find(id);
}

float tile_get_x(int32_t id) { return Read<&Tile::x>(id); }
float tile_get_y(int32_t id) { return Read<&Tile::y>(id); }
int32_t tile_get_left(int32_t id) { return Read<&Tile::left>(id); }
int32_t tile_get_top(int32_t id) { return Read<&Tile::top>(id); }
int32_t tile_get_width(int32_t id) { return Read<&Tile::width>(id); }
int32_t tile_get_height(int32_t id) { return Read<&Tile::height>(id); }
float tile_get_depth(int32_t id) { return Read<&Tile::depth>(id); }
bool tile_get_visible(int32_t id) { return Read<&Tile::visible>(id); }
float tile_get_xscale(int32_t id) { return Read<&Tile::xscale>(id); }
float tile_get_yscale(int32_t id) { return Read<&Tile::yscale>(id); }
uint32_t tile_get_blend(int32_t id) { return Read<&Tile::blend>(id); }
float tile_get_alpha(int32_t id) { return Read<&Tile::alpha>(id); }
int32_t tile_get_background(int32_t id) { return Read<&Tile::background>(id); }

void tile_set_position(int32_t id, float x, float y) {
  Write(id, [=](Tile& tile) {
    tile.x = x;
    tile.y = y;
  });
}
void tile_set_region(int32_t id, int32_t left, int32_t top, int32_t width, int32_t height) {
  Write(id, [=](Tile& tile) {
    tile.left = left;
    tile.top = top;
    tile.width = width;
    tile.height = height;
  });
}
void tile_set_background(int32_t id, int32_t background) {
  Write(id, [=](Tile& tile) { tile.background = background; });
}
void tile_set_visible(int32_t id, bool visible) {
  Write(id, [=](Tile& tile) { tile.visible = visible; });
}
void tile_set_depth(int32_t id, float depth) {
  Write(id, [=](Tile& tile) { tile.depth = depth; });
}
void tile_set_scale(int32_t id, float xscale, float yscale) {
  Write(id, [=](Tile& tile) {
    tile.xscale = xscale;
    tile.yscale = yscale;
  });
}
void tile_set_blend(int32_t id, uint32_t colour) {
  Write(id, [=](Tile& tile) { tile.blend = colour & 0xFFFFFF; });
}
void tile_set_alpha(int32_t id, float alpha) {
  Write(id, [=](Tile& tile) { tile.alpha = alpha; });
}

int32_t tile_layer_find(float depth, float x, float y) {
  const CRoom* room = CurrentRoom();
  const Tile* tile = room ? room->tiles.FindAt(depth, x, y) : nullptr;
  return tile ? tile->id : -1;
}
void tile_layer_hide(float depth) {
  Layer(depth, [](Tile& tile) { tile.visible = false; });
}
void tile_layer_show(float depth) {
  Layer(depth, [](Tile& tile) { tile.visible = true; });
}
void tile_layer_delete(float depth) {
  if (CRoom* room = CurrentRoom()) room->tiles.DeleteAtDepth(depth);
}
void tile_layer_delete_at(float depth, float x, float y) {
  CRoom* room = CurrentRoom();
  while (const Tile* tile = room ? room->tiles.FindAt(depth, x, y) : nullptr) room->tiles.Delete(tile->id);
}
void tile_layer_shift(float depth, float dx, float dy) {
  Layer(depth, [=](Tile& tile) {
    tile.x += dx;
    tile.y += dy;
  });
}
void tile_layer_depth(float depth, float newDepth) {
  Layer(depth, [=](Tile& tile) { tile.depth = newDepth; });
}

void Function_AddTile() {
  static constexpr BuiltinRow kBuiltins[] = {
      Builtin<&tile_add>("tile_add"),
      Builtin<&tile_delete>("tile_delete"),
      Builtin<&tile_exists>("tile_exists"),
      Builtin<&tile_get_x>("tile_get_x"),
      Builtin<&tile_get_y>("tile_get_y"),
      Builtin<&tile_get_left>("tile_get_left"),
      Builtin<&tile_get_top>("tile_get_top"),
      Builtin<&tile_get_width>("tile_get_width"),
      Builtin<&tile_get_height>("tile_get_height"),
      Builtin<&tile_get_depth>("tile_get_depth"),
      Builtin<&tile_get_visible>("tile_get_visible"),
      Builtin<&tile_get_xscale>("tile_get_xscale"),
      Builtin<&tile_get_yscale>("tile_get_yscale"),
      Builtin<&tile_get_blend>("tile_get_blend"),
      Builtin<&tile_get_alpha>("tile_get_alpha"),
      Builtin<&tile_get_background>("tile_get_background"),
      Builtin<&tile_set_position>("tile_set_position"),
      Builtin<&tile_set_region>("tile_set_region"),
      Builtin<&tile_set_background>("tile_set_background"),
      Builtin<&tile_set_visible>("tile_set_visible"),
      Builtin<&tile_set_depth>("tile_set_depth"),
      Builtin<&tile_set_scale>("tile_set_scale"),
      Builtin<&tile_set_blend>("tile_set_blend"),
      Builtin<&tile_set_alpha>("tile_set_alpha"),
      Builtin<&tile_layer_find>("tile_layer_find"),
      Builtin<&tile_layer_hide>("tile_layer_hide"),
      Builtin<&tile_layer_show>("tile_layer_show"),
      Builtin<&tile_layer_delete>("tile_layer_delete"),
      Builtin<&tile_layer_delete_at>("tile_layer_delete_at"),
      Builtin<&tile_layer_shift>("tile_layer_shift"),
      Builtin<&tile_layer_depth>("tile_layer_depth"),
  };
  Function_Add(kBuiltins);
}

} // namespace vesk
