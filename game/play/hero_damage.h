#pragma once
// What a hit does to the hero: the events of obj_tovin that the rest of the game reaches through user event
// 0.
#include "Files/Code/Self.h"

namespace vesk {

inline constexpr int kFatalDamage = 25; // the whole health bar

void hero_take_damage(Self hero);
void hero_start_invincibility(Self hero);
void hero_blink_off(Self hero);
void hero_blink_on(Self hero);
void hero_end_invincibility(Self hero);

} // namespace vesk
