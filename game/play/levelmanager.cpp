// obj_levelmanager: conducts one running section. Its events and the order of their steps stand here; the
// steps themselves stand in section, arrival, section_music, camera, heartbeat, blue_switch, pmeter and hud.
#include "game/Game.h"
#include "game/Keys.h"
#include "game/play/arrival.h"
#include "game/play/blue_switch.h"
#include "game/play/camera.h"
#include "game/play/heartbeat.h"
#include "game/play/hud.h"
#include "game/play/pmeter.h"
#include "game/play/section.h"
#include "game/play/section_music.h"

namespace vesk {

namespace {

void Create(Self self) {
  self[levelmusic] = 0;
  if (global[star] == 0) self[alarm][0] = 2;
  view_object[0] = obj_levelmanager;
  self[musicdisabled] = 0;
  self[anim] = 0;
  self[alarm][5] = 7;
  self[barrier] = 1;
  self[alarm][6] = 3;
  self[switchon] = 0;
  self[pmeter] = 0;
  self[slowdown] = 0;
  self[maxammo] = 1;
  self[lockon] = 0;
  self[alarm][7] = kMeterSteps;
  self[heart] = 0;
  self[beat] = 0;
  self[beatd] = kPulseStep;
}

void map_keys() {
  if (keyboard_get_map('X') != 'X') return;
  keyboard_set_map('X', kJumpKey);
  keyboard_set_map('Z', kActionKey);
}

void RoomStart(Self self) {
  if (self[visible] == 0) return; // the section's replay of this event reaches the manager too
  if (!build_section(self)) return;
  map_keys();
  enter_level(self);
  hand_over_music(self);
  arrive_by_warp(self);
  if (global[died] == 1) { // a hero that died carries nothing back
    global[died] = 0;
    return;
  }
  bring_carried_item(self);
  go_on_with_timers(self);
}

void EndStep(Self self) {
  lead_camera(self);
  scroll_background();
  sleep_far_things();
  keep_hero_in_view(self);
  mind_heartbeat(self);
}

void RoomEnd(Self) {
  for (const int sound : {snd_switchsong, snd_pmeter, snd_heartbeat})
    if (audio_is_playing(sound)) audio_stop_sound(sound);
}

void PressEnter(Self) {
  if (keyboard_check(kAltKey) || instance_exists(obj_levelender)) return;
  make(0, 0, obj_pausemenu);
  keyboard_clear(kEnterKey);
}

void Alarm_EndLockOn(Self self) { self[lockon] = 0; }

void Alarm_Animate(Self self) {
  self[anim] += 1;
  self[alarm][5] = 7;
}

} // namespace

const EventTable obj_levelmanager_events = {
    {ev_create, 0, Create},
    {ev_alarm, 0, Alarm_StartMusic},
    {ev_alarm, 1, Alarm_StopMusic},
    {ev_alarm, 2, Alarm_Pulse},
    {ev_alarm, 3, Alarm_EndLockOn},
    {ev_alarm, 5, Alarm_Animate},
    {ev_alarm, 6, Alarm_CloseView},
    {ev_alarm, 7, Alarm_SampleMeter},
    {ev_alarm, 8, Alarm_CheckFullMeter},
    {ev_alarm, 9, Alarm_BlinkMeter},
    {ev_alarm, 10, Alarm_BlueSwitchOff},
    {ev_step, ev_step_end, EndStep},
    {ev_other, ev_room_start, RoomStart},
    {ev_other, ev_room_end, RoomEnd},
    {ev_other, ev_user(0), RemoveHeroes},
    {ev_other, ev_user(1), BlueSwitchOn},
    {ev_other, ev_user(2), SwapBricksAndCoins},
    {ev_other, ev_user(3), Silence},
    {ev_draw, ev_gui, DrawHud},
    {ev_keypress, kEnterKey, PressEnter},
};

} // namespace vesk
