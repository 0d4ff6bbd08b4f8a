#include "game/play/hero_damage.h"

#include "game/Game.h"
#include "game/NotBuilt.h"

namespace vesk {

void hero_take_damage(Self hero) {
  if (hero[invincible] != 0) return; // `damage` stays as set and is dealt by the next hit
  event_user(hero, 6);
  health = max(health - hero[damage], 0);
  if (global[velmo] == 2) {
    hero[stompstyle] = 0;
    audio_play_sound(snd_magic, 0, false);
    make(hero[x], hero[y] + 16, obj_statuesmoke);
    with(obj_hoskushoe, [](Self shoe) { instance_destroy(shoe); });
    global[velmo] = 0;
    hero[visible] = 1;
  }
  if (health == 0) {
    make(hero[x], hero[y], obj_deadtovin);
    SayNotBuilt("scr_tovinparts");
    instance_destroy(hero);
  } else {
    audio_play_sound(snd_bleed, 0, false);
    for (int drop = 0; drop < hero[damage]; ++drop) make(hero[x], hero[y] + 16, obj_gore);
  }
  hero[damage] = 1;
}

void hero_start_invincibility(Self hero) {
  if (hero[invincible] == -1) return;
  hero[invincible] = 1;
  hero[alarm][1] = 1;
  hero[alarm][3] = 8;
}

void hero_blink_off(Self hero) {
  hero[image_alpha] = 0.4;
  hero[alarm][2] = 4;
}

void hero_blink_on(Self hero) {
  hero[image_alpha] = 1;
  if (hero[invincible] == 1) hero[alarm][1] = 4;
}

void hero_end_invincibility(Self hero) { hero[invincible] = 0; }

} // namespace vesk
