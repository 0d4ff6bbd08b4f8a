#include "game/play/pmeter.h"

#include "game/Game.h"
#include "game/play/hero.h"

namespace vesk {

namespace {

constexpr int kFull = 6;

bool grounded(Self hero) { return hero[state] < hero::kInAir; }

void empty_by_one(Self manager) {
  audio_stop_sound(snd_pmeter);
  manager[pmeter] = 5;
  manager[alarm][7] = kMeterSteps;
}

} // namespace

bool meter_is_full() { return first(obj_levelmanager)[pmeter] >= kFull; }

// Falling is a third as fast as rising.
void Alarm_SampleMeter(Self manager) {
  if (const Self hero = first(obj_tovin)) {
    if (hero::runs(hero) && hero[state] == hero::kWalking) {
      if (manager[pmeter] < kFull) manager[pmeter] += 1;
    } else if (manager[pmeter] > 0 && manager[slowdown] == 2) {
      manager[pmeter] -= 1;
    }
    manager[slowdown] += 1;
    if (manager[slowdown] == 3) manager[slowdown] = 0;
  } else if (manager[pmeter] > 0) {
    manager[pmeter] -= 1;
  }

  if (manager[pmeter] == kFull) {
    audio_play_sound(snd_pmeter, 1, true);
    manager[alarm][8] = 300;
    manager[alarm][9] = 7;
  } else {
    manager[alarm][7] = kMeterSteps;
  }
}

void Alarm_CheckFullMeter(Self manager) {
  if (!(manager[pmeter] > 5)) return;
  const Self hero = first(obj_tovin);
  if (hero && hero::runs(hero) && grounded(hero))
    manager[alarm][8] = 100;
  else
    empty_by_one(manager);
}

// A hero in the air keeps a full meter.
void Alarm_BlinkMeter(Self manager) {
  const Self hero = first(obj_tovin);
  if (hero && grounded(hero) && !hero::runs(hero)) {
    empty_by_one(manager);
  } else if (manager[pmeter] > 5) {
    manager[pmeter] = manager[pmeter] == 6 ? 7 : 6;
    manager[alarm][9] = 7;
  }
}

} // namespace vesk
