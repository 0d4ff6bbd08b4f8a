#include "game/play/arrival.h"

#include "game/Game.h"
#include "game/play/globals.h"

namespace vesk {

namespace {

// Indexed by global.postchange. The first that exists leads the camera.
struct Arrival {
  int object;
  int right_by; // pixels from the marker
};
constexpr Arrival kArrivals[] = {{obj_tovin, 8}, {obj_warptovin, 16}, {obj_jumpspawn, 8}, {obj_vinespawn, 8}};

} // namespace

Self any_hero() {
  for (const Arrival& way : kArrivals)
    if (const Self it = first(way.object)) return it;
  return {};
}

void RemoveHeroes(Self) {
  for (const Arrival& way : kArrivals) with(way.object, [](Self it) { instance_destroy(it); });
}

void enter_level(Self manager) {
  if (global[tovinstart] != 0) return;
  global[tovinstart] = 1;
  global[carrieditem] = noone;
  global[pswitch] = 0;
  global[star] = 0;
  if (global[checkpoint_x] != noone) {
    event_user(manager, 0);
    make(global[checkpoint_x], global[checkpoint_y], obj_tovin);
  }
  global[checkpointroom] = room;
  make(0, 0, obj_tovinstart);
}

void arrive_by_warp(Self manager) {
  if (global[post_section] == "") return;
  event_user(manager, 0);
  const Self marker = first(static_cast<int>(scr_find_marker(global[post_section].text())));
  const int way = global[postchange];
  if (marker && way >= 0 && way < static_cast<int>(std::size(kArrivals)))
    make(marker[x] + kArrivals[way].right_by, marker[y], kArrivals[way].object);
  global[post_section] = "";
}

void bring_carried_item(Self manager) {
  if (global[velmo] == 2) {
    make(0, 0, obj_hoskushoe);
    return;
  }
  if (global[carrieditem] == noone) return;
  const Self item = make(manager[x] - 8, manager[y] + 15, global[carrieditem]);
  global[shallihold] = 2;
  with(obj_tovin, [](Self hero) { // one that stands here already has taken its hands from the old value
    hero[holding] = 2;
    global[shallihold] = 0;
  });
  item[held] = 1;
  const bool gun = object_is_ancestor(global[carrieditem], obj_gunparent);
  item[depth] = gun ? -6 : -4;
  if (global[carriedsprite] != noone) {
    item[sprite_index] = global[carriedsprite];
    global[carriedsprite] = noone;
  }
  if (gun) item[ammo] = global[ammo]; // an empty one stays empty
  if (global[ammo] > 0) manager[maxammo] = item[maxammo];
  global[carrieditem] = noone;
}

void go_on_with_timers(Self manager) {
  if (global[pswitch] > 0) {
    event_user(manager, 1);
    manager[alarm][10] = max(global[pswitch], 30);
    global[pswitch] = 0;
  }
  if (global[star] > 0) {
    make(manager[x], manager[y], obj_invincibility)[alarm][0] = max(global[star], 30);
    global[star] = 0;
  }
}

} // namespace vesk
