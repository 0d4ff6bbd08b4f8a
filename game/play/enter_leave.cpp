#include "game/play/enter_leave.h"

#include "game/Game.h"
#include "game/Keys.h"

namespace vesk {

void scr_clearvars() {
  const DebugFrame frame("scr_clearvars");
  global[tovinstart] = 0;
  global[carrieditem] = noone;
  global[carriedsprite] = noone;
  global[shallihold] = 0;
  global[pswitch] = 0;
  global[star] = 0;
  global[onoffblock] = global[onoffblockprev];
  global[waterlevelprev] = -1;
  global[died] = 0;
  global[velmo] = 0;
  global[postchange] = -1;
  health = 25;
  global[clear] = 0;
  score = 0;
  global[coins] = 0;
  global[checkpoint_x] = noone;
  global[checkpoint_y] = noone;
  global[checkpoint_section] = "Main";
  global[post_section] = "";
  global[ammo] = 0;
}

void scr_return() {
  const DebugFrame frame("scr_return");
  if (keyboard_check(kActionKey)) keyboard_key_release(kActionKey);
  io_clear();
  keyboard_unset_map();
  global[powerup] = 1;
  if (global[gamemode] == 0) { // a test from the editor
    global[rememberview][0] = view_xview[0].Get();
    global[rememberview][1] = view_yview[0].Get();
    room_goto(rm_editor);
  } else {
    room_goto(rm_mainmenu);
  }
}

} // namespace vesk
