// obj_tovin: what runs when. The rules themselves stand in the rooms that hero.h names.
#include "game/play/hero.h"

#include "game/Game.h"

namespace vesk {

namespace {

using namespace hero;

void Create(Self self) {
  self[state] = kStanding;
  self[direct] = 1;
  self[holding] = 0;
  if (global[shallihold] > 0) {
    self[holding] = global[shallihold];
    global[shallihold] = 0;
  }
  self[jumpnow] = kMayJump;
  self[skidnow] = kNoSkid;
  self[isswim] = 0;
  self[isduck] = 0;
  self[invincible] = 0;
  self[netsmack] = 0;
  self[iamkicking] = 0;
  self[isslip] = 0;
  self[disablecontrols] = 0;
  self[walljump] = 0;
  self[doublejump] = 0;
  self[isflashing] = 0;
  self[hitpoint] = 0;
  self[statedelay] = 0;
  self[stompstyle] = 0;
  self[damage] = 1;
  self[alarm][kSkidSmoke] = kSkidSmokeSteps;
  self[alarm][kBubble] = steps_to_bubble();
}

void Destroy(Self self) {
  if (self[skidnow] == kSkidSound) audio_stop_sound(snd_skid);
}

void RoomEnd(Self self) { instance_destroy(self); }

void move_by_state(Self self) {
  if (self[isswim] != 0)
    event_user(self, kMoveInWater);
  else if (self[state] == kClimbing)
    event_user(self, kClimb);
  else if (self[state] == kClinging)
    event_user(self, kCling);
  else
    event_user(self, kMoveOnLand);
}

void Step(Self self) {
  land_on_tops(self);
  stick_to_descending_slope(self);
  stand_on_slope(self);
  move_by_state(self);
  meet_walls(self);
  meet_ceiling(self);
  duck(self);
  enter_water(self);
  keep_in_room(self);
}

void Alarm_EmptyHands(Self self) { self[holding] = 0; }

} // namespace

const EventTable obj_tovin_events = {
    {ev_create, 0, Create},
    {ev_destroy, 0, Destroy},
    {ev_alarm, kEmptyHands, Alarm_EmptyHands},
    {ev_alarm, kBlinkOff, Alarm_BlinkOff},
    {ev_alarm, kBlinkOn, Alarm_BlinkOn},
    {ev_alarm, kEndInvincibility, Alarm_EndInvincibility},
    {ev_alarm, kEndNetSmack, Alarm_EndNetSmack},
    {ev_alarm, kSkidSmoke, Alarm_SkidSmoke},
    {ev_alarm, kEndKick, Alarm_EndKick},
    {ev_alarm, kBubble, Alarm_Bubble},
    {ev_step, ev_step_normal, Step},
    {ev_step, ev_step_end, ChooseLook},
    {ev_other, ev_room_end, RoomEnd},
    {ev_other, ev_user(kTakeDamage), TakeDamage},
    {ev_other, ev_user(kBounce), Bounce},
    {ev_other, ev_user(kMoveOnLand), MoveOnLand},
    {ev_other, ev_user(kMoveInWater), MoveInWater},
    {ev_other, ev_user(kClimb), Climb},
    {ev_other, ev_user(kCling), Cling},
    {ev_other, ev_user(kStartInvincibility), StartInvincibility},
    {ev_other, ev_user(kKick), Kick},
    {ev_draw, ev_draw_normal, Draw},
};

} // namespace vesk
