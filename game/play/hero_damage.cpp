// What a hit does to the hero: health, blood, the shoe, short invincibility.
#include "game/Game.h"
#include "game/NotBuilt.h"
#include "game/play/hero.h"

namespace vesk::hero {

void TakeDamage(Self self) {
  if (self[invincible] != 0) return; // `damage` stays as set and is dealt by the next hit
  event_user(self, kStartInvincibility);
  health = max(health - self[damage], 0);
  if (global[velmo] == 2) {
    self[stompstyle] = 0;
    audio_play_sound(snd_magic, 0, false);
    make(self[x], self[y] + 16, obj_statuesmoke);
    with(obj_hoskushoe, [](Self shoe) { instance_destroy(shoe); });
    global[velmo] = 0;
    self[visible] = 1;
  }
  if (health == 0) {
    make(self[x], self[y], obj_deadtovin);
    SayNotBuilt("scr_tovinparts");
    instance_destroy(self);
  } else {
    audio_play_sound(snd_bleed, 0, false);
    for (int drop = 0; drop < self[damage]; ++drop) make(self[x], self[y] + 16, obj_gore);
  }
  self[damage] = 1;
}

void StartInvincibility(Self self) {
  if (self[invincible] == -1) return;
  self[invincible] = 1;
  self[alarm][kBlinkOff] = 1;
  self[alarm][kEndInvincibility] = 8;
}

void Alarm_BlinkOff(Self self) {
  self[image_alpha] = 0.4;
  self[alarm][kBlinkOn] = 4;
}

void Alarm_BlinkOn(Self self) {
  self[image_alpha] = 1;
  if (self[invincible] == 1) self[alarm][kBlinkOff] = 4;
}

void Alarm_EndInvincibility(Self self) { self[invincible] = 0; }

} // namespace vesk::hero
