#include "game/play/blue_switch.h"

#include "game/Game.h"
#include "game/Music.h"

namespace vesk {

namespace {

void set_blue_switch(Self manager, bool on) {
  if (manager[switchon] == on) return;
  manager[switchon] = on;
  event_user(manager, 2);
  with(obj_pcoin, [&](Self coin) { coin[visible] = on; });
  if (on) {
    with(obj_spring_hidden, [](Self spring) { make(spring[x], spring[y], obj_spring_blue); });
  } else {
    with(obj_spring_blue, [](Self spring) {
      make(spring[x], spring[y], obj_smoke);
      instance_destroy(spring);
    });
  }
  for (const int door : {obj_door_hidden, obj_door_hidden_locked})
    with(door, [&](Self it) { it[visible] = on; });
  with(obj_pplatform, [&](Self it) { event_user(it, on ? 0 : 1); });
  for (const int conveyor : {obj_conveyor_left, obj_conveyor_right})
    with(conveyor, [&](Self it) { it[image_speed] = on ? 0 : 1; });
  audio_stop_sound(snd_switchsong);
  if (on) audio_play_sound(snd_switchsong, kMusicPriority, true);
}

void turn_into(int from, int to) {
  with(from, [&](Self it) {
    make(it[x], it[y], to);
    instance_destroy(it);
  });
}

} // namespace

void BlueSwitchOn(Self manager) { set_blue_switch(manager, true); }
void Alarm_BlueSwitchOff(Self manager) { set_blue_switch(manager, false); }

// The middle object keeps new coins from being turned back.
void SwapBricksAndCoins(Self) {
  turn_into(obj_brick, obj_coinchange);
  turn_into(obj_coin, obj_brick);
  turn_into(obj_coinchange, obj_coin);
}

} // namespace vesk
