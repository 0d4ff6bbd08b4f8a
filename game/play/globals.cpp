#include "game/play/globals.h"

#include "Files/Function/Function_Data_Structures.h"
#include "game/Game.h"

namespace vesk {

namespace {

bool holds(Slot variable, int type) {
  return !global[variable].value().IsUnset() && ds_exists(global[variable], type);
}

// A restart from inside a level leaves both behind.
void free_level_data() {
  if (holds(leveldata, ds_type_map)) ds_map_destroy(global[leveldata]);
  if (holds(level_list, ds_type_list)) ds_list_destroy(global[level_list]);
}

} // namespace

void scr_init_globals() {
  const DebugFrame frame("scr_init_globals");
  free_level_data();

  global[coins] = 0;
  health = 25;
  score = 0;
  global[tovinstart] = 0;
  global[clear] = 0;
  global[powerup] = 1;
  global[checkpoint_x] = noone;
  global[checkpoint_y] = noone;
  global[checkpoint_section] = "Main";
  global[postchange] = -1;
  global[post_section] = "";
  global[postx] = 0;
  global[posty] = 0;
  global[velmo] = 0;
  global[ycolor] = 0;
  global[died] = 0;
  global[pswitch] = 0;
  global[star] = 0;
  global[onoffblock] = 0;
  global[onoffblockprev] = 0;
  global[waterlevelprev] = -1;
  global[leveldata] = noone;
  global[level_list] = noone;
  global[levelname] = "";
  global[section] = "Main";
  global[gamemode] = 0;
  global[challenge] = 0;
  global[challenge_count] = 0;
  global[rememberview][0] = 0;
  global[rememberview][1] = 0;
  global[carrieditem] = noone;
  global[carriedsprite] = noone;
  global[ammo] = 0;
  global[shallihold] = 0;
  global[levelmusic] = 0;
}

bool outside_view(Self self) {
  return self[bbox_right] < view_xview[0] || self[bbox_left] > view_xview[0] + view_wview[0] ||
         self[bbox_bottom] < view_yview[0] || self[bbox_top] > view_yview[0] + view_hview[0];
}

void turn_towards_direction(Self self, double target, double step) {
  double difference = target - self[direction].Get();
  while (difference > 180) difference -= 360;
  while (difference < -180) difference += 360;
  self[direction] += difference > step ? step : difference < -step ? -step : difference;
}

double scr_find_marker(std::string name) {
  const DebugFrame frame("scr_find_marker");
  int found = noone;
  with(obj_cc_dest, [&](Self marker) {
    if (marker[cc_text] == name) found = marker.number();
  });
  return found;
}

} // namespace vesk
